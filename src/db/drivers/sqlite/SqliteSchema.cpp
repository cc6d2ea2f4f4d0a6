#include "db/drivers/sqlite/SqliteSchema.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/SchemaRows.h"
#include "db/drivers/sqlite/SqliteStatement.h"
#include "db/drivers/sqlite/SqliteTables.h"

namespace lodex {

namespace {

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

int wholeOf(const FieldValue& value) {
  return static_cast<int>(fieldNumber(value));
}

struct Table {
  std::string name;
  bool isView = false;
};

std::vector<Table> listTables(const File& file) {
  std::vector<Table> tables;
  for (const Row& row : rowsOf(file,
                               "SELECT name, type = 'view' FROM sqlite_master "
                               "WHERE type IN ('table', 'view') "
                               "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
                               "AND name NOT LIKE 'MSys%' ORDER BY name COLLATE NOCASE")) {
    tables.push_back({fieldText(row[0]), wholeOf(row[1]) != 0});
  }
  return tables;
}

std::vector<Row> tables(const File& file) {
  std::vector<Row> result;
  for (const Table& table : listTables(file)) result.push_back(tableRow(table.name, table.isView));
  return result;
}

// The triggers of counter fields, by their names in upper case.
std::unordered_set<std::string> counterTriggers(const File& file) {
  std::unordered_set<std::string> names;
  for (const Row& row :
       rowsOf(file,
              "SELECT name FROM sqlite_master WHERE type = 'trigger' AND name LIKE '%|counter'")) {
    names.insert(toUpper(fieldText(row[0])));
  }
  return names;
}

// What the copy of an Access file says of its fields, by table and field in upper case.
std::unordered_map<std::string, std::string> descriptions(const File& file) {
  std::unordered_map<std::string, std::string> texts;
  const std::string table(kFieldsTable);
  if (rowsOf(file, "SELECT 1 FROM sqlite_master WHERE name = ?", {table}).empty()) return texts;
  for (const Row& row : rowsOf(file, "SELECT table_name, field_name, description FROM " + table)) {
    texts[toUpper(fieldText(row[0]) + "|" + fieldText(row[1]))] = fieldText(row[2]);
  }
  return texts;
}

std::vector<Row> columns(const File& file) {
  const auto counters = counterTriggers(file);
  const auto texts = descriptions(file);
  std::vector<Row> result;
  for (const Table& table : listTables(file)) {
    try {
      for (const Row& row :
           rowsOf(file, "SELECT name, cid + 1, type, \"notnull\", pk FROM pragma_table_info(?)",
                  {table.name})) {
        ColumnFacts column{table.name, fieldText(row[0]), wholeOf(row[1])};
        if (column.name == kNoFields) continue;
        const std::string declared = fieldText(row[2]);
        column.type = fieldTypeInFile(declared);
        column.nullable = wholeOf(row[3]) == 0;
        // A key of this very type is the record's number.
        column.counter = (wholeOf(row[4]) == 1 && equalsNoCase(declared, "INTEGER")) ||
                         counters.contains(toUpper(table.name + "|" + column.name + "|counter"));
        const auto text = texts.find(toUpper(table.name + "|" + column.name));
        if (text != texts.end()) column.description = text->second;
        result.push_back(columnRow(column));
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
  for (const Table& table : listTables(file)) {
    if (table.isView) continue;
    for (const Row& key :
         rowsOf(file, "SELECT name, pk FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk",
                {table.name})) {
      result.push_back(
          indexRow({table.name, "PrimaryKey", true, true, wholeOf(key[1]), fieldText(key[0])}));
    }
    for (const Row& index : rowsOf(file,
                                   "SELECT name, \"unique\" FROM pragma_index_list(?) "
                                   "WHERE origin <> 'pk' ORDER BY seq DESC",
                                   {table.name})) {
      const bool isUnique = wholeOf(index[1]) != 0;
      const IndexName name = readIndexName(table.name, fieldText(index[0]));
      for (const Row& column :
           rowsOf(file, "SELECT seqno + 1, name FROM pragma_index_info(?) ORDER BY seqno",
                  {index[0]})) {
        result.push_back(indexRow({table.name, name.name, name.primary, isUnique,
                                   wholeOf(column[0]), fieldText(column[1])}));
      }
    }
  }
  return result;
}

// Those that tables declare; the engine has no names for them.
void addDeclaredKeys(const File& file, const std::string& table, std::vector<Row>& result) {
  for (const Row& row : rowsOf(file,
                               "SELECT \"table\", \"to\", \"from\", seq + 1, id "
                               "FROM pragma_foreign_key_list(?) ORDER BY id DESC, seq",
                               {table})) {
    const std::string parent = fieldText(row[0]);
    result.push_back(foreignKeyRow({parent, fieldText(row[1]), table, fieldText(row[2]),
                                    wholeOf(row[3]), parent + table + fieldText(row[4])}));
  }
}

std::vector<Row> foreignKeys(const File& file) {
  std::vector<Row> result;
  const bool fromAccess =
      !rowsOf(file, "SELECT 1 FROM sqlite_master WHERE name = 'MSysRelationships'").empty();
  for (const Table& table : listTables(file)) {
    if (table.isView) continue;
    addDeclaredKeys(file, table.name, result);
    if (!fromAccess) continue;
    for (const Row& row :
         rowsOf(file,
                "SELECT szReferencedObject, szReferencedColumn, szColumn, icolumn + 1, "
                "szRelationship FROM MSysRelationships WHERE szObject = ? COLLATE NOCASE "
                "ORDER BY szRelationship, icolumn",
                {table.name})) {
      result.push_back(foreignKeyRow({fieldText(row[0]), fieldText(row[1]), table.name,
                                      fieldText(row[2]), wholeOf(row[3]), fieldText(row[4])}));
    }
  }
  return result;
}

}  // namespace

std::unique_ptr<RowSource> readSqliteSchema(const File& file, SchemaKind kind) {
  switch (kind) {
    case SchemaKind::Tables:
      return schemaAnswer(kind, tables(file));
    case SchemaKind::Columns:
      return schemaAnswer(kind, columns(file));
    case SchemaKind::Indexes:
      return schemaAnswer(kind, indexes(file));
    case SchemaKind::ForeignKeys:
      break;
  }
  return schemaAnswer(kind, foreignKeys(file));
}

}  // namespace lodex
