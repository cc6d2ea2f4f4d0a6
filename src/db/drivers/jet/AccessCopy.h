#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lodex {

/// Where the copying of an Access file reports to. The base is silent.
class AccessCopyReport {
 public:
  virtual ~AccessCopyReport() = default;
  /// What a user should know about the copy, a sentence.
  virtual void warning(const std::string&) {}
  /// Called every few thousand records.
  virtual void progress() {}
};

/// Tables of a copy that hold what is no user's table: the relationships of the file, in the
/// columns of Access's own table of that name, and its saved queries as (name, sql, obstacle).
inline constexpr std::string_view kRelationshipsTable = "MSysRelationships";
inline constexpr std::string_view kQueriesTable = "MSysLodexQueries";

/// Copies all user tables of an Access file, with their values, keys and indexes, into a new SQLite
/// file. Throws FileError when either file fails; what is left at `target` is then of no use.
/// Memory is bounded whatever the size. Values are kept as the fields of other SQLite databases are
/// (see columnDeclaration), except for numbers of more digits than a double holds: a column with
/// such numbers keeps these as texts. GUIDs are texts, binary values BLOBs.
void copyAccessFile(const std::string& source, const std::string& target, AccessCopyReport& report);

}  // namespace lodex
