#pragma once

#include <string_view>

#include "db/DatabaseMap.h"

namespace lodex {

/// Reads the four tables of a map from a workbook. Throws FileError when there is no such workbook;
/// the map then stays as it was. The filters are not in the file.
void readMapFile(std::string_view path, DatabaseMap& map);

/// Writes the four tables of a map as the four sheets of a workbook.
void writeMapFile(std::string_view path, const DatabaseMap& map);

}  // namespace lodex
