#include "db/sql/JetSql.h"

#include <utility>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/sql/JetQueries.h"

namespace lodex {

namespace {

constexpr size_t kMaxPivotColumns = 1900;

// In an expression of TRANSFORM the place of the condition of its column.
constexpr char kCell = '\x01';

class JetParser : public JetQueries {
 public:
  using JetQueries::JetQueries;

  JetStatement run() {
    parseStatement();
    takeMark(";");
    if (peek().kind != JetToken::End) {
      fail(isMark(";") || isStatementWord() ? "there is more text behind the end of the statement"
                                            : "this cannot stand here");
    }
    return std::move(statement_);
  }

  std::string runExpression() {
    plainSums_ = true;
    const std::string text = expressionText();
    if (peek().kind != JetToken::End) fail("this cannot stand here");
    return text;
  }

 private:
  void parseStatement() {
    if (takeWord("PARAMETERS")) parseParameters();
    if (peek().kind == JetToken::End) {
      throw Error("The database statement is empty", dberror::BadStatement);
    }
    if (isWord("SELECT") || isMark("(")) return parseQuery();
    if (takeWord("TRANSFORM")) return parseTransform();
    if (takeWord("INSERT")) return parseInsert();
    if (takeWord("UPDATE")) return parseUpdate();
    if (takeWord("DELETE")) return parseDelete();
    if (takeWord("ALTER")) return parseAlter();
    if (takeWord("CREATE")) return parseCreate();
    if (takeWord("DROP")) return parseDrop();
    for (const auto* word : {"PRAGMA", "EXPLAIN", "WITH", "VALUES", "VACUUM", "ANALYZE", "REINDEX",
                             "BEGIN", "COMMIT", "END", "ROLLBACK", "SAVEPOINT", "RELEASE"}) {
      if (isWord(word)) {
        statement_.kind = JetStatement::Plain;
        statement_.sql = sql_;
        while (peek().kind != JetToken::End) take();
        return;
      }
    }
    fail("no statement begins like this");
  }

  // PARAMETERS [name] type, ...; comes before the statement that uses the names.
  void parseParameters() {
    if (target_ == SqlTarget::Server) fail("a server takes parameters as ? only");
    do {
      parameterNames_.push_back(expectName("the name of a parameter"));
      ++parameters_;
      while (!isMark(",") && !isMark(";") && peek().kind != JetToken::End) take();
    } while (takeMark(","));
    expectMark(";");
  }

  // --- Queries ---

  void parseQuery() {
    const Select select = parseCompound();
    statement_.sql = select.text();
    if (!select.into.empty()) {
      statement_.kind = JetStatement::SelectInto;
      statement_.table = select.into;
      return;
    }
    statement_.kind = JetStatement::Query;
    if (select.table.empty()) return;
    statement_.table = select.table;
    // After the others, since ORDER BY may count the columns.
    statement_.recordSql = select.head + " " + select.items + ", " + quoted(select.qualifier) +
                           "._rowid_" + select.tail + select.order + select.limit;
  }

  // --- TRANSFORM ---

  void parseTransform() {
    statement_.kind = JetStatement::Transform;
    auto& cell = statement_.cell;
    cellCondition_ = std::string(1, kCell);
    sawAggregate_ = false;
    cell.expression = expressionText();
    cellCondition_.clear();
    if (!sawAggregate_) fail("TRANSFORM needs a function such as Sum or First");
    if (takeWord("AS")) expectName("a name for the value");
    const JetToken start = peek();
    const Select select = parseSelect();
    if (!select.limit.empty() || !select.into.empty()) {
      failAt(sql_, start, "this query cannot be transformed");
    }
    Select ordered = select;
    parseOrder(ordered);
    cell.head = select.head + " " + select.items;
    cell.tail = ordered.tail + ordered.order;
    expectWord("PIVOT");
    cell.pivot = joined().text;
    if (takeWord("IN")) {
      expectMark("(");
      do {
        if (peek().kind == JetToken::Number) {
          statement_.pivotValues.push_back(numberOf(take().text));
        } else if (isName() || peek().kind == JetToken::Text || peek().kind == JetToken::Date) {
          statement_.pivotValues.push_back(take().text);
        } else {
          fail("a value is expected here");
        }
      } while (takeMark(","));
      expectMark(")");
    } else {
      const size_t groups = select.tail.rfind(" GROUP BY ");
      statement_.pivotSql = "SELECT DISTINCT " + cell.pivot + " AS " + quoted("Column") +
                            select.tail.substr(0, groups) + " ORDER BY 1";
    }
    if (parameters_ > 0) failAt(sql_, start, "a query with parameters cannot be transformed");
  }

