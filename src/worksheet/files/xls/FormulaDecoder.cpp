#include "worksheet/files/xls/FormulaDecoder.h"

#include <array>

#include "basic/A1.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/files/xls/BiffFunctions.h"
#include "worksheet/formula/Parser.h"

namespace lodex::biff {
namespace {

// No formula that a program accepts is longer, and none takes as many bytes of intermediate text.
constexpr size_t maxFormulaText = 8192;
constexpr size_t maxWork = 64 * maxFormulaText;

// How strongly a piece of text holds together; brackets are put around what holds less than its
// place asks for, since some programs leave the token for brackets out.
enum Strength {
  Comparison,
  Joining,
  Sum,
  Product,
  Power,
  PercentSign,
  Sign,
  UnionOf,
  IntersectionOf,
  RangeOf,
  Atom
};

struct BinaryOperator {
  std::string_view text;
  Strength strength;
};
constexpr std::array<BinaryOperator, 15> binaryOperators{{{"+", Sum},
                                                          {"-", Sum},
                                                          {"*", Product},
                                                          {"/", Product},
                                                          {"^", Power},
                                                          {"&", Joining},
                                                          {"<", Comparison},
                                                          {"<=", Comparison},
                                                          {"=", Comparison},
                                                          {">=", Comparison},
                                                          {">", Comparison},
                                                          {"<>", Comparison},
                                                          {" ", IntersectionOf},
                                                          {",", UnionOf},
                                                          {":", RangeOf}}};

struct Piece {
  std::string text;
  Strength strength = Atom;
};

std::string bracketed(Piece piece, Strength wanted) {
  return piece.strength < wanted ? "(" + piece.text + ")" : std::move(piece.text);
}

std::string quoted(std::string_view text) {
  return "\"" + replaceAll(text, "\"", "\"\"") + "\"";
}

class Decoder {
 public:
  Decoder(const Links& links, std::string_view code, std::string_view extra, FormulaBase base)
      : links_(links), in_(code), extra_(extra), base_(base) {}

  std::optional<std::string> run() {
    while (in_.left() > 0) {
      if (!token(in_.u8()) || !in_.ok() || !extra_.ok()) return {};
      if (total_ > maxFormulaText || work_ > maxWork) return {};
    }
    if (stack_.size() != 1) return {};
    return std::move(stack_.back().text);
  }

 private:
  bool isV8() const { return links_.version >= 8; }
  unsigned size() { return links_.version == 2 ? in_.u8() : in_.u16(); }

  bool push(std::string text, Strength strength = Atom) {
    total_ += text.size();
    work_ += text.size();
    stack_.push_back({std::move(text), strength});
    return true;
  }

  bool pop(Piece& piece) {
    if (stack_.empty()) return false;
    piece = std::move(stack_.back());
    stack_.pop_back();
    total_ -= piece.text.size();
    return true;
  }

  bool token(unsigned id) {
    if (id >= 0x03 && id <= 0x11) return binary(binaryOperators[id - 0x03]);
    if (id >= 0x20 && id < 0x80) return operand(0x20 | (id & 0x1F));
    switch (id) {
      case 0x12:
        return sign("+");
      case 0x13:
        return sign("-");
      case 0x14:
        return percent();
      case 0x15:
        return brackets();
      case 0x16:
        return push("");
      case 0x17:
        return push(quoted(isV8() ? readUnicodeText(in_, LengthBytes::One)
                                  : readByteText(in_, LengthBytes::One, links_.codePage)));
      case 0x19:
        return attribute();
      case 0x1C:
        return push(std::string(errorText(errorOfCode(in_.u8()))));
      case 0x1D:
        return push(in_.u8() != 0 ? "TRUE" : "FALSE");
      case 0x1E:
        return push(std::to_string(in_.u16()));
      case 0x1F:
        return push(exactNumberText(in_.f64()));
      default:
        return false;
    }
  }

