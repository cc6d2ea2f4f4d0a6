#include "db/drivers/odbc/OdbcSchema.h"

#include <algorithm>
#include <utility>

#include "basic/Text.h"
#include "db/SchemaRows.h"
#include "db/drivers/odbc/OdbcStatement.h"

namespace lodex {

namespace {

using Link = std::shared_ptr<OdbcLink>;

// What servers keep for themselves.
bool isSystemSchema(const std::string& schema) {
  for (const auto* name : {"pg_catalog", "information_schema", "pg_toast", "SYS", "SYSTEM", "XDB",
                           "CTXSYS", "MDSYS", "OUTLN", "WMSYS"}) {
    if (equalsNoCase(schema, name)) return true;
  }
  return false;
}

// Tables that a statement reaches by their name alone.
bool isReached(const OdbcLink& link, const std::string& schema) {
  if (isSystemSchema(schema)) return false;
  const auto& known = link.schemas;
  return known.empty() || std::find(known.begin(), known.end(), schema) != known.end();
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
    if (isReached(*link, table.schema)) tables.push_back(std::move(table));
  }
  std::stable_sort(tables.begin(), tables.end(),
                   [](const auto& a, const auto& b) { return compareNoCase(a.name, b.name) < 0; });
  return tables;
}

std::vector<Row> tables(const Link& link) {
  std::vector<Row> rows;
  for (const ServerTable& table : listTables(link)) {
    rows.push_back(tableRow(table.name, table.isView));
  }
  return rows;
}

std::vector<Row> columns(const Link& link) {
  OdbcStatement statement(link);
  statement.askColumns();
  std::vector<ColumnFacts> found;
  while (statement.next()) {
    if (!isReached(*link, statement.text(1))) continue;
    ColumnFacts column;
    column.table = statement.text(2);
    column.name = statement.text(3);
    const int sqlType = statement.number(4);
    const std::string typeName = statement.text(5);
    const int size = statement.number(6);
    const int digits = statement.number(8);
    column.nullable = statement.number(10) != SQL_NO_NULLS;
    const std::string standard = statement.text(12);
    column.ordinal = statement.number(16);
    column.type = odbcFieldType(sqlType, typeName, size > 0 ? static_cast<SQLULEN>(size) : 0);
    if (column.type.code == FieldCode::Numeric) {
      column.type.precision = std::max(0, size);
      column.type.scale = std::max(0, digits);
    }
    column.counter = startsWithNoCase(standard, "nextval(") ||
                     findNoCase(typeName, "serial") != std::string::npos ||
                     findNoCase(typeName, "identity") != std::string::npos;
    found.push_back(std::move(column));
  }
  std::stable_sort(found.begin(), found.end(), [](const ColumnFacts& a, const ColumnFacts& b) {
    const int order = compareNoCase(a.table, b.table);
    return order != 0 ? order < 0 : a.ordinal < b.ordinal;
  });
  std::vector<Row> rows;
  for (const ColumnFacts& column : found) rows.push_back(columnRow(column));
  return rows;
}

// The names of indexes that this program makes begin with their table's.
std::string ownName(const std::string& name, const std::string& table) {
  return name.starts_with(table + "|") ? name.substr(table.size() + 1) : name;
}

std::vector<IndexFacts> keyOf(const Link& link, const ServerTable& table) {
  OdbcStatement statement(link);
  statement.askPrimaryKey(table.schema, table.name);
  std::vector<IndexFacts> key;
  while (statement.next()) {
    IndexFacts part{table.name, "", true, true, 0, statement.text(3)};
    part.ordinal = statement.number(4);
    part.name = statement.text(5);
    key.push_back(std::move(part));
  }
  std::sort(key.begin(), key.end(),
            [](const IndexFacts& a, const IndexFacts& b) { return a.ordinal < b.ordinal; });
  return key;
}

std::vector<Row> indexes(const Link& link) {
  std::vector<Row> rows;
  for (const ServerTable& table : listTables(link)) {
    if (table.isView) continue;
    const std::vector<IndexFacts> key = keyOf(link, table);
    for (IndexFacts part : key) {
      part.name = ownName(part.name, table.name);
      rows.push_back(indexRow(part));
    }
    OdbcStatement statement(link);
    statement.askIndexes(table.schema, table.name);
    while (statement.next()) {
      IndexFacts index{table.name};
      index.unique = statement.number(3) == 0;
      index.name = statement.text(5);
      if (statement.number(6) == SQL_TABLE_STAT) continue;
      if (!key.empty() && key[0].name == index.name) continue;
      index.ordinal = statement.number(7);
      index.column = statement.text(8);
      index.name = ownName(index.name, table.name);
      rows.push_back(indexRow(index));
    }
  }
  return rows;
}

std::vector<Row> foreignKeys(const Link& link) {
  std::vector<Row> rows;
  for (const ServerTable& table : listTables(link)) {
    if (table.isView) continue;
    OdbcStatement statement(link);
    statement.askForeignKeys(table.schema, table.name);
    while (statement.next()) {
      ForeignKeyFacts key;
      key.parent = statement.text(2);
      key.parentColumn = statement.text(3);
      key.table = table.name;
      key.column = statement.text(7);
      key.ordinal = statement.number(8);
      key.name = statement.text(11);
      rows.push_back(foreignKeyRow(key));
    }
  }
  return rows;
}

}  // namespace

std::vector<std::string> odbcPrimaryKey(const std::shared_ptr<OdbcLink>& link,
                                        const std::string& table) {
  const auto asked = link->keys.find(table);
  if (asked != link->keys.end()) return asked->second;
  std::vector<std::string> fields;
  const std::vector<ServerTable> tables = listTables(link);
  const auto known = std::find_if(tables.begin(), tables.end(), [&](const ServerTable& other) {
    return !other.isView && other.name == table;
  });
  if (known != tables.end()) {
    for (const IndexFacts& part : keyOf(link, *known)) fields.push_back(part.column);
  }
  return link->keys[table] = fields;
}

std::unique_ptr<RowSource> readOdbcSchema(const std::shared_ptr<OdbcLink>& link, SchemaKind kind) {
  switch (kind) {
    case SchemaKind::Tables:
      return schemaAnswer(kind, tables(link));
    case SchemaKind::Columns:
      return schemaAnswer(kind, columns(link));
    case SchemaKind::Indexes:
      return schemaAnswer(kind, indexes(link));
    case SchemaKind::ForeignKeys:
      break;
  }
  return schemaAnswer(kind, foreignKeys(link));
}

}  // namespace lodex
