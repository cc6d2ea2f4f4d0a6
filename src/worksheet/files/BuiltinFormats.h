#pragma once

#include <string_view>

#include "worksheet/CellFormat.h"

/// What spreadsheet files refer to by number alone.
namespace lodex {

/// The number format of a built-in id, "" for an id without one (ECMA-376 part 1, 18.8.30).
std::string_view builtinNumberFormat(int id);

/// The colour of a palette index, 0 to 63 (ECMA-376 part 1, 18.8.27); automaticColor beyond.
Color indexedColor(int index);

}  // namespace lodex
