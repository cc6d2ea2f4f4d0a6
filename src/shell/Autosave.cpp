#include "shell/Autosave.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "import/StructureEdit.h"

namespace lodex {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view copyMark = "Lodex Geo copy 1";
constexpr std::string_view copyEnding = ".copy";
constexpr std::string_view lockName = "lock";
constexpr size_t largestCopy = size_t{1} << 31;
constexpr int numbersInStructure = systemRowCount + 3;

// A copy: lines of text (mark, caption, numbers of the structure, identified, sizes of the two
// snapshots), then the snapshots.
std::string copyText(const SavedSheet& sheet) {
  std::vector<std::string> numbers;
  for (int i = 0; i < systemRowCount; ++i) {
    numbers.push_back(std::to_string(sheet.structure.row(i)));
  }
  numbers.push_back(std::to_string(sheet.structure.firstDataRow));
  numbers.push_back(std::to_string(sheet.structure.idColumn));
  numbers.push_back(std::to_string(sheet.structure.mineralColumn));
  return std::string(copyMark) + "\n" + replaceAll(sheet.caption, "\n", " ") + "\n" +
         join(numbers, " ") + "\n" + (sheet.identified ? "1" : "0") + "\n" +
         std::to_string(sheet.table.size()) + " " + std::to_string(sheet.references.size()) + "\n" +
         sheet.table + sheet.references;
}

std::vector<size_t> wholeNumbers(std::string_view line, size_t count) {
  std::vector<size_t> numbers;
  for (const std::string& piece : split(line, " ")) {
    const auto number = parseInteger(piece);
    if (!number || *number < 0) break;
    numbers.push_back(static_cast<size_t>(*number));
  }
  if (numbers.size() != count) throw FileError("The copy is damaged");
  return numbers;
}

SavedSheet readCopy(const std::string& path) {
  const std::string bytes = readFile(path, largestCopy);
  size_t place = 0;
  const auto line = [&] {
    const size_t end = bytes.find('\n', place);
    if (end == std::string::npos) throw FileError(path + ": the copy is damaged");
    const std::string_view text = std::string_view(bytes).substr(place, end - place);
    place = end + 1;
    return text;
  };
  if (line() != copyMark) throw FileError(path + " is no copy of a data sheet");
  SavedSheet sheet;
  sheet.caption = line();
  const auto numbers = wholeNumbers(line(), numbersInStructure);
  const auto number = [&](int i) { return static_cast<int>(numbers[static_cast<size_t>(i)]); };
  for (int i = 0; i < systemRowCount; ++i) sheet.structure.row(i) = number(i);
  sheet.structure.firstDataRow = number(systemRowCount);
  sheet.structure.idColumn = number(systemRowCount + 1);
  sheet.structure.mineralColumn = number(systemRowCount + 2);
  sheet.identified = line() == "1";
  const auto sizes = wholeNumbers(line(), 2);
  if (bytes.size() - place != sizes[0] + sizes[1]) throw FileError(path + ": the copy is damaged");
  sheet.table = bytes.substr(place, sizes[0]);
  sheet.references = bytes.substr(place + sizes[0]);
  return sheet;
}

int openLock(const fs::path& folder, int flags) {
  return ::open((folder / lockName).c_str(), flags | O_RDWR | O_CLOEXEC, 0600);
}

// The process of this folder is gone: nobody holds its lock any more.
bool isAbandoned(const fs::path& folder) {
  const int file = openLock(folder, 0);
  if (file < 0) return false;
  const bool free = ::flock(file, LOCK_EX | LOCK_NB) == 0;
  ::close(file);
  return free;
}

}  // namespace

void SavedSheet::restore(frmDataIN& sheet) const {
  sheet.gridF1D.replace([&] {
    sheet.F1D.ReadFromBlob(table);
    sheet.F1Ref.ReadFromBlob(references);
    renumberReferences(sheet.F1Ref, sheet.sheetNumber());
    sheet.setStructure(structure);
  });
  sheet.setCaption(caption);
  sheet.bIdentified = identified;
  sheet.Changed = true;
}

Autosave::~Autosave() {
  if (lock_ >= 0) ::close(lock_);
}

