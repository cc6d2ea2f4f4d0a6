#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"

namespace lodex {

class Connection;

/// Writes all tables of a database for other programs. A name that ends in ".xlsx" gets a workbook
/// with a sheet per table; any other names a folder, which gets per table a UTF-8 text
/// "<table>.csv" (names in the first line, an empty field for Null, "" for an empty text), a
/// "schema.ini" that tells Access the types of their columns, and "database.sql", statements of the
/// Jet dialect that make the tables with their keys, indexes and relationships and fill them from
/// the texts. Existing files of these names are replaced.
/// Returns what was noticed: texts that were cut, what Access cannot take, and records that refer
/// to no other. Throws Error when something cannot be written, for the name of a file where a
/// folder is meant, and for a table of more records than a sheet has rows.
Findings exportDatabase(Connection& connection, std::string_view out);

/// The names of tables as names of files or sheets, in the same order: without the characters that
/// these cannot have, no longer than `most` characters, and different from each other.
std::vector<std::string> exportNames(const std::vector<std::string>& tables,
                                     std::string_view forbidden, size_t most);

}  // namespace lodex
