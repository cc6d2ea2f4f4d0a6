#include "import/ColumnTypes.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr double longLimit = 2147483647;

// The number of a cell, stored as such or as text; empty for anything else.
std::optional<double> cellNumber(const Worksheet& sheet, int row, int column,
                                 const std::string& text) {
  const Value value = sheet.ValueRC(row, column);
  if (value.isNumber()) return value.asNumber();
  return parseNumber(text);
}

// True for the text of a whole number as that number is written, which 00123, 5E1 and 10.0 are not.
bool isWholeNumberText(const std::string& text) {
  const auto number = parseInteger(text);
  return number && std::abs(static_cast<double>(*number)) < longLimit &&
         std::to_string(*number) == text;
}

}  // namespace

std::string columnType(const Worksheet& sheet, int column, int firstRow, int lastRow) {
  bool isText = false;
  bool isSingle = false;
  size_t longest = 0;
  for (int row = firstRow; row <= lastRow; ++row) {
    const std::string text = sheet.TextRC(row, column);
    if (text.empty()) continue;
    longest = std::max(longest, characterCount(text));
    if (isText) continue;
    const auto number = cellNumber(sheet, row, column, text);
    if (!number) {
      isText = true;
    } else if (std::abs(*number) > longLimit || *number != roundHalfEven(*number)) {
      isSingle = true;
    }
  }
  if (isText) return "TEXT(" + std::to_string(longest + 10) + ")";
  return isSingle ? "SINGLE" : "LONG";
}

std::string idColumnType(const Worksheet& sheet, int column, int firstRow, int lastRow,
                         const std::function<void(int row)>& emptyRow) {
  bool isText = false;
  size_t longest = 0;
  for (int row = firstRow; row <= lastRow; ++row) {
    const std::string text = sheet.TextRC(row, column);
    if (trimWhite(text).empty()) {
      emptyRow(row);
      continue;
    }
    longest = std::max(longest, characterCount(text));
    isText = isText || !isWholeNumberText(text);
  }
  if (!isText) return "LONG(U,I)";
  const int tens = static_cast<int>(roundHalfEven(static_cast<double>(longest) / 10)) + 1;
  return "TEXT(" + std::to_string(tens * 10) + ")(U,I)";
}

}  // namespace lodex
