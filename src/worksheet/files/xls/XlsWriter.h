#pragma once

#include <string>

#include "worksheet/Worksheet.h"

namespace lodex {

/// The bytes of an .xls file (version 8, as programs since 1997 write it) with all sheets: values,
/// formulas with their values, formats, column widths, hidden rows and columns, frozen rows and
/// defined names. Text that spells a decimal such as "12.50" becomes a number with as many decimals
/// in its format, other text stays text. A formula that the format cannot hold leaves its value.
/// Throws FileError when a sheet is larger than 65536 rows or 256 columns.
std::string writeXls(const Worksheet& worksheet);

}  // namespace lodex
