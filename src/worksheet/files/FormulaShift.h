#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// The formula (without "=") as it reads `rows` rows further down and `columns` columns further
/// right: relative references move, "$" parts stay, and one that leaves the sheet becomes #REF!.
/// Texts, quoted sheet names, names and functions are left alone.
std::string shiftedFormula(std::string_view formula, int rows, int columns);

}  // namespace lodex
