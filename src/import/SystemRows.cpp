#include "import/SystemRows.h"

#include <algorithm>

namespace lodex {

int SheetStructure::highestRow() const {
  return *std::max_element(rows.begin(), rows.end());
}

bool DescribedSheet::inside(int row, int column) const {
  return row > 0 && column > 0 && row <= cells.MaxRow() && column <= cells.MaxCol();
}

bool DescribedSheet::isDescribed(int column) const {
  return !text(sysrow::Table, column).empty() && !text(sysrow::Field, column).empty() &&
         !text(sysrow::Type, column).empty();
}

std::string DescribedSheet::text(int systemRow, int column) const {
  const int row = structure.row(systemRow);
  return inside(row, column) ? cells.TextRC(row, column) : std::string();
}

void DescribedSheet::setText(int systemRow, int column, std::string_view text) const {
  const int row = structure.row(systemRow);
  if (inside(row, column)) cells.TextRC(row, column, text);
}

void DescribedSheet::insertRow(int row) const {
  cells.InsertRange(row, 1, row, 1, Shift::Rows);
  for (int& number : structure.rows) {
    if (number >= row) ++number;
  }
  if (structure.firstDataRow >= row) ++structure.firstDataRow;
}

void DescribedSheet::addSystemRow(int systemRow, int row) const {
  insertRow(row);
  structure.row(systemRow) = row;
  setText(systemRow, 1, systemRowCaption(systemRow));
}

WideLimits::WideLimits(Worksheet& sheet)
    : sheet_(sheet), number_(sheet.Sheet()), rows_(sheet.MaxRow()), columns_(sheet.MaxCol()) {
  sheet_.MaxRow(maxRows);
  sheet_.MaxCol(maxColumns);
}

WideLimits::~WideLimits() {
  // A sheet that was replaced meanwhile has its own limits.
  if (number_ != sheet_.Sheet()) return;
  if (rows_ < maxRows) sheet_.MaxRow(std::max(rows_, sheet_.LastRow()));
  if (columns_ < maxColumns) sheet_.MaxCol(std::max(columns_, sheet_.LastCol()));
}

}  // namespace lodex
