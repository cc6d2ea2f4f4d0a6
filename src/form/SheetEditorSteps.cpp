#include "form/SheetEditorSteps.h"

#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

// An empty map node, its key and its links, in round figures.
constexpr size_t mapNode = 64;

CellBlock boundsOf(const std::vector<CellBlock>& blocks) {
  CellBlock bounds = blocks.front();
  for (const CellBlock& block : blocks) {
    bounds.row1 = std::min(bounds.row1, block.row1);
    bounds.column1 = std::min(bounds.column1, block.column1);
    bounds.row2 = std::max(bounds.row2, block.row2);
    bounds.column2 = std::max(bounds.column2, block.column2);
  }
  return bounds;
}

void copyInto(CellStore& target, int row, int column, const Cell& cell, std::uint32_t format) {
  if (cell.kind == ValueKind::Formula) {
    target.setFormula(row, column, std::make_unique<FormulaCell>(*cell.formula));
  } else {
    target.set(row, column, CellStore::valueOf(cell));
  }
  target.setFormat(row, column, format);
}

size_t storeBytes(const CellStore& store) {
  size_t blocks = 0;
  for (int column = 1; column <= store.storedColumns(); ++column) {
    blocks += store.storedBlocks(column);
  }
  return blocks * CellStore::blockRows * sizeof(Cell);
}

// Selects what an undo has changed, so that the user sees it.
void showBlock(Worksheet& book, int sheet, const CellBlock& block) {
  book.Sheet(sheet);
  const CellBlock seen = block.cutTo({1, 1, book.MaxRow(), book.MaxCol()});
  if (!seen.empty()) book.SetSelection(seen.row1, seen.column1, seen.row2, seen.column2);
}

}  // namespace

bool holdsFormulas(const Worksheet& book) {
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    const bool none = book.cells(sheet).visit(
        1, 1, maxRows, maxColumns,
        [](int, int, const Cell& cell) { return cell.kind != ValueKind::Formula; });
    if (!none) return true;
  }
  return false;
}

// --- CellPatch ---

CellPatch::CellPatch(const Worksheet& book, int sheet, std::vector<CellBlock> blocks)
    : sheet_(sheet), blocks_(std::move(blocks)), bounds_(boundsOf(blocks_)) {
  const CellStore& store = book.cells(sheet);
  for (const CellBlock& block : blocks_) {
    forStored(store, block, [this](int row, int column, const Cell& cell) {
      copyInto(cells_, row - bounds_.row1 + 1, column - bounds_.column1 + 1, cell, cell.format);
    });
  }
}

void CellPatch::put(Worksheet& book) const {
  if (sheet_ > book.NumSheets()) return;
  CellStore& store = book.cellsForReader(sheet_);
  for (const CellBlock& block : blocks_) {
    store.clear(block.row1, block.column1, block.row2, block.column2, true);
  }
  const std::uint32_t formats = book.formats().size();
  cells_.forEach([&](int row, int column, const Cell& cell) {
    copyInto(store, row + bounds_.row1 - 1, column + bounds_.column1 - 1, cell,
             cell.format < formats ? cell.format : 0);
  });
}

void CellPatch::exchange(Worksheet& book) {
  if (sheet_ > book.NumSheets()) return;
  CellPatch now(book, sheet_, blocks_);
  put(book);
  cells_ = std::move(now.cells_);
}

size_t CellPatch::bytes() const {
  return storeBytes(cells_) + blocks_.size() * sizeof(CellBlock);
}

void CellStep::exchange() {
  patch_.exchange(book_);
  if (patch_.sheet() <= book_.NumSheets()) showBlock(book_, patch_.sheet(), patch_.bounds());
}

// --- MovementStep ---

MovementStep::MovementStep(Worksheet& book, int sheet, Kind kind, const CellBlock& block,
                           Shift shift)
    : book_(book), sheet_(sheet), kind_(kind), block_(block), shift_(shift) {
  const OnSheet on(book_, sheet_);
  maxRow_ = book_.MaxRow();
  maxColumn_ = book_.MaxCol();
  if (shift == Shift::Rows) block_.column1 = 1, block_.column2 = maxColumns;
  if (shift == Shift::Columns) block_.row1 = 1, block_.row2 = maxRows;
  keepFormulas();
  if (kind == Kind::Delete) {
    deleted_ = std::make_unique<CellPatch>(book_, sheet_, std::vector<CellBlock>{block_});
    keepHeadings();
  }
}

void MovementStep::keepFormulas() {
  names_ = book_.definedNames();
  for (int sheet = 1; sheet <= book_.NumSheets(); ++sheet) {
    book_.cells(sheet).visit(1, 1, maxRows, maxColumns, [&](int row, int column, const Cell& cell) {
      if (cell.kind == ValueKind::Formula) {
        formulas_.push_back({sheet, row, column, std::make_unique<FormulaCell>(*cell.formula)});
      }
      return true;
    });
  }
}

// Moving back leaves references that were cut short or lost; those come back from what was kept.
void MovementStep::restoreFormulas() {
  book_.setDefinedNames(names_);
  for (const KeptFormula& kept : formulas_) {
    if (kept.sheet > book_.NumSheets()) continue;
    const Cell& cell = book_.cells(kept.sheet).at(kept.row, kept.column);
    const bool same = cell.kind == ValueKind::Formula && !cell.formula->array &&
                      !kept.formula->array && cell.formula->text == kept.formula->text;
    if (same) continue;
    book_.cellsForReader(kept.sheet)
        .setFormula(kept.row, kept.column, std::make_unique<FormulaCell>(*kept.formula));
  }
}