  bool operand(unsigned id) {
    switch (id) {
      case 0x20:
        return arrayConstant();
      case 0x21:
        return fixedFunction();
      case 0x22:
        return variableFunction();
      case 0x23:
        return name();
      case 0x24:
        return push(cell(position(false)));
      case 0x25:
        return area(false, {});
      case 0x26:
        return memoryArea();
      case 0x27:
      case 0x28:
        in_.skip(links_.version == 2 ? 4 : 6);
        return true;
      case 0x29:
      case 0x2E:
      case 0x2F:
        size();
        return true;
      case 0x2A:
        in_.skip(isV8() ? 4 : 3);
        return push("#REF!");
      case 0x2B:
        in_.skip(isV8() ? 8 : 6);
        return push("#REF!");
      case 0x2C:
        return push(cell(position(true)));
      case 0x2D:
        return area(true, {});
      case 0x39:
        return externalName();
      case 0x3A:
      case 0x3B:
      case 0x3C:
      case 0x3D:
        return onOtherSheet(id);
      default:
        return false;
    }
  }

  // --- Operators ---

  bool binary(const BinaryOperator& op) {
    Piece right, left;
    if (!pop(right) || !pop(left)) return false;
    std::string text = bracketed(std::move(left), op.strength);
    text += op.text;
    text += bracketed(std::move(right), static_cast<Strength>(op.strength + 1));
    return push(std::move(text), op.strength);
  }

  bool sign(std::string_view text) {
    Piece piece;
    if (!pop(piece)) return false;
    // "-5%" reads the same with either sign applied first.
    return push(std::string(text) + bracketed(std::move(piece), PercentSign), Sign);
  }

  bool percent() {
    Piece piece;
    if (!pop(piece)) return false;
    return push(bracketed(std::move(piece), PercentSign) + "%", PercentSign);
  }

  bool brackets() {
    Piece piece;
    if (!pop(piece)) return false;
    return push("(" + piece.text + ")");
  }

  bool attribute() {
    const unsigned kind = in_.u8();
    const unsigned data = size();
    if (kind & 0x04) {  // the jump table of CHOOSE
      in_.skip((data + 1) * (links_.version == 2 ? 1 : 2));
    } else if (kind & 0x10) {
      return function("SUM", 1);
    }
    return true;
  }

  // --- Functions ---

  bool function(std::string_view functionName, size_t count) {
    if (stack_.size() < count) return false;
    std::string text(functionName);
    text += '(';
    const size_t first = stack_.size() - count;
    for (size_t i = first; i < stack_.size(); ++i) {
      if (i > first) text += ',';
      total_ -= stack_[i].text.size();
      // A union among arguments would read as two of them.
      const Strength wanted = stack_[i].strength == UnionOf ? Atom : Comparison;
      text += bracketed(std::move(stack_[i]), wanted);
    }
    text += ')';
    stack_.resize(first);
    return push(std::move(text));
  }

  bool fixedFunction() {
    const Function* known = functionByIndex(links_.version <= 3 ? in_.u8() : in_.u16());
    return known != nullptr && function(known->info->name, known->arguments);
  }

  bool variableFunction() {
    const unsigned count = in_.u8() & 0x7F;
    const unsigned index = links_.version <= 3 ? in_.u8() : in_.u16();
    if (index == userFunctionIndex) return userFunction(count);
    const Function* known = functionByIndex(static_cast<int>(index));
    return known != nullptr && function(known->info->name, count);
  }

  // The function's name is the first of its arguments.
  bool userFunction(size_t count) {
    if (count == 0 || stack_.size() < count) return false;
    const auto at = stack_.end() - static_cast<std::ptrdiff_t>(count);
    std::string name = std::move(at->text);
    total_ -= name.size();
    stack_.erase(at);
    name = formula::withoutPrefix(name);
    return !name.empty() && function(name, count - 1);
  }

  // --- Names ---

  bool pushName(const std::vector<Name>& names, size_t index, const std::string& prefix = {}) {
    if (index == 0 || index > names.size()) return push("#NAME?");
    return push(prefix + names[index - 1].name);
  }

