// Blocks of cells: clearing, moving, copying, searching, sorting and the clipboard.
#include <algorithm>
#include <numeric>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"
#include "worksheet/files/TextWriter.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/References.h"

namespace lodex {
namespace {

void checkOrder(int row1, int column1, int row2, int column2) {
  if (row2 < row1 || column2 < column1) throw Error("The block has its ends in the wrong order");
}

// Numbers, text, truth values, errors, empty: the order in which Sort puts unlike cells.
int sortClass(const Value& value) {
  switch (value.kind()) {
    case ValueKind::Number:
      return 0;
    case ValueKind::Text:
    case ValueKind::NumericText:
      return 1;
    case ValueKind::Boolean:
      return 2;
    case ValueKind::Error:
      return 3;
    default:
      return 4;
  }
}

// Below, equal or above zero; empty cells come last in either direction.
int compareForSort(const Value& a, const Value& b, bool descending) {
  if (a.isEmpty() || b.isEmpty()) return a.isEmpty() - b.isEmpty();
  int order = sortClass(a) - sortClass(b);
  if (order == 0 && a.isText()) {
    order = compareNoCase(a.textView(), b.textView());
  } else if (order == 0) {
    order = a.asNumber() < b.asNumber() ? -1 : a.asNumber() > b.asNumber() ? 1 : 0;
  }
  return descending ? -order : order;
}

bool matches(std::string_view cell, std::string_view text, const FindOptions& options) {
  if (options.wholeCell) return options.matchCase ? cell == text : equalsNoCase(cell, text);
  return options.matchCase ? cell.find(text) != std::string_view::npos
                           : findNoCase(cell, text) != std::string_view::npos;
}

// Moves what belongs to the rows or columns from `at` on by `by`. With a negative one, what belongs
// to the first of them goes.
template <typename T>
void shiftKeys(std::map<int, T>& map, int at, int by, int last) {
  std::map<int, T> shifted;
  for (auto& [key, value] : map) {
    if (key >= at && key + by < at) continue;
    const int place = key < at ? key : key + by;
    if (place <= last) shifted.emplace(place, std::move(value));
  }
  map = std::move(shifted);
}

// What InsertRange (direction 1) or DeleteRange (-1) does to the cells after the block.
formula::Movement movementOf(int row1, int column1, int row2, int column2, Shift shift,
                             int direction) {
  const bool ofRows = shift == Shift::Rows || shift == Shift::Down;
  formula::Movement movement;
  movement.ofRows = ofRows;
  movement.at = ofRows ? row1 : column1;
  movement.count = direction * (ofRows ? row2 - row1 + 1 : column2 - column1 + 1);
  movement.last = ofRows ? maxColumns : maxRows;
  if (shift == Shift::Down) movement.first = column1, movement.last = column2;
  if (shift == Shift::Right) movement.first = row1, movement.last = row2;
  return movement;
}

}  // namespace

void Worksheet::shiftHeadings(SheetData& sheet, bool rows, int at, int by) {
  if (rows) {
    shiftKeys(sheet.rowTexts, at, by, maxRows);
    shiftKeys(sheet.hiddenRows, at, by, maxRows);
  } else {
    shiftKeys(sheet.columnTexts, at, by, maxColumns);
    shiftKeys(sheet.widths, at, by, maxColumns);
    shiftKeys(sheet.hiddenColumns, at, by, maxColumns);
  }
}

void Worksheet::ClearRange(int row1, int column1, int row2, int column2, int /*type*/) {
  SheetData& sheet = checked(current_, row1, column1);
  blockChanges(row1, column1, row2, column2);
  sheet.cells.clear(row1, column1, row2, column2, true);
}

void Worksheet::DeleteRange(int row1, int column1, int row2, int column2, Shift shift) {
  checkOrder(row1, column1, row2, column2);
  SheetData& sheet = checked(current_, row1, column1);
  CellStore& cells = sheet.cells;
  row2 = std::min(row2, maxRows);
  column2 = std::min(column2, maxColumns);
  const int rows = row2 - row1 + 1;
  const int columns = column2 - column1 + 1;
  referencesFollow(movementOf(row1, column1, row2, column2, shift, -1));
  if (shift == Shift::Rows) shiftHeadings(sheet, true, row1, -rows);
  if (shift == Shift::Columns) shiftHeadings(sheet, false, column1, -columns);
  switch (shift) {
    case Shift::Rows:
      return cells.deleteRows(row1, rows, 1, maxColumns);
    case Shift::Columns:
      return cells.deleteColumns(column1, columns, 1, maxRows);
    case Shift::Down:
      return cells.deleteRows(row1, rows, column1, column2);
    case Shift::Right:
      return cells.deleteColumns(column1, columns, row1, row2);
  }
}

void Worksheet::InsertRange(int row1, int column1, int row2, int column2, Shift shift) {
  checkOrder(row1, column1, row2, column2);
  SheetData& sheet = data(current_);
  if (row1 < 1 || column1 < 1) failCell(sheet, row1, column1);
  if (row2 > maxRows || column2 > maxColumns) failCell(sheet, row2, column2);
  const int rows = row2 - row1 + 1;
  const int columns = column2 - column1 + 1;
  const bool moveRows = shift == Shift::Rows || shift == Shift::Down;
  if (moveRows && sheet.cells.lastRow() + rows > maxRows) {
    throw Error("There is no room for " + std::to_string(rows) + " more rows");
  }
  if (!moveRows && sheet.cells.lastColumn() + columns > maxColumns) {
    throw Error("There is no room for " + std::to_string(columns) + " more columns");
  }
  // A narrowed sheet grows, so that what is pushed on stays addressable.
  if (moveRows && sheet.maxRow < maxRows) sheet.maxRow = std::min(maxRows, sheet.maxRow + rows);
  if (!moveRows && sheet.maxColumn < maxColumns) {
    sheet.maxColumn = std::min(maxColumns, sheet.maxColumn + columns);
  }
  referencesFollow(movementOf(row1, column1, row2, column2, shift, 1));
  if (shift == Shift::Rows) shiftHeadings(sheet, true, row1, rows);
  if (shift == Shift::Columns) shiftHeadings(sheet, false, column1, columns);
  switch (shift) {
    case Shift::Rows:
      return sheet.cells.insertRows(row1, rows, 1, maxColumns);
    case Shift::Columns:
      return sheet.cells.insertColumns(column1, columns, 1, maxRows);
    case Shift::Down:
      return sheet.cells.insertRows(row1, rows, column1, column2);
    case Shift::Right:
      return sheet.cells.insertColumns(column1, columns, row1, row2);
  }
}

void Worksheet::copyCell(int sheet, int row, int column, const Worksheet& source, int sourceSheet,
                         int sourceRow, int sourceColumn, int rowsMoved, int columnsMoved) {
  const Cell& from = source.cells(sourceSheet).at(sourceRow, sourceColumn);
  CellStore& target = data(sheet).cells;
  const bool sameBook = &source == this;
  const std::uint32_t format = sameBook || from.format == 0
                                   ? from.format
                                   : formats_->indexOf(source.formats_->at(from.format));
  if (from.kind == ValueKind::Formula) {
    formulasChange();
    target.setFormula(row, column, movedFormula(*from.formula, rowsMoved, columnsMoved));
  } else {
    setContent(data(sheet), sheet, row, column, CellStore::valueOf(from));
  }
  target.setFormat(row, column, format);
}

void Worksheet::CopyRange(int row1, int column1, int row2, int column2, const Worksheet& source,
                          int sourceRow1, int sourceColumn1, int sourceRow2, int sourceColumn2) {
  checkOrder(row1, column1, row2, column2);
  checkOrder(sourceRow1, sourceColumn1, sourceRow2, sourceColumn2);
  checked(current_, row1, column1);
  checked(current_, row2, column2);
  source.checked(source.current_, sourceRow1, sourceColumn1);
  source.checked(source.current_, sourceRow2, sourceColumn2);
  const int sourceRows = sourceRow2 - sourceRow1 + 1;
  const int sourceColumns = sourceColumn2 - sourceColumn1 + 1;
  const int rows = row2 - row1 + 1;
  const int columns = column2 - column1 + 1;
  const bool repeats = rows % sourceRows == 0 && columns % sourceColumns == 0;
  const int copyRows = repeats ? rows : std::min(rows, sourceRows);
  const int copyColumns = repeats ? columns : std::min(columns, sourceColumns);
  // Within one sheet the walk starts at the far end when the target comes after the source, so
  // that nothing is overwritten before it is read. A repeated block cannot be ordered that way.
  const bool sameSheet = &source == this;
  if (sameSheet && repeats && (rows > sourceRows || columns > sourceColumns)) {
    // The copy keeps the place of the source, so that its formulas read the same.
    Worksheet copy;
    for (int row = sourceRow1; row <= sourceRow2; ++row) {
      for (int column = sourceColumn1; column <= sourceColumn2; ++column) {
        copy.copyCell(1, row, column, source, source.current_, row, column, 0, 0);
      }
    }
    CopyRange(row1, column1, row2, column2, copy, sourceRow1, sourceColumn1, sourceRow2,
              sourceColumn2);
    return;
  }
  const bool fromBottom = sameSheet && row1 > sourceRow1;
  const bool fromRight = sameSheet && column1 > sourceColumn1;
  for (int i = 0; i < copyRows; ++i) {
    const int r = fromBottom ? copyRows - 1 - i : i;
    for (int j = 0; j < copyColumns; ++j) {
      const int c = fromRight ? copyColumns - 1 - j : j;
      const int fromRow = sourceRow1 + r % sourceRows;
      const int fromColumn = sourceColumn1 + c % sourceColumns;
      copyCell(current_, row1 + r, column1 + c, source, source.current_, fromRow, fromColumn,
               row1 + r - fromRow, column1 + c - fromColumn);
    }
  }
}

void Worksheet::SetSelection(int row1, int column1, int row2, int column2) {
  checked(current_, std::max(row1, 1), std::max(column1, 1));
  data(current_).selection = {row1, column1, row2, column2};
  SetActiveCell(std::max(row1, 1), std::max(column1, 1));
}

void Worksheet::SetActiveCell(int row, int column) {
  SheetData& sheet = checked(current_, row, column);
  sheet.activeRow = row;
  sheet.activeColumn = column;
}

FindResult Worksheet::Find(std::string_view text, int sheet, int row1, int column1, int row2,
                           int column2, FindOptions options) const {
  const SheetData& s = checked(sheet, row1, column1);
  row2 = std::min(row2, s.cells.lastRow());
  column2 = std::min(column2, s.cells.lastColumn());
  FindResult result;
  for (int row = row1; row <= row2; ++row) {
    for (int column = column1; column <= column2; ++column) {
      const Cell& cell = s.cells.at(row, column);
      if (cell.kind == ValueKind::Empty) continue;
      const bool plainText = cell.kind == ValueKind::Text || cell.kind == ValueKind::NumericText;
      const bool hit = plainText ? matches(SharedText::viewOf(cell.text), text, options)
                                 : matches(displayed(cell), text, options);
      if (!hit) continue;
      if (++result.found == 1 || options.lastHit) {
        result.row = row;
        result.column = column;
      }
    }
  }
  return result;
}

void Worksheet::Sort(int row1, int column1, int row2, int column2, bool byRows,
                     const std::vector<SortKey>& keys) {
  checkOrder(row1, column1, row2, column2);
  checked(current_, row1, column1);
  checked(current_, row2, column2);
  for (const SortKey& key : keys) {
    checked(current_, byRows ? row1 : key.index, byRows ? key.index : column1);
  }
  const int first = byRows ? row1 : column1;
  const int count = byRows ? row2 - row1 + 1 : column2 - column1 + 1;
  const CellStore& cells = data(current_).cells;
  std::vector<std::vector<Value>> keyValues(keys.size());
  for (size_t k = 0; k < keys.size(); ++k) {
    for (int i = first; i < first + count; ++i) {
      keyValues[k].push_back(byRows ? cells.value(i, keys[k].index)
                                    : cells.value(keys[k].index, i));
    }
  }
  std::vector<int> order(static_cast<size_t>(count));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    for (size_t k = 0; k < keys.size(); ++k) {
      const int sign = compareForSort(keyValues[k][a], keyValues[k][b], keys[k].descending);
      if (sign != 0) return sign < 0;
    }
    return false;
  });
  Worksheet before;
  for (int row = row1; row <= row2; ++row) {
    for (int column = column1; column <= column2; ++column) {
      before.copyCell(1, row, column, *this, current_, row, column, 0, 0);
    }
  }
  for (int i = 0; i < count; ++i) {
    const int moved = i - order[i];
    if (moved == 0) continue;
    if (byRows) {
      for (int column = column1; column <= column2; ++column) {
        copyCell(current_, row1 + i, column, before, 1, row1 + order[i], column, moved, 0);
      }
    } else {
      for (int row = row1; row <= row2; ++row) {
        copyCell(current_, row, column1 + i, before, 1, row, column1 + order[i], 0, moved);
      }
    }
  }
}