void MovementStep::keepHeadings() {
  if (shift_ == Shift::Rows) {
    for (int row = block_.row1; row <= block_.row2; ++row) {
      if (std::string text = book_.RowText(row); !text.empty()) texts_[row] = std::move(text);
      if (book_.rowHidden(sheet_, row)) hidden_.push_back(row);
    }
  }
  if (shift_ == Shift::Columns) {
    for (int column = block_.column1; column <= block_.column2; ++column) {
      if (std::string text = book_.ColText(column); !text.empty()) texts_[column] = std::move(text);
      if (book_.columnHidden(sheet_, column)) hidden_.push_back(column);
      if (const double width = book_.columnWidth(sheet_, column); width != 0) {
        widths_[column] = width;
      }
    }
  }
}

void MovementStep::restoreHeadings() {
  for (const auto& [index, text] : texts_) {
    if (shift_ == Shift::Rows) {
      book_.RowText(index, text);
    } else {
      book_.ColText(index, text);
    }
  }
  for (const int index : hidden_) {
    if (shift_ == Shift::Rows) {
      book_.rowHidden(sheet_, index, true);
    } else {
      book_.columnHidden(sheet_, index, true);
    }
  }
  for (const auto& [column, width] : widths_) book_.columnWidth(sheet_, column, width);
}

void MovementStep::undo() {
  if (sheet_ > book_.NumSheets()) return;
  {
    const OnSheet on(book_, sheet_);
    if (kind_ == Kind::Insert) {
      book_.DeleteRange(block_.row1, block_.column1, block_.row2, block_.column2, shift_);
    } else {
      book_.InsertRange(block_.row1, block_.column1, block_.row2, block_.column2, shift_);
      deleted_->put(book_);
      restoreHeadings();
    }
    restoreFormulas();
    book_.MaxRow(maxRow_);
    book_.MaxCol(maxColumn_);
  }
  showBlock(book_, sheet_, block_);
}

void MovementStep::redo() {
  if (sheet_ > book_.NumSheets()) return;
  {
    const OnSheet on(book_, sheet_);
    if (kind_ == Kind::Insert) {
      book_.InsertRange(block_.row1, block_.column1, block_.row2, block_.column2, shift_);
    } else {
      book_.DeleteRange(block_.row1, block_.column1, block_.row2, block_.column2, shift_);
    }
  }
  showBlock(book_, sheet_, block_);
}

size_t MovementStep::bytes() const {
  size_t bytes = deleted_ ? deleted_->bytes() : 0;
  for (const KeptFormula& kept : formulas_) {
    bytes += sizeof kept + sizeof(FormulaCell) + kept.formula->text.size();
  }
  return bytes + (texts_.size() + widths_.size() + hidden_.size()) * mapNode;
}

// --- LayoutStep ---

LayoutStep::LayoutStep(Worksheet& book, int sheet)
    : book_(book),
      sheet_(sheet),
      fixedRows_(book.frozenRows(sheet)),
      widths_(book.columnWidths(sheet)),
      hiddenColumns_(book.hiddenColumns(sheet)),
      hiddenRows_(book.hiddenRows(sheet)) {}

void LayoutStep::exchange() {
  if (sheet_ > book_.NumSheets()) return;
  LayoutStep now(book_, sheet_);
  for (const auto& [column, width] : now.widths_) book_.columnWidth(sheet_, column, 0);
  for (const auto& [column, hidden] : now.hiddenColumns_) {
    book_.columnHidden(sheet_, column, false);
  }
  for (const auto& [row, hidden] : now.hiddenRows_) book_.rowHidden(sheet_, row, false);
  for (const auto& [column, width] : widths_) book_.columnWidth(sheet_, column, width);
  for (const auto& [column, hidden] : hiddenColumns_) book_.columnHidden(sheet_, column, hidden);
  for (const auto& [row, hidden] : hiddenRows_) book_.rowHidden(sheet_, row, hidden);
  book_.Sheet(sheet_);
  book_.FixedRows(fixedRows_);
  std::swap(fixedRows_, now.fixedRows_);
  std::swap(widths_, now.widths_);
  std::swap(hiddenColumns_, now.hiddenColumns_);
  std::swap(hiddenRows_, now.hiddenRows_);
}

size_t LayoutStep::bytes() const {
  return (widths_.size() + hiddenColumns_.size() + hiddenRows_.size()) * mapNode;
}

// --- HeadingStep ---

HeadingStep::HeadingStep(Worksheet& book, int sheet, bool ofRow, int index)
    : book_(book), sheet_(sheet), ofRow_(ofRow), index_(index) {
  const OnSheet on(book_, sheet_);
  text_ = ofRow_ ? book_.RowText(index_) : book_.ColText(index_);
}

void HeadingStep::exchange() {
  if (sheet_ > book_.NumSheets()) return;
  const OnSheet on(book_, sheet_);
  std::string now = ofRow_ ? book_.RowText(index_) : book_.ColText(index_);
  if (ofRow_) {
    book_.RowText(index_, text_);
  } else {
    book_.ColText(index_, text_);
  }
  text_ = std::move(now);
}

// --- BookStep ---

void BookStep::exchange() {
  kept_.permissions() = book_.permissions();
  std::swap(book_, kept_);
}

size_t BookStep::bytes() const {
  size_t bytes = 0;
  for (int sheet = 1; sheet <= kept_.NumSheets(); ++sheet) bytes += storeBytes(kept_.cells(sheet));
  return bytes;
}

}  // namespace lodex
