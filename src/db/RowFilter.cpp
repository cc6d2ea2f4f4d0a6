#include "db/RowFilter.h"

#include <optional>
#include <utility>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Errors.h"

namespace lodex {

namespace {

enum class Operator { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };

struct Literal {
  enum Kind { Null, Number, Text, Boolean } kind = Null;
  double number = 0;  // also of a Boolean: 0 or 1
  std::string text;
};

std::optional<double> numberIn(const FieldValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  return std::nullopt;
}

// Below 0, 0 or above 0; empty where the two cannot be ordered. The field is not Null.
std::optional<int> compareWith(const FieldValue& field, const Literal& literal) {
  const auto sign = [](double a, double b) { return a < b ? -1 : a > b ? 1 : 0; };
  const auto number = numberIn(field);
  switch (literal.kind) {
    case Literal::Null:
      return std::nullopt;
    case Literal::Boolean: {
      if (number) return sign(*number != 0 ? 1 : 0, literal.number);
      return compareNoCase(fieldText(field), literal.text);
    }
    case Literal::Number: {
      if (number) return sign(*number, literal.number);
      const auto parsed = parseNumber(fieldText(field));
      if (!parsed) return std::nullopt;
      return sign(*parsed, literal.number);
    }
    case Literal::Text:
      break;
  }
  if (number) {
    if (const auto parsed = parseNumber(literal.text)) return sign(*number, *parsed);
  }
  return compareNoCase(fieldText(field), literal.text);
}

bool holds(Operator op, int order) {
  switch (op) {
    case Operator::Equal:
      return order == 0;
    case Operator::NotEqual:
      return order != 0;
    case Operator::Less:
      return order < 0;
    case Operator::LessEqual:
      return order <= 0;
    case Operator::Greater:
      return order > 0;
    case Operator::GreaterEqual:
      return order >= 0;
  }
  return false;
}

size_t lengthOfCharacter(std::string_view text, size_t at) {
  size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  return end - at;
}

// Both in upper case. On a mismatch the last run of any characters grows by one.
bool fits(std::string_view text, std::string_view pattern) {
  size_t t = 0;
  size_t p = 0;
  size_t runPattern = std::string_view::npos;
  size_t runText = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) {
      runPattern = ++p;
      runText = t;
    } else if (p < pattern.size() && pattern[p] == '?') {
      ++p;
      t += lengthOfCharacter(text, t);
    } else if (p < pattern.size() && pattern[p] == text[t]) {
      ++p;
      ++t;
    } else if (runPattern != std::string_view::npos) {
      p = runPattern;
      runText += lengthOfCharacter(text, runText);
      t = runText;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) ++p;
  return p == pattern.size();
}

}  // namespace

struct RowFilter::Node {
  enum Kind { And, Or, Not, Compare, Like } kind;
  std::vector<std::unique_ptr<Node>> parts;  // of And, Or and Not
  int field = 0;
  Operator op = Operator::Equal;
  Literal literal;

  bool accepts(const Row& row) const {
    switch (kind) {
      case And:
        for (const auto& part : parts) {
          if (!part->accepts(row)) return false;
        }
        return true;
      case Or:
        for (const auto& part : parts) {
          if (part->accepts(row)) return true;
        }
        return false;
      case Not:
        return !parts.front()->accepts(row);
      case Like: {
        const FieldValue& value = row[field];
        if (isNull(value)) return false;
        return fits(toUpper(fieldText(value)), literal.text) == (op == Operator::Equal);
      }
      case Compare:
        break;
    }
    const FieldValue& value = row[field];
    if (literal.kind == Literal::Null) return isNull(value) == (op == Operator::Equal);
    if (isNull(value)) return false;
    const auto order = compareWith(value, literal);
    return order ? holds(op, *order) : op == Operator::NotEqual;
  }
};

namespace {

using Node = RowFilter::Node;
using NodePtr = std::unique_ptr<Node>;

constexpr int kMaxDepth = 200;

class Parser {
 public:
  Parser(std::string_view text, const std::vector<Field>& fields) : text_(text), fields_(fields) {}

  NodePtr parse() {
    NodePtr root = parseOr(0);
    skipBlanks();
    if (at_ < text_.size()) fail("unexpected \"" + std::string(text_.substr(at_)) + "\"");
    return root;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw Error("The condition cannot be used, " + reason + ": " + std::string(text_),
                dberror::BadArgument);
  }

  void skipBlanks() {
    while (at_ < text_.size() && static_cast<unsigned char>(text_[at_]) <= ' ') ++at_;
  }

  // A run of characters that no quote, bracket, blank or operator ends.
  std::string_view peekWord() {
    skipBlanks();
    const size_t end = text_.find_first_of(" \t\r\n=<>()[]'\"", at_);
    return text_.substr(at_, end == std::string_view::npos ? end : end - at_);
  }

  bool takeWord(std::string_view word) {
    const std::string_view next = peekWord();
    if (!equalsNoCase(next, word)) return false;
    at_ += next.size();
    return true;
  }

  bool takeMark(std::string_view mark) {
    skipBlanks();
    if (!text_.substr(at_).starts_with(mark)) return false;
    at_ += mark.size();
    return true;
  }

  NodePtr parseOr(int depth) { return parseChain(depth, Node::Or, "OR"); }