  bool pushName(const Book& book, size_t index, const std::string& sheet = {}) {
    if (index == 0 || index > book.names.size()) return push("#NAME?");
    const std::string& text = book.names[index - 1];
    if (book.kind != Book::Kind::Other || book.name.empty()) return push(text);
    return push(formula::prefixText({book.name, sheet, {}}) + text);
  }

  bool name() {
    const size_t index = in_.u16();
    in_.skip(isV8() ? 2 : links_.version >= 5 ? 12 : links_.version >= 3 ? 8 : 5);
    return pushName(links_.names, index);
  }

  bool externalName() {
    if (isV8()) {
      const size_t range = in_.u16();
      const size_t index = in_.u16();
      in_.skip(2);
      if (range >= links_.ranges.size()) return false;
      const size_t book = links_.ranges[range].book;
      if (book >= links_.books.size()) return false;
      if (links_.books[book].kind != Book::Kind::Own) {
        const std::vector<std::string>& sheets = links_.books[book].sheets;
        const int sheet = links_.ranges[range].first;
        const bool known = sheet >= 0 && static_cast<size_t>(sheet) < sheets.size();
        return pushName(links_.books[book], index,
                        known ? sheets[static_cast<size_t>(sheet)] : std::string());
      }
      // A name of a sheet shows which one; the workbook's own names need not.
      std::string prefix;
      const bool ofSheet =
          index > 0 && index <= links_.names.size() && links_.names[index - 1].sheet != 0;
      if (ofSheet) links_.prefixOfRange(range, prefix);
      return pushName(links_.names, index, prefix);
    }
    const int book = in_.i16();
    in_.skip(8);
    const size_t index = in_.u16();
    in_.skip(12);
    if (book < 0) return pushName(links_.names, index);
    if (book == 0 || static_cast<size_t>(book) > links_.books.size()) return false;
    return pushName(links_.books[static_cast<size_t>(book) - 1], index);
  }

  // --- References ---

  struct Position {
    int row = 0;
    int column = 0;
    bool rowRelative = false;
    bool columnRelative = false;
  };

  int lastRow() const { return isV8() ? 0xFFFF : 0x3FFF; }

  // The token tells offsets from positions: in shared formulas and names.
  Position place(unsigned row, unsigned column, bool offset) const {
    Position at;
    const unsigned flags = isV8() ? column : row;
    at.rowRelative = (flags & 0x8000) != 0;
    at.columnRelative = (flags & 0x4000) != 0;
    at.row = static_cast<int>(isV8() ? row : row & 0x3FFF);
    at.column = static_cast<int>(column & 0xFF);
    if (offset && at.rowRelative) at.row = (at.row + base_.row) & lastRow();
    if (offset && at.columnRelative) at.column = (at.column + base_.column) & 0xFF;
    return at;
  }

  Position position(bool offset) {
    const unsigned row = in_.u16();
    const unsigned column = isV8() ? in_.u16() : in_.u8();
    return place(row, column, offset);
  }

  static std::string rowText(const Position& at) {
    return (at.rowRelative ? "" : "$") + std::to_string(at.row + 1);
  }
  static std::string columnText(const Position& at) {
    return (at.columnRelative ? "" : "$") + columnLetters(at.column + 1);
  }
  static std::string cell(const Position& at) { return columnText(at) + rowText(at); }

  bool area(bool offset, const std::string& prefix) {
    const unsigned row1 = in_.u16(), row2 = in_.u16();
    const unsigned column1 = isV8() ? in_.u16() : in_.u8();
    const unsigned column2 = isV8() ? in_.u16() : in_.u8();
    const Position from = place(row1, column1, offset);
    const Position to = place(row2, column2, offset);
    if (from.row == 0 && to.row == lastRow()) {
      return push(prefix + columnText(from) + ":" + columnText(to));
    }
    if (from.column == 0 && to.column == 0xFF) {
      return push(prefix + rowText(from) + ":" + rowText(to));
    }
    return push(prefix + cell(from) + ":" + cell(to));
  }

