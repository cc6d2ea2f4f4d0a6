#include "worksheet/files/FormulaShift.h"

#include <optional>

#include "basic/A1.h"
#include "basic/Limits.h"

namespace lodex {
namespace {

bool isWordByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.' || c == '$' || c == '?' || c == '\\' || (c & 0x80) != 0;
}

// One half of a reference: the column or the row of "$B$7".
struct Half {
  bool absolute = false;
  int number = 0;
};

std::optional<Half> takeColumn(std::string_view& word) {
  Half half;
  std::string_view rest = word;
  half.absolute = !rest.empty() && rest.front() == '$';
  if (half.absolute) rest.remove_prefix(1);
  size_t letters = 0;
  while (letters < rest.size() && (rest[letters] | 0x20) >= 'a' && (rest[letters] | 0x20) <= 'z') {
    ++letters;
  }
  half.number = columnOfLetters(rest.substr(0, letters));
  if (half.number == 0) return std::nullopt;
  word = rest.substr(letters);
  return half;
}

std::optional<Half> takeRow(std::string_view& word) {
  Half half;
  std::string_view rest = word;
  half.absolute = !rest.empty() && rest.front() == '$';
  if (half.absolute) rest.remove_prefix(1);
  size_t digits = 0;
  for (; digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9'; ++digits) {
    if (half.number > maxRows) return std::nullopt;
    half.number = half.number * 10 + (rest[digits] - '0');
  }
  if (digits == 0 || half.number < 1 || half.number > maxRows) return std::nullopt;
  word = rest.substr(digits);
  return half;
}

struct Shifter {
  int rows;
  int columns;

  // False when the half leaves the sheet.
  static bool move(Half& half, int by, int limit) {
    if (!half.absolute) half.number += by;
    return half.number >= 1 && half.number <= limit;
  }

  std::string columnText(Half half) const {
    if (!move(half, columns, maxColumns)) return "#REF!";
    return (half.absolute ? "$" : "") + columnLetters(half.number);
  }

  std::string rowText(Half half) const {
    if (!move(half, rows, maxRows)) return "#REF!";
    return (half.absolute ? "$" : "") + std::to_string(half.number);
  }

  // A word that is a whole cell reference; anything else comes back as it is.
  std::string cell(std::string_view word) const {
    std::string_view rest = word;
    auto column = takeColumn(rest);
    auto row = column ? takeRow(rest) : std::nullopt;
    if (!row || !rest.empty()) return std::string(word);
    const bool inside = move(*column, columns, maxColumns) && move(*row, rows, maxRows);
    if (!inside) return "#REF!";
    return (column->absolute ? "$" : "") + columnLetters(column->number) +
           (row->absolute ? "$" : "") + std::to_string(row->number);
  }

  // "A:C" or "1:3"; nothing when the two words are no such range.
  std::optional<std::string> span(std::string_view first, std::string_view second) const {
    std::string_view a = first;
    std::string_view b = second;
    const auto column1 = takeColumn(a);
    const auto column2 = takeColumn(b);
    if (column1 && column2 && a.empty() && b.empty()) {
      return columnText(*column1) + ":" + columnText(*column2);
    }
    a = first;
    b = second;
    const auto row1 = takeRow(a);
    const auto row2 = takeRow(b);
    if (row1 && row2 && a.empty() && b.empty()) return rowText(*row1) + ":" + rowText(*row2);
    return std::nullopt;
  }
};

size_t wordEnd(std::string_view text, size_t pos) {
  while (pos < text.size() && isWordByte(text[pos])) ++pos;
  return pos;
}

// The position after a quoted piece that starts at `pos`; doubled quotes stay inside.
size_t quotedEnd(std::string_view text, size_t pos) {
  const char quote = text[pos];
  for (++pos; pos < text.size(); ++pos) {
    if (text[pos] != quote) continue;
    if (pos + 1 == text.size() || text[pos + 1] != quote) return pos + 1;
    ++pos;
  }
  return text.size();
}

size_t bracketEnd(std::string_view text, size_t pos) {
  int depth = 0;
  for (; pos < text.size(); ++pos) {
    depth += text[pos] == '[' ? 1 : text[pos] == ']' ? -1 : 0;
    if (depth == 0) return pos + 1;
  }
  return text.size();
}

}  // namespace

std::string shiftedFormula(std::string_view formula, int rows, int columns) {
  const Shifter shifter{rows, columns};
  std::string out;
  size_t pos = 0;
  while (pos < formula.size()) {
    const char c = formula[pos];
    size_t end = pos + 1;
    if (c == '"' || c == '\'') {
      end = quotedEnd(formula, pos);
    } else if (c == '[') {
      end = bracketEnd(formula, pos);
    } else if (isWordByte(c)) {
      end = wordEnd(formula, pos);
      const std::string_view word = formula.substr(pos, end - pos);
      const char next = end < formula.size() ? formula[end] : '\0';
      if (next == ':') {
        const size_t secondEnd = wordEnd(formula, end + 1);
        const auto span = shifter.span(word, formula.substr(end + 1, secondEnd - end - 1));
        if (span) {
          out += *span;
          pos = secondEnd;
          continue;
        }
      }
      out += next == '(' || next == '!' ? std::string(word) : shifter.cell(word);
      pos = end;
      continue;
    }
    out += formula.substr(pos, end - pos);
    pos = end;
  }
  return out;
}

}  // namespace lodex
