#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// The number format that shows a numeric text exactly as it is spelled: "0.00" for "12.50", "0"
/// for "12". Empty when it is not a plain decimal ("00123", "5E1", "+3", more than 15 digits).
std::string plainDecimalFormat(std::string_view text);

}  // namespace lodex
