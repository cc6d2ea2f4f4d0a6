#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "basic/Findings.h"

namespace lodex {

/// Tables of a copy that are not tables of its user: the relationships of the file, in the columns
/// of Access's own table of that name; its saved queries as (name, sql, obstacle); and what the
/// copy found and left out, as (severity, table_name, text, count).
inline constexpr std::string_view kRelationshipsTable = "MSysRelationships";
inline constexpr std::string_view kQueriesTable = "MSysLodexQueries";
inline constexpr std::string_view kLeftOutTable = "MSysLodexLeftOut";

/// What the copy was made of, as one record of (kind, stamp, content, changes); whoever makes the
/// copy fills it.
inline constexpr std::string_view kOriginTable = "MSysLodexOrigin";

/// Called every few thousand records.
using AccessProgress = std::function<void()>;

/// Copies all user tables of an Access file, with their values, keys and indexes, into a new SQLite
/// file. Throws FileError when either file fails; what is left at `target` is then of no use.
/// Memory is bounded whatever the size. Values are kept as the fields of other SQLite databases are
/// (see columnDeclaration), except for numbers of more digits than a double holds: a column with
/// such numbers keeps these as texts. GUIDs are texts, binary values BLOBs.
///
/// What was noticed is stored in the copy (kLeftOutTable), with tables as the sheets of places.
/// Error: something in the file could not be read and is missing. Warning: something that the file
/// refers to or demands is missing here, but no content of its own. Note: how something is kept.
void copyAccessFile(
    const std::string& source, const std::string& target, const AccessProgress& progress = [] {});

}  // namespace lodex