bool Autosave::claimFolder() {
  if (!own_.empty()) return true;
  std::error_code failed;
  const fs::path base = nativePath(folder_);
  fs::create_directories(base, failed);
  // Another process may have had this number once.
  fs::path made = base / std::to_string(::getpid());
  for (int attempt = 2; !fs::create_directory(made, failed) && !failed; ++attempt) {
    made = base / (std::to_string(::getpid()) + "-" + std::to_string(attempt));
  }
  if (!failed) lock_ = openLock(made, O_CREAT);
  if (failed || lock_ < 0 || ::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    problem_ = "The folder " + pathText(base) + " cannot be written to";
    return false;
  }
  own_ = pathText(made);
  return true;
}

void Autosave::save(const std::vector<frmDataIN*>& sheets) {
  problem_.clear();
  const auto isEdited = [](const frmDataIN& sheet) {
    return sheet.Changed && sheet.F1D.LastRow() > 0;
  };
  std::map<const frmDataIN*, Copy> kept;
  for (const frmDataIN* sheet : sheets) {
    const auto copy = copies_.find(sheet);
    if (copy == copies_.end() || !isEdited(*sheet)) continue;
    kept.insert(copies_.extract(copy));
  }
  for (const auto& [sheet, copy] : copies_) {
    std::error_code ignored;
    fs::remove(nativePath(copy.file), ignored);
  }
  copies_ = std::move(kept);
  for (const frmDataIN* sheet : sheets) {
    if (isEdited(*sheet)) saveOne(*sheet);
  }
}

void Autosave::saveOne(const frmDataIN& sheet) {
  const std::uint64_t revision = sheet.gridF1D.revision();
  const auto known = copies_.find(&sheet);
  if (known != copies_.end() && known->second.revision == revision) return;
  if (!claimFolder()) return;
  const std::string file = known != copies_.end()
                               ? known->second.file
                               : own_ + "/" + std::to_string(++files_) + std::string(copyEnding);
  try {
    writeFileWhole(file, copyText({sheet.caption(), sheet.structure(), sheet.bIdentified,
                                   sheet.F1D.WriteToBlob(), sheet.F1Ref.WriteToBlob()}));
    copies_[&sheet] = {file, revision};
  } catch (const Error& failure) {
    problem_ = failure.what();
  }
}

void Autosave::clear() {
  if (own_.empty()) return;
  std::error_code ignored;
  fs::remove_all(nativePath(own_), ignored);
  fs::remove(nativePath(folder_), ignored);  // only when it is empty
  if (lock_ >= 0) ::close(lock_);
  lock_ = -1;
  own_.clear();
  copies_.clear();
}

std::vector<std::string> Autosave::abandonedFolders() const {
  std::vector<std::pair<fs::file_time_type, std::string>> found;
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(nativePath(folder_), failed)) {
    std::error_code ignored;
    if (!entry.is_directory(ignored) || !isAbandoned(entry.path())) continue;
    found.emplace_back(fs::last_write_time(entry.path() / lockName, ignored),
                       pathText(entry.path()));
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> folders;
  for (const auto& [time, folder] : found) folders.push_back(folder);
  return folders;
}

std::vector<SavedSheet> Autosave::leftovers() const {
  std::vector<SavedSheet> sheets;
  for (const std::string& folder : abandonedFolders()) {
    std::vector<std::pair<int, std::string>> files;
    std::error_code failed;
    for (const auto& entry : fs::directory_iterator(nativePath(folder), failed)) {
      if (entry.path().extension() != copyEnding) continue;
      files.emplace_back(parseInteger(entry.path().stem().string()).value_or(0),
                         pathText(entry.path()));
    }
    std::sort(files.begin(), files.end());
    for (const auto& [number, file] : files) {
      try {
        sheets.push_back(readCopy(file));
      } catch (const Error&) {
        // Half a copy is of no use to anybody, and the others still are.
      }
    }
  }
  return sheets;
}

void Autosave::removeLeftovers() {
  for (const std::string& folder : abandonedFolders()) {
    std::error_code ignored;
    fs::remove_all(nativePath(folder), ignored);
  }
}

}  // namespace lodex
