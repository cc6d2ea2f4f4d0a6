#pragma once

#include <string>
#include <vector>

#include "modal/MineralData.h"
#include "modal/Watch.h"
#include "worksheet/Worksheet.h"

namespace lodex {

class frmResult;

/// An identified data sheet as a source of assays: its worksheet and where its structure is.
/// Rows and columns count from 1; a row of 0 is absent.
struct AssaySheet {
  const Worksheet* sheet = nullptr;
  int headerRow = 0;
  int elementRow = 0;
  int methodRow = 0;
  int unitRow = 0;
  int firstDataRow = 0;
  int idColumn = 0;
  std::string caption{};  // names the sheet in what is reported
};

/// The method of columns that name none, and of equations that take an element's first column.
inline constexpr const char* firstMethod = "<<First>>";

/// Which row of F1ELoc a column's element has, and how its values become per cent of the table's
/// form.
struct AssayColumn {
  int elementRow = 0;  // 0 when the element table does not know the column
  double factor = 1;
  bool isTotal = false;  // "Fe2O3tot": all of the element, where FeO may be a part of it
  std::string method;
  std::string unit;
  std::string heading;
};

/// What is known of column `column` of the sheet.
AssayColumn describeColumn(const AssaySheet& source, int column, const Worksheet& F1ELoc);

/// Fills F1Ini, F1Kirja and SampleIDs from a data sheet. Of several columns with the same element
/// and method a total serves, else the first. An empty cell stays empty, text that is not a number
/// counts as 0. Reports unknown columns and units, text among numbers, negative values and rows
/// without sample identifier. Returns the columns of F1Ini that hold nothing but such text. Throws
/// Error when the sheet has no ELEMENT row, no identifier column or no column that the element
/// table knows.
std::vector<int> retrieveAssays(const AssaySheet& source, const Worksheet& F1ELoc,
                                ModalLists& lists, frmResult& result, const Watch& watch);

}  // namespace lodex