  // --- Records ---

  std::string columnList() {
    std::string list;
    do {
      list += (list.empty() ? "" : ", ") + quoted(expectName("the name of a field"));
      // Of [table].[field] the field counts.
      if (takeMark(".")) {
        list.erase(list.rfind(", ") == std::string::npos ? 0 : list.rfind(", ") + 2);
        list += quoted(expectName("the name of a field"));
      }
    } while (takeMark(","));
    return list;
  }

  void parseInsert() {
    statement_.kind = JetStatement::Action;
    std::string text = "INSERT";
    if (takeWord("OR")) text += " OR " + expectName("what to do with a record that exists");
    expectWord("INTO");
    text += " INTO " + tableName();
    if (isMark("(") && !isWord("SELECT", 1)) {
      take();
      text += " (" + columnList() + ")";
      expectMark(")");
    }
    if (takeWords({"DEFAULT", "VALUES"})) {
      statement_.sql = text + " DEFAULT VALUES";
      return;
    }
    if (takeWord("VALUES")) {
      text += " VALUES ";
      bool first = true;
      do {
        expectMark("(");
        text += (first ? "(" : ", (") + join(arguments(), ", ") + ")";
        first = false;
      } while (takeMark(","));
      statement_.sql = text;
      return;
    }
    if (!isWord("SELECT") && !isMark("(")) fail("VALUES or SELECT is expected here");
    statement_.sql = text + " " + subquery();
  }

  struct Assignment {
    std::string qualifier;
    std::string field;
    std::string value;
  };

  void parseUpdate() {
    statement_.kind = JetStatement::Action;
    const JetToken start = peek();
    const std::string from = parseFrom();
    const std::vector<Source> sources = sources_;
    const bool single = tables_ == 1;
    if (!single && target_ == SqlTarget::Server) {
      failAt(sql_, start, "only one table can be updated at a time");
    }
    expectWord("SET");
    std::vector<Assignment> assignments;
    do {
      Assignment one;
      one.field = expectName("the name of a field");
      if (takeMark(".") || takeMark("!")) {
        one.qualifier = std::exchange(one.field, expectName("the name of a field"));
      }
      expectMark("=");
      one.value = expressionText();
      assignments.push_back(std::move(one));
    } while (takeMark(","));
    const std::string where = takeWord("WHERE") ? " WHERE " + expressionText() : "";
    if (!single) return updateJoined(start, from + where, sources, assignments);
    std::string text = "UPDATE " + from + " SET ";
    for (size_t i = 0; i < assignments.size(); ++i) {
      text += (i ? ", " : "") + quoted(assignments[i].field) + " = " + assignments[i].value;
    }
    statement_.sql = text + where;
  }

  const Source& sourceNamed(const std::string& qualifier, const std::vector<Source>& sources,
                            const JetToken& start) const {
    for (const Source& source : sources) {
      if (equalsNoCase(source.qualifier, qualifier)) return source;
    }
    failAt(sql_, start, "say which table is meant, as in [table].[field]");
  }

