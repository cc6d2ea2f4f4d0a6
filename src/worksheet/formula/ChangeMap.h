#pragma once

#include <cstdint>
#include <vector>

#include "worksheet/formula/Operand.h"

namespace lodex {
class Worksheet;
}

namespace lodex::formula {

/// A bit for every cell of a workbook, laid out like its storage: one word for 64 rows of a column.
class ChangeMap {
 public:
  /// Lays the map out for a workbook, with some room for cells to come, and clears it.
  void layOut(const Worksheet& book);

  /// Sets the bit of a cell; false when the map has no place for it.
  bool mark(int sheet, int row, int column) {
    const Strip* strip = stripOf(sheet, column);
    const auto word = static_cast<std::uint32_t>(row) / 64;
    if (strip == nullptr || word >= strip->words) return false;
    std::uint64_t& bits = words_[strip->first + word];
    if (bits == 0) touched_.push_back(strip->first + word);
    bits |= std::uint64_t(1) << (row % 64);
    return true;
  }

  /// Removes all marks, at the cost of the marks set.
  void clear() {
    for (const std::uint32_t word : touched_) words_[word] = 0;
    touched_.clear();
  }
  bool empty() const { return touched_.empty(); }

  bool isMarked(int sheet, int row, int column) const {
    const Strip* strip = stripOf(sheet, column);
    const auto word = static_cast<std::uint32_t>(row) / 64;
    return strip != nullptr && word < strip->words &&
           (words_[strip->first + word] >> (row % 64) & 1) != 0;
  }

  /// True when any cell of the area is marked.
  bool anyMarked(const Area& area) const;

  /// Finds a marked cell of the area, removes its mark and returns true. `row` and `column` hold
  /// the cell and are where the next search may begin; start them at the area's first cell.
  /// One sheet of the area only.
  bool takeMarked(const Area& area, int sheet, int& row, int& column);
  void unmark(int sheet, int row, int column);

 private:
  struct Strip {
    std::uint32_t first = 0;
    std::uint32_t words = 0;
  };
  const Strip* stripOf(int sheet, int column) const {
    const auto s = static_cast<size_t>(sheet);
    if (s >= sheets_.size() || static_cast<size_t>(column) >= sheets_[s].size()) return nullptr;
    return &sheets_[s][static_cast<size_t>(column)];
  }

  std::vector<std::vector<Strip>> sheets_;  // by sheet and column, index 0 unused
  std::vector<std::uint64_t> words_;
  std::vector<std::uint32_t> touched_;
};

}  // namespace lodex::formula
