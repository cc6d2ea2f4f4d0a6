#include "db/drivers/sqlite/SqliteSchema.h"

#include <string>
#include <string_view>
#include <utility>

#include "basic/Error.h"
#include "db/drivers/sqlite/SqliteStatement.h"
#include "db/drivers/sqlite/SqliteTables.h"

namespace lodex {

namespace {

constexpr FieldType kName{FieldCode::VarText, 255};
constexpr FieldType kNumber{FieldCode::Integer, 0};
constexpr FieldType kTruth{FieldCode::Boolean, 0};

using File = std::shared_ptr<SqliteFile>;

std::vector<Row> rowsOf(const File& file, std::string_view sql, const Row& parameters = {}) {
  SqliteStatement statement(file, sql, parameters);
  std::vector<Row> rows;
  while (statement.step()) {
    Row row;
    for (int i = 0; i < sqlite3_column_count(statement.handle()); ++i) {
      row.push_back(statement.value(i));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<Row> tables(const File& file) {
  return rowsOf(file,
                "SELECT name, CASE type WHEN 'view' THEN 'VIEW' ELSE 'TABLE' END "
                "FROM sqlite_master WHERE type IN ('table', 'view') "
                "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' AND name NOT LIKE 'MSys%' "
                "ORDER BY name COLLATE NOCASE");
}

FieldValue truth(bool value) {
  return std::int64_t{value ? -1 : 0};
}

std::vector<Row> columns(const File& file) {
  std::vector<Row> result;
  for (const Row& table : tables(file)) {
    try {
      for (const Row& column :
           rowsOf(file, "SELECT name, cid + 1, type, \"notnull\" FROM pragma_table_info(?)",
                  {table[0]})) {
        if (column[0] == FieldValue(std::string(kNoFields))) continue;
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

std::vector<Row> indexes(const File& file) {
  std::vector<Row> result;
  for (const Row& table : tables(file)) {
    if (table[1] != FieldValue("TABLE")) continue;
    for (const Row& key :
         rowsOf(file, "SELECT name, pk FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk",
                {table[0]})) {
      result.push_back({table[0], "PrimaryKey", truth(true), truth(true), key[1], key[0]});
    }
    for (const Row& index : rowsOf(file,
                                   "SELECT name, \"unique\" FROM pragma_index_list(?) "
                                   "WHERE origin <> 'pk' ORDER BY seq DESC",
                                   {table[0]})) {
      const bool isUnique = fieldNumber(index[1]) != 0;
      const IndexName name = readIndexName(fieldText(table[0]), fieldText(index[0]));
      for (const Row& column :
           rowsOf(file, "SELECT seqno + 1, name FROM pragma_index_info(?) ORDER BY seqno",
                  {index[0]})) {
        result.push_back(
            {table[0], name.name, truth(name.primary), truth(isUnique), column[0], column[1]});
      }
    }
  }
  return result;
}

}  // namespace

std::unique_ptr<RowSource> readSqliteSchema(const File& file, SchemaKind kind) {
  std::vector<Field> fields{{"TABLE_NAME", kName, ""}};
  std::vector<Row> rows;
  switch (kind) {
    case SchemaKind::Tables:
      fields.push_back({"TABLE_TYPE", kName, ""});
      rows = tables(file);
      break;
    case SchemaKind::Columns:
      fields.insert(fields.end(), {{"COLUMN_NAME", kName, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"DATA_TYPE", kNumber, ""},
                                   {"CHARACTER_MAXIMUM_LENGTH", kNumber, ""},
                                   {"IS_NULLABLE", kTruth, ""}});
      rows = columns(file);
      break;
    case SchemaKind::Indexes:
      fields.insert(fields.end(), {{"INDEX_NAME", kName, ""},
                                   {"PRIMARY_KEY", kTruth, ""},
                                   {"UNIQUE", kTruth, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"COLUMN_NAME", kName, ""}});
      rows = indexes(file);
      break;
  }
  return std::make_unique<StoredRows>(std::move(fields), std::move(rows));
}

}  // namespace lodex