  // The joined records give the new values, each for the record of the one table that changes.
  void updateJoined(const JetToken& start, const std::string& from,
                    const std::vector<Source>& sources,
                    const std::vector<Assignment>& assignments) {
    const Source& target = sourceNamed(assignments[0].qualifier, sources, start);
    std::string sets, values;
    for (size_t i = 0; i < assignments.size(); ++i) {
      const Assignment& one = assignments[i];
      if (&sourceNamed(one.qualifier, sources, start) != &target) {
        failAt(sql_, start, "only one table can be updated at a time");
      }
      const std::string name = "[|" + std::to_string(i + 1) + "]";
      sets += (i ? ", " : "") + quoted(one.field) + " = [|new]." + name;
      values += ", " + one.value + " AS " + name;
    }
    statement_.sql = "UPDATE " + quoted(target.table) + " SET " + sets + " FROM (SELECT " +
                     quoted(target.qualifier) + "._rowid_ AS [|record]" + values + " FROM " + from +
                     ") AS [|new] WHERE " + quoted(target.table) + "._rowid_ = [|new].[|record]";
  }

  void parseDelete() {
    statement_.kind = JetStatement::Action;
    takeWord("DISTINCTROW");
    std::string qualifier;
    if (!takeMark("*") && isName() && isMark(".", 1) && isMark("*", 2)) {
      qualifier = take().text;
      take();
      take();
    }
    expectWord("FROM");
    const JetToken start = peek();
    const std::string from = parseFrom();
    const std::vector<Source> sources = sources_;
    const bool single = tables_ == 1;
    if (!single && target_ == SqlTarget::Server) {
      failAt(sql_, start, "records can be deleted from one table at a time");
    }
    const std::string where = takeWord("WHERE") ? " WHERE " + expressionText() : "";
    if (single) {
      statement_.sql = "DELETE FROM " + from + where;
      return;
    }
    const Source& target = sourceNamed(qualifier, sources, start);
    statement_.sql = "DELETE FROM " + quoted(target.table) + " WHERE _rowid_ IN (SELECT " +
                     quoted(target.qualifier) + "._rowid_ FROM " + from + where + ")";
  }

  // --- Tables, fields, indexes and views ---

  void parseCreate() {
    if (takeWord("TABLE")) return parseCreateTable();
    const bool unique = takeWord("UNIQUE");
    if (takeWord("INDEX")) return parseCreateIndex(unique);
    if (!unique && takeWord("VIEW")) return parseCreateView();
    fail("CREATE makes tables, indexes and views");
  }

  void parseCreateView() {
    statement_.kind = JetStatement::Action;
    const std::string name = peek().text;
    std::string text = "CREATE VIEW " + tableName();
    if (takeMark("(")) {
      text += " (" + columnList() + ")";
      expectMark(")");
    }
    expectWord("AS");
    if (isWord("TRANSFORM")) {
      if (target_ == SqlTarget::Server) fail("a view cannot hold TRANSFORM");
      take();
      parseTransform();
      statement_.table = name;
      return;
    }
    statement_.table = name;
    statement_.sql = text + " AS " + subquery();
    if (parameters_ > 0) fail("a view cannot have parameters");
  }

  void parseCreateTable() {
    statement_.kind = JetStatement::CreateTable;
    statement_.ifNotExists = takeWords({"IF", "NOT", "EXISTS"});
    statement_.table = expectName("the name of the table");
    if (takeWord("AS")) {
      statement_.kind = JetStatement::SelectInto;
      statement_.sql = subquery();
      return;
    }
    if (!takeMark("(")) return;
    do {
      if (!parseTableConstraint()) parseColumn();
    } while (takeMark(","));
    expectMark(")");
  }

  std::vector<std::string> nameList() {
    expectMark("(");
    std::vector<std::string> names;
    do names.push_back(expectName("the name of a field"));
    while (takeMark(","));
    expectMark(")");
    return names;
  }

  bool parseTableConstraint() {
    if (isWord("CONSTRAINT") && isName(1)) {
      take();
      take();
    }
    if (takeWords({"PRIMARY", "KEY"})) {
      statement_.primaryKey = nameList();
      return true;
    }
    if (isWord("UNIQUE") && isMark("(", 1)) {
      take();
      statement_.uniqueKeys.push_back(nameList());
      return true;
    }
    if (takeWords({"FOREIGN", "KEY"})) {
      std::string text = "FOREIGN KEY (" + quotedList(nameList()) + ")";
      statement_.foreignKeys.push_back(text + parseReferences());
      return true;
    }
    return false;
  }