  bool onOtherSheet(unsigned id) {
    std::string prefix;
    bool leads = false;
    if (isV8()) {
      leads = links_.prefixOfRange(in_.u16(), prefix);
    } else {
      const int book = in_.i16();
      in_.skip(8);
      const int first = in_.i16();
      const int last = in_.i16();
      leads = links_.prefixOfSheets(book, first, last, prefix);
    }
    const bool isArea = id == 0x3B || id == 0x3D;
    if (!leads || id >= 0x3C) {
      in_.skip(isV8() ? (isArea ? 8 : 4) : (isArea ? 6 : 3));
      return push(prefix + "#REF!");
    }
    return isArea ? area(false, prefix) : push(prefix + cell(position(false)));
  }

  // --- Data after the tokens ---

  bool memoryArea() {
    in_.skip(links_.version == 2 ? 4 : 6);
    const size_t count = extra_.u16();
    extra_.skip(count * (isV8() ? 8 : 6));
    return true;
  }

  bool arrayConstant() {
    in_.skip(links_.version == 2 ? 6 : 7);
    unsigned columns = extra_.u8();
    unsigned rows = extra_.u16();
    if (isV8()) {
      ++columns;
      ++rows;
    } else if (columns == 0) {
      columns = 256;
    }
    std::string text = "{";
    for (unsigned row = 0; row < rows; ++row) {
      if (row > 0) text += ';';
      for (unsigned column = 0; column < columns; ++column) {
        if (column > 0) text += ',';
        if (!arrayElement(text) || text.size() > maxFormulaText) return false;
      }
    }
    return push(text + "}");
  }

  bool arrayElement(std::string& text) {
    switch (extra_.u8()) {
      case 0x01:
        text += exactNumberText(extra_.f64());
        break;
      case 0x02:
        text += quoted(isV8() ? readUnicodeText(extra_, LengthBytes::Two)
                              : readByteText(extra_, LengthBytes::One, links_.codePage));
        break;
      case 0x04:
        text += extra_.u8() != 0 ? "TRUE" : "FALSE";
        extra_.skip(7);
        break;
      case 0x10:
        text += errorText(errorOfCode(extra_.u8()));
        extra_.skip(7);
        break;
      case 0x00:
        text += "\"\"";
        extra_.skip(8);
        break;
      default:
        return false;
    }
    return extra_.ok();
  }

  const Links& links_;
  ByteReader in_;
  ByteReader extra_;
  FormulaBase base_;
  std::vector<Piece> stack_;
  size_t total_ = 0;  // bytes on the stack
  size_t work_ = 0;   // bytes ever put there
};

}  // namespace

std::optional<std::string> decodeFormula(const Links& links, std::string_view code,
                                         std::string_view extra, FormulaBase base) {
  return Decoder(links, code, extra, base).run();
}

bool isEntryToken(const Links& links, std::string_view code, FormulaBase& entry) {
  ByteReader in(code);
  if (in.u8() != 0x01) return false;
  entry.row = in.u16();
  entry.column = links.version == 2 ? in.u8() : in.u16();
  return in.ok();
}

ErrorCode errorOfCode(unsigned code) {
  switch (code) {
    case 0x00:
      return ErrorCode::Null;
    case 0x07:
      return ErrorCode::DivisionByZero;
    case 0x0F:
      return ErrorCode::Value;
    case 0x17:
      return ErrorCode::Ref;
    case 0x1D:
      return ErrorCode::Name;
    case 0x24:
      return ErrorCode::Num;
    default:
      return ErrorCode::NotAvailable;
  }
}

unsigned codeOfError(ErrorCode error) {
  switch (error) {
    case ErrorCode::Null:
      return 0x00;
    case ErrorCode::DivisionByZero:
      return 0x07;
    case ErrorCode::Value:
      return 0x0F;
    case ErrorCode::Ref:
      return 0x17;
    case ErrorCode::Name:
      return 0x1D;
    case ErrorCode::Num:
    case ErrorCode::Circular:
      return 0x24;
    default:
      return 0x2A;
  }
}

}  // namespace lodex::biff
