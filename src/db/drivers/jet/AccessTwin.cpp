#include "db/drivers/jet/AccessTwin.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Connection.h"
#include "db/Errors.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/jet/AccessFile.h"
#include "db/drivers/jet/AccessHelper.h"
#include "db/drivers/sqlite/SqliteDriver.h"
#include "db/sql/JetSql.h"

namespace lodex {

namespace {

namespace fs = std::filesystem;

constexpr int kPatience = 15'000;  // milliseconds without progress
constexpr std::chrono::minutes kLeftoverAge(10);
constexpr size_t kStampBytes = 64 * 1024;
// Counts up whenever twins are made in another way, so that old ones are made anew.
constexpr int kTwinKind = 4;

std::string& chosenFolder() {
  static std::string folder;
  return folder;
}

fs::path twinFolder() {
  if (!chosenFolder().empty()) return nativePath(chosenFolder());
  if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data) {
    return fs::path(data) / "lodexgeo";
  }
  const char* home = std::getenv("HOME");
  return (home && *home ? fs::path(home) / ".local" / "share" : fs::temp_directory_path()) /
         "lodexgeo";
}

// FNV-1a, 64 bits (Fowler, Noll and Vo).
std::uint64_t hashOf(std::string_view bytes, std::uint64_t hash = 14695981039346656037u) {
  for (const char byte : bytes) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
  }
  return hash;
}

std::string firstBytes(const fs::path& path, size_t count) {
  std::string bytes(count, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<size_t>(file.gcount()));
  return bytes;
}

// A file with the same stamp is taken for unchanged: size, time, and its first pages.
std::string stampOf(const fs::path& access) {
  const auto time = fs::last_write_time(access).time_since_epoch().count();
  return fmt::format("{} {} {:016x}", fs::file_size(access), time,
                     hashOf(firstBytes(access, kStampBytes)));
}

// The whole content as a number, so that a file that was only touched is recognised.
std::string contentOf(const fs::path& access) {
  std::ifstream file(access, std::ios::binary);
  std::string piece(kStampBytes, '\0');
  std::uint64_t hash = hashOf("");
  while (file) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    hash = hashOf({piece.data(), static_cast<size_t>(file.gcount())}, hash);
  }
  return fmt::format("{} {:016x}", fs::file_size(access), hash);
}

bool canWriteIn(const fs::path& folder) {
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

fs::path twinPath(const fs::path& access) {
  const fs::path folder = fs::absolute(access).parent_path();
  const std::string name = access.filename().string();
  const fs::path beside = folder / (name + ".lodex.sqlite");
  if (canWriteIn(folder)) return beside;
  const std::string whole = fs::weakly_canonical(access).string();
  return twinFolder() / fmt::format("{}.{:016x}.lodex.sqlite", name, hashOf(whole));
}

// How often the database was changed, which SQLite keeps in its header as a big-endian number
// at 24.
std::uint32_t changeCount(const fs::path& database) {
  const std::string header = firstBytes(database, 28);
  if (header.size() < 28) return 0;
  std::uint32_t count = 0;
  for (size_t i = 24; i < 28; ++i) count = count << 8 | static_cast<unsigned char>(header[i]);
  return count;
}

// What a twin knows of its Access file, in its table kOriginTable, and whether it was changed
// since.
struct Origin {
  std::string stamp;
  std::string content;
  bool changed = false;
};

// Nothing for a twin that is missing, made in another way, or not a twin at all.
std::optional<Origin> readOrigin(const fs::path& twin) {
  if (!fs::exists(twin)) return std::nullopt;
  // Before it is opened, which may bring pending changes into the file.
  const bool isPending = fs::exists(twin.string() + "-wal");
  const std::int64_t changes = changeCount(twin);
  try {
    const auto driver = openSqliteFile(twin.string());
    const auto rows = driver->query(
        "SELECT stamp, content, changes FROM " + std::string(kOriginTable) + " WHERE kind = ?",
        {std::int64_t{kTwinKind}});
    Row row;
    if (!rows->next(row)) return std::nullopt;
    const bool changed = isPending || fieldText(row[2]) != std::to_string(changes);
    return Origin{fieldText(row[0]), fieldText(row[1]), changed};
  } catch (const Error& error) {
    if (error.number() != dberror::BadStatement) throw;  // it is in use or damaged
    return std::nullopt;
  }
}

// The change that stores the origin counts as one itself.
void writeOrigin(const fs::path& twin, const std::string& stamp, const std::string& content) {
  const std::int64_t changes = std::int64_t{changeCount(twin)} + 1;
  openSqliteFile(twin.string())
      ->execute("INSERT INTO " + std::string(kOriginTable) +
                    " (kind, stamp, content, changes) VALUES (?, ?, ?, ?)",
                {std::int64_t{kTwinKind}, stamp, content, changes});
}

// A twin that cannot be written, or is in use, is compared by content the next time, too.
void renewStamp(const fs::path& twin, const std::string& stamp) {
  try {
    openSqliteFile(twin.string())
        ->execute("UPDATE " + std::string(kOriginTable) + " SET stamp = ?, changes = changes + 1",
                  {stamp});
  } catch (const Error&) {
    return;
  }
}

fs::path helperPath() {
  std::error_code failed;
  const fs::path self = fs::read_symlink("/proc/self/exe", failed);
  return self.parent_path() / "lodex-jet";
}

// Removes a temporary file unless it was renamed.
class Temporary {
 public:
  explicit Temporary(fs::path path) : path_(std::move(path)) { remove(); }
  ~Temporary() { remove(); }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  const fs::path& path() const { return path_; }

 private:
  void remove() {
    std::error_code ignored;
    fs::remove(path_, ignored);
    fs::remove(path_.string() + "-journal", ignored);
  }
  fs::path path_;
};

// Keeps other programs from making a twin in the same folder. Where folders cannot be locked, as on
// some network drives, it does nothing.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && ::flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  ~FolderLock() {
    if (folder_ >= 0) ::close(folder_);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int folder_;
};

