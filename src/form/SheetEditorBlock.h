#pragma once

#include <algorithm>

namespace lodex {

/// A block of cells, all ends inclusive, counted from 1.
struct CellBlock {
  int row1 = 1, column1 = 1, row2 = 1, column2 = 1;

  /// The block between two corners, whichever way round they are.
  static CellBlock between(int row, int column, int otherRow, int otherColumn) {
    return {std::min(row, otherRow), std::min(column, otherColumn), std::max(row, otherRow),
            std::max(column, otherColumn)};
  }
  int rows() const { return row2 - row1 + 1; }
  int columns() const { return column2 - column1 + 1; }
  bool single() const { return row1 == row2 && column1 == column2; }
  bool empty() const { return row2 < row1 || column2 < column1; }
  bool contains(int row, int column) const {
    return row >= row1 && row <= row2 && column >= column1 && column <= column2;
  }
  bool contains(const CellBlock& other) const {
    return contains(other.row1, other.column1) && contains(other.row2, other.column2);
  }
  /// The part that both have; may be empty.
  CellBlock cutTo(const CellBlock& other) const {
    return {std::max(row1, other.row1), std::max(column1, other.column1),
            std::min(row2, other.row2), std::min(column2, other.column2)};
  }
  bool operator==(const CellBlock&) const = default;
};

}  // namespace lodex
