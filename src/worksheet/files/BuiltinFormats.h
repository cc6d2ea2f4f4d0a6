#pragma once

#include <array>
#include <string_view>

#include "worksheet/CellFormat.h"

/// What spreadsheet files refer to by number alone.
namespace lodex {

/// The number format of a built-in id, "" for an id without one (ECMA-376 part 1, 18.8.30). The
/// formats are those of an English program; currency signs and the order of dates differ by
/// country, and files that need another text bring it along.
std::string_view builtinNumberFormat(int id);
/// The id that means a format in every country, or -1.
int builtinNumberFormatId(std::string_view format);

/// The 56 colours that a workbook without a palette of its own has (ECMA-376 part 1, 18.8.27; the
/// same in .xls files from BIFF 8 on).
extern const Color defaultPalette[56];
/// The names of border lines in .xlsx files, in the order of their numbers (ECMA-376 part 1,
/// 18.18.3), which .xls files and CellFormat use.
inline constexpr std::array<std::string_view, 14> borderLineNames{"none",
                                                                  "thin",
                                                                  "medium",
                                                                  "dashed",
                                                                  "dotted",
                                                                  "thick",
                                                                  "double",
                                                                  "hair",
                                                                  "mediumDashed",
                                                                  "dashDot",
                                                                  "mediumDashDot",
                                                                  "dashDotDot",
                                                                  "mediumDashDotDot",
                                                                  "slantDashDot"};

/// The colour of a palette index, 0 to 63; automaticColor beyond.
Color indexedColor(int index);

}  // namespace lodex
