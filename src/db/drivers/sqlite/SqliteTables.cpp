#include "db/drivers/sqlite/SqliteTables.h"

#include "basic/Text.h"

namespace lodex {

namespace {

constexpr std::string_view kPrimaryMark = "|primary";

std::string quoted(std::string_view name) {
  return targetName(name, SqlTarget::Sqlite);
}

std::string quotedList(const std::vector<std::string>& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + quoted(name);
  return list;
}

struct Demand {
  std::string condition;  // true or Null for a value that fits
  std::string words;      // "takes ..."
};

Demand wholeNumber(const std::string& field, std::string_view least, std::string_view most) {
  const std::string range = std::string(least) + " and " + std::string(most);
  return {"typeof(" + field + ") <> 'real' AND " + field + " BETWEEN " + range,
          "whole numbers between " + range};
}

// What a field's type demands of its values. Only functions that every program has are used, so
// that other tools can write to the file as well. The conditions are short because they are read
// each time that a file is opened; texts and bytes count as greater than any number.
Demand demandOf(const JetColumn& column) {
  const std::string field = quoted(column.name);
  const std::string number = field + " <= 9e999";
  switch (column.type.code) {
    case FieldCode::SmallInt:
      return wholeNumber(field, "-32768", "32767");
    case FieldCode::Integer:
      return wholeNumber(field, "-2147483648", "2147483647");
    case FieldCode::Byte:
      return wholeNumber(field, "0", "255");
    case FieldCode::Boolean:
      return {field + " IN (-1, 0, 1)", "True and False"};
    case FieldCode::Single:
      return {field + " BETWEEN -3.402824E38 AND 3.402824E38", "numbers of single precision"};
    case FieldCode::Numeric: {
      if (column.type.precision == 0) return {number, "numbers"};
      const std::string digits = std::to_string(column.type.precision - column.type.scale);
      return {field + " > -1E" + digits + " AND " + field + " < 1E" + digits,
              "numbers of up to " + digits + " digits before the point"};
    }
    case FieldCode::Double:
    case FieldCode::Currency:
      return {number, "numbers"};
    case FieldCode::Date:
      return {field + " GLOB '[0-9][0-9][0-9][0-9]-[0-1][0-9]-[0-3][0-9]*'",
              "dates such as 2020-01-31"};
    case FieldCode::Text:
    case FieldCode::VarText: {
      const std::string size = std::to_string(column.type.size > 0 ? column.type.size : 255);
      return {"length(" + field + ") <= " + size, "texts of up to " + size + " characters"};
    }
    case FieldCode::Memo:
    case FieldCode::Binary:
      break;
  }
  return {};
}

std::string columnSql(std::string_view table, const JetColumn& column, bool isKey) {
  const std::string name = quoted(column.name);
  if (column.counter && isKey) return name + " INTEGER PRIMARY KEY";
  std::string sql = name + " " + columnDeclaration(column.type);
  if (column.required) sql += " NOT NULL";
  if (!column.defaultValue.empty()) {
    sql += " DEFAULT " + column.defaultValue;
  } else if (column.type.code == FieldCode::Boolean) {
    sql += " DEFAULT 0";
  }
  const Demand demand = demandOf(column);
  if (demand.condition.empty()) return sql;
  // The constraint's name is what the engine says when a value does not fit.
  const std::string words =
      "field [" + column.name + "] of table [" + std::string(table) + "] takes " + demand.words;
  return sql + " CONSTRAINT \"" + replaceAll(words, "\"", "\"\"") + "\" CHECK (" +
         demand.condition + ")";
}

}  // namespace

FieldType fieldTypeInFile(std::string_view declared) {
  const FieldType type = parseFieldType(declared);
  const bool isSized = declared.find('(') != std::string_view::npos;
  if (type.code == FieldCode::VarText && !isSized) return {FieldCode::Memo, 0};
  if (startsWithNoCase(declared, "REAL")) return {FieldCode::Double, 0};
  return type;
}

std::string counterTrigger(std::string_view table, std::string_view field) {
  const std::string column = quoted(field);
  return "CREATE TRIGGER " + quoted(std::string(table) + "|" + std::string(field) + "|counter") +
         " AFTER INSERT ON " + quoted(table) + " WHEN NEW." + column + " IS NULL BEGIN UPDATE " +
         quoted(table) + " SET " + column + " = (SELECT coalesce(max(" + column +
         "), 0) + 1 FROM " + quoted(table) + ") WHERE _rowid_ = NEW._rowid_; END";
}

std::vector<std::string> createTableSql(const JetStatement& statement) {
  std::vector<JetColumn> columns = statement.columns;
  std::vector<std::string> key = statement.primaryKey;
  for (const auto& column : columns) {
    if (column.primary) key.push_back(column.name);
  }
  std::string lines;
  std::vector<std::string> after;
  bool keyStands = false;
  const auto add = [&lines](const std::string& line) {
    lines += (lines.empty() ? "" : ", ") + line;
  };
  for (auto& column : columns) {
    bool inKey = false;
    for (const auto& name : key) inKey = inKey || equalsNoCase(name, column.name);
    const bool isKey = inKey && key.size() == 1 && column.counter;
    keyStands = keyStands || isKey;
    if (inKey) column.required = true;
    add(columnSql(statement.table, column, isKey));
    if (column.counter && !isKey) after.push_back(counterTrigger(statement.table, column.name));
  }
  if (columns.empty()) add(quoted(kNoFields) + " BLOB");
  if (!key.empty() && !keyStands) add("PRIMARY KEY (" + quotedList(key) + ")");
  for (const auto& column : columns) {
    if (column.unique) add("UNIQUE (" + quoted(column.name) + ")");
  }
  for (const auto& names : statement.uniqueKeys) add("UNIQUE (" + quotedList(names) + ")");
  for (const auto& foreign : statement.foreignKeys) add(foreign);
  std::vector<std::string> statements{"CREATE TABLE " +
                                      std::string(statement.ifNotExists ? "IF NOT EXISTS " : "") +
                                      quoted(statement.table) + " (" + lines + ")"};
  statements.insert(statements.end(), after.begin(), after.end());
  return statements;
}

AddedColumn addedColumn(std::string_view table, const JetColumn& column) {
  AddedColumn added{columnSql(table, column, false), {}};
  if (column.counter) {
    added.after.push_back("UPDATE " + quoted(table) + " SET " + quoted(column.name) + " = _rowid_");
    added.after.push_back(counterTrigger(table, column.name));
  }
  JetStatement index;
  index.table = table;
  index.name = column.name;
  index.indexColumns.push_back({column.name});
  index.unique = true;
  index.primary = column.primary;
  if (column.unique || column.primary) {
    for (auto& sql : createIndexSql(index, column.counter)) added.after.push_back(std::move(sql));
  }
  return added;
}

std::vector<std::string> createIndexSql(const JetStatement& statement, bool numbered) {
  const std::string stored =
      statement.table + "|" + statement.name + std::string(statement.primary ? kPrimaryMark : "");
  std::string columns;
  std::string missing;
  for (const auto& column : statement.indexColumns) {
    columns += (columns.empty() ? "" : ", ") + quoted(column.name);
    if (column.descending) columns += " DESC";
    missing += (missing.empty() ? "NEW." : " OR NEW.") + quoted(column.name) + " IS NULL";
  }
  std::vector<std::string> statements{
      std::string(statement.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
      (statement.ifNotExists ? "IF NOT EXISTS " : "") + quoted(stored) + " ON " +
      quoted(statement.table) + " (" + columns + ")"};
  if (!statement.primary || numbered) return statements;
  const std::string words = "the primary key of table [" + statement.table + "] cannot be empty";
  const std::vector<std::string> names = primaryKeyTriggers(stored);
  for (size_t i = 0; i < names.size(); ++i) {
    statements.push_back("CREATE TRIGGER " + quoted(names[i]) + " BEFORE " +
                         (i == 0 ? "INSERT" : "UPDATE") + " ON " + quoted(statement.table) +
                         " WHEN " + missing + " BEGIN SELECT RAISE(ABORT, " + targetText(words) +
                         "); END");
  }
  return statements;
}

std::vector<std::string> primaryKeyTriggers(std::string_view storedIndex) {
  return {std::string(storedIndex) + "|insert", std::string(storedIndex) + "|update"};
}

IndexName readIndexName(std::string_view table, std::string_view stored) {
  if (!startsWithNoCase(stored, std::string(table) + "|")) return {std::string(stored), false};
  std::string_view name = stored.substr(table.size() + 1);
  const bool primary = name.ends_with(kPrimaryMark);
  if (primary) name.remove_suffix(kPrimaryMark.size());
  return {std::string(name), primary};
}

}  // namespace lodex
