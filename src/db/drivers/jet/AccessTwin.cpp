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

constexpr int kPatience = 20'000;  // milliseconds without progress
constexpr std::chrono::minutes kLeftoverAge(10);
constexpr size_t kStampBytes = 64 * 1024;
// Counts up whenever twins are made in another way, so that old ones are made anew.
constexpr int kTwinKind = 3;

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
std::uint64_t hashOf(std::string_view bytes) {
  std::uint64_t hash = 14695981039346656037u;
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

// What tells whether an Access file changed: size, time, and its first pages.
std::string stampOf(const fs::path& access) {
  const auto time = fs::last_write_time(access).time_since_epoch().count();
  return fmt::format("{} {} {} {:016x}", kTwinKind, fs::file_size(access), time,
                     hashOf(firstBytes(access, kStampBytes)));
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

std::string originPath(const fs::path& twin) {
  return twin.string() + ".origin";
}

// The record beside a twin: the stamp of its Access file and its own change count when it was made.
struct Origin {
  std::string stamp;
  std::uint32_t changes = 0;
};

std::optional<Origin> readOrigin(const fs::path& twin) {
  std::ifstream file(originPath(twin));
  Origin origin;
  if (!std::getline(file, origin.stamp) || !(file >> origin.changes)) return std::nullopt;
  return origin;
}

bool isTwinOf(const std::string& stamp, const fs::path& twin) {
  const auto origin = readOrigin(twin);
  return origin && origin->stamp == stamp && fs::exists(twin);
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

// Queries may stand on each other, so those that fail are tried again while others succeed.
void makeViews(Driver& driver, Findings& found) {
  struct Saved {
    std::string name, sql, reason;
  };
  std::vector<Saved> waiting;
  {
    const auto rows =
        driver.query("SELECT name, sql, obstacle FROM " + std::string(kQueriesTable), {});
    Row row;
    while (rows->next(row)) {
      Saved query{fieldText(row[0]), fieldText(row[1]), fieldText(row[2])};
      if (query.reason.empty()) {
        waiting.push_back(std::move(query));
      } else {
        found.warn("Query " + query.name + " is no view here: " + query.reason);
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
        found.warn("Query " + one.name +
                   " keeps the columns that it had when the file was brought in");
      }
      return true;
    });
  }
  for (const Saved& query : waiting) {
    found.warn("Query " + query.name + " is no view here: " + query.reason);
  }
}

// Keeps a twin that its user changed under a name that is free. Of a twin without its record nobody
// can tell.
void keepChangedTwin(const fs::path& twin, const std::optional<Origin>& origin, Findings& found) {
  const bool changed =
      !origin || changeCount(twin) != origin->changes || fs::exists(twin.string() + "-wal");
  if (!changed) return;
  fs::path kept;
  for (int number = 1; kept.empty() || fs::exists(kept); ++number) {
    kept = fmt::format("{}.{}.sqlite", twin.string().substr(0, twin.string().size() - 7), number);
  }
  fs::rename(twin, kept);
  found.warn(
      "The Access file was brought in again, because it or the way of bringing it in has changed. "
      "The former copy has changes of its own, which are not in the new one; it was kept as " +
      kept.string() + ".");
}

// Temporary files carry the number of their process; those of one that was killed stay behind. The
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
  const Temporary temporary(twin.string() + "." + std::to_string(::getpid()) + ".tmp");
  HelperRun run =
      runHelper(helperPath().string(), {access.string(), temporary.path().string()}, kPatience);
  if (run.status != 0) {
    std::string reason = "it is damaged";
    if (run.status == 1 && !run.lines.empty()) reason = run.lines.back();
    if (run.stalled) reason = "it is damaged, reading it came to no end";
    throw FileError("Database " + access.string() + " cannot be brought in: " + reason,
                    dberror::Unspecified);
  }
  found.note("Access files are only read. The content of " + access.string() + " was copied to " +
             twin.string() + "; all changes go to this copy, the Access file stays as it is.");
  for (const std::string& line : run.lines) found.warn(line);
  {
    const auto driver = openSqliteFile(temporary.path().string());
    makeViews(*driver, found);
  }
  if (fs::exists(twin)) keepChangedTwin(twin, readOrigin(twin), found);
  // A record without its twin does no harm; a twin of another record would.
  fs::remove(originPath(twin));
  fs::rename(temporary.path(), twin);
  writeFileWhole(originPath(twin), stamp + "\n" + std::to_string(changeCount(twin)) + "\n");
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
    const std::string stamp = stampOf(access);
    if (!isTwinOf(stamp, twin)) {
      fs::create_directories(twin.parent_path());
      const FolderLock lock(twin.parent_path());
      // Another program may have made it meanwhile.
      if (!isTwinOf(stamp, twin)) makeTwin(access, stamp, twin, found);
    }
    return openSqliteFile(twin.string());
  } catch (const fs::filesystem_error& failure) {
    throw FileError(
        "Database " + std::string(path) + " cannot be brought in: " + failure.code().message(),
        dberror::Unspecified);
  }
}

}  // namespace lodex
