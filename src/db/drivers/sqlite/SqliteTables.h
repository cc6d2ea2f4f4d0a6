#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/sql/JetSql.h"

namespace lodex {

/// A table needs a column; this one is in a table that has no fields yet.
inline constexpr std::string_view kNoFields = "|no fields|";

/// Table of a copy of an Access file that holds what Access says of fields beyond their types,
/// with the columns table_name, field_name ("" for the table itself), description, caption,
/// default_value, rule and rule_text, all as Access words them.
inline constexpr std::string_view kFieldsTable = "MSysLodexFields";

/// The type of a column as it is declared in a file. The declarations of this program name types of
/// Jet; those of others mean what the engine means: TEXT has no limit and REAL is a double.
FieldType fieldTypeInFile(std::string_view declared);

/// The statements that carry out a CreateTable.
std::vector<std::string> createTableSql(const JetStatement& statement);

/// A column for ALTER TABLE ... ADD COLUMN, and the statements that follow it.
struct AddedColumn {
  std::string definition;
  std::vector<std::string> after;
};
AddedColumn addedColumn(std::string_view table, const JetColumn& column);

/// Indexes of a file share one space of names, those of Jet belong to their table; and only here
/// can a primary key be made after its table. Both are in the name: table|index[|primary].
std::vector<std::string> createIndexSql(const JetStatement& statement, bool numbered);
struct IndexName {
  std::string name;
  bool primary = false;
};
IndexName readIndexName(std::string_view table, std::string_view stored);
/// The triggers that keep a primary key from being empty.
std::vector<std::string> primaryKeyTriggers(std::string_view storedIndex);
/// The trigger that numbers a counter field.
std::string counterTrigger(std::string_view table, std::string_view field);

}  // namespace lodex
