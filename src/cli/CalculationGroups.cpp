#include "cli/CalculationGroups.h"

#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"

namespace lodex {
namespace {

bool isFolder(const std::string& path) {
  std::error_code failed;
  return std::filesystem::is_directory(nativePath(path), failed);
}

// The folder of the group, whose name may be written in any case; else the name is a folder's.
std::string folderOfGroup(const std::string& name, const SessionRecord& record) {
  std::string folder = name;
  for (const std::string& known : groupNames(record.CGroupsFolder)) {
    if (!equalsNoCase(known, name)) continue;
    folder = record.CGroupsFolder + "\\" + known;
    if (known == name) break;
  }
  return folder;
}

}  // namespace

void loadGroup(CalculationGroup& group, const std::string& name, const SessionRecord& record) {
  const std::string folder = folderOfGroup(name, record);
  if (!isFolder(folder)) {
    throw Error("There is no calculation group " + name + " in " + record.CGroupsFolder +
                "; there are: " + join(groupNames(record.CGroupsFolder), ", "));
  }
  group.load(folder, UnreadableBook::Stop);
}

}  // namespace lodex
