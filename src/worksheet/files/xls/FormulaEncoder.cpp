#include "worksheet/files/xls/FormulaEncoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

#include "basic/Text.h"
#include "worksheet/files/xls/BiffFunctions.h"
#include "worksheet/files/xls/FormulaDecoder.h"
#include "worksheet/formula/Parser.h"

namespace lodex::biff {
namespace {

using formula::Node;
using formula::NodeKind;
using formula::Operator;
using formula::Reference;
using formula::ReferenceKind;

constexpr int maxRowsOfXls = 65536, maxColumnsOfXls = 256;
constexpr size_t maxCodeSize = 1800;  // programs refuse formulas of more
constexpr size_t maxArguments = 30;

// What an operand is to be: the reference itself, one value, or an array of values.
enum class Class : unsigned { Reference = 0x20, Value = 0x40, Array = 0x60 };

unsigned tokenOf(Operator op) {
  switch (op) {
    case Operator::Add:
      return 0x03;
    case Operator::Subtract:
      return 0x04;
    case Operator::Multiply:
      return 0x05;
    case Operator::Divide:
      return 0x06;
    case Operator::Power:
      return 0x07;
    case Operator::Concatenate:
      return 0x08;
    case Operator::Less:
      return 0x09;
    case Operator::LessEqual:
      return 0x0A;
    case Operator::Equal:
      return 0x0B;
    case Operator::GreaterEqual:
      return 0x0C;
    case Operator::Greater:
      return 0x0D;
    case Operator::NotEqual:
      return 0x0E;
    case Operator::Intersection:
      return 0x0F;
    case Operator::Union:
      return 0x10;
    case Operator::Range:
      return 0x11;
    case Operator::Plus:
      return 0x12;
    case Operator::Minus:
      return 0x13;
    case Operator::Percent:
      return 0x14;
    default:
      return 0;
  }
}

bool joinsReferences(const Node& node) {
  return node.kind == NodeKind::Binary &&
         (node.op == Operator::Range || node.op == Operator::Union ||
          node.op == Operator::Intersection);
}

bool isVolatile(std::string_view function) {
  static constexpr std::string_view names[] = {"NOW",    "TODAY",    "RAND", "RANDBETWEEN",
                                               "OFFSET", "INDIRECT", "CELL", "INFO"};
  return std::find(std::begin(names), std::end(names), function) != std::end(names);
}

bool containsVolatile(const Node& node) {
  if (node.kind == NodeKind::Function && isVolatile(node.text)) return true;
  return std::any_of(node.children.begin(), node.children.end(), containsVolatile);
}

class Encoder {
 public:
  Encoder(LinkWriter& links, int sheet, FormulaUse use) : links_(links), sheet_(sheet), use_(use) {}

  std::optional<EncodedFormula> run(const Node& root) {
    if (containsVolatile(root)) {
      u8(0x19);
      u8(0x01);
      u16(0);
    }
    const Class wanted = use_ == FormulaUse::Cell    ? Class::Value
                         : use_ == FormulaUse::Array ? Class::Array
                                                     : Class::Reference;
    if (!encode(root, wanted) || out_.code.size() > maxCodeSize) return {};
    return std::move(out_);
  }

 private:
  void u8(unsigned value) { out_.code.push_back(static_cast<char>(value)); }
  void u16(unsigned value) {
    u8(value & 0xFF);
    u8(value >> 8 & 0xFF);
  }
  void token(unsigned base, Class kind) { u8(base + static_cast<unsigned>(kind)); }

  static void appendNumber(std::string& to, double number) {
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    to.append(raw, sizeof raw);
  }

  // Where one value is wanted, formulas over blocks and names still take all of them.
  Class valueClass(Class around) const {
    return around == Class::Array || use_ != FormulaUse::Cell ? Class::Array : Class::Value;
  }

  bool encode(const Node& node, Class wanted) {
    if (out_.code.size() > maxCodeSize) return false;
    switch (node.kind) {
      case NodeKind::Number:
        return number(node.number);
      case NodeKind::Text:
        return text(node.text);
      case NodeKind::Boolean:
        u8(0x1D);
        u8(node.number != 0 ? 1 : 0);
        return true;
      case NodeKind::Error:
        u8(0x1C);
        u8(codeOfError(static_cast<ErrorCode>(static_cast<int>(node.number))));
        return true;
      case NodeKind::Missing:
        u8(0x16);
        return true;
      case NodeKind::Array:
        return array(node);
      case NodeKind::Reference:
        return reference(node.reference, wanted);
      case NodeKind::Name:
        return name(node, wanted);
      case NodeKind::Function:
        return function(node, wanted);
      case NodeKind::Unary:
        if (!encode(node.children[0], valueClass(wanted))) return false;
        u8(tokenOf(node.op));
        return true;
      case NodeKind::Binary:
        return joinsReferences(node) ? joined(node, wanted) : binary(node, valueClass(wanted));
      case NodeKind::Parentheses:
        if (!encode(node.children[0], wanted)) return false;
        u8(0x15);
        return true;
    }
    return false;
  }

