#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "form/EditHistory.h"
#include "form/SheetEditorBlock.h"
#include "worksheet/Worksheet.h"

/// The kinds of edits that a history of a worksheet holds.
namespace lodex {

/// Makes a sheet the current one for as long as it lives.
class OnSheet {
 public:
  OnSheet(Worksheet& book, int sheet) : book_(book), before_(book.Sheet()) { book_.Sheet(sheet); }
  ~OnSheet() { book_.Sheet(std::min(before_, book_.NumSheets())); }
  OnSheet(const OnSheet&) = delete;
  OnSheet& operator=(const OnSheet&) = delete;

 private:
  Worksheet& book_;
  int before_;
};

/// Calls visit(row, column, cell) for the cells of a block that have content or a format.
template <typename Visit>
void forStored(const CellStore& store, const CellBlock& block, Visit visit) {
  const int lastColumn = std::min(block.column2, store.storedColumns());
  for (int column = block.column1; column <= lastColumn; ++column) {
    const int deepest = static_cast<int>(store.storedBlocks(column) * CellStore::blockRows) - 1;
    for (int row = block.row1; row <= std::min(block.row2, deepest); ++row) {
      const Cell& cell = store.at(row, column);
      if (cell.kind != ValueKind::Empty || cell.format != 0) visit(row, column, cell);
    }
  }
}

/// Contents and formats of some blocks of a sheet, kept apart from it.
class CellPatch {
 public:
  CellPatch(const Worksheet& book, int sheet, std::vector<CellBlock> blocks);

  /// Puts the kept cells in place and keeps those that were there.
  void exchange(Worksheet& book);
  /// Puts the kept cells in place.
  void put(Worksheet& book) const;
  int sheet() const { return sheet_; }
  /// The smallest block that holds all.
  const CellBlock& bounds() const { return bounds_; }
  size_t bytes() const;

 private:
  int sheet_;
  std::vector<CellBlock> blocks_;
  CellBlock bounds_;
  CellStore cells_;  // row 1, column 1 is the first cell of the bounds
};

/// Cells that changed in place.
class CellStep : public EditStep {
 public:
  /// Make it before the change.
  CellStep(Worksheet& book, int sheet, std::vector<CellBlock> blocks)
      : book_(book), patch_(book, sheet, std::move(blocks)) {}
  void undo() override { exchange(); }
  void redo() override { exchange(); }
  size_t bytes() const override { return patch_.bytes(); }

 private:
  void exchange();
  Worksheet& book_;
  CellPatch patch_;
};

/// Cells that were inserted or deleted, with the cells after them moving.
class MovementStep : public EditStep {
 public:
  enum class Kind { Insert, Delete };
  /// Make it before the change; `redo` makes it.
  MovementStep(Worksheet& book, int sheet, Kind kind, const CellBlock& block, Shift shift);
  void undo() override;
  void redo() override;
  size_t bytes() const override;

 private:
  struct KeptFormula {
    int sheet, row, column;
    std::unique_ptr<FormulaCell> formula;
  };
  void keepFormulas();
  void restoreFormulas();
  void keepHeadings();
  void restoreHeadings();

  Worksheet& book_;
  int sheet_;
  Kind kind_;
  CellBlock block_;
  Shift shift_;
  int maxRow_, maxColumn_;
  std::unique_ptr<CellPatch> deleted_;
  std::vector<KeptFormula> formulas_;  // as they were, references and all
  std::vector<DefinedName> names_;
  std::map<int, std::string> texts_;  // headings of deleted rows or columns
  std::map<int, double> widths_;
  std::vector<int> hidden_;
};

/// Widths, hidden rows and columns and frozen rows of a sheet.
class LayoutStep : public EditStep {
 public:
  /// Make it before the change.
  LayoutStep(Worksheet& book, int sheet);
  void undo() override { exchange(); }
  void redo() override { exchange(); }
  size_t bytes() const override;

 private:
  void exchange();
  Worksheet& book_;
  int sheet_;
  int fixedRows_;
  std::map<int, double> widths_;
  std::map<int, bool> hiddenColumns_;
  std::map<int, bool> hiddenRows_;
};

/// The heading text of a row or column.
class HeadingStep : public EditStep {
 public:
  HeadingStep(Worksheet& book, int sheet, bool ofRow, int index);
  void undo() override { exchange(); }
  void redo() override { exchange(); }
  size_t bytes() const override { return text_.size(); }

 private:
  void exchange();
  Worksheet& book_;
  int sheet_;
  bool ofRow_;
  int index_;
  std::string text_;
};

/// A whole workbook, for commands that may change anything. Permissions are not part of it.
class BookStep : public EditStep {
 public:
  /// Make it before the change.
  explicit BookStep(Worksheet& book) : book_(book) { kept_.CopyAll(book); }
  void undo() override { exchange(); }
  void redo() override { exchange(); }
  size_t bytes() const override;

 private:
  void exchange();
  Worksheet& book_;
  Worksheet kept_;
};

/// True when any cell of the workbook has a formula.
bool holdsFormulas(const Worksheet& book);

}  // namespace lodex
