#include "import/StructureEdit.h"

#include <algorithm>

#include "basic/Error.h"
#include "import/Identification.h"
#include "worksheet/NumberFormat.h"

namespace lodex {
namespace {

// The text that carries a value through TextRC without losing digits that its format hides.
std::string carriedText(const Worksheet& sheet, int row, int column) {
  const Value value = sheet.ValueRC(row, column);
  const CellFormat& format = sheet.formatOf(sheet.Sheet(), row, column);
  if (value.isNumber() && !isDateFormat(format.numberFormat)) return value.asText();
  return sheet.TextRC(row, column);
}

// Applies a change to the references of every item that F1Ref knows.
template <typename Change>
void changeReferences(Worksheet& F1Ref, Change change) {
  for (int item = 1; item <= F1Ref.LastRow(); ++item) {
    std::vector<ItemReference> references = referencesOf(F1Ref, item);
    if (references.empty()) continue;
    change(references);
    setReferences(F1Ref, item, references);
  }
}

}  // namespace

std::vector<ItemReference> referencesOf(const Worksheet& F1Ref, int item) {
  std::vector<ItemReference> references;
  const bool formulaItem = item >= firstFormulaItem;
  const int step = formulaItem ? 1 : 2;
  for (int column = formulaItem ? 1 : 3; column <= F1Ref.LastCol(); column += step) {
    const int target = static_cast<int>(F1Ref.NumberRC(item, column));
    if (target < 1) continue;
    references.push_back(
        {formulaItem ? 0 : static_cast<int>(F1Ref.NumberRC(item, column - 1)), target});
  }
  return references;
}

void setReferences(Worksheet& F1Ref, int item, const std::vector<ItemReference>& references) {
  F1Ref.ClearRange(item, 1, item, std::max(1, F1Ref.LastCol()));
  if (references.empty()) return;
  const bool formulaItem = item >= firstFormulaItem;
  if (!formulaItem) F1Ref.NumberRC(item, 1, static_cast<double>(references.size()));
  int column = formulaItem ? 1 : 2;
  for (const ItemReference& reference : references) {
    if (!formulaItem) F1Ref.NumberRC(item, column++, reference.sheet);
    F1Ref.NumberRC(item, column++, reference.column);
  }
}

void renumberReferences(Worksheet& F1Ref, int sheetNumber) {
  changeReferences(F1Ref, [sheetNumber](std::vector<ItemReference>& references) {
    for (ItemReference& reference : references) reference.sheet = sheetNumber;
  });
}

void insertRows(const DescribedSheet& sheet, int row, int count) {
  if (row < 1 || count < 1) return;
  sheet.cells.InsertRange(row, 1, row + count - 1, 1, Shift::Rows);
  for (int& number : sheet.structure.rows) {
    if (number >= row) number += count;
  }
  if (sheet.structure.firstDataRow >= row) sheet.structure.firstDataRow += count;
}

void deleteRows(const DescribedSheet& sheet, int row1, int row2) {
  if (row1 < 1 || row2 < row1) return;
  sheet.cells.DeleteRange(row1, 1, row2, 1, Shift::Rows);
  const int count = row2 - row1 + 1;
  for (int& number : sheet.structure.rows) {
    if (number > row2) number -= count;
  }
  if (sheet.structure.firstDataRow > row2) sheet.structure.firstDataRow -= count;
}

void insertColumns(const DescribedSheet& sheet, Worksheet& F1Ref, int column, int count) {
  if (column < 1 || count < 1) return;
  sheet.cells.InsertRange(1, column, 1, column + count - 1, Shift::Columns);
  for (int* number : {&sheet.structure.idColumn, &sheet.structure.mineralColumn}) {
    if (*number >= column) *number += count;
  }
  changeReferences(F1Ref, [column, count](std::vector<ItemReference>& references) {
    for (ItemReference& reference : references) {
      if (reference.column >= column) reference.column += count;
    }
  });
}

void deleteColumns(const DescribedSheet& sheet, Worksheet& F1Ref, int column1, int column2) {
  if (column1 < 1 || column2 < column1) return;
  sheet.cells.DeleteRange(1, column1, 1, column2, Shift::Columns);
  const int count = column2 - column1 + 1;
  for (int* number : {&sheet.structure.idColumn, &sheet.structure.mineralColumn}) {
    if (*number > column2) *number -= count;
  }
  changeReferences(F1Ref, [=](std::vector<ItemReference>& references) {
    std::erase_if(references, [=](const ItemReference& reference) {
      return reference.column >= column1 && reference.column <= column2;
    });
    for (ItemReference& reference : references) {
      if (reference.column > column2) reference.column -= count;
    }
  });
}

void redrawMarks(const DescribedSheet& sheet, const Worksheet& F1Ref, const Worksheet& F1Data) {
  if (!sheet.has(sysrow::Identified)) return;
  for (int column = 1; column <= sheet.cells.LastCol(); ++column) {
    if (sheet.text(sysrow::Identified, column).starts_with("X(")) {
      sheet.setText(sysrow::Identified, column, "");
    }
  }
  for (const KnownItem& item : knownItems(F1Data, 1, std::min(F1Ref.LastRow(), F1Data.LastRow()))) {
    const std::vector<ItemReference> references = referencesOf(F1Ref, item.number);
    for (size_t k = 0; k < references.size(); ++k) {
      sheet.setText(sysrow::Identified, references[k].column,
                    "X(" + item.symbol + ")" + std::to_string(k + 1) + "/" +
                        std::to_string(references.size()));
    }
  }
}

void transpose(Worksheet& sheet) {
  const int rows = sheet.LastRow();
  const int columns = sheet.LastCol();
  if (rows == 0) return;
  if (rows > maxColumns) {
    throw Error("The sheet has " + std::to_string(rows) + " rows; only " +
                std::to_string(maxColumns) + " fit side by side");
  }
  Worksheet before;
  before.CopyRange(1, 1, rows, columns, sheet, 1, 1, rows, columns);
  sheet.ClearRange(1, 1, rows, columns);
  sheet.MaxRow(maxRows);
  sheet.MaxCol(maxColumns);
  for (int row = 1; row <= rows; ++row) {
    for (int column = 1; column <= columns; ++column) {
      if (!before.HasContent(row, column)) continue;
      sheet.TextRC(column, row, carriedText(before, row, column));
    }
  }
}

void copySystemRow(const DescribedSheet& sheet, int systemRow, int toRow) {
  const int fromRow = sheet.structure.row(systemRow);
  if (fromRow == 0 || fromRow == toRow) return;
  for (int column = sheet.structure.idColumn + 1; column <= sheet.cells.LastCol(); ++column) {
    if (!sheet.inside(fromRow, column) || !sheet.inside(toRow, column)) return;
    sheet.cells.ValueSRC(sheet.cells.Sheet(), toRow, column, sheet.cells.ValueRC(fromRow, column));
  }
}

}  // namespace lodex
