#pragma once

#include <string_view>

namespace lodex::formula {

/// True when `text` is surely what a copy of the formula `above` reads `rows` rows further down in
/// the same column: relative rows differ by just that, all else is equal. May miss a copy (whole
/// rows, lists of sheets), but never takes another formula for one.
bool isCopyBelow(std::string_view above, std::string_view text, int rows);

}  // namespace lodex::formula
