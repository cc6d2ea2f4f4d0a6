#include "db/drivers/sqlite/SqliteSchema.h"

#include <string>
#include <string_view>
#include <utility>

#include "basic/Error.h"

namespace lodex {

namespace {

constexpr FieldType kName{FieldCode::VarText, 255};
constexpr FieldType kNumber{FieldCode::Integer, 0};
constexpr FieldType kTruth{FieldCode::Boolean, 0};

std::vector<Row> rowsOf(Driver& driver, std::string_view sql, const Row& parameters = {}) {
  const auto source = driver.query(sql, parameters);
  std::vector<Row> rows;
  Row row;
  while (source->next(row)) rows.push_back(row);
  return rows;
}

std::vector<Row> tables(Driver& driver) {
  return rowsOf(driver,
                "SELECT name, CASE type WHEN 'view' THEN 'VIEW' ELSE 'TABLE' END "
                "FROM sqlite_master WHERE type IN ('table', 'view') "
                "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name COLLATE NOCASE");
}

FieldValue truth(bool value) {
  return std::int64_t{value ? -1 : 0};
}

std::vector<Row> columns(Driver& driver) {
  std::vector<Row> result;
  for (const Row& table : tables(driver)) {
    try {
      for (const Row& column :
           rowsOf(driver, "SELECT name, cid + 1, type, \"notnull\" FROM pragma_table_info(?)",
                  {table[0]})) {
        const FieldType type = parseFieldType(fieldText(column[2]));
        FieldValue length;
        if (type.size > 0) length = std::int64_t{type.size};
        result.push_back({table[0], column[0], column[1], static_cast<int>(type.code), length,
                          truth(fieldNumber(column[3]) == 0)});
      }
    } catch (const FileError&) {
      throw;
    } catch (const Error&) {
      // A view of a table that is gone has no columns.
    }
  }
  return result;
}

std::vector<Row> indexes(Driver& driver) {
  std::vector<Row> result;
  for (const Row& table : tables(driver)) {
    if (table[1] != FieldValue("TABLE")) continue;
    for (const Row& key :
         rowsOf(driver, "SELECT name, pk FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk",
                {table[0]})) {
      result.push_back({table[0], "PrimaryKey", truth(true), truth(true), key[1], key[0]});
    }
    for (const Row& index : rowsOf(driver,
                                   "SELECT name, \"unique\" FROM pragma_index_list(?) "
                                   "WHERE origin <> 'pk' ORDER BY seq DESC",
                                   {table[0]})) {
      const bool isUnique = fieldNumber(index[1]) != 0;
      for (const Row& column :
           rowsOf(driver, "SELECT seqno + 1, name FROM pragma_index_info(?) ORDER BY seqno",
                  {index[0]})) {
        result.push_back({table[0], index[0], truth(false), truth(isUnique), column[0], column[1]});
      }
    }
  }
  return result;
}

}  // namespace

std::unique_ptr<RowSource> readSqliteSchema(Driver& driver, SchemaKind kind) {
  std::vector<Field> fields{{"TABLE_NAME", kName, ""}};
  std::vector<Row> rows;
  switch (kind) {
    case SchemaKind::Tables:
      fields.push_back({"TABLE_TYPE", kName, ""});
      rows = tables(driver);
      break;
    case SchemaKind::Columns:
      fields.insert(fields.end(), {{"COLUMN_NAME", kName, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"DATA_TYPE", kNumber, ""},
                                   {"CHARACTER_MAXIMUM_LENGTH", kNumber, ""},
                                   {"IS_NULLABLE", kTruth, ""}});
      rows = columns(driver);
      break;
    case SchemaKind::Indexes:
      fields.insert(fields.end(), {{"INDEX_NAME", kName, ""},
                                   {"PRIMARY_KEY", kTruth, ""},
                                   {"UNIQUE", kTruth, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"COLUMN_NAME", kName, ""}});
      rows = indexes(driver);
      break;
  }
  return std::make_unique<StoredRows>(std::move(fields), std::move(rows));
}

}  // namespace lodex
