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

}  // namespace

void loadGroup(CalculationGroup& group, const std::string& name, const SessionRecord& record) {
  const std::string ofGroups = record.CGroupsFolder + "\\" + name;
  const std::string& folder = !name.empty() && isFolder(ofGroups) ? ofGroups : name;
  if (!isFolder(folder)) {
    throw Error("There is no calculation group " + name + " in " + record.CGroupsFolder +
                "; there are: " + join(groupNames(record.CGroupsFolder), ", "));
  }
  group.load(folder, UnreadableBook::Stop);
}

}  // namespace lodex
