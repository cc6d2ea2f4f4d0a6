#include <algorithm>
#include <array>
#include <utility>

#include "basic/Text.h"
#include "db/sql/JetParser.h"

namespace lodex {

namespace {

constexpr int kMaxDepth = 150;

constexpr std::array<std::string_view, 34> kReserved{
    "SELECT", "FROM", "WHERE",  "GROUP",     "ORDER", "HAVING", "UNION",   "INNER", "LEFT",
    "RIGHT",  "JOIN", "ON",     "AS",        "PIVOT", "INTO",   "LIMIT",   "AND",   "OR",
    "NOT",    "LIKE", "IN",     "IS",        "SET",   "VALUES", "BETWEEN", "XOR",   "EQV",
    "IMP",    "MOD",  "EXCEPT", "INTERSECT", "CROSS", "WITH",   "OFFSET"};

constexpr std::array<std::string_view, 9> kAggregates{"SUM",   "AVG",    "COUNT", "FIRST", "LAST",
                                                      "STDEV", "STDEVP", "VAR",   "VARP"};

bool contains(const auto& list, std::string_view word) {
  for (const auto entry : list) {
    if (entry == word) return true;
  }
  return false;
}

}  // namespace

const JetToken& JetReader::peek(size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

const JetToken& JetReader::take() {
  const JetToken& token = peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool JetReader::isWord(std::string_view word, size_t ahead) const {
  const JetToken& token = peek(ahead);
  return token.kind == JetToken::Word && equalsNoCase(token.text, word);
}

bool JetReader::isMark(std::string_view mark, size_t ahead) const {
  const JetToken& token = peek(ahead);
  return token.kind == JetToken::Mark && token.text == mark;
}

bool JetReader::takeWord(std::string_view word) {
  if (!isWord(word)) return false;
  take();
  return true;
}

bool JetReader::takeWords(std::initializer_list<std::string_view> words) {
  size_t ahead = 0;
  for (const auto word : words) {
    if (!isWord(word, ahead++)) return false;
  }
  at_ += words.size();
  return true;
}

bool JetReader::takeMark(std::string_view mark) {
  if (!isMark(mark)) return false;
  take();
  return true;
}

void JetReader::expectWord(std::string_view word) {
  if (!takeWord(word)) fail(std::string(word) + " is expected here");
}

void JetReader::expectMark(std::string_view mark) {
  if (!takeMark(mark)) fail("\"" + std::string(mark) + "\" is expected here");
}

bool JetReader::isReserved(size_t ahead) const {
  return peek(ahead).kind == JetToken::Word && contains(kReserved, toUpper(peek(ahead).text));
}

bool JetReader::isName(size_t ahead) const {
  const auto kind = peek(ahead).kind;
  return kind == JetToken::Name || kind == JetToken::Quoted ||
         (kind == JetToken::Word && !isReserved(ahead));
}

std::string JetReader::expectName(std::string_view what) {
  if (!isName() || peek().text.empty()) fail(std::string(what) + " is missing");
  return take().text;
}

std::string JetExpressions::held(const Expression& expression, Level least) {
  return expression.level >= least ? expression.text : "(" + expression.text + ")";
}

std::string JetExpressions::whole(const Expression& expression) const {
  const std::string rounded = "round(" + expression.text + ")";
  return target_ == SqlTarget::Sqlite ? "CAST(" + rounded + " AS INTEGER)" : rounded;
}

void JetExpressions::enter() {
  if (++depth_ > kMaxDepth) fail("the expression is nested too deeply");
}

JetExpressions::Expression JetExpressions::expression() {
  enter();
  Expression left = conjunction();
  while (true) {
    if (takeWord("OR")) {
      left = {held(left, Or) + " OR " + held(conjunction(), And), Or, "", false, true};
    } else if (isWord("XOR") || isWord("EQV")) {
      const bool different = equalsNoCase(take().text, "XOR");
      left.text = "((" + left.text + ") <> 0) " + (different ? "<>" : "=") + " ((" +
                  conjunction().text + ") <> 0)";
      left = {left.text, Compare, "", false, true};
    } else if (takeWord("IMP")) {
      left = {"NOT (" + left.text + ") OR " + held(conjunction(), And), Or, "", false, true};
    } else {
      --depth_;
      return left;
    }
  }
}

JetExpressions::Expression JetExpressions::conjunction() {
  Expression left = negation();
  while (takeWord("AND")) {
    left = {held(left, And) + " AND " + held(negation(), And), And, "", false, true};
  }
  return left;
}

JetExpressions::Expression JetExpressions::negation() {
  if (!takeWord("NOT")) return comparison();
  enter();
  const Expression inner = negation();
  --depth_;
  return {"NOT " + held(inner, Not), Not, "", false, true};
}

JetExpressions::Expression JetExpressions::comparison() {
  Expression left = joined();
  while (true) {
    const bool inverted =
        isWord("NOT") && (isWord("LIKE", 1) || isWord("IN", 1) || isWord("BETWEEN", 1));
    if (inverted) take();
    if (takeWord("LIKE")) {
      left = like(left, inverted);
    } else if (takeWord("IN")) {
      left = among(left, inverted);
    } else if (takeWord("BETWEEN")) {
      left = between(left, inverted);
    } else if (takeWord("IS")) {
      const bool different = takeWord("NOT");
      const Expression right = joined();
      left = {held(left, Join) + (different ? " IS NOT " : " IS ") + held(right, Join), Compare, "",
              false, true};
    } else if (isMark("=") || isMark("==") || isMark("<>") || isMark("!=") || isMark("<") ||
               isMark("<=") || isMark(">") || isMark(">=")) {
      left = compared(left, take().text);
    } else {
      return left;
    }
  }
}

JetExpressions::Expression JetExpressions::compared(Expression left, std::string op) {
  if (op == "==") op = "=";
  if (op == "!=") op = "<>";
  Expression right = joined();
  // Any number but 0 is true, so truth is no matter of equality.
  if (target_ == SqlTarget::Sqlite && (op == "=" || op == "<>") && (left.truth || right.truth)) {
    if (left.truth) std::swap(left, right);
    const bool isTrue = right.text == "-1";
    return {held(left, Join) + ((op == "=") == isTrue ? " <> 0" : " = 0"), Compare, "", false,
            true};
  }
  return {held(left, Join) + " " + op + " " + held(right, Join), Compare, "", false, true};
}

JetExpressions::Expression JetExpressions::like(Expression left, bool inverted) {
  const std::string word = inverted ? " NOT LIKE " : " LIKE ";
  if (target_ == SqlTarget::Sqlite) {
    std::string text = held(left, Join) + word + held(joined(), Join);
    if (takeWord("ESCAPE")) text += " ESCAPE " + held(joined(), Join);
    return {text, Compare, "", false, true};
  }
  if (peek().kind != JetToken::Text && peek().kind != JetToken::Quoted) {
    const std::string pattern = held(joined(), Join);
    return {"UPPER(" + left.text + ")" + word + "UPPER(" + pattern + ")", Compare, "", false, true};
  }
  if (peek().text.find_first_of("#[") != std::string::npos) {
    fail("a server knows the wild cards * ? % and _ only");
  }
  const std::string pattern = replaceAll(replaceAll(take().text, "*", "%"), "?", "_");
  return {"UPPER(" + left.text + ")" + word + "UPPER(" + targetText(pattern) + ")", Compare, "",
          false, true};
}

JetExpressions::Expression JetExpressions::among(Expression left, bool inverted) {
  expectMark("(");
  std::string text = held(left, Join) + (inverted ? " NOT IN (" : " IN (");
  if (isWord("SELECT")) {
    text += subquery();
    expectMark(")");
  } else {
    text += join(arguments(), ", ");
  }
  return {text + ")", Compare, "", false, true};
}

JetExpressions::Expression JetExpressions::between(Expression left, bool inverted) {
  std::string text = held(left, Join) + (inverted ? " NOT BETWEEN " : " BETWEEN ");
  text += held(joined(), Join);
  expectWord("AND");
  text += " AND " + held(joined(), Join);
  return {text, Compare, "", false, true};
}

JetExpressions::Expression JetExpressions::joined() {
  Expression left = sum();
  if (!isMark("&")) return left;
  // Null joins as an empty text.
  std::vector<std::string> pieces{left.text};
  while (takeMark("&")) pieces.push_back(sum().text);
  return {"concat(" + join(pieces, ", ") + ")"};
}

JetExpressions::Expression JetExpressions::sum() {
  Expression left = remainder();
  while (isMark("+") || isMark("-")) {
    const std::string op = take().text;
    const Expression right = remainder();
    left = {held(left, Sum) + " " + op + " " + held(right, Mod), Sum};
  }
  return left;
}

JetExpressions::Expression JetExpressions::remainder() {
  Expression left = integerQuotient();
  while (takeWord("MOD")) {
    const std::string divisor = whole(integerQuotient());
    left = {target_ == SqlTarget::Sqlite ? "(" + whole(left) + " % " + divisor + ")"
                                         : "MOD(" + whole(left) + ", " + divisor + ")"};
  }
  return left;
}

JetExpressions::Expression JetExpressions::integerQuotient() {
  Expression left = product();
  while (takeMark("\\")) {
    const Expression right = product();
    left = {"(" + whole(left) + " / " + whole(right) + ")"};
    if (target_ == SqlTarget::Server) left.text = "TRUNC" + left.text;
  }
  return left;
}

JetExpressions::Expression JetExpressions::product() {
  Expression left = sign();
  while (isMark("*") || isMark("/")) {
    const bool divides = take().text == "/";
    const Expression right = sign();
    // A quotient of whole numbers has decimals too.
    left = {held(left, Product) + (divides ? " * 1.0 / " : " * ") + held(right, Sign), Product};
  }
  return left;
}

JetExpressions::Expression JetExpressions::sign() {
  if (!isMark("-") && !isMark("+")) return power();
  enter();
  const std::string mark = take().text;
  const Expression inner = sign();
  --depth_;
  // Two signs in a row would begin a comment.
  return {mark == "-" ? "-" + held(inner, Power) : inner.text, mark == "-" ? Sign : inner.level};
}

JetExpressions::Expression JetExpressions::power() {
  Expression left = atom();
  while (true) {
    if (takeMark("^")) {
      const Expression right = isMark("-") ? sign() : atom();
      left = {"power(" + left.text + ", " + right.text + ")"};
    } else if (takeMark("||")) {
      left = {"(" + held(left, Sign) + " || " + held(atom(), Sign) + ")"};
    } else if (target_ == SqlTarget::Sqlite && takeWord("COLLATE")) {
      left = {left.text + " COLLATE " + quoted(expectName("the name of an order"))};
    } else {
      return left;
    }
  }
}

JetExpressions::Expression JetExpressions::atom() {
  const JetToken& token = peek();
  switch (token.kind) {
    case JetToken::Number:
      return {take().text};
    case JetToken::Text:
    case JetToken::Quoted:
      return {targetText(take().text)};
    case JetToken::Date:
      return {(target_ == SqlTarget::Server ? "TIMESTAMP " : "") + targetText(take().text)};
    case JetToken::Name:
    case JetToken::Word:
      return nameOrCall();
    case JetToken::Mark:
      if (takeMark("?")) return {parameter(++parameters_)};
      if (takeMark("(")) {
        std::string text = isWord("SELECT") ? subquery() : expressionText();
        while (takeMark(",")) text += ", " + expressionText();
        expectMark(")");
        return {"(" + text + ")"};
      }
      break;
    case JetToken::End:
      break;
  }
  fail("a value or a field is expected here");
}

// With its number, so that it may stand at several places of what a statement becomes.
std::string JetExpressions::parameter(int number) const {
  return target_ == SqlTarget::Sqlite ? "?" + std::to_string(number) : "?";
}

JetExpressions::Expression JetExpressions::nameOrCall() {
  if (peek().kind == JetToken::Word) {
    const std::string word = toUpper(peek().text);
    if (isMark("(", 1) && word != "IN" && word != "NOT") {
      take();
      if (word == "EXISTS") {
        take();
        const std::string query = subquery();
        expectMark(")");
        return {"EXISTS (" + query + ")", Atom, "", false, true};
      }
      return call(word);
    }
    if (word == "NULL") return take(), Expression{"NULL"};
    if (word == "TRUE" || word == "FALSE") {
      take();
      if (target_ == SqlTarget::Server) return {word};
      return {word == "TRUE" ? "-1" : "0", Sign, "", true};
    }
    if (word == "CASE") return caseWhen();
    if (word.starts_with("CURRENT_")) return {take().text};
    if (isReserved()) fail("a value or a field is expected here");
  }
  for (size_t i = 0; i < parameterNames_.size(); ++i) {
    if (isMark(".", 1) || isMark("!", 1) || !equalsNoCase(parameterNames_[i], peek().text))
      continue;
    take();
    return {parameter(static_cast<int>(i) + 1)};
  }
  if (valueNames_ == ValueNames::Used && !isMark(".", 1) && !isMark("!", 1)) {
    const std::string value = valueNamed(peek().text);
    if (!value.empty()) return take(), Expression{"(" + value + ")"};
  }
  // [table].[field], or the older table!field
  const auto part = [this] {
    const JetToken& token = take();
    const bool asIs = target_ == SqlTarget::Server && token.kind == JetToken::Word;
    return std::pair(token.text, asIs ? token.text : quoted(token.text));
  };
  if (peek().text.empty()) fail("a name is empty");
  auto [name, text] = part();
  while (isMark(".") || isMark("!")) {
    take();
    if (isMark("*")) fail("all fields of a table cannot stand here");
    if (!isName() && peek().kind != JetToken::Word) fail("a field name is expected here");
    auto [field, fieldText] = part();
    name = field;
    text += "." + fieldText;
  }
  return {text, Atom, name};
}

std::vector<std::string> JetExpressions::arguments() {
  std::vector<std::string> list;
  if (takeMark(")")) return list;
  do list.push_back(expressionText());
  while (takeMark(","));
  expectMark(")");
  return list;
}

JetExpressions::Expression JetExpressions::caseWhen() {
  take();
  std::string text = "CASE";
  if (!isWord("WHEN")) text += " " + expressionText();
  while (takeWord("WHEN")) {
    text += " WHEN " + expressionText();
    expectWord("THEN");
    text += " THEN " + expressionText();
  }
  if (takeWord("ELSE")) text += " ELSE " + expressionText();
  expectWord("END");
  return {text + " END"};
}

JetExpressions::Expression JetExpressions::aggregate(const std::string& name) {
  sawAggregate_ = true;
  const bool distinct = takeWord("DISTINCT");
  std::string argument = takeMark("*") ? "*" : expressionText();
  const bool further = isMark(",");
  if (further && name != "MIN" && name != "MAX") fail("one value is expected here");
  while (takeMark(",")) argument += ", " + expressionText();
  expectMark(")");
  std::string function = name;
  if (target_ == SqlTarget::Server) {
    // A server keeps no order of records, so that any of the values is as much the first.
    if (name == "FIRST") function = "MIN";
    if (name == "LAST") function = "MAX";
    if (name == "STDEV") function = "STDDEV_SAMP";
    if (name == "STDEVP") function = "STDDEV_POP";
    if (name == "VAR") function = "VAR_SAMP";
    if (name == "VARP") function = "VAR_POP";
  }
  if (!cellCondition_.empty()) {
    argument =
        "CASE WHEN " + cellCondition_ + " THEN " + (argument == "*" ? "1" : argument) + " END";
  }
  std::string text = function + "(" + (distinct ? "DISTINCT " : "") + argument + ")";
  if (!cellCondition_.empty() && name == "COUNT") text = "NULLIF(" + text + ", 0)";
  return {text};
}

JetExpressions::Expression JetExpressions::call(const std::string& name) {
  const JetToken place = peek();
  expectMark("(");
  if (contains(kAggregates, name) || name == "MIN" || name == "MAX") return aggregate(name);
  if (name == "CAST") {
    std::string text = "CAST(" + expressionText();
    expectWord("AS");
    text += " AS " + expectName("a type");
    while (peek().kind == JetToken::Word) text += " " + take().text;
    if (takeMark("(")) text += "(" + join(arguments(), ", ") + ")";
    expectMark(")");
    return {text + ")"};
  }
  const std::vector<std::string> list = arguments();
  const auto need = [&](bool fits) {
    if (!fits) failAt(sql_, place, name + " does not take this number of values");
  };
  if (name == "IIF") {
    need(list.size() == 3);
    return {"CASE WHEN " + list[0] + " THEN " + list[1] + " ELSE " + list[2] + " END"};
  }
  if (name == "NZ") {
    need(list.size() == 1 || list.size() == 2);
    return {"coalesce(" + list[0] + ", " + (list.size() == 2 ? list[1] : "''") + ")"};
  }
  if (name == "ISNULL") {
    need(list.size() == 1);
    return {"(" + list[0] + ") IS NULL", Compare, "", false, true};
  }
  if (name == "SWITCH") {
    need(!list.empty() && list.size() % 2 == 0);
    std::string text = "CASE";
    for (size_t i = 0; i < list.size(); i += 2) {
      text += " WHEN " + list[i] + " THEN " + list[i + 1];
    }
    return {text + " END"};
  }
  if (name == "CHOOSE") {
    need(list.size() >= 2);
    std::string text = "CASE floor(" + list[0] + ")";
    for (size_t i = 1; i < list.size(); ++i) {
      text += " WHEN " + std::to_string(i) + " THEN " + list[i];
    }
    return {text + " END"};
  }
  if (target_ == SqlTarget::Server) return {serverCall(name, list)};
  return sqliteCall(name, list);
}

// Functions that others can stand for; $1, $2 ... are their values.
JetExpressions::Expression JetExpressions::sqliteCall(const std::string& name,
                                                      std::vector<std::string> list) {
  // Where weeks and years begin, as they do when nothing is said.
  const struct {
    std::string_view name;
    size_t count;
  } kWithWeeks[] = {{"DATEPART", 2}, {"FORMAT", 2}, {"DATEDIFF", 3}, {"WEEKDAY", 1}};
  for (const auto& known : kWithWeeks) {
    while (name == known.name && list.size() > known.count &&
           (list.back() == "0" || list.back() == "1")) {
      list.pop_back();
    }
  }
  static constexpr struct {
    std::string_view name;
    size_t count;
    std::string_view text;
  } kTexts[] = {
      {"DATE", 0, "date('now', 'localtime')"},
      {"NOW", 0, "datetime('now', 'localtime')"},
      {"TIME", 0, "time('now', 'localtime')"},
      {"RND", 0, "(0.5 + random() / 18446744073709551616.0)"},
      {"RND", 1, "(0.5 + random() / 18446744073709551616.0)"},
      {"ATN", 1, "atan($1)"},
      {"CVDATE", 1, "CDate($1)"},
      {"CDEC", 1, "CDbl($1)"},
      {"STRING", 2, "printf('%.*c', $1, $2)"},
      {"STRCOMP", 3, "StrComp($1, $2)"},
      {"INSTR", 4, "InStr($1, $2, $3)"},
      {"MONTHNAME", 1, "Format(DateSerial(2000, $1, 1), 'mmmm')"},
      {"WEEKDAYNAME", 1, "Format(DateSerial(2000, 1, 1 + ($1)), 'dddd')"},
      {"WEEKDAY", 2, "((Weekday($1) + 7 - ($2)) % 7 + 1)"},
      {"TIMESERIAL", 3, "time(($1) * 3600 + ($2) * 60 + ($3), 'unixepoch')"},
      {"TIMEVALUE", 1, "time($1)"},
      {"FORMATPERCENT", 1, "Format($1, '0.00%')"},
      {"FORMATNUMBER", 1, "Format($1, '#,##0.00')"},
      {"LEFT", 2, "[LEFT]($1, $2)"},
      {"RIGHT", 2, "[RIGHT]($1, $2)"},
  };
  for (const auto& known : kTexts) {
    if (name != known.name || list.size() != known.count) continue;
    std::string text;
    for (size_t at = 0; at < known.text.size(); ++at) {
      if (known.text[at] == '$') {
        text += list[static_cast<size_t>(known.text[++at] - '1')];
      } else {
        text += known.text[at];
      }
    }
    return {text};
  }
  return {name + "(" + join(list, ", ") + ")"};
}

std::string JetExpressions::serverCall(const std::string& name, std::vector<std::string> list) {
  const struct {
    std::string_view jet, server;
  } kSameArguments[] = {{"UCASE", "UPPER"}, {"LCASE", "LOWER"}, {"LEN", "LENGTH"},
                        {"MID", "SUBSTR"},  {"INT", "FLOOR"},   {"FIX", "TRUNC"},
                        {"SQR", "SQRT"},    {"LOG", "LN"},      {"SGN", "SIGN"}};
  for (const auto& known : kSameArguments) {
    if (name == known.jet) return std::string(known.server) + "(" + join(list, ", ") + ")";
  }
  const struct {
    std::string_view jet, type;
  } kCasts[] = {{"CDBL", "DOUBLE PRECISION"}, {"CSNG", "REAL"},           {"CLNG", "INTEGER"},
                {"CINT", "SMALLINT"},         {"CCUR", "NUMERIC(19, 4)"}, {"CSTR", "VARCHAR(255)"},
                {"CDATE", "TIMESTAMP"}};
  for (const auto& known : kCasts) {
    if (name == known.jet && list.size() == 1) {
      return "CAST(" + list[0] + " AS " + std::string(known.type) + ")";
    }
  }
  const struct {
    std::string_view jet, part;
  } kParts[] = {{"YEAR", "YEAR"}, {"MONTH", "MONTH"},   {"DAY", "DAY"},
                {"HOUR", "HOUR"}, {"MINUTE", "MINUTE"}, {"SECOND", "SECOND"}};
  for (const auto& known : kParts) {
    if (name == known.jet && list.size() == 1) {
      return "EXTRACT(" + std::string(known.part) + " FROM " + list[0] + ")";
    }
  }
  if (name == "LEFT" && list.size() == 2) return "SUBSTR(" + list[0] + ", 1, " + list[1] + ")";
  if (list.empty() && name == "DATE") return "CURRENT_DATE";
  if (list.empty() && name == "NOW") return "CURRENT_TIMESTAMP";
  return name + "(" + join(list, ", ") + ")";
}

}  // namespace lodex