  bool binary(const Node& node, Class operands) {
    if (!encode(node.children[0], operands) || !encode(node.children[1], operands)) return false;
    u8(tokenOf(node.op));
    return true;
  }

  // References put together from others follow a token that says how many bytes they take.
  bool joined(const Node& node, Class wanted) {
    if (insideJoined_) return binary(node, Class::Reference);
    insideJoined_ = true;
    token(0x09, wanted);
    const size_t sizeAt = out_.code.size();
    u16(0);
    const bool done = binary(node, Class::Reference);
    insideJoined_ = false;
    const size_t size = out_.code.size() - sizeAt - 2;
    out_.code[sizeAt] = static_cast<char>(size & 0xFF);
    out_.code[sizeAt + 1] = static_cast<char>(size >> 8);
    return done;
  }

  bool number(double value) {
    if (value >= 0 && value <= 65535 && value == std::floor(value) && !std::signbit(value)) {
      u8(0x1E);
      u16(static_cast<unsigned>(value));
    } else {
      u8(0x1F);
      appendNumber(out_.code, value);
    }
    return true;
  }

  // Length in one or two bytes, width flag, characters.
  static bool appendText(std::string& to, std::string_view utf8, bool longLength) {
    const std::u16string units = toUtf16(utf8);
    if (units.size() > 255) return false;
    to.push_back(static_cast<char>(units.size()));
    if (longLength) to.push_back('\0');
    const bool wide = std::any_of(units.begin(), units.end(), [](char16_t c) { return c > 0xFF; });
    to.push_back(wide ? '\1' : '\0');
    for (char16_t c : units) {
      to.push_back(static_cast<char>(c & 0xFF));
      if (wide) to.push_back(static_cast<char>(c >> 8));
    }
    return true;
  }

  bool text(std::string_view utf8) {
    u8(0x17);
    return appendText(out_.code, utf8, false);
  }

  bool array(const Node& node) {
    const auto columns = static_cast<size_t>(std::max(node.columns, 1));
    const size_t rows = node.children.size() / columns;
    if (rows == 0 || columns > 256 || rows > 65536) return false;
    token(0x00, Class::Array);
    out_.code.append(7, '\0');
    std::string& extra = out_.extra;
    extra.push_back(static_cast<char>(columns - 1));
    extra.push_back(static_cast<char>((rows - 1) & 0xFF));
    extra.push_back(static_cast<char>((rows - 1) >> 8));
    return std::all_of(node.children.begin(), node.children.end(),
                       [&](const Node& element) { return arrayElement(element); });
  }

  bool arrayElement(const Node& element) {
    std::string& extra = out_.extra;
    if (extra.size() > maxRecordSize / 2) return false;
    switch (element.kind) {
      case NodeKind::Number:
        extra.push_back('\x01');
        appendNumber(extra, element.number);
        return true;
      case NodeKind::Text:
        extra.push_back('\x02');
        return appendText(extra, element.text, true);
      case NodeKind::Boolean:
        extra.push_back('\x04');
        extra.push_back(element.number != 0 ? '\1' : '\0');
        extra.append(7, '\0');
        return true;
      case NodeKind::Error:
        extra.push_back('\x10');
        extra.push_back(static_cast<char>(
            codeOfError(static_cast<ErrorCode>(static_cast<int>(element.number)))));
        extra.append(7, '\0');
        return true;
      case NodeKind::Unary:  // a negative number
        if (element.op != Operator::Minus || element.children[0].kind != NodeKind::Number)
          return false;
        extra.push_back('\x01');
        appendNumber(extra, -element.children[0].number);
        return true;
      default:
        return false;
    }
  }

  // --- References ---

  static bool fits(const formula::CellRef& at) {
    return at.row >= 1 && at.row <= maxRowsOfXls && at.column >= 1 && at.column <= maxColumnsOfXls;
  }

  void row(const formula::CellRef& at) { u16(static_cast<unsigned>(at.row - 1)); }
  void column(const formula::CellRef& at) {
    u16(static_cast<unsigned>(at.column - 1) | (at.columnAbsolute ? 0u : 0x4000u) |
        (at.rowAbsolute ? 0u : 0x8000u));
  }