bool runsAsQuery(Driver& driver, const std::string& name, const std::string& sql,
                 std::string& reason) {
  try {
    driver.execute("CREATE VIEW " + quoteName(name) + " AS " + sql, {});
  } catch (const Error& error) {
    reason = error.what();
    return false;
  }
  try {
    driver.query("SELECT * FROM " + quoteName(name) + " WHERE 1 = 0", {});
    return true;
  } catch (const Error& error) {
    reason = error.what();
  }
  driver.execute("DROP VIEW " + quoteName(name), {});
  return false;
}

// Adds what making the views noticed to what the copy left out.
void keepFinding(Driver& driver, Severity severity, const std::string& query,
                 const std::string& text) {
  driver.execute("INSERT INTO " + std::string(kLeftOutTable) +
                     " (severity, table_name, text, [count]) VALUES (?, ?, ?, 1)",
                 {static_cast<std::int64_t>(severity), query, text});
}

// Queries may use each other, so those that fail are tried again while others succeed.
void makeViews(Driver& driver) {
  struct Saved {
    std::string name, sql, reason;
  };
  const auto leaveOut = [&](const Saved& query) {
    keepFinding(driver, Severity::Warning, query.name,
                "The saved query is not available as a view: " + query.reason);
  };
  std::vector<Saved> waiting, hopeless;
  {
    const auto rows =
        driver.query("SELECT name, sql, obstacle FROM " + std::string(kQueriesTable), {});
    Row row;
    while (rows->next(row)) {
      Saved query{fieldText(row[0]), fieldText(row[1]), fieldText(row[2])};
      if (query.reason.empty()) {
        waiting.push_back(std::move(query));
      } else {
        hopeless.push_back(std::move(query));
      }
    }
  }
  size_t before = 0;
  while (!waiting.empty() && waiting.size() != before) {
    before = waiting.size();
    std::erase_if(waiting, [&](Saved& one) {
      if (!runsAsQuery(driver, one.name, one.sql, one.reason)) return false;
      if (one.sql.starts_with("TRANSFORM") &&
          !readJetSql(one.sql, SqlTarget::Sqlite).pivotSql.empty()) {
        keepFinding(driver, Severity::Note, one.name,
                    "The crosstab keeps the columns that it had when the file was copied");
      }
      return true;
    });
  }
  for (const Saved& query : hopeless) leaveOut(query);
  for (const Saved& query : waiting) leaveOut(query);
}

// What the copy left out, from the table in the twin; notes only if they are asked for.
void reportLeftOut(Driver& driver, const std::string& file, bool withNotes, Findings& found) {
  const auto rows = driver.query(
      "SELECT severity, table_name, text, [count] FROM " + std::string(kLeftOutTable), {});
  for (Row row; rows->next(row);) {
    const auto severity = static_cast<Severity>(static_cast<int>(fieldNumber(row[0])));
    if (severity == Severity::Note && !withNotes) continue;
    found.add(severity, fieldText(row[2]), Place{.file = file, .sheet = fieldText(row[1])},
              static_cast<size_t>(fieldNumber(row[3])));
  }
}

