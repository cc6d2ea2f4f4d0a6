#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "worksheet/Value.h"

namespace lodex {

/// A value as displayed under a spreadsheet number format such as "0.000", "#,##0.00;[Red]-0",
/// "0.00E+00", "# ?/?", "yyyy-mm-dd", "h:mm AM/PM" or "@". "General" and "" show numberText. A
/// format that cannot be understood shows the value as General does.
std::string formattedText(const Value& value, std::string_view format, bool dates1904 = false);

/// The colour (0xRRGGBB) that the format gives a number, as in "0.0;[Red]-0.0"; nothing where it
/// names none, and for other values.
std::optional<std::int32_t> formattedColor(const Value& value, std::string_view format);

/// True when the format shows numbers as dates or times.
bool isDateFormat(std::string_view format);

}  // namespace lodex
