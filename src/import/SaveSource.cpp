#include "import/SaveSource.h"

#include <algorithm>

#include "basic/A1.h"
#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

int SaveSource::firstRow() const {
  return std::max({1, saved_.structure.firstDataRow, saved_.structure.highestRow() + 1});
}

std::string SaveSource::value(int row, int column) const {
  std::string cell = text(row, column);
  if (trimWhite(cell).empty()) cell.clear();
  return cell;
}

int SaveSource::firstValue(int column) const {
  for (int row = firstRow(); row <= lastRow(); ++row) {
    if (!value(row, column).empty()) return row;
  }
  return 0;
}

std::string SaveSource::described(int systemRow, int column) const {
  return has(systemRow) ? text(saved_.structure.row(systemRow), column) : std::string();
}

std::string SaveSource::table(int column) const {
  if (!has(sysrow::Table)) return saved_.cells->SheetName(sheet_);
  const std::string name = described(sysrow::Table, column);
  return column == idColumn() && name == systemRowCaption(sysrow::Table) ? "USER" : name;
}

std::string SaveSource::field(int column) const {
  const std::string name = has(sysrow::Field) ? described(sysrow::Field, column) : heading(column);
  const bool unnamed = name.empty() || name == systemRowCaption(sysrow::Field);
  return column == idColumn() && unnamed ? "SampleNo" : name;
}

// What a column is called where nobody named its field.
std::string SaveSource::heading(int column) const {
  const std::string title = described(sysrow::Header, column);
  if (!title.empty() || has(sysrow::Header)) return title;
  const std::string text = saved_.cells->ColText(column);
  return text.empty() || text.starts_with('-') ? columnLetters(column) : text;
}

std::vector<SaveColumn> SaveSource::columns() const {
  std::vector<SaveColumn> all;
  for (int column = idColumn() + 1; column <= lastColumn(); ++column) {
    SaveColumn one{column, heading(column), table(column), field(column)};
    if (one.table.empty() || one.table == noTable || one.field.empty()) continue;
    if (one.table == systemRowCaption(sysrow::Table)) continue;
    if (one.heading.empty()) one.heading = columnLetters(column);
    one.multiplier = parseNumber(described(sysrow::Multiplier, column));
    one.digits = parseInteger(described(sysrow::Digits, column));
    all.push_back(std::move(one));
  }
  return all;
}

void SaveSource::reportHomeless(Findings& found) const {
  for (int column = 1; column <= lastColumn(); ++column) {
    const std::string name = table(column);
    const bool named = !name.empty() && name != systemRowCaption(sysrow::Table);
    const bool stored = column > idColumn() && named && !field(column).empty();
    if (column == idColumn() || name == noTable || stored) continue;
    const int row = firstValue(column);
    if (row == 0) continue;
    if (column < idColumn()) {
      found.warn("The column is in front of the identifiers and was not saved", place(row, column));
    } else {
      found.error("The column has values but no table or no field, and was not saved",
                  place(row, column));
    }
  }
}

}  // namespace lodex