void Worksheet::EditCopy(Clipboard& clipboard) const {
  std::string text;
  const int lastRow = std::min(SelEndRow(), LastRow());
  const int lastColumn = std::min(SelEndCol(), LastCol());
  for (int row = std::max(1, SelStartRow()); row <= lastRow; ++row) {
    for (int column = std::max(1, SelStartCol()); column <= lastColumn; ++column) {
      if (column > std::max(1, SelStartCol())) text += '\t';
      appendField(text, TextRC(row, column), '\t');
    }
    text += "\r\n";
  }
  clipboard.setText(text);
}

void Worksheet::EditCut(Clipboard& clipboard) {
  EditCopy(clipboard);
  ClearRange(std::max(1, SelStartRow()), std::max(1, SelStartCol()), SelEndRow(), SelEndCol());
}

void Worksheet::EditPaste(Clipboard& clipboard) {
  enterBlock(clipboard.text(), true);
}
void Worksheet::EditPasteValues(Clipboard& clipboard) {
  enterBlock(clipboard.text(), false);
}

void Worksheet::enterBlock(std::string_view tabText, bool formulas) {
  splitCells(tabText, '\t', [&](int row, int column, std::string_view piece) {
    row += Row() - 1;
    column += Col() - 1;
    if (formulas && piece.size() > 1 && piece.front() == '=') {
      EntryRC(row, column, piece);
    } else {
      TextRC(row, column, piece);
    }
  });
}

