#include "worksheet/formula/Parser.h"

#include <algorithm>
#include <charconv>

#include "basic/A1.h"
#include "basic/Limits.h"
#include "basic/Text.h"
#include "worksheet/Value.h"
#include "worksheet/formula/NameBytes.h"

namespace lodex::formula {
namespace {

constexpr size_t longestFormula = 65536;
constexpr int deepestNesting = 200;
// Bounds the depth of the tree, which later steps walk recursively.
constexpr int mostOperators = 5000;

struct Failure {
  std::string text;
};

// One end of a range as it may be written: "$B$7", "B7", "$B" or "$7".
struct RangeEnd {
  CellRef cell;
  bool hasRow = false;
  bool hasColumn = false;
};

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Node parseAll() {
    if (text_.size() > longestFormula) throw Failure{"the formula is too long"};
    Node node = parseUnion();
    skipBlanks();
    if (pos_ != text_.size()) fail("unexpected text");
    return node;
  }

 private:
  [[noreturn]] void fail(const char* what) const {
    throw Failure{std::string(what) + " at position " + std::to_string(pos_ + 1)};
  }

  char peek(size_t ahead = 0) const {
    return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : '\0';
  }

  void skipBlanks() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t' ||
                                   text_[pos_] == '\n' || text_[pos_] == '\r')) {
      ++pos_;
    }
  }

  bool accept(char c) {
    if (peek() != c) return false;
    ++pos_;
    return true;
  }

  void countOperator() {
    if (++operators_ > mostOperators) throw Failure{"the formula has too many operators"};
  }

  static Node unary(Operator op, Node child) {
    Node node;
    node.kind = NodeKind::Unary;
    node.op = op;
    node.children.push_back(std::move(child));
    return node;
  }

  Node binary(Operator op, Node left, Node right) {
    countOperator();
    Node node;
    node.kind = NodeKind::Binary;
    node.op = op;
    node.children.reserve(2);
    node.children.push_back(std::move(left));
    node.children.push_back(std::move(right));
    return node;
  }

  // Where a "," cannot be an argument separator it unites references.
  Node parseUnion() {
    Node left = parseExpression(0);
    for (skipBlanks(); peek() == ',' || peek() == ';'; skipBlanks()) {
      ++pos_;
      left = binary(Operator::Union, std::move(left), parseExpression(0));
    }
    return left;
  }

  struct BinaryOperator {
    Operator op = Operator::None;
    int level = 0;
    size_t length = 1;
  };

  BinaryOperator peekOperator() const {
    switch (peek()) {
      case '=':
        return {Operator::Equal, 1};
      case '<':
        if (peek(1) == '=') return {Operator::LessEqual, 1, 2};
        if (peek(1) == '>') return {Operator::NotEqual, 1, 2};
        return {Operator::Less, 1};
      case '>':
        if (peek(1) == '=') return {Operator::GreaterEqual, 1, 2};
        return {Operator::Greater, 1};
      case '&':
        return {Operator::Concatenate, 2};
      case '+':
        return {Operator::Add, 3};
      case '-':
        return {Operator::Subtract, 3};
      case '*':
        return {Operator::Multiply, 4};
      case '/':
        return {Operator::Divide, 4};
      case '^':
        return {Operator::Power, 5};
      default:
        return {};
    }
  }

  // Operators of a level above `level`; all of them associate to the left, "^" too.
  Node parseExpression(int level) {
    Node left = parsePrefixed();
    for (;;) {
      skipBlanks();
      const BinaryOperator next = peekOperator();
      if (next.op == Operator::None || next.level <= level) return left;
      pos_ += next.length;
      left = binary(next.op, std::move(left), parseExpression(next.level));
    }
  }

  // Signs bind tighter than "^", and a percent sign tighter than a sign.
  Node parsePrefixed() {
    std::vector<Operator> signs;
    for (skipBlanks(); peek() == '-' || peek() == '+' || peek() == '@'; skipBlanks()) {
      if (peek() != '@') {
        countOperator();
        signs.push_back(peek() == '-' ? Operator::Minus : Operator::Plus);
      }
      ++pos_;
    }
    Node node = parseReferences();
    for (skipBlanks(); peek() == '%'; skipBlanks()) {
      ++pos_;
      countOperator();
      node = unary(Operator::Percent, std::move(node));
    }
    for (auto sign = signs.rbegin(); sign != signs.rend(); ++sign) {
      node = unary(*sign, std::move(node));
    }
    return node;
  }

  static bool mayBeReference(const Node& node) {
    return node.kind == NodeKind::Reference || node.kind == NodeKind::Name ||
           node.kind == NodeKind::Function || node.kind == NodeKind::Parentheses ||
           node.kind == NodeKind::Binary;
  }

  // A blank between two references intersects them.
  Node parseReferences() {
    Node left = parseRange();
    while (mayBeReference(left)) {
      const size_t before = pos_;
      skipBlanks();
      const char c = peek();
      const bool another =
          pos_ > before && (isNameStart(c) || c == '$' || c == '\'' || c == '(' || c == '[');
      if (!another) {
        pos_ = before;
        break;
      }
      left = binary(Operator::Intersection, std::move(left), parseRange());
    }
    return left;
  }

  Node parseRange() {
    Node left = parsePrimary();
    for (;;) {
      const size_t before = pos_;
      skipBlanks();
      if (!mayBeReference(left) || !accept(':')) {
        pos_ = before;
        return left;
      }
      skipBlanks();
      left = joinRange(std::move(left), parsePrimary());
    }
  }

  // "A1 : B2" with blanks, or an end that is only known later, as in A1:INDEX(...).
  Node joinRange(Node left, Node right) {
    const bool plain = left.kind == NodeKind::Reference && right.kind == NodeKind::Reference &&
                       left.reference.kind == ReferenceKind::Cell &&
                       right.reference.kind == ReferenceKind::Cell && !right.reference.sheets;
    if (!plain) return binary(Operator::Range, std::move(left), std::move(right));
    left.reference.last = right.reference.first;
    left.reference.kind = ReferenceKind::Area;
    order(left.reference);
    left.end = right.end;
    return left;
  }

  static void order(Reference& reference) {
    CellRef& a = reference.first;
    CellRef& b = reference.last;
    if (a.row > b.row) {
      std::swap(a.row, b.row);
      std::swap(a.rowAbsolute, b.rowAbsolute);
    }
    if (a.column > b.column) {
      std::swap(a.column, b.column);
      std::swap(a.columnAbsolute, b.columnAbsolute);
    }
  }

  Node parsePrimary() {
    skipBlanks();
    const char c = peek();
    const size_t start = pos_;
    if (c == '"') return parseText();
    if (c == '(') return parseParentheses();
    if (c == '{') return parseArray();
    if (c == '#') return parseError();
    if (c == '\'' || c == '[') return parsePrefixedByQuotes(start);
    Node node;
    if ((isDigit(c) || c == '$' || isLetter(c)) && parsePlainReference(node.reference)) {
      return reference(std::move(node), start);
    }
    if (isNamePart(c) && c != '?') {
      if (const auto prefix = unquotedPrefix()) return afterPrefix(prefix, start);
    }
    if (isDigit(c) || c == '.') return parseNumber();
    if (isNameStart(c)) return parseName(nullptr, start);
    fail(pos_ == text_.size() ? "an operand is missing" : "unexpected character");
  }

  Node reference(Node node, size_t start) const {
    node.kind = NodeKind::Reference;
    node.begin = static_cast<std::uint32_t>(start);
    node.end = static_cast<std::uint32_t>(pos_);
    return node;
  }

  Node parseText() {
    Node node;
    node.kind = NodeKind::Text;
    node.text = quoted('"');
    return node;
  }

  // Reads a quoted text with doubled quotes inside; the position is at the opening quote.
  std::string quoted(char quote) {
    std::string out;
    for (++pos_;; ++pos_) {
      if (pos_ >= text_.size()) fail("a quote is not closed");
      if (text_[pos_] == quote) {
        if (peek(1) != quote) break;
        ++pos_;
      }
      out += text_[pos_];
    }
    ++pos_;
    return out;
  }

  void enter() {
    if (++depth_ > deepestNesting) throw Failure{"the formula is nested too deeply"};
  }

  Node parseParentheses() {
    enter();
    ++pos_;
    Node node;
    node.kind = NodeKind::Parentheses;
    node.children.push_back(parseUnion());
    if (!accept(')')) fail("a parenthesis is not closed");
    --depth_;
    return node;
  }

  Node parseArray() {
    ++pos_;
    Node node;
    node.kind = NodeKind::Array;
    int column = 0;
    for (;;) {
      node.children.push_back(parseConstant());
      ++column;
      skipBlanks();
      if (accept(',') || accept('\\')) continue;
      if (node.columns == 0) node.columns = column;
      if (column != node.columns) fail("the rows of an array differ in length");
      column = 0;
      if (accept(';') || accept('|')) continue;
      if (accept('}')) return node;
      fail("an array is not closed");
    }
  }

  Node parseConstant() {
    skipBlanks();
    if (peek() == '"') return parseText();
    if (peek() == '#') return parseError();
    const bool negative = peek() == '-';
    if (negative || peek() == '+') ++pos_;
    skipBlanks();
    if (isDigit(peek()) || peek() == '.') {
      Node node = parseNumber();
      if (negative) node.number = -node.number;
      return node;
    }
    Node node = parseName(nullptr, pos_);
    if (node.kind != NodeKind::Boolean) fail("an array holds something else than constants");
    return node;
  }

  Node parseNumber() {
    Node node;
    node.kind = NodeKind::Number;
    const auto result =
        std::from_chars(text_.data() + pos_, text_.data() + text_.size(), node.number);
    if (result.ec != std::errc()) fail("a number is malformed");
    pos_ = static_cast<size_t>(result.ptr - text_.data());
    return node;
  }

  Node parseError() {
    static constexpr std::string_view texts[] = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                 "#NAME?", "#NUM!",   "#N/A",    "#CIRC!"};
    for (const std::string_view text : texts) {
      if (!startsWithNoCase(text_.substr(pos_), text)) continue;
      const size_t start = pos_;
      pos_ += text.size();
      ErrorCode code{};
      errorFromText(text, code);
      Node node;
      if (code == ErrorCode::Ref) {
        // "#REF!A1" is a reference whose sheet is gone.
        Reference lost;
        if (parsePlainReference(lost)) return dead(nullptr, start);
        return dead(nullptr, start);
      }
      node.kind = NodeKind::Error;
      node.number = static_cast<double>(code);
      return node;
    }
    fail("an unknown error value");
  }

  Node dead(std::shared_ptr<const SheetPrefix> prefix, size_t start) const {
    Node node;
    node.reference.kind = ReferenceKind::Dead;
    node.reference.sheets = std::move(prefix);
    return reference(std::move(node), start);
  }

  // A quoted sheet or a book in brackets.
  Node parsePrefixedByQuotes(size_t start) {
    std::string inner;
    if (peek() == '\'') {
      inner = quoted('\'');
    } else {
      while (pos_ < text_.size() && peek() != '!') inner += text_[pos_++];
    }
    if (!accept('!')) fail("a sheet name is not followed by \"!\"");
    return afterPrefix(makePrefix(inner), start);
  }

  static std::shared_ptr<const SheetPrefix> makePrefix(std::string_view inner) {
    auto prefix = std::make_shared<SheetPrefix>();
    const size_t open = inner.rfind('[');
    const size_t close = inner.rfind(']');
    if (open != std::string_view::npos && close != std::string_view::npos && close > open) {
      prefix->book = std::string(inner.substr(0, open)) +
                     std::string(inner.substr(open + 1, close - open - 1));
      inner = inner.substr(close + 1);
    }
    const size_t colon = inner.find(':');
    prefix->first = inner.substr(0, colon);
    if (colon != std::string_view::npos) prefix->last = inner.substr(colon + 1);
    return prefix;
  }

  // "Sheet1!" or "Sheet1:Sheet3!" without quotes.
  std::shared_ptr<const SheetPrefix> unquotedPrefix() {
    size_t end = pos_;
    while (end < text_.size() && isNamePart(text_[end])) ++end;
    if (end < text_.size() && text_[end] == ':') {
      size_t second = end + 1;
      while (second < text_.size() && isNamePart(text_[second])) ++second;
      if (second > end + 1) end = second < text_.size() && text_[second] == '!' ? second : end;
    }
    if (end >= text_.size() || text_[end] != '!') return nullptr;
    auto prefix = makePrefix(text_.substr(pos_, end - pos_));
    pos_ = end + 1;
    return prefix;
  }

  Node afterPrefix(std::shared_ptr<const SheetPrefix> prefix, size_t start) {
    // Book number 0 is the formula's own workbook.
    if (prefix->book == "0" && prefix->first.empty()) prefix = nullptr;
    if (startsWithNoCase(text_.substr(pos_), "#REF!")) {
      pos_ += 5;
      return dead(std::move(prefix), start);
    }
    Node node;
    if (parsePlainReference(node.reference)) {
      node.reference.sheets = std::move(prefix);
      return reference(std::move(node), start);
    }
    if (!isNameStart(peek())) fail("a reference is missing after \"!\"");
    return parseName(std::move(prefix), start);
  }

  // A cell, an area, whole rows or whole columns. Leaves the position alone if there is none.
  bool parsePlainReference(Reference& out) {
    const size_t start = pos_;
    RangeEnd first;
    if (!parseEnd(first)) return false;
    const size_t afterFirst = pos_;
    RangeEnd second;
    skipBlanks();
    const bool colon = accept(':');
    if (colon) skipBlanks();
    const bool isRange = colon && parseEnd(second) && endsReference() &&
                         first.hasRow == second.hasRow && first.hasColumn == second.hasColumn;
    if (!isRange) {
      pos_ = afterFirst;
      const bool isCell = first.hasRow && first.hasColumn && endsReference();
      if (!isCell) {
        pos_ = start;
        return false;
      }
      out.kind = ReferenceKind::Cell;
      out.first = out.last = first.cell;
      return true;
    }
    out.first = first.cell;
    out.last = second.cell;
    out.kind = !first.hasColumn ? ReferenceKind::Rows
               : !first.hasRow  ? ReferenceKind::Columns
                                : ReferenceKind::Area;
    if (out.kind == ReferenceKind::Rows) out.last.column = maxColumns;
    if (out.kind == ReferenceKind::Columns) out.last.row = maxRows;
    order(out);
    return true;
  }

  bool endsReference() const {
    const char c = peek();
    return !(isNamePart(c) || c == '!' || c == '(' || c == '[' || c == '$');
  }

  bool parseEnd(RangeEnd& end) {
    const size_t start = pos_;
    bool dollar = accept('$');
    const size_t letters = pos_;
    while (pos_ - letters < 4 && isLetter(peek())) ++pos_;
    if (pos_ > letters) {
      end.cell.column = columnOfLetters(text_.substr(letters, pos_ - letters));
      end.cell.columnAbsolute = dollar;
      end.hasColumn = true;
      if (end.cell.column == 0) {
        pos_ = start;
        return false;
      }
      dollar = accept('$');
    }
    const size_t digits = pos_;
    long row = 0;
    while (isDigit(peek()) && row <= maxRows) row = row * 10 + (text_[pos_++] - '0');
    if (pos_ > digits) {
      end.cell.row = static_cast<int>(row);
      end.cell.rowAbsolute = dollar;
      end.hasRow = true;
      if (row < 1 || row > maxRows) end.hasRow = end.hasColumn = false;
    } else if (dollar && end.hasColumn) {
      --pos_;
    }
    if (end.hasRow || end.hasColumn) return true;
    pos_ = start;
    return false;
  }

  Node parseName(std::shared_ptr<const SheetPrefix> prefix, size_t start) {
    const size_t nameStart = pos_;
    while (isNamePart(peek())) ++pos_;
    if (pos_ == nameStart) fail("unexpected character");
    std::string name(text_.substr(nameStart, pos_ - nameStart));
    const size_t afterName = pos_;
    skipBlanks();
    // A blank before "(" intersects a name with what is in parentheses; nobody writes that.
    if (peek() == '(') return parseCall(std::move(name));
    pos_ = afterName;
    skipTableBrackets(name);
    Node node;
    node.reference.sheets = std::move(prefix);
    node.begin = static_cast<std::uint32_t>(start);
    node.end = static_cast<std::uint32_t>(pos_);
    if (!node.reference.sheets && equalsNoCase(name, "TRUE")) {
      node.kind = NodeKind::Boolean;
      node.number = 1;
    } else if (!node.reference.sheets && equalsNoCase(name, "FALSE")) {
      node.kind = NodeKind::Boolean;
    } else {
      node.kind = NodeKind::Name;
      node.text = std::move(name);
    }
    return node;
  }

  // "Table1[Column]" stays one name, which nothing defines.
  void skipTableBrackets(std::string& name) {
    if (peek() != '[') return;
    int open = 0;
    do {
      if (pos_ >= text_.size()) fail("a bracket is not closed");
      open += peek() == '[' ? 1 : peek() == ']' ? -1 : 0;
      name += text_[pos_++];
    } while (open > 0);
  }

  Node parseCall(std::string name) {
    enter();
    ++pos_;
    Node node;
    node.kind = NodeKind::Function;
    node.text = toUpper(name);
    for (const std::string_view prefix : {"_XLFN.", "_XLWS."}) {
      const bool more = node.text.size() > prefix.size() && isNameStart(node.text[prefix.size()]);
      if (more && node.text.starts_with(prefix)) node.text.erase(0, prefix.size());
    }
    skipBlanks();
    if (!accept(')')) {
      for (;;) {
        node.children.push_back(parseArgument());
        if (accept(',') || accept(';')) continue;
        if (accept(')')) break;
        fail("a parenthesis is not closed");
      }
    }
    --depth_;
    return node;
  }

  Node parseArgument() {
    skipBlanks();
    if (peek() == ',' || peek() == ';' || peek() == ')') return Node();
    Node node = parseExpression(0);
    skipBlanks();
    return node;
  }

  std::string_view text_;
  size_t pos_ = 0;
  int depth_ = 0;
  int operators_ = 0;
};

}  // namespace

std::optional<Node> parseFormula(std::string_view text, std::string& problem) {
  try {
    return Parser(text).parseAll();
  } catch (const Failure& failure) {
    problem = failure.text;
    return std::nullopt;
  }
}

}  // namespace lodex::formula