  bool reference(Reference reference, Class wanted) {
    int range = -1;
    if (reference.sheets) {
      const formula::SheetPrefix& prefix = *reference.sheets;
      range = prefix.book.empty() ? links_.range(prefix.first, prefix.last)
                                  : links_.foreignRange(prefix.book, prefix.first, prefix.last);
      if (range < 0) return false;
    }
    const bool far = range >= 0;
    if (reference.kind == ReferenceKind::Dead) {
      token(far ? 0x1C : 0x0A, wanted);
      if (far) u16(static_cast<unsigned>(range));
      out_.code.append(4, '\0');
      return true;
    }
    if (reference.kind == ReferenceKind::Columns) {
      reference.first.row = 1;
      reference.last.row = maxRowsOfXls;
      reference.first.rowAbsolute = reference.last.rowAbsolute = true;
    } else if (reference.kind == ReferenceKind::Rows) {
      reference.first.column = 1;
      reference.last.column = maxColumnsOfXls;
      reference.first.columnAbsolute = reference.last.columnAbsolute = true;
    }
    const bool single = reference.kind == ReferenceKind::Cell;
    if (!fits(reference.first) || (!single && !fits(reference.last))) return false;
    token(single ? (far ? 0x1A : 0x04) : (far ? 0x1B : 0x05), wanted);
    if (far) u16(static_cast<unsigned>(range));
    row(reference.first);
    if (!single) row(reference.last);
    column(reference.first);
    if (!single) column(reference.last);
    return true;
  }

  bool name(const Node& node, Class wanted) {
    const auto& sheets = node.reference.sheets;
    if (!sheets) return nameToken(links_.name(node.text, sheet_), wanted);
    if (!sheets->last.empty()) return false;
    int range = -1;
    int index = 0;
    if (sheets->book.empty()) {
      range = links_.range(sheets->first, {});
      index = links_.nameOfSheet(node.text, links_.sheetNumber(sheets->first));
    } else {
      std::tie(range, index) = links_.foreignName(sheets->book, sheets->first, node.text);
    }
    if (range < 0 || index == 0) return false;
    token(0x19, wanted);
    u16(static_cast<unsigned>(range));
    u16(static_cast<unsigned>(index));
    u16(0);
    return true;
  }

  bool nameToken(int index, Class wanted) {
    if (index == 0) return false;
    token(0x03, wanted);
    u16(static_cast<unsigned>(index));
    u16(0);
    return true;
  }

  // --- Functions ---

  Class argumentClass(char letter, Class around) const {
    switch (letter) {
      case 'R':
        return Class::Reference;
      case 'A':
        return Class::Array;
      default:
        return valueClass(around);
    }
  }

  // The class of a function's token follows from what it gives and what is wanted.
  Class resultClass(char result, Class wanted) const {
    if (result == 'R') return wanted;
    if (result == 'A') return wanted == Class::Value ? Class::Value : Class::Array;
    return wanted == Class::Array || use_ != FormulaUse::Cell ? Class::Array : Class::Value;
  }

  bool function(const Node& node, Class wanted) {
    // What an argument joins is a reference of its own.
    const bool outer = std::exchange(insideJoined_, false);
    const bool done = anyFunction(node, wanted);
    insideJoined_ = outer;
    return done;
  }

  bool anyFunction(const Node& node, Class wanted) {
    const size_t count = node.children.size();
    if (count > maxArguments) return false;
    const formula::FunctionInfo* info = formula::findFunction(node.text);
    const Function* known = info == nullptr ? nullptr : functionByIndex(info->stored);
    if (known == nullptr) return userFunction(node, info, wanted);
    const auto least = static_cast<size_t>(info->minArguments);
    if (known->hasFixedArguments ? count != known->arguments : count < least) return false;
    if (count > static_cast<size_t>(info->maxArguments)) return false;
    for (size_t i = 0; i < count; ++i) {
      if (!encode(node.children[i], argumentClass(known->argumentClass(i), wanted))) return false;
    }
    const Class result = resultClass(known->result, wanted);
    if (known->hasFixedArguments) {
      token(0x01, result);
    } else {
      token(0x02, result);
      u8(static_cast<unsigned>(count));
    }
    u16(static_cast<unsigned>(info->stored));
    return true;
  }

  // `info` is null for a name that no function has.
  bool userFunction(const Node& node, const formula::FunctionInfo* info, Class wanted) {
    if (node.children.size() + 1 > maxArguments) return false;
    if (info != nullptr && info->stored == formula::addIn) {
      const auto [range, index] = links_.addInFunction(node.text);
      token(0x19, Class::Reference);
      u16(static_cast<unsigned>(range));
      u16(static_cast<unsigned>(index));
      u16(0);
    } else {
      const std::string prefix(info == nullptr ? "" : formula::xlsPrefix(*info));
      if (!nameToken(links_.laterFunction(prefix + node.text), Class::Reference)) return false;
    }
    for (const Node& argument : node.children) {
      if (!encode(argument, Class::Reference)) return false;
    }
    token(0x02, resultClass('V', wanted));
    u8(static_cast<unsigned>(node.children.size() + 1));
    u16(userFunctionIndex);
    return true;
  }

  LinkWriter& links_;
  int sheet_;
  FormulaUse use_;
  EncodedFormula out_;
  bool insideJoined_ = false;
};

}  // namespace

std::optional<EncodedFormula> encodeFormula(LinkWriter& links, std::string_view text, int sheet,
                                            FormulaUse use) {
  std::string problem;
  const auto root = formula::parseFormula(text, problem);
  if (!root) return {};
  return Encoder(links, sheet, use).run(*root);
}

}  // namespace lodex::biff