void Worksheet::CopyAll(const Worksheet& source) {
  if (&source == this) return;
  Worksheet copy;
  copy.formats_ = std::make_unique<FormatTable>(*source.formats_);
  copy.names_ = source.names_;
  copy.permissions_ = source.permissions_;
  copy.title_ = source.title_;
  copy.current_ = source.current_;
  copy.dates1904_ = source.dates1904_;
  copy.sheets_.clear();
  for (const auto& from : source.sheets_) {
    auto sheet = std::make_unique<SheetData>();
    sheet->name = from->name;
    sheet->columnTexts = from->columnTexts;
    sheet->rowTexts = from->rowTexts;
    sheet->widths = from->widths;
    sheet->hiddenColumns = from->hiddenColumns;
    sheet->hiddenRows = from->hiddenRows;
    sheet->selection = from->selection;
    sheet->activeRow = from->activeRow;
    sheet->activeColumn = from->activeColumn;
    sheet->maxRow = from->maxRow;
    sheet->maxColumn = from->maxColumn;
    sheet->fixedRows = from->fixedRows;
    sheet->visibility = from->visibility;
    from->cells.forEach([&](int row, int column, const Cell& cell) {
      if (cell.kind == ValueKind::Formula) {
        sheet->cells.setFormula(row, column, std::make_unique<FormulaCell>(*cell.formula));
      } else {
        sheet->cells.set(row, column, CellStore::valueOf(cell));
      }
      sheet->cells.setFormat(row, column, cell.format);
    });
    copy.sheets_.push_back(std::move(sheet));
  }
  *this = std::move(copy);
}

}  // namespace lodex
