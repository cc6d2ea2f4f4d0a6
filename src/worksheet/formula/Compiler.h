#pragma once

#include <memory>
#include <string_view>

#include "worksheet/formula/Code.h"
#include "worksheet/formula/Evaluator.h"

namespace lodex::formula {

/// Compiles a formula (without "=") for a place in a workbook, whose sheets and names it looks up.
/// What cannot be understood becomes an Unknown instruction with the reason, or all of the code is
/// that one instruction when the text is not a formula at all.
std::unique_ptr<Code> compileFormula(std::string_view text, const Place& place,
                                     const Worksheet& book, bool arrayFormula);

/// A text that is equal for equal codes.
std::string codeKey(const Code& code);

}  // namespace lodex::formula
