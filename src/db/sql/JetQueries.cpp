#include "db/sql/JetQueries.h"

#include <utility>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

bool JetQueries::isStatementWord() const {
  for (const auto* word : {"SELECT", "INSERT", "UPDATE", "DELETE", "CREATE", "DROP", "ALTER"}) {
    if (isWord(word)) return true;
  }
  return false;
}

std::string JetQueries::subquery() {
  const bool sawAggregate = std::exchange(sawAggregate_, false);
  const std::string cellCondition = std::exchange(cellCondition_, "");
  const int unnamed = std::exchange(unnamed_, 0);
  const Select select = parseCompound();
  sawAggregate_ = sawAggregate;
  cellCondition_ = cellCondition;
  unnamed_ = unnamed;
  if (!select.into.empty()) fail("a query inside another cannot make a table");
  return select.text();
}

JetQueries::Select JetQueries::parseCompound() {
  if (++queryDepth_ > 50) fail("the queries are nested too deeply");
  Select select = parseOperand();
  while (isWord("UNION") || isWord("INTERSECT") || isWord("EXCEPT")) {
    std::string word = toUpper(take().text);
    if (takeWord("ALL")) word += " ALL";
    // A member with a limit of its own must stand apart.
    if (!select.limit.empty()) select = apart(select);
    Select next = parseOperand();
    if (!next.limit.empty()) next = apart(next);
    select.tail += " " + word + " " + next.text();
    select.table.clear();
  }
  parseOrder(select);
  takeWords({"WITH", "OWNERACCESS", "OPTION"});
  --queryDepth_;
  return select;
}

JetQueries::Select JetQueries::apart(const Select& select) {
  Select outer;
  outer.head = "SELECT";
  outer.items = "*";
  outer.tail = " FROM (" + select.text() + ")";
  return outer;
}

JetQueries::Select JetQueries::parseOperand() {
  if (!takeMark("(")) return parseSelect();
  const Select inner = parseCompound();
  expectMark(")");
  return apart(inner);
}

JetQueries::Select JetQueries::parseSelect() {
  expectWord("SELECT");
  Select select;
  select.head = "SELECT";
  const bool distinct = takeWord("DISTINCT");
  if (distinct) select.head += " DISTINCT";
  if (!takeWord("DISTINCTROW")) takeWord("ALL");
  std::string top;
  bool percent = false;
  if (takeWord("TOP")) {
    if (peek().kind != JetToken::Number || !parseInteger(peek().text)) {
      fail("TOP needs a whole number");
    }
    top = take().text;
    percent = takeWord("PERCENT");
  }
  const bool outerAggregate = std::exchange(sawAggregate_, false);
  select.items = parseItems();
  if (takeWord("INTO")) select.into = expectName("the name of the new table");
  if (takeWord("FROM")) {
    tables_ = 0;
    select.tail = " FROM " + parseFrom();
    if (tables_ == 1 && !lastTable_.empty()) {
      select.table = lastTable_;
      select.qualifier = lastQualifier_;
    }
  }
  const std::string table = select.table;
  const std::string qualifier = select.qualifier;
  if (takeWord("WHERE")) select.tail += " WHERE " + expressionText();
  bool grouped = false;
  if (takeWords({"GROUP", "BY"})) {
    grouped = true;
    select.tail += " GROUP BY " + parseList();
  }
  if (takeWord("HAVING")) select.tail += " HAVING " + expressionText();
  if (distinct || grouped || sawAggregate_) select.table.clear();
  sawAggregate_ = outerAggregate;
  if (!top.empty()) {
    // The order belongs to the first records.
    parseOrder(select);
    if (!percent) {
      select.limit = " LIMIT " + top;
    } else {
      select.limit = " LIMIT (SELECT CAST((COUNT(*) * " + top + " + 99) / 100 AS INTEGER) FROM (" +
                     select.text() + "))";
    }
    if (target_ == SqlTarget::Server) {
      if (percent) fail("a server knows no TOP with PERCENT");
      select.limit = " FETCH FIRST " + top + " ROWS ONLY";
    }
  }
  return select;
}

