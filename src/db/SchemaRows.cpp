#include "db/SchemaRows.h"

#include <utility>

namespace lodex {

namespace {

constexpr FieldType kName{FieldCode::VarText, 255};
constexpr FieldType kNumber{FieldCode::Integer, 0};
constexpr FieldType kTruth{FieldCode::Boolean, 0};

std::vector<Field> fieldsOf(SchemaKind kind) {
  switch (kind) {
    case SchemaKind::Columns:
      return {{"TABLE_NAME", kName, ""},
              {"COLUMN_NAME", kName, ""},
              {"ORDINAL_POSITION", kNumber, ""},
              {"DATA_TYPE", kNumber, ""},
              {"CHARACTER_MAXIMUM_LENGTH", kNumber, ""},
              {"NUMERIC_PRECISION", kNumber, ""},
              {"NUMERIC_SCALE", kNumber, ""},
              {"IS_NULLABLE", kTruth, ""},
              {"AUTOINCREMENT", kTruth, ""},
              {"DESCRIPTION", {FieldCode::Memo}, ""}};
    case SchemaKind::Indexes:
      return {{"TABLE_NAME", kName, ""},         {"INDEX_NAME", kName, ""},
              {"PRIMARY_KEY", kTruth, ""},       {"UNIQUE", kTruth, ""},
              {"ORDINAL_POSITION", kNumber, ""}, {"COLUMN_NAME", kName, ""}};
    case SchemaKind::Tables:
      return {{"TABLE_NAME", kName, ""}, {"TABLE_TYPE", kName, ""}};
    case SchemaKind::ForeignKeys:
      break;
  }
  return {{"PK_TABLE_NAME", kName, ""}, {"PK_COLUMN_NAME", kName, ""},
          {"FK_TABLE_NAME", kName, ""}, {"FK_COLUMN_NAME", kName, ""},
          {"ORDINAL", kNumber, ""},     {"FK_NAME", kName, ""}};
}

FieldValue truth(bool value) {
  return std::int64_t{value ? -1 : 0};
}

FieldValue whole(int value) {
  return std::int64_t{value};
}

FieldValue wholeIf(bool known, int value) {
  return known ? whole(value) : FieldValue();
}

}  // namespace

std::unique_ptr<RowSource> schemaAnswer(SchemaKind kind, std::vector<Row> rows) {
  return std::make_unique<StoredRows>(fieldsOf(kind), std::move(rows));
}

Row tableRow(const std::string& table, bool isView) {
  return {table, isView ? "VIEW" : "TABLE"};
}

Row columnRow(const ColumnFacts& column) {
  const FieldType& type = column.type;
  return {column.table,
          column.name,
          whole(column.ordinal),
          whole(static_cast<int>(type.code)),
          wholeIf(type.size > 0, type.size),
          wholeIf(type.precision > 0, type.precision),
          wholeIf(type.precision > 0, type.scale),
          truth(column.nullable),
          truth(column.counter),
          column.description.empty() ? FieldValue() : FieldValue(column.description)};
}

Row indexRow(const IndexFacts& index) {
  return {index.table,         index.name,           truth(index.primary),
          truth(index.unique), whole(index.ordinal), index.column};
}

Row foreignKeyRow(const ForeignKeyFacts& key) {
  return {key.parent, key.parentColumn, key.table, key.column, whole(key.ordinal), key.name};
}

}  // namespace lodex
