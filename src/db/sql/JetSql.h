#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/FieldTypes.h"

namespace lodex {

/// What a statement is to be turned into.
enum class SqlTarget {
  Sqlite,  ///< the embedded engine, which knows the Jet functions through SqliteFunctions
  Server   ///< a database server with standard SQL
};

/// Jet lets a value of a SELECT use another by its name, as in SELECT a*2 AS b, b+1 AS c. No other
/// engine does; Used puts the other value in its place, which is wrong where a field has that name.
enum class ValueNames { Unused, Used };

struct JetColumn {
  std::string name;
  FieldType type;
  bool required = false;
  bool unique = false;
  bool primary = false;
  bool counter = false;           ///< numbered by the database
  std::string defaultValue = {};  ///< an expression of the target, "" for none
};

/// A statement of the Jet dialect, read and turned into its target's terms. `kind` tells which of
/// the members are in use; names are without brackets, `sql` and expressions in the target's SQL.
struct JetStatement {
  enum Kind {
    Plain,        ///< sql; not looked into (PRAGMA and the like)
    Query,        ///< sql; table and recordSql if its records can be told apart
    Action,       ///< sql; table: the view that it makes, "" for none
    CreateTable,  ///< table, columns (maybe none), primaryKey, uniqueKeys, foreignKeys
    AddColumns,   ///< table, columns
    DropColumn,   ///< table, name
    CreateIndex,  ///< table, name, indexColumns, unique, primary
    DropIndex,    ///< table, name
    SelectInto,   ///< table: the new one; sql: the query that fills it
    Transform     ///< pivotSql or pivotValues, cell; transformQuery makes the query of them;
                  ///< table: the view that is to hold it, "" for none
  };
  Kind kind = Plain;
  std::string sql;
  std::string table;
  std::string name;

  /// A Query on one table without grouping: the same statement with the record's number at the end.
  std::string recordSql;

  std::vector<JetColumn> columns;
  bool ifNotExists = false;
  std::vector<std::string> primaryKey;
  std::vector<std::vector<std::string>> uniqueKeys;
  std::vector<std::string> foreignKeys;

  struct IndexColumn {
    std::string name;
    bool descending = false;
  };
  std::vector<IndexColumn> indexColumns;
  bool unique = false;
  bool primary = false;

  /// Of TRANSFORM ... PIVOT: the query for the values that become columns, unless these are fixed.
  std::string pivotSql;
  std::vector<FieldValue> pivotValues;
  struct Cell {
    std::string head, expression, pivot, tail;
  } cell;
};

/// Reads one statement. Throws Error naming line, column and text of what cannot be understood or
/// has no counterpart in the target.
JetStatement readJetSql(std::string_view sql, SqlTarget target,
                        ValueNames valueNames = ValueNames::Unused);

/// Reads one expression, such as a default value or a condition, and gives it in the target's SQL
/// without functions of the dialect for what operators do. Throws Error as readJetSql does, and for
/// a date in a sum.
std::string readJetExpression(std::string_view expression, SqlTarget target);

/// The query of a Transform for the values found by its pivotSql, in their order. Throws Error for
/// more columns than a query can have.
std::string transformQuery(const JetStatement& statement, const std::vector<FieldValue>& values,
                           SqlTarget target);

/// A name and a text in the target's form.
std::string targetName(std::string_view name, SqlTarget target);
std::string targetText(std::string_view text);

}  // namespace lodex
