#include "db/drivers/odbc/OdbcSchema.h"

#include <algorithm>

#include "basic/Text.h"
#include "db/RowFilter.h"
#include "db/drivers/odbc/OdbcStatement.h"

namespace lodex {

namespace {

using Link = std::shared_ptr<OdbcLink>;

constexpr FieldType kName{FieldCode::VarText, 255};
constexpr FieldType kNumber{FieldCode::Integer, 0};
constexpr FieldType kTruth{FieldCode::Boolean, 0};

FieldValue truth(bool value) {
  return std::int64_t{value ? -1 : 0};
}

// What servers keep for themselves.
bool isSystemSchema(const std::string& schema) {
  for (const auto* name : {"pg_catalog", "information_schema", "pg_toast", "SYS", "SYSTEM", "XDB",
                           "CTXSYS", "MDSYS", "OUTLN", "WMSYS"}) {
    if (equalsNoCase(schema, name)) return true;
  }
  return false;
}

struct ServerTable {
  std::string schema;
  std::string name;
  bool isView = false;
};

std::vector<ServerTable> listTables(const Link& link) {
  OdbcStatement statement(link);
  statement.askTables();
  std::vector<ServerTable> tables;
  while (statement.next()) {
    ServerTable table;
    table.schema = statement.text(1);
    table.name = statement.text(2);
    table.isView = equalsNoCase(statement.text(3), "VIEW");
    if (!isSystemSchema(table.schema)) tables.push_back(std::move(table));
  }
  std::stable_sort(tables.begin(), tables.end(),
                   [](const auto& a, const auto& b) { return compareNoCase(a.name, b.name) < 0; });
  return tables;
}

std::vector<Row> columns(const Link& link) {
  OdbcStatement statement(link);
  statement.askColumns();
  std::vector<Row> rows;
  while (statement.next()) {
    if (isSystemSchema(statement.text(1))) continue;
    const std::string table = statement.text(2);
    const std::string name = statement.text(3);
    const int sqlType = statement.number(4);
    const std::string typeName = statement.text(5);
    const int size = statement.number(6);
    const bool nullable = statement.number(10) != SQL_NO_NULLS;
    const int ordinal = statement.number(16);
    const FieldType type =
        odbcFieldType(sqlType, typeName, size > 0 ? static_cast<SQLULEN>(size) : 0);
    FieldValue length;
    if (type.size > 0) length = std::int64_t{type.size};
    rows.push_back({table, name, std::int64_t{ordinal}, static_cast<std::int64_t>(type.code),
                    length, truth(nullable)});
  }
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    const int order = compareFields(a[0], b[0]);
    return order != 0 ? order < 0 : fieldNumber(a[2]) < fieldNumber(b[2]);
  });
  return rows;
}

std::vector<Row> keyRows(const Link& link, const std::string& schema, const std::string& table) {
  OdbcStatement statement(link);
  statement.askPrimaryKey(schema, table);
  std::vector<Row> rows;
  while (statement.next()) {
    const std::string column = statement.text(3);
    const int ordinal = statement.number(4);
    rows.push_back(
        {table, statement.text(5), truth(true), truth(true), std::int64_t{ordinal}, column});
  }
  std::sort(rows.begin(), rows.end(),
            [](const Row& a, const Row& b) { return fieldNumber(a[4]) < fieldNumber(b[4]); });
  return rows;
}

std::vector<Row> indexes(const Link& link) {
  std::vector<Row> rows;
  for (const ServerTable& table : listTables(link)) {
    if (table.isView) continue;
    const std::vector<Row> key = keyRows(link, table.schema, table.name);
    rows.insert(rows.end(), key.begin(), key.end());
    OdbcStatement statement(link);
    statement.askIndexes(table.schema, table.name);
    while (statement.next()) {
      const bool isUnique = statement.number(3) == 0;
      const std::string name = statement.text(5);
      if (statement.number(6) == SQL_TABLE_STAT) continue;
      if (!key.empty() && key[0][1] == FieldValue(name)) continue;
      const int ordinal = statement.number(7);
      // The names of indexes that this program makes begin with their table's.
      const bool own = name.starts_with(table.name + "|");
      rows.push_back({table.name, own ? name.substr(table.name.size() + 1) : name, truth(false),
                      truth(isUnique), std::int64_t{ordinal}, statement.text(8)});
    }
  }
  return rows;
}

}  // namespace

std::vector<std::string> odbcPrimaryKey(const std::shared_ptr<OdbcLink>& link,
                                        const std::string& table) {
  std::vector<std::string> fields;
  for (const ServerTable& known : listTables(link)) {
    if (known.isView || known.name != table) continue;
    for (const Row& row : keyRows(link, known.schema, table)) fields.push_back(fieldText(row[5]));
    return fields;
  }
  return fields;
}

std::unique_ptr<RowSource> readOdbcSchema(const std::shared_ptr<OdbcLink>& link, SchemaKind kind) {
  std::vector<Field> fields{{"TABLE_NAME", kName, ""}};
  std::vector<Row> rows;
  switch (kind) {
    case SchemaKind::Tables:
      fields.push_back({"TABLE_TYPE", kName, ""});
      for (const ServerTable& table : listTables(link)) {
        rows.push_back({table.name, table.isView ? "VIEW" : "TABLE"});
      }
      break;
    case SchemaKind::Columns:
      fields.insert(fields.end(), {{"COLUMN_NAME", kName, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"DATA_TYPE", kNumber, ""},
                                   {"CHARACTER_MAXIMUM_LENGTH", kNumber, ""},
                                   {"IS_NULLABLE", kTruth, ""}});
      rows = columns(link);
      break;
    case SchemaKind::Indexes:
      fields.insert(fields.end(), {{"INDEX_NAME", kName, ""},
                                   {"PRIMARY_KEY", kTruth, ""},
                                   {"UNIQUE", kTruth, ""},
                                   {"ORDINAL_POSITION", kNumber, ""},
                                   {"COLUMN_NAME", kName, ""}});
      rows = indexes(link);
      break;
  }
  return std::make_unique<StoredRows>(std::move(fields), std::move(rows));
}

}  // namespace lodex
