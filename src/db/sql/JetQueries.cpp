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
  const auto sources = std::exchange(sources_, {});
  const auto items = std::exchange(items_, {});
  const auto orders = std::exchange(orders_, {});
  const int tables = tables_;
  const Select select = parseCompound();
  sources_ = sources;
  items_ = items;
  orders_ = orders;
  tables_ = tables;
  sawAggregate_ = sawAggregate;
  cellCondition_ = cellCondition;
  unnamed_ = unnamed;
  if (!select.into.empty()) fail("a query inside another cannot make a table");
  return select.text();
}

std::string JetQueries::valueNamed(std::string_view name) const {
  for (const Item& item : items_) {
    const bool isField = equalsNoCase(item.text, quoted(item.name));
    if (!item.name.empty() && !isField && equalsNoCase(item.name, name)) return item.text;
  }
  return {};
}

JetQueries::Select JetQueries::parseCompound() {
  if (++queryDepth_ > 50) fail("the queries are nested too deeply");
  Select select = parseOperand();
  while (isWord("UNION") || isWord("INTERSECT") || isWord("EXCEPT")) {
    std::string word = toUpper(take().text);
    if (takeWord("ALL")) word += " ALL";
    // A member with a limit of its own becomes a query of its own.
    if (!select.limit.empty() || !select.order.empty()) select = apart(select);
    Select next = parseOperand();
    if (!next.limit.empty() || !next.order.empty()) next = apart(next);
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
    select.tail = " FROM " + parseFrom();
    if (tables_ == 1 && sources_.size() == 1) {
      select.table = sources_[0].table;
      select.qualifier = sources_[0].qualifier;
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
  if (!top.empty()) limitTo(select, top, percent);
  return select;
}

// TOP takes the records that tie with the last one too. Their number is counted by a query of its
// own, over the values that give the order.
void JetQueries::limitTo(Select& select, const std::string& top, bool percent) {
  orders_.clear();
  parseOrder(select);
  if (target_ == SqlTarget::Server) {
    if (percent) fail("a server knows no TOP with PERCENT");
    select.limit = " FETCH FIRST " + top + " ROWS " + (orders_.empty() ? "ONLY" : "WITH TIES");
    return;
  }
  std::string count = top;
  if (percent) {
    count = "(SELECT CAST((COUNT(*) * " + top + " + 99) / 100 AS INTEGER) FROM (" + select.head +
            " " + select.items + select.tail + "))";
  }
  std::string terms, ranks;
  for (size_t i = 0; i < orders_.size(); ++i) {
    const std::string name = "[|" + std::to_string(i + 1) + "]";
    const std::string term = orderTerm(orders_[i].text);
    if (term.empty()) {
      terms.clear();
      break;
    }
    terms += ", " + term + " AS " + name;
    ranks += (i ? ", " : "") + name + (orders_[i].descending ? " DESC" : "");
  }
  if (terms.empty()) {
    select.limit = " LIMIT " + count;
    return;
  }
  select.limit = " LIMIT (SELECT COUNT(*) FROM (SELECT rank() OVER (ORDER BY " + ranks +
                 ") AS [|rank] FROM (" + select.head + " " + select.items + terms + select.tail +
                 ")) WHERE [|rank] <= " + count + ")";
}

// What ORDER BY means: a number or a name may refer to a value of the SELECT. "" where that is not
// clear.
std::string JetQueries::orderTerm(const std::string& text) const {
  if (const auto number = parseInteger(text)) {
    if (*number < 1 || static_cast<size_t>(*number) > items_.size()) return {};
    for (size_t i = 0; i < static_cast<size_t>(*number); ++i) {
      if (items_[i].name.empty()) return {};
    }
    return items_[static_cast<size_t>(*number) - 1].text;
  }
  for (const Item& item : items_) {
    if (!item.name.empty() && equalsNoCase(quoted(item.name), text)) return item.text;
  }
  return text;
}

void JetQueries::parseOrder(Select& select) {
  if (takeWords({"ORDER", "BY"})) {
    orders_.clear();
    do {
      const std::string text = expressionText();
      const bool descending = takeWord("DESC");
      if (!descending) takeWord("ASC");
      orders_.push_back({text, descending});
    } while (takeMark(","));
    for (size_t i = 0; i < orders_.size(); ++i) {
      select.order += (i ? ", " : " ORDER BY ") + orders_[i].text;
      if (orders_[i].descending) select.order += " DESC";
    }
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
  items_.clear();
  do {
    if (!items.empty()) items += ", ";
    if (takeMark("*")) {
      items += "*";
      items_.emplace_back();
    } else if (isName() && (isMark(".", 1) || isMark("!", 1)) && isMark("*", 2)) {
      items += tableName() + ".*";
      items_.emplace_back();
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
  std::string name = item.column;
  if (takeWord("AS")) {
    name = expectName("a name for the value");
  } else if (isName() && !isStatementWord()) {
    name = take().text;
  } else if (item.column.empty()) {
    name = "Expr" + std::to_string(1000 + unnamed_++);
  } else {
    items_.push_back({text, name});
    return text;
  }
  items_.push_back({text, name});
  return text + " AS " + quoted(name);
}

std::string JetQueries::parseFrom() {
  tables_ = 0;
  sources_.clear();
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
      const std::string query = subquery();
      tables_ += 2;
      expectMark(")");
      return "(" + query + ")" + parseAlias(nullptr);
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
  Source source{name, name};
  text += parseAlias(&source.qualifier);
  sources_.push_back(std::move(source));
  return text;
}

std::string JetQueries::parseAlias(std::string* name) {
  const bool spelled = takeWord("AS");
  if (!spelled && (!isName() || isWord("FULL") || isStatementWord())) return "";
  const std::string alias = expectName("another name for the table");
  if (name) *name = alias;
  return (target_ == SqlTarget::Server ? " " : " AS ") + quoted(alias);
}

}  // namespace lodex
