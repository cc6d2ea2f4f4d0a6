#pragma once

#include <memory>
#include <string_view>

#include "db/Driver.h"

namespace lodex {

/// Opens an embedded database file. Throws FileError naming the path when the file is missing, a
/// folder, an Access file, damaged or no database at all.
std::unique_ptr<Driver> openSqliteFile(std::string_view path);

/// Makes an empty database file. Throws FileError if there is a file already.
void createSqliteFile(std::string_view path);

}  // namespace lodex
