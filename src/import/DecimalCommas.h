#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/SystemRows.h"

namespace lodex {

/// The number that a text such as "72,34" or "-0,5" writes with a decimal comma. Empty for every
/// other text: "1.020,5", "1,2,3", "<0,01".
std::optional<double> numberWithComma(std::string_view text);

/// The texts with a decimal comma in the columns of numbers of an identified sheet. In some files
/// the comma separates thousands, so they are not numbers unless the user says so.
struct DecimalCommas {
  int count = 0;
  std::string example;  // the first one
};
DecimalCommas findDecimalCommas(const DescribedSheet& sheet);

/// Writes the numbers in place of these texts. Returns how many.
int convertDecimalCommas(const DescribedSheet& sheet);

}  // namespace lodex
