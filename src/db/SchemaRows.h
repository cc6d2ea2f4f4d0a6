#pragma once

#include <memory>
#include <string>
#include <vector>

#include "db/Driver.h"

namespace lodex {

/// The answer of a driver to a question about its structure: rows of the functions below, which
/// give the values in the order of the fields of SchemaKind.
std::unique_ptr<RowSource> schemaAnswer(SchemaKind kind, std::vector<Row> rows);

Row tableRow(const std::string& table, bool isView);

struct ColumnFacts {
  std::string table;
  std::string name;
  int ordinal = 0;  // from 1
  FieldType type = {};
  bool nullable = true;
  bool counter = false;
  std::string description = {};
};
Row columnRow(const ColumnFacts& column);

struct IndexFacts {
  std::string table;
  std::string name = {};
  bool primary = false;
  bool unique = false;
  int ordinal = 0;  // of the column in the index, from 1
  std::string column = {};
};
Row indexRow(const IndexFacts& index);

struct ForeignKeyFacts {
  std::string parent;
  std::string parentColumn;
  std::string table;
  std::string column;
  int ordinal = 0;  // from 1
  std::string name;
};
Row foreignKeyRow(const ForeignKeyFacts& key);

}  // namespace lodex
