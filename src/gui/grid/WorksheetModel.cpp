#include "gui/grid/WorksheetModel.h"

#include "basic/A1.h"
#include "basic/Error.h"
#include "gui/QtText.h"

namespace lodex {

void WorksheetModel::setEditor(SheetEditor* editor) {
  beginResetModel();
  editor_ = editor;
  rows_ = editor_ != nullptr ? editor_->sheet().MaxRow() : 0;
  columns_ = editor_ != nullptr ? editor_->sheet().MaxCol() : 0;
  endResetModel();
}

void WorksheetModel::sheetChanged() {
  if (editor_ == nullptr) return;
  if (rows_ == editor_->sheet().MaxRow() && columns_ == editor_->sheet().MaxCol()) {
    cellsChanged({1, 1, rows_, columns_});
    return;
  }
  setEditor(editor_);
}

void WorksheetModel::cellsChanged(const CellBlock& block) {
  const CellBlock shown = block.cutTo({1, 1, rows_, columns_});
  if (shown.empty()) return;
  emit dataChanged(index(shown.row1 - 1, shown.column1 - 1),
                   index(shown.row2 - 1, shown.column2 - 1));
}

int WorksheetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int WorksheetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant WorksheetModel::data(const QModelIndex& index, int role) const {
  if (editor_ == nullptr || !index.isValid()) return {};
  const Worksheet& sheet = editor_->sheet();
  const int row = index.row() + 1;
  const int column = index.column() + 1;
  // The sheet may have been narrowed without the views' knowledge.
  if (row > sheet.MaxRow() || column > sheet.MaxCol()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return toQt(sheet.TextRC(row, column));
    case Qt::EditRole:
      return toQt(sheet.EntryRC(row, column));
    case Qt::AccessibleDescriptionRole:
      return toQt(cellAddress(row, column));
    case Qt::ToolTipRole: {
      const std::string problem = sheet.formulaProblem(sheet.Sheet(), row, column);
      return problem.empty() ? QVariant() : QVariant(toQt(problem));
    }
    default:
      return {};
  }
}

bool WorksheetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (editor_ == nullptr || !index.isValid() || role != Qt::EditRole) return false;
  const std::string entry = fromQt(value.toString());
  try {
    if (entry == editor_->sheet().EntryRC(index.row() + 1, index.column() + 1)) return true;
    editor_->enter(index.row() + 1, index.column() + 1, entry);
    return true;
  } catch (const Error& error) {
    emit refused(toQt(error.what()));
    return false;
  }
}

QVariant WorksheetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (editor_ == nullptr || role != Qt::DisplayRole || section < 0) return {};
  const bool columns = orientation == Qt::Horizontal;
  const Worksheet& sheet = editor_->sheet();
  std::string text = columns ? sheet.ColText(section + 1) : sheet.RowText(section + 1);
  if (text.empty()) text = columns ? columnLetters(section + 1) : std::to_string(section + 1);
  return toQt(text);
}

Qt::ItemFlags WorksheetModel::flags(const QModelIndex& index) const {
  if (editor_ == nullptr || !index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return editor_->allows(EditRight::Enter) ? flags | Qt::ItemIsEditable : flags;
}

}  // namespace lodex