void JetQueries::parseOrder(Select& select) {
  if (takeWords({"ORDER", "BY"})) {
    std::string order = " ORDER BY ";
    do {
      order += expressionText();
      if (takeWord("DESC")) {
        order += " DESC";
      } else {
        takeWord("ASC");
      }
    } while (takeMark(",") && (order += ", ", true));
    select.tail += order;
  }
  if (takeWord("LIMIT")) {
    select.limit += " LIMIT " + expressionText();
    if (takeWord("OFFSET")) select.limit += " OFFSET " + expressionText();
  }
}

std::string JetQueries::parseList() {
  std::string list = expressionText();
  while (takeMark(",")) list += ", " + expressionText();
  return list;
}

std::string JetQueries::parseItems() {
  std::string items;
  unnamed_ = 0;
  do {
    if (!items.empty()) items += ", ";
    if (takeMark("*")) {
      items += "*";
    } else if (isName() && (isMark(".", 1) || isMark("!", 1)) && isMark("*", 2)) {
      items += tableName() + ".*";
      take();
      take();
    } else {
      items += parseItem();
    }
  } while (takeMark(","));
  return items;
}

std::string JetQueries::tableName() {
  const bool asIs = target_ == SqlTarget::Server && peek().kind == JetToken::Word;
  const std::string name = expectName("the name of a table");
  return asIs ? name : quoted(name);
}

std::string JetQueries::parseItem() {
  const Expression item = expression();
  std::string text = item.text;
  // Truth is -1 to whoever reads the records.
  if (item.isCondition && target_ == SqlTarget::Sqlite) text = "-(" + text + ")";
  if (takeWord("AS")) return text + " AS " + quoted(expectName("a name for the value"));
  if (isName() && !isStatementWord()) return text + " AS " + quoted(take().text);
  if (!item.column.empty()) return text;
  return text + " AS " + quoted("Expr" + std::to_string(1000 + unnamed_++));
}

std::string JetQueries::parseFrom() {
  std::string from = parseJoins();
  while (takeMark(",")) from += ", " + parseJoins();
  if (isWord("IN")) fail("a table of another database cannot be read here");
  return from;
}

std::string JetQueries::parseJoins() {
  std::string text = parseTable(true);
  while (true) {
    std::string word;
    if (takeWords({"CROSS", "JOIN"})) {
      text += " CROSS JOIN " + parseTable(false);
      continue;
    }
    if (takeWord("INNER") || isWord("JOIN")) {
      word = " INNER JOIN ";
    } else if (isWord("LEFT") || isWord("RIGHT") || isWord("FULL")) {
      word = " " + toUpper(take().text) + " JOIN ";
      takeWord("OUTER");
    } else {
      return text;
    }
    expectWord("JOIN");
    text += word + parseTable(false);
    expectWord("ON");
    text += " ON " + expressionText();
  }
}

// Brackets around what comes first change nothing, and the engine names fields of joined tables
// more freely without them.
std::string JetQueries::parseTable(bool first) {
  if (takeMark("(")) {
    if (isWord("SELECT")) {
      const int outerTables = tables_;
      const std::string query = subquery();
      tables_ = outerTables + 2;
      expectMark(")");
      return "(" + query + ")" + parseAlias();
    }
    if (++queryDepth_ > 50) fail("the joins are nested too deeply");
    const std::string joins = parseJoins();
    --queryDepth_;
    expectMark(")");
    return first ? joins : "(" + joins + ")";
  }
  const bool asIs = target_ == SqlTarget::Server && peek().kind == JetToken::Word;
  std::string name = expectName("the name of a table");
  std::string text = asIs ? name : quoted(name);
  if (takeMark(".")) {
    const bool plainPart = target_ == SqlTarget::Server && peek().kind == JetToken::Word;
    name = expectName("the name of a table");
    text += "." + (plainPart ? name : quoted(name));
  }
  ++tables_;
  lastTable_ = name;
  lastQualifier_ = name;
  return text + parseAlias();
}

std::string JetQueries::parseAlias() {
  const bool spelled = takeWord("AS");
  if (!spelled && (!isName() || isWord("FULL") || isStatementWord())) return "";
  lastQualifier_ = expectName("another name for the table");
  return (target_ == SqlTarget::Server ? " " : " AS ") + quoted(lastQualifier_);
}

}  // namespace lodex
