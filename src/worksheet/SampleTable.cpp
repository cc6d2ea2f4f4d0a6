#include "worksheet/SampleTable.h"

#include <algorithm>
#include <numeric>

#include "basic/Error.h"

namespace lodex {

void SampleTable::Size(int rows, int columns) {
  if (rows < 0 || columns < 0) throw Error("A table cannot have a negative size");
  rows_ = rows;
  columns_ = columns;
  cells_.assign(static_cast<size_t>(rows) * static_cast<size_t>(columns), {});
  order_.clear();
}

void SampleTable::Resize(int rows) {
  if (rows < 0) throw Error("A table cannot have a negative size");
  rows_ = rows;
  cells_.resize(static_cast<size_t>(rows) * static_cast<size_t>(columns_));
  order_.clear();
}

size_t SampleTable::place(int column, int row) const {
  if (row < 1 || row > rows_ || column < 1 || column > columns_) {
    throw Error("Row " + std::to_string(row) + ", column " + std::to_string(column) +
                " lies outside of the table (" + std::to_string(rows_) + " rows, " +
                std::to_string(columns_) + " columns)");
  }
  return static_cast<size_t>(row - 1) * static_cast<size_t>(columns_) +
         static_cast<size_t>(column - 1);
}

const std::string& SampleTable::Cell(int column, int row) const {
  return cells_[place(column, row)];
}

void SampleTable::Cell(int column, int row, std::string_view text) {
  cells_[place(column, row)] = text;
}

void SampleTable::SortBy(int column) {
  if (rows_ > 0) place(column, 1);
  order_.resize(static_cast<size_t>(rows_));
  std::iota(order_.begin(), order_.end(), 0);
  std::stable_sort(order_.begin(), order_.end(),
                   [&](int a, int b) { return Cell(column, a + 1) < Cell(column, b + 1); });
}

const std::string& SampleTable::SortedCell(int column, int row) const {
  const size_t original = place(column, row);
  return order_.empty() ? cells_[original] : Cell(column, order_[static_cast<size_t>(row) - 1] + 1);
}

}  // namespace lodex
