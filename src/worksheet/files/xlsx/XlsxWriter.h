#pragma once

#include <string>

namespace lodex {

class Worksheet;

/// The bytes of an .xlsx file (ECMA-376 part 1, chapter 18) of the workbook: values, formulas with
/// their cached values, formats, widths, hidden rows and columns, frozen rows, defined names and
/// the visibility of sheets. Texts that are plain decimals, such as "12.50", become numbers that
/// show the same decimals. Throws FileError when the workbook holds what the format cannot.
std::string writeXlsx(const Worksheet& book);

}  // namespace lodex
