#include "gui/grid/GridCursor.h"

#include <QItemSelectionModel>

namespace lodex {

bool GridCursor::wholeRows() const {
  return editor_ != nullptr && block_.column1 == 1 && block_.column2 == editor_->sheet().MaxCol();
}

bool GridCursor::wholeColumns() const {
  return editor_ != nullptr && block_.row1 == 1 && block_.row2 == editor_->sheet().MaxRow();
}

CellPlace GridCursor::inside(CellPlace place) const {
  const Worksheet& sheet = editor_->sheet();
  return {std::clamp(place.row, 1, sheet.MaxRow()), std::clamp(place.column, 1, sheet.MaxCol())};
}

void GridCursor::moveTo(CellPlace place) {
  if (editor_ == nullptr) return;
  place = inside(place);
  apply({place.row, place.column, place.row, place.column}, place, place);
}

void GridCursor::extendTo(CellPlace place) {
  if (editor_ == nullptr) return;
  place = inside(place);
  apply(CellBlock::between(active_.row, active_.column, place.row, place.column), active_, place);
}

void GridCursor::select(const CellBlock& block, CellPlace active) {
  if (editor_ == nullptr) return;
  const CellBlock inSheet = block.cutTo(editor_->wholeSheet());
  if (inSheet.empty()) return;
  // The corner opposite to the active cell is the one that moves on.
  const CellPlace lead{active.row == inSheet.row2 ? inSheet.row1 : inSheet.row2,
                       active.column == inSheet.column2 ? inSheet.column1 : inSheet.column2};
  apply(inSheet, inside(active), lead);
}

void GridCursor::selectRows(int from, int to) {
  if (editor_ == nullptr) return;
  const CellPlace a = inside({from, 1});
  const CellPlace b = inside({to, editor_->sheet().MaxCol()});
  apply(CellBlock::between(a.row, 1, b.row, b.column), a, b);
}

void GridCursor::selectColumns(int from, int to) {
  if (editor_ == nullptr) return;
  const CellPlace a = inside({1, from});
  const CellPlace b = inside({editor_->sheet().MaxRow(), to});
  apply(CellBlock::between(1, a.column, b.row, b.column), a, b);
}

void GridCursor::selectAll() {
  if (editor_ != nullptr) select(editor_->wholeSheet(), active_);
}

void GridCursor::step(Direction direction) {
  if (editor_ == nullptr) return;
  if (block_.single()) return go(direction, false, false);
  const bool byRows = direction == Direction::Left || direction == Direction::Right;
  const bool back = direction == Direction::Left || direction == Direction::Up;
  apply(block_, nextInBlock(editor_->sheet(), block_, active_, byRows, back), lead_);
}

void GridCursor::go(Direction direction, bool extend, bool toEdge) {
  if (editor_ == nullptr) return;
  const CellPlace from = extend ? lead_ : active_;
  const Worksheet& sheet = editor_->sheet();
  const CellPlace to = toEdge ? jump(sheet, from, direction) : neighbour(sheet, from, direction);
  if (extend) {
    extendTo(to);
  } else {
    moveTo(to);
  }
}

void GridCursor::apply(const CellBlock& block, CellPlace active, CellPlace lead) {
  Worksheet& sheet = editor_->sheet();
  block_ = block;
  active_ = active;
  lead_ = lead;
  sheet.SetSelection(block.row1, block.column1, block.row2, block.column2);
  sheet.SetActiveCell(active.row, active.column);
  showInModel();
  emit changed();
}

void GridCursor::showInModel() {
  const QAbstractItemModel* model = selection_ != nullptr ? selection_->model() : nullptr;
  if (model == nullptr) return;
  const auto at = [model](int row, int column) { return model->index(row - 1, column - 1); };
  selection_->select(
      QItemSelection(at(block_.row1, block_.column1), at(block_.row2, block_.column2)),
      QItemSelectionModel::ClearAndSelect);
  selection_->setCurrentIndex(at(active_.row, active_.column), QItemSelectionModel::NoUpdate);
}

void GridCursor::readSheet() {
  if (editor_ == nullptr) return;
  const Worksheet& sheet = editor_->sheet();
  const CellBlock before = block_;
  const CellPlace activeBefore = active_;
  block_ = editor_->selection();
  active_ = inside({sheet.Row(), sheet.Col()});
  if (!block_.contains(active_.row, active_.column)) active_ = {block_.row1, block_.column1};
  if (!(block_ == before)) lead_ = {block_.row2, block_.column2};
  lead_ = inside(lead_);
  showInModel();
  if (!(block_ == before) || !(active_ == activeBefore)) emit changed();
}

}  // namespace lodex
