#pragma once

#include <functional>
#include <string>

#include "worksheet/Worksheet.h"

/// Database types found by looking at what a column holds. Rows count from 1, ends are inclusive,
/// and empty cells do not count.
namespace lodex {

/// "LONG" for whole numbers or no content, "SINGLE" when a number has decimals or does not fit
/// 32 bits, "TEXT(<longest + 10>)" when a cell is not a number.
std::string columnType(const Worksheet& sheet, int column, int firstRow, int lastRow);

/// The type of the sample identifier: "LONG(U,I)", or "TEXT(<n>)(U,I)" when a field of numbers
/// would change an identifier: one that is not written as its whole number (00123, 10.25, 5E1) or
/// reaches 2147483647 on either side. n is 10 * (longest / 10, rounded half to even, + 1).
/// `emptyRow` is called for every row without identifier.
std::string idColumnType(const Worksheet& sheet, int column, int firstRow, int lastRow,
                         const std::function<void(int row)>& emptyRow);

}  // namespace lodex
