#pragma once

#include <functional>
#include <string>

#include "import/SystemRows.h"

namespace lodex {

/// Calls found(row, column, text) for every value that is text and no number in the columns of an
/// identified sheet that were understood as numbers. It may write another value into that cell.
void forEachTextAmongNumbers(const DescribedSheet& sheet,
                             const std::function<void(int, int, const std::string&)>& found);

}  // namespace lodex