  NodePtr parseChain(int depth, Node::Kind kind, std::string_view word) {
    if (depth > kMaxDepth) fail("it is nested too deeply");
    const auto parsePart = [&] {
      return kind == Node::Or ? parseChain(depth, Node::And, "AND") : parseNot(depth);
    };
    NodePtr first = parsePart();
    if (!takeWord(word)) return first;
    auto chain = std::make_unique<Node>();
    chain->kind = kind;
    chain->parts.push_back(std::move(first));
    do chain->parts.push_back(parsePart());
    while (takeWord(word));
    return chain;
  }

  NodePtr parseNot(int depth) {
    bool inverted = false;
    while (takeWord("NOT")) inverted = !inverted;
    NodePtr inner;
    if (takeMark("(")) {
      inner = parseOr(depth + 1);
      if (!takeMark(")")) fail("a bracket is not closed");
    } else {
      inner = parseComparison();
    }
    if (!inverted) return inner;
    auto negation = std::make_unique<Node>();
    negation->kind = Node::Not;
    negation->parts.push_back(std::move(inner));
    return negation;
  }

  NodePtr parseComparison() {
    auto node = std::make_unique<Node>();
    node->kind = Node::Compare;
    node->field = parseField();
    if (takeWord("IS")) {
      if (takeWord("NOT")) node->op = Operator::NotEqual;
      if (!takeWord("NULL")) fail("IS stands before NULL or NOT NULL only");
      return node;
    }
    const bool inverted = takeWord("NOT");
    if (takeWord("LIKE")) {
      node->kind = Node::Like;
      node->op = inverted ? Operator::NotEqual : Operator::Equal;
      const Literal pattern = parseLiteral();
      if (pattern.kind == Literal::Null) fail("LIKE needs a text");
      node->literal = {Literal::Text, 0, toUpper(pattern.text)};
      return node;
    }
    if (inverted) fail("NOT behind a field stands before LIKE only");
    node->op = parseOperator();
    node->literal = parseLiteral();
    if (node->literal.kind == Literal::Null && node->op != Operator::Equal &&
        node->op != Operator::NotEqual) {
      fail("NULL can be compared by = and <> only");
    }
    return node;
  }

  int parseField() {
    std::string name;
    if (takeMark("[")) {
      do {
        const size_t close = text_.find(']', at_);
        if (close == std::string_view::npos) fail("a field name is not closed by ]");
        name = text_.substr(at_, close - at_);
        at_ = close + 1;
      } while (takeMark(".["));  // of "[table].[field]" the field counts
    } else {
      name = peekWord();
      at_ += name.size();
      if (name.empty()) fail("a field name is missing");
    }
    for (size_t i = 0; i < fields_.size(); ++i) {
      if (equalsNoCase(fields_[i].name, name)) return static_cast<int>(i);
    }
    fail("there is no field \"" + name + "\"");
  }

  Operator parseOperator() {
    constexpr std::pair<std::string_view, Operator> kOperators[] = {
        {"<>", Operator::NotEqual}, {"<=", Operator::LessEqual}, {">=", Operator::GreaterEqual},
        {"=", Operator::Equal},     {"<", Operator::Less},       {">", Operator::Greater}};
    for (const auto& [mark, op] : kOperators) {
      if (takeMark(mark)) return op;
    }
    fail("a comparison is missing");
  }

  Literal parseLiteral() {
    skipBlanks();
    for (const char quote : {'\'', '"'}) {
      if (takeMark(std::string_view(&quote, 1))) return {Literal::Text, 0, textUpTo(quote)};
    }
    // A date may hold blanks.
    if (takeMark("#")) return {Literal::Text, 0, textUpTo('#')};
    const std::string word(peekWord());
    at_ += word.size();
    if (equalsNoCase(word, "NULL")) return {};
    if (equalsNoCase(word, "TRUE")) return {Literal::Boolean, 1, "True"};
    if (equalsNoCase(word, "FALSE")) return {Literal::Boolean, 0, "False"};
    const auto number = parseNumber(word);
    if (!number) fail(word.empty() ? "a value is missing" : "the text " + word + " has no quotes");
    return {Literal::Number, *number, word};
  }

  // The text up to a quote; a doubled quote is one of the text.
  std::string textUpTo(char quote) {
    std::string text;
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] == quote) {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != quote) {
          ++at_;
          return text;
        }
        ++at_;
      }
      text += text_[at_];
    }
    fail("a text is not closed by its quote");
  }

  std::string_view text_;
  const std::vector<Field>& fields_;
  size_t at_ = 0;
};

}  // namespace

int compareFields(const FieldValue& a, const FieldValue& b) {
  const auto rank = [](const FieldValue& value) {
    return isNull(value) ? 0 : std::holds_alternative<std::string>(value) ? 2 : 1;
  };
  if (rank(a) != rank(b)) return rank(a) - rank(b);
  if (rank(a) == 2) return compareNoCase(std::get<std::string>(a), std::get<std::string>(b));
  const double x = fieldNumber(a);
  const double y = fieldNumber(b);
  return x < y ? -1 : x > y ? 1 : 0;
}

bool likeNoCase(std::string_view text, std::string_view pattern) {
  return fits(toUpper(text), toUpper(pattern));
}

RowFilter::RowFilter() = default;
RowFilter::RowFilter(std::string_view condition, const std::vector<Field>& fields)
    : root_(trimWhite(condition).empty() ? nullptr : Parser(condition, fields).parse()) {}
RowFilter::~RowFilter() = default;
RowFilter::RowFilter(RowFilter&&) noexcept = default;
RowFilter& RowFilter::operator=(RowFilter&&) noexcept = default;

bool RowFilter::accepts(const Row& row) const {
  return !root_ || root_->accepts(row);
}

}  // namespace lodex
