#pragma once

#include <optional>
#include <string>
#include <vector>

#include "basic/Findings.h"
#include "import/SaveSheets.h"

namespace lodex {

/// A column of a sheet that goes into a field of a table.
struct SaveColumn {
  int column = 0;
  std::string heading;  // what the column is called in messages
  std::string table;
  std::string field;
  std::optional<double> multiplier{};
  std::optional<int> digits{};
};

/// One sheet of a workbook with its description: what is to be stored, and where.
class SaveSource {
 public:
  SaveSource(const SheetToSave& saved, int sheet) : saved_(saved), sheet_(sheet) {}

  int idColumn() const { return saved_.structure.idColumn; }
  int firstRow() const;
  int lastRow() const { return saved_.cells->LastRow(sheet_); }
  int lastColumn() const { return saved_.cells->LastCol(sheet_); }
  std::string text(int row, int column) const { return saved_.cells->TextSRC(sheet_, row, column); }
  /// The cell's text; "" for a cell of nothing but blanks.
  std::string value(int row, int column) const;
  /// The first data row in which the column has a value; 0 for none.
  int firstValue(int column) const;

  int systemRow(int index) const { return saved_.structure.row(index); }
  bool has(int systemRow) const { return saved_.structure.row(systemRow) > 0; }
  std::string described(int systemRow, int column) const;
  std::string table(int column) const;
  std::string field(int column) const;

  /// The columns after the ID column that have a table and a field, in their order.
  std::vector<SaveColumn> columns() const;
  /// Reports the columns with values that go into no field.
  void reportHomeless(Findings& found) const;

  /// The place of a cell in findings.
  Place place(int row, int column, const std::string& record = {}) const {
    return {.sheet = saved_.name, .row = row, .column = column, .record = record};
  }

 private:
  std::string heading(int column) const;

  const SheetToSave& saved_;
  int sheet_;
};

}  // namespace lodex
