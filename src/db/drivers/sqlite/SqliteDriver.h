#pragma once

#include <memory>
#include <string_view>

#include "db/Driver.h"

namespace lodex {

/// True for an existing file that begins as the embedded engine's do.
bool isSqliteFile(std::string_view path);

/// Opens an embedded database file; an empty file is an empty database. Throws FileError naming the
/// path when the file is missing, a folder, damaged or not a database.
std::unique_ptr<Driver> openSqliteFile(std::string_view path);

/// Makes an empty database file. Throws FileError if there is a file already.
void createSqliteFile(std::string_view path);

}  // namespace lodex
