#include <algorithm>
#include <array>
#include <utility>

#include "basic/Text.h"
#include "db/sql/JetParser.h"

namespace lodex {

namespace {

constexpr int kMaxDepth = 150;
constexpr size_t kMaxTerms = 100;  // of one function

constexpr std::array<std::string_view, 34> kReserved{
    "SELECT", "FROM", "WHERE",  "GROUP",     "ORDER", "HAVING", "UNION",   "INNER", "LEFT",
    "RIGHT",  "JOIN", "ON",     "AS",        "PIVOT", "INTO",   "LIMIT",   "AND",   "OR",
    "NOT",    "LIKE", "IN",     "IS",        "SET",   "VALUES", "BETWEEN", "XOR",   "EQV",
    "IMP",    "MOD",  "EXCEPT", "INTERSECT", "CROSS", "WITH",   "OFFSET"};

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
  return peek(ahead).kind == JetToken::Word &&
         std::find(kReserved.begin(), kReserved.end(), toUpper(peek(ahead).text)) !=
             kReserved.end();
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
    const bool inverted = isWord("NOT") && (isWord("LIKE", 1) || isWord("ALIKE", 1) ||
                                            isWord("IN", 1) || isWord("BETWEEN", 1));
    if (inverted) take();
    if (takeWord("LIKE") || takeWord("ALIKE")) {
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
  // Any number but 0 is true, so truth is not a matter of equality.
  if (target_ == SqlTarget::Sqlite && (op == "=" || op == "<>") && (left.truth || right.truth)) {
    if (left.truth) std::swap(left, right);
    const bool isTrue = right.text == "-1";
    return {held(left, Join) + ((op == "=") == isTrue ? " <> 0" : " = 0"), Compare, "", false,
            true};
  }
  const bool areNames = !left.column.empty() || !right.column.empty();
  const std::string other = areNames || left.isNumber ? held(right, Join) : caseless(right);
  return {held(left, Join) + " " + op + " " + other, Compare, "", false, true};
}

// Fields know how their texts compare; of all else it must be said that case counts not.
std::string JetExpressions::caseless(const Expression& expression) const {
  if (target_ == SqlTarget::Server || !expression.column.empty() || expression.isNumber) {
    return held(expression, Join);
  }
  return held(expression, Atom) + " COLLATE NOCASE";
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
  std::string text = caseless(left) + (inverted ? " NOT IN (" : " IN (");
  if (isWord("SELECT")) {
    text += subquery();
    expectMark(")");
  } else {
    text += join(arguments(), ", ");
  }
  return {text + ")", Compare, "", false, true};
}

JetExpressions::Expression JetExpressions::between(Expression left, bool inverted) {
  std::string text = caseless(left) + (inverted ? " NOT BETWEEN " : " BETWEEN ");
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
  std::vector<Expression> terms{remainder()};
  std::string signs;
  while (isMark("+") || isMark("-")) {
    signs += take().text;
    terms.push_back(remainder());
  }
  return signs.empty() ? terms[0] : sumOf(terms, signs);
}

// Texts are joined and dates counted in days. What the values are is often known only when they are
// there, so that a function decides.
JetExpressions::Expression JetExpressions::sumOf(const std::vector<Expression>& terms,
                                                 const std::string& signs) const {
  const auto isNumber = [](const Expression& term) { return term.isNumber; };
  const bool numbers = std::all_of(terms.begin(), terms.end(), isNumber);
  Expression sum;
  if (target_ == SqlTarget::Server || plainSums_ || numbers) {
    sum = {held(terms[0], Sum), Sum};
    for (size_t i = 1; i < terms.size(); ++i) {
      sum.text += std::string(" ") + signs[i - 1] + " " + held(terms[i], Mod);
    }
    sum.isNumber = numbers;
    const auto isDate = [](const Expression& term) { return term.isDate; };
    if (plainSums_ && std::any_of(terms.begin(), terms.end(), isDate)) {
      fail("dates can be counted on in queries only");
    }
    return sum;
  }
  sum.text = terms[0].text;
  for (size_t first = 1; first < terms.size(); first += kMaxTerms) {
    const size_t count = std::min(kMaxTerms, terms.size() - first);
    sum.text = "JetSum(" + targetText(signs.substr(first - 1, count)) + ", " + sum.text;
    for (size_t i = first; i < first + count; ++i) sum.text += ", " + terms[i].text;
    sum.text += ")";
  }
  return sum;
}

JetExpressions::Expression JetExpressions::remainder() {
  Expression left = integerQuotient();
  while (takeWord("MOD")) {
    const std::string divisor = whole(integerQuotient());
    left = {target_ == SqlTarget::Sqlite ? "(" + whole(left) + " % " + divisor + ")"
                                         : "MOD(" + whole(left) + ", " + divisor + ")"};
    left.isNumber = true;
  }
  return left;
}

JetExpressions::Expression JetExpressions::integerQuotient() {
  Expression left = product();
  while (takeMark("\\")) {
    const Expression right = product();
    left = {"(" + whole(left) + " / " + whole(right) + ")"};
    if (target_ == SqlTarget::Server) left.text = "TRUNC" + left.text;
    left.isNumber = true;
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
    left.isNumber = true;
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
  if (mark == "+") return {inner.text, inner.level, "", false, false, inner.isNumber};
  return {"-" + held(inner, Power), Sign, "", false, false, true};
}

JetExpressions::Expression JetExpressions::power() {
  Expression left = atom();
  while (true) {
    if (takeMark("^")) {
      const Expression right = isMark("-") ? sign() : atom();
      left = {"power(" + left.text + ", " + right.text + ")"};
      left.isNumber = true;
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
      return {take().text, Atom, "", false, false, true};
    case JetToken::Text:
    case JetToken::Quoted:
      return {targetText(take().text)};
    case JetToken::Date:
      return {(target_ == SqlTarget::Server ? "TIMESTAMP " : "") + targetText(take().text),
              Atom,
              "",
              false,
              false,
              false,
              true};
    case JetToken::Name:
    case JetToken::Word:
      return nameOrCall();
    case JetToken::Mark:
      if (takeMark("?")) return {parameter(++parameters_)};
      if (takeMark("(")) {
        Expression inner = isWord("SELECT") ? Expression{subquery()} : expression();
        bool isList = false;
        for (; takeMark(","); isList = true) inner.text += ", " + expressionText();
        expectMark(")");
        inner.text = "(" + inner.text + ")";
        return {inner.text, Atom, "", false, false, inner.isNumber && !isList, inner.isDate};
      }
      break;
    case JetToken::End:
      break;
  }
  fail("a value or a field is expected here");
}

// With its number, so that it may appear at several places of what a statement becomes.
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

}  // namespace lodex