  std::string quotedList(const std::vector<std::string>& names) const {
    std::string list;
    for (const auto& name : names) list += (list.empty() ? "" : ", ") + quoted(name);
    return list;
  }

  std::string parseReferences() {
    expectWord("REFERENCES");
    std::string text = " REFERENCES " + tableName();
    if (isMark("(")) text += " (" + quotedList(nameList()) + ")";
    return text;
  }

  bool atColumnWord() const {
    for (const auto* word : {"NOT", "NULL", "UNIQUE", "PRIMARY", "DEFAULT", "CONSTRAINT", "COLLATE",
                             "REFERENCES", "WITH"}) {
      if (isWord(word)) return true;
    }
    return false;
  }

  void parseColumn() {
    JetColumn column;
    column.name = expectName("the name of a field");
    std::string type;
    while (peek().kind == JetToken::Word && !atColumnWord()) {
      type += (type.empty() ? "" : " ") + toUpper(take().text);
    }
    if (takeMark("(")) {
      type += "(" + join(arguments(), ",") + ")";
      while (peek().kind == JetToken::Word && !atColumnWord()) take();
    }
    column.type = parseFieldType(type);
    column.counter = type.starts_with("COUNTER") || type.starts_with("AUTOINCREMENT");
    while (parseColumnOption(column)) {
    }
    statement_.columns.push_back(std::move(column));
  }

  bool parseColumnOption(JetColumn& column) {
    if (takeWord("CONSTRAINT")) expectName("the name of a constraint");
    if (takeWords({"NOT", "NULL"})) {
      column.required = true;
    } else if (takeWord("NULL")) {
    } else if (takeWord("UNIQUE")) {
      column.unique = true;
    } else if (takeWords({"PRIMARY", "KEY"})) {
      column.primary = true;
      if (takeWord("AUTOINCREMENT")) column.counter = true;
    } else if (takeWord("DEFAULT")) {
      const Expression value = expression();
      column.defaultValue = "(" + value.text + ")";
    } else if (takeWord("COLLATE")) {
      expectName("the name of an order");
    } else if (isWord("REFERENCES")) {
      statement_.foreignKeys.push_back("FOREIGN KEY (" + quoted(column.name) + ")" +
                                       parseReferences());
    } else {
      return takeWords({"WITH", "COMPRESSION"}) || takeWords({"WITH", "COMP"});
    }
    return true;
  }

  void parseAlter() {
    expectWord("TABLE");
    statement_.table = expectName("the name of the table");
    if (takeWord("ADD")) {
      if (isWord("CONSTRAINT") && isName(1)) return parseAddedConstraint();
      statement_.kind = JetStatement::AddColumns;
      takeWord("COLUMN");
      const bool bracketed = takeMark("(");
      do parseColumn();
      while (takeMark(","));
      if (bracketed) expectMark(")");
      return;
    }
    if (takeWord("DROP")) {
      statement_.kind = JetStatement::DropColumn;
      takeWord("COLUMN");
      statement_.name = expectName("the name of the field");
      return;
    }
    fail("a table can be altered by ADD COLUMN and DROP COLUMN");
  }

  // A key of a table that exists already is an index.
  void parseAddedConstraint() {
    take();
    statement_.kind = JetStatement::CreateIndex;
    statement_.name = expectName("the name of the constraint");
    statement_.primary = takeWords({"PRIMARY", "KEY"});
    if (!statement_.primary && !takeWord("UNIQUE")) {
      fail("PRIMARY KEY and UNIQUE can be added to a table");
    }
    statement_.unique = true;
    for (std::string& name : nameList()) statement_.indexColumns.push_back({std::move(name)});
  }

  // Names of fields and indexes may be written here without brackets even when they hold blanks.
  std::string looseName(std::initializer_list<std::string_view> ends) {
    const auto atEnd = [&] {
      for (const auto end : ends) {
        if (isWord(end) || isMark(end)) return true;
      }
      return peek().kind == JetToken::End;
    };
    if (peek().kind == JetToken::Name || peek().kind == JetToken::Quoted) return take().text;
    const size_t start = peek().start;
    size_t end = start;
    while (!atEnd()) end = take().end;
    if (end == start) fail("a name is missing");
    return std::string(sql_.substr(start, end - start));
  }

