#include <algorithm>
#include <charconv>

#include "basic/A1.h"
#include "basic/Text.h"
#include "worksheet/Value.h"
#include "worksheet/formula/NameBytes.h"
#include "worksheet/formula/Parser.h"

namespace lodex::formula {
namespace {

bool needsQuotes(std::string_view sheet) {
  if (sheet.empty()) return false;
  if (!isNameStart(sheet.front()) || sheet.front() == '\\') return true;
  if (!std::all_of(sheet.begin(), sheet.end(), [](char c) { return isNamePart(c) && c != '?'; })) {
    return true;
  }
  int row = 0;
  int column = 0;
  // A name that looks like a cell or a column, also in the R1C1 style, could be read as one.
  return parseCellAddress(sheet, row, column) || equalsNoCase(sheet, "R") ||
         equalsNoCase(sheet, "C") || equalsNoCase(sheet, "RC");
}

void appendEnd(std::string& out, const CellRef& end, bool column, bool row) {
  if (column) {
    if (end.columnAbsolute) out += '$';
    out += columnLetters(end.column);
  }
  if (row) {
    if (end.rowAbsolute) out += '$';
    out += std::to_string(end.row);
  }
}

void appendQuoted(std::string& out, std::string_view text, char quote) {
  out += quote;
  for (const char c : text) {
    if (c == quote) out += quote;
    out += c;
  }
  out += quote;
}

std::string_view operatorText(Operator op) {
  switch (op) {
    case Operator::Add:
    case Operator::Plus:
      return "+";
    case Operator::Subtract:
    case Operator::Minus:
      return "-";
    case Operator::Multiply:
      return "*";
    case Operator::Divide:
      return "/";
    case Operator::Power:
      return "^";
    case Operator::Concatenate:
      return "&";
    case Operator::Equal:
      return "=";
    case Operator::NotEqual:
      return "<>";
    case Operator::Less:
      return "<";
    case Operator::LessEqual:
      return "<=";
    case Operator::Greater:
      return ">";
    case Operator::GreaterEqual:
      return ">=";
    case Operator::Range:
      return ":";
    case Operator::Union:
      return ",";
    case Operator::Intersection:
      return " ";
    case Operator::Percent:
      return "%";
    case Operator::None:
      break;
  }
  return "";
}

void append(std::string& out, const Node& node);

void appendArray(std::string& out, const Node& node) {
  out += '{';
  for (size_t i = 0; i < node.children.size(); ++i) {
    if (i > 0) out += i % static_cast<size_t>(node.columns) == 0 ? ';' : ',';
    append(out, node.children[i]);
  }
  out += '}';
}

std::string numberConstant(double number) {
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number);
  return toUpper(std::string_view(buffer, static_cast<size_t>(end.ptr - buffer)));
}

void append(std::string& out, const Node& node) {
  switch (node.kind) {
    case NodeKind::Number:
      out += numberConstant(node.number);
      return;
    case NodeKind::Text:
      return appendQuoted(out, node.text, '"');
    case NodeKind::Boolean:
      out += node.number != 0 ? "TRUE" : "FALSE";
      return;
    case NodeKind::Error:
      out += errorText(static_cast<ErrorCode>(static_cast<int>(node.number)));
      return;
    case NodeKind::Missing:
      return;
    case NodeKind::Array:
      return appendArray(out, node);
    case NodeKind::Reference:
      out += referenceText(node.reference);
      return;
    case NodeKind::Name:
      if (node.reference.sheets) out += prefixText(*node.reference.sheets);
      out += node.text;
      return;
    case NodeKind::Function:
      out += node.text;
      out += '(';
      for (size_t i = 0; i < node.children.size(); ++i) {
        if (i > 0) out += ',';
        append(out, node.children[i]);
      }
      out += ')';
      return;
    case NodeKind::Unary:
      if (node.op == Operator::Percent) {
        append(out, node.children[0]);
        out += '%';
      } else {
        out += operatorText(node.op);
        append(out, node.children[0]);
      }
      return;
    case NodeKind::Binary:
      append(out, node.children[0]);
      out += operatorText(node.op);
      append(out, node.children[1]);
      return;
    case NodeKind::Parentheses:
      out += '(';
      append(out, node.children[0]);
      out += ')';
      return;
  }
}

}  // namespace

std::string formulaText(const Node& node) {
  std::string out;
  append(out, node);
  return out;
}

std::string prefixText(const SheetPrefix& prefix) {
  std::string inner;
  if (!prefix.book.empty()) {
    const size_t slash = prefix.book.find_last_of("\\/");
    const size_t file = slash == std::string::npos ? 0 : slash + 1;
    inner = prefix.book.substr(0, file) + "[" + prefix.book.substr(file) + "]";
  }
  inner += prefix.first;
  if (!prefix.last.empty()) inner += ":" + prefix.last;
  const bool simpleBook = std::all_of(prefix.book.begin(), prefix.book.end(),
                                      [](char c) { return isNamePart(c) && c != '\\'; });
  std::string out;
  if (!simpleBook || needsQuotes(prefix.first) || needsQuotes(prefix.last)) {
    appendQuoted(out, inner, '\'');
  } else {
    out = inner;
  }
  return out + "!";
}

std::string referenceText(const Reference& reference) {
  std::string out = reference.sheets ? prefixText(*reference.sheets) : std::string();
  if (reference.kind == ReferenceKind::Dead) return out + "#REF!";
  const bool column = reference.kind != ReferenceKind::Rows;
  const bool row = reference.kind != ReferenceKind::Columns;
  appendEnd(out, reference.first, column, row);
  if (reference.kind == ReferenceKind::Cell) return out;
  out += ':';
  appendEnd(out, reference.last, column, row);
  return out;
}

}  // namespace lodex::formula
