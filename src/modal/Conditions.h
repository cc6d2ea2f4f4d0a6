#pragma once

#include <string_view>

#include "modal/frmResult.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// Tests a condition on a finished sample (row of F1MC and F1R, from 1): "M:Py>=0.5" compares the
/// amount of a mineral, "E:Cu/XRF<0.01" the residual of an element by a method. Operators are "=",
/// "<>", "<", "<=", ">" and ">="; a number compares as a number, any other text, quoted by "'" or
/// not, as text. False for text that is not a condition or names something unknown.
bool Testaa(std::string_view condition, const frmResult& result, const Worksheet& F1ELoc,
            int sample);

}  // namespace lodex