// Keeps a twin that its user changed, or that nothing is known of, under a name that is free.
void keepChangedTwin(const fs::path& access, const fs::path& twin, Findings& found) {
  const auto origin = readOrigin(twin);
  if (!fs::exists(twin) || (origin && !origin->changed)) return;
  fs::path kept;
  for (int number = 1; kept.empty() || fs::exists(kept); ++number) {
    kept = fmt::format("{}.{}.sqlite", twin.string().substr(0, twin.string().size() - 7), number);
  }
  fs::rename(twin, kept);
  found.warn(
      "The Access file was copied again, because it or the way of copying has changed. The former "
      "copy has changes of its own, which are not in the new one; it was kept as " +
          kept.string(),
      Place{.file = access.string()});
}

// Temporary files carry the number of their process; those of one that was killed remain. The
// process may run on another machine, but then it writes now and then.
void removeLeftovers(const fs::path& twin) {
  const std::string start = twin.filename().string() + ".";
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(twin.parent_path(), failed)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(start) || !name.ends_with(".tmp")) continue;
    const auto process =
        parseInteger(std::string_view(name).substr(start.size(), name.size() - start.size() - 4));
    const bool isGone = process && ::kill(*process, 0) != 0 && errno == ESRCH;
    const auto idle = fs::file_time_type::clock::now() - fs::last_write_time(entry.path(), failed);
    if (isGone && !failed && idle > kLeftoverAge) fs::remove(entry.path(), failed);
  }
}

void makeTwin(const fs::path& access, const std::string& stamp, const fs::path& twin,
              Findings& found) {
  removeLeftovers(twin);
  const std::string content = contentOf(access);
  const Temporary temporary(twin.string() + "." + std::to_string(::getpid()) + ".tmp");
  HelperRun run =
      runHelper(helperPath().string(), {access.string(), temporary.path().string()}, kPatience);
  if (run.status != 0) {
    std::string reason = "it is damaged";
    if (run.status == 1 && !run.lines.empty()) reason = run.lines.back();
    if (run.stalled) reason = "it is damaged, reading it did not come to an end";
    throw FileError("Database " + access.string() + " cannot be read: " + reason,
                    dberror::Unspecified);
  }
  makeViews(*openSqliteFile(temporary.path().string()));
  writeOrigin(temporary.path(), stamp, content);
  keepChangedTwin(access, twin, found);
  fs::rename(temporary.path(), twin);
  found.note("Access files are only read. The content was copied to " + twin.string() +
                 "; all changes go to this copy, the Access file stays as it is",
             Place{.file = access.string()});
}

// Makes the twin unless there is one with the content of the Access file; true if it did.
bool ensureTwin(const fs::path& access, const fs::path& twin, Findings& found) {
  const std::string stamp = stampOf(access);
  auto origin = readOrigin(twin);
  if (origin && origin->stamp == stamp) return false;
  fs::create_directories(twin.parent_path());
  const FolderLock lock(twin.parent_path());
  origin = readOrigin(twin);  // another program may have made it meanwhile
  if (origin && origin->stamp == stamp) return false;
  if (origin && origin->content == contentOf(access)) {
    renewStamp(twin, stamp);
    return false;
  }
  makeTwin(access, stamp, twin, found);
  return true;
}

}  // namespace

bool isAccessFile(std::string_view path) {
  const fs::path native = nativePath(path);
  std::error_code failed;
  return fs::is_regular_file(native, failed) && isAccessHeader(firstBytes(native, 20));
}

void setTwinFolder(std::string_view folder) {
  chosenFolder() = folder;
}

std::unique_ptr<Driver> openAccessTwin(std::string_view path, Findings& found) {
  const fs::path access = nativePath(path);
  try {
    const fs::path twin = twinPath(access);
    const bool isNew = ensureTwin(access, twin, found);
    auto driver = openSqliteFile(twin.string());
    reportLeftOut(*driver, access.string(), isNew, found);
    return driver;
  } catch (const fs::filesystem_error& failure) {
    throw FileError(
        "Database " + std::string(path) + " cannot be read: " + failure.code().message(),
        dberror::Unspecified);
  }
}

}  // namespace lodex