  void parseCreateIndex(bool unique) {
    statement_.kind = JetStatement::CreateIndex;
    statement_.ifNotExists = takeWords({"IF", "NOT", "EXISTS"});
    statement_.name = looseName({"ON"});
    expectWord("ON");
    statement_.table = expectName("the name of the table");
    expectMark("(");
    do {
      JetStatement::IndexColumn column{looseName({",", ")", "ASC", "DESC"})};
      column.descending = takeWord("DESC");
      if (!column.descending) takeWord("ASC");
      statement_.indexColumns.push_back(std::move(column));
    } while (takeMark(","));
    expectMark(")");
    statement_.primary = takeWords({"WITH", "PRIMARY"});
    statement_.unique = unique || statement_.primary;
    if (takeWords({"WITH", "DISALLOW"})) expectWord("NULL");
    if (takeWords({"WITH", "IGNORE"})) expectWord("NULL");
  }

  void parseDrop() {
    const bool isIndex = takeWord("INDEX");
    const bool isView = !isIndex && takeWord("VIEW");
    if (!isIndex && !isView && !takeWord("TABLE")) fail("DROP takes tables, indexes and views");
    const std::string guard = takeWords({"IF", "EXISTS"}) ? "IF EXISTS " : "";
    if (isIndex) {
      statement_.kind = JetStatement::DropIndex;
      statement_.name = looseName({"ON", ";"});
      if (takeWord("ON")) statement_.table = expectName("the name of the table");
      return;
    }
    statement_.kind = JetStatement::Action;
    statement_.sql = (isView ? "DROP VIEW " : "DROP TABLE ") + guard + tableName();
  }

  JetStatement statement_;
};

std::string literal(const FieldValue& value) {
  if (isNull(value)) return "NULL";
  if (const auto* text = std::get_if<std::string>(&value)) return targetText(*text);
  if (const auto* number = std::get_if<double>(&value)) return exactNumberText(*number);
  return fieldText(value);
}

void refuseControlCharacters(std::string_view sql) {
  if (sql.find('\0') != std::string_view::npos || sql.find(kCell) != std::string_view::npos) {
    throw Error("A control character cannot stand in a database statement", dberror::BadArgument);
  }
}

}  // namespace

std::string targetName(std::string_view name, SqlTarget target) {
  if (name.find('\0') != std::string_view::npos) {
    throw Error("A character of code 0 cannot stand in a name", dberror::BadArgument);
  }
  if (target == SqlTarget::Sqlite && name.find(']') == std::string_view::npos) {
    return "[" + std::string(name) + "]";
  }
  return "\"" + replaceAll(name, "\"", "\"\"") + "\"";
}

std::string targetText(std::string_view text) {
  return "'" + replaceAll(text, "'", "''") + "'";
}

JetStatement readJetSql(std::string_view sql, SqlTarget target, ValueNames valueNames) {
  refuseControlCharacters(sql);
  return JetParser(sql, target, valueNames).run();
}

std::string readJetExpression(std::string_view expression, SqlTarget target) {
  refuseControlCharacters(expression);
  return JetParser(expression, target, ValueNames::Unused).runExpression();
}

std::string transformQuery(const JetStatement& statement, const std::vector<FieldValue>& values,
                           SqlTarget target) {
  if (values.size() > kMaxPivotColumns) {
    throw Error("TRANSFORM would make " + std::to_string(values.size()) + " columns; " +
                    std::to_string(kMaxPivotColumns) + " is the most",
                dberror::BadStatement);
  }
  const auto& cell = statement.cell;
  std::string sql = cell.head;
  for (const FieldValue& value : values) {
    const std::string test =
        isNull(value) ? "(" + cell.pivot + ") IS NULL" : "(" + cell.pivot + ") = " + literal(value);
    const std::string name = isNull(value) ? "<>" : fieldText(value);
    sql += ", " + replaceAll(cell.expression, std::string(1, kCell), test) + " AS " +
           targetName(name, target);
  }
  return sql + cell.tail;
}

}  // namespace lodex
