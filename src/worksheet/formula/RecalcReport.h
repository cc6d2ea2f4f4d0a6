#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace lodex {

/// What recalculating a workbook has found.
struct RecalcReport {
  size_t formulas = 0;      // formula cells of the workbook
  size_t withoutValue = 0;  // of those: how many had no value in the file and got theirs as it was
                            // read
  size_t changed = 0;  // of those that came with a value: how many turned out to differ from it,
                       // numbers by more than 1e-9 of their size
  size_t notComputed = 0;                  // cells that could not be computed
  std::map<std::string, size_t> problems;  // why, and in how many cells
};

}  // namespace lodex
