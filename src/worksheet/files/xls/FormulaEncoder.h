#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "worksheet/files/xls/LinkWriter.h"

namespace lodex::biff {

/// The tokens of a formula and the data after them that array constants need.
struct EncodedFormula {
  std::string code;
  std::string extra;
};

/// What a formula is for: a cell's value, the values of a block, or a defined name.
enum class FormulaUse { Cell, Array, Name };

/// Turns formula text (without "=") into the tokens of version 8. `sheet` is the formula's own,
/// counted from 1. Nothing is returned when the text is not a formula or uses what the format does
/// not have: cells beyond its sheets, other workbooks, texts over 255 characters, over 30
/// arguments.
std::optional<EncodedFormula> encodeFormula(LinkWriter& links, std::string_view text, int sheet,
                                            FormulaUse use);

}  // namespace lodex::biff
