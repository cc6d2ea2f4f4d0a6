#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// A plain table of texts, used to join the rows of data sheets on their sample identifiers. Rows
/// and columns count from 1; a position outside the table throws Error.
class SampleTable {
 public:
  /// Allocates the table, all cells empty.
  void Size(int rows, int columns);
  /// Keeps the cells and cuts or extends the rows.
  void Resize(int rows);

  const std::string& Cell(int column, int row) const;
  void Cell(int column, int row, std::string_view text);

  /// Orders the rows by a column's text, ascending; equal rows keep their order. Cell keeps the
  /// original order, SortedCell reads in the sorted one.
  void SortBy(int column);
  const std::string& SortedCell(int column, int row) const;

  int RowCount() const { return rows_; }
  int ColCount() const { return columns_; }

 private:
  size_t place(int column, int row) const;

  int rows_ = 0;
  int columns_ = 0;
  std::vector<std::string> cells_;  // row by row
  std::vector<int> order_;          // sorted place -> row, both from 0; empty while unsorted
};

}  // namespace lodex
