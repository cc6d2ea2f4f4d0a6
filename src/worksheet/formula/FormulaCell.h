#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "worksheet/Value.h"

namespace lodex {

namespace formula {
struct Code;
}

/// The block of cells that an array formula fills.
struct ArrayBlock {
  int row = 1, column = 1;  // top left, where the formula is computed
  int rows = 1, columns = 1;
};

/// A formula and the value last known for it.
struct FormulaCell {
  std::string text;  // without the leading "="
  Value cached;
  std::shared_ptr<const ArrayBlock>
      array;  // null for an ordinary formula; the block's cells share it

  // The formula engine's own notes; they do not survive a copy into another cell.
  const formula::Code* code = nullptr;
  std::uint32_t index = 0;     // in the order of evaluation
  std::uint32_t pass = 0;      // the recalculation that last brought it up to date
  bool valueFromFile = false;  // `cached` came with the formula and was never computed here
  bool notComputed = false;    // the last recalculation could not compute it

  FormulaCell() = default;
  FormulaCell(const FormulaCell& other)
      : text(other.text),
        cached(other.cached),
        array(other.array),
        valueFromFile(other.valueFromFile) {}
  FormulaCell& operator=(const FormulaCell&) = delete;
};

}  // namespace lodex
