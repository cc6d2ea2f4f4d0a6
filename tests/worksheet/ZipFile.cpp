#include "worksheet/ZipFile.h"

#include "worksheet/files/ZipArchive.h"

namespace lodex {

std::string zipOf(const std::vector<std::pair<std::string, std::string>>& parts) {
  ZipWriter zip;
  for (const auto& [path, content] : parts) zip.add(path, content);
  return zip.finish();
}

}  // namespace lodex
