#include "session/UserCopies.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"

namespace lodex {
namespace fs = std::filesystem;
namespace {

bool isBelow(const fs::path& path, const fs::path& folder) {
  const fs::path relative = path.lexically_normal().lexically_relative(folder.lexically_normal());
  return !relative.empty() && *relative.begin() != "..";
}

// Written aside first: another process of this user may start at the same time.
void copyFile(const fs::path& source, const fs::path& target) {
  writeFileWhole(pathText(target), [&](const fs::path& temporary) {
    fs::copy_file(source, temporary);
    fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write,
                    fs::perm_options::add);
  });
}

void copyTree(const fs::path& source, const fs::path& target) {
  if (!fs::is_directory(source)) {
    if (!fs::exists(target)) copyFile(source, target);
    return;
  }
  fs::create_directories(target);
  for (const auto& entry : fs::directory_iterator(source)) {
    copyTree(entry.path(), target / entry.path().filename());
  }
}

void useCopy(const SessionRecord& record, std::string& path, const std::string& copy) {
  if (!isBelow(nativePath(path), nativePath(record.GeoPath)) || canWrite(path)) return;
  if (pathExists(path) && copyMissing(path, copy)) path = copy;
}

}  // namespace

bool canWrite(std::string_view path) {
  return ::faccessat(AT_FDCWD, nativePath(path).c_str(), W_OK, AT_EACCESS) == 0;
}

bool copyMissing(std::string_view source, std::string_view target) {
  try {
    copyTree(nativePath(source), nativePath(target));
    return true;
  } catch (const fs::filesystem_error&) {
    return false;
  } catch (const Error&) {
    return false;
  }
}

void useUserCopies(SessionRecord& record) {
  if (!record.UserIni.empty() && !pathExists(record.UserIni)) {
    const std::string settings = record.GeoPath + "\\ini\\UserSettings.ini";
    if (pathExists(settings)) copyMissing(settings, record.UserIni);
  }
  useCopy(record, record.SampleDbPath,
          record.UserPath + "\\data\\" + fileNameOf(record.SampleDbPath));
  useCopy(record, record.CGroupsFolder, record.UserPath + "\\C-Groups");
}

}  // namespace lodex
