#include "worksheet/CellStore.h"

#include <algorithm>

#include "worksheet/formula/FormulaCell.h"

namespace lodex {

const Cell CellStore::emptyCell{};

CellStore::~CellStore() {
  for (Column& column : columns_) {
    for (auto& block : column.blocks) {
      if (!block) continue;
      for (Cell& cell : *block) release(cell);
    }
  }
}

CellStore& CellStore::operator=(CellStore&& other) noexcept {
  std::swap(columns_, other.columns_);
  std::swap(usedInRow_, other.usedInRow_);
  std::swap(lastRow_, other.lastRow_);
  std::swap(lastColumn_, other.lastColumn_);
  std::swap(bytes_, other.bytes_);
  return *this;
}

// Frees what the cell owns and leaves it without content; the caller keeps the counts.
void CellStore::release(Cell& cell) {
  switch (cell.kind) {
    case ValueKind::Text:
    case ValueKind::NumericText:
      SharedText::release(cell.text);
      break;
    case ValueKind::Formula:
      delete cell.formula;
      break;
    default:
      break;
  }
  cell.kind = ValueKind::Empty;
  cell.number = 0;
}

Cell& CellStore::grow(int row, int column) {
  const auto c = static_cast<size_t>(column);
  const auto b = static_cast<size_t>(row) / blockRows;
  if (c >= columns_.size()) {
    bytes_ += (c + 1 - columns_.size()) * sizeof(Column);
    columns_.resize(c + 1);
  }
  auto& blocks = columns_[c].blocks;
  if (b >= blocks.size()) {
    bytes_ += (b + 1 - blocks.size()) * sizeof blocks[b];
    blocks.resize(b + 1);
  }
  if (!blocks[b]) {
    bytes_ += sizeof(Block);
    blocks[b] = std::make_unique<Block>();
  }
  return (*blocks[b])[static_cast<size_t>(row) % blockRows];
}

void CellStore::countChange(int row, int column, int change) {
  if (static_cast<size_t>(row) >= usedInRow_.size()) {
    usedInRow_.resize(std::max<size_t>(row + 1, usedInRow_.size() * 3 / 2));
  }
  usedInRow_[row] += change;
  columns_[column].used += change;
  if (change > 0) {
    lastRow_ = std::max(lastRow_, row);
    lastColumn_ = std::max(lastColumn_, column);
    return;
  }
  while (lastRow_ > 0 && usedInRow_[lastRow_] == 0) --lastRow_;
  while (lastColumn_ > 0 && columns_[lastColumn_].used == 0) --lastColumn_;
}

void CellStore::changeKind(Cell& cell, int row, int column, ValueKind kind) {
  const bool was = cell.kind != ValueKind::Empty;
  const bool is = kind != ValueKind::Empty;
  release(cell);
  cell.kind = kind;
  if (was != is) countChange(row, column, is ? 1 : -1);
}

void CellStore::set(int row, int column, const Value& value) {
  // An empty text does not count as content: whoever reads it must see an empty cell.
  const bool blank = value.isText() && value.textView().empty();
  const ValueKind kind = blank ? ValueKind::Empty : value.kind();
  if (kind == ValueKind::Empty && at(row, column).kind == ValueKind::Empty) return;
  Cell& cell = ensure(row, column);
  changeKind(cell, row, column, kind);
  switch (kind) {
    case ValueKind::Number:
    case ValueKind::Boolean:
      cell.number = value.asNumber();
      break;
    case ValueKind::Text:
    case ValueKind::NumericText:
      cell.text = SharedText(value.sharedText()).detach();
      break;
    case ValueKind::Error:
      cell.error = value.asError();
      break;
    default:
      break;
  }
}

void CellStore::setFormula(int row, int column, std::unique_ptr<FormulaCell> formula) {
  Cell& cell = ensure(row, column);
  changeKind(cell, row, column, ValueKind::Formula);
  cell.formula = formula.release();
}

Value CellStore::valueOf(const Cell& cell) {
  switch (cell.kind) {
    case ValueKind::Number:
      return Value(cell.number);
    case ValueKind::Boolean:
      return Value::boolean(cell.number != 0);
    case ValueKind::Text:
      return Value::text(SharedText::share(cell.text));
    case ValueKind::NumericText:
      return Value::numericText(SharedText::share(cell.text));
    case ValueKind::Error:
      return Value::error(cell.error);
    case ValueKind::Formula:
      return cell.formula->cached;
    default:
      return {};
  }
}

void CellStore::setFormat(int row, int column, std::uint32_t format) {
  if (format == 0 && at(row, column).format == 0) return;
  ensure(row, column).format = format;
}

int CellStore::usedInRow(int row) const {
  return static_cast<size_t>(row) < usedInRow_.size() ? usedInRow_[row] : 0;
}

int CellStore::usedInColumn(int column) const {
  return static_cast<size_t>(column) < columns_.size() ? columns_[column].used : 0;
}

int CellStore::deepestRow(int column) const {
  return static_cast<int>(columns_[column].blocks.size() * blockRows) - 1;
}

void CellStore::clear(int row1, int column1, int row2, int column2, bool formatsToo) {
  column2 = std::min(column2, static_cast<int>(columns_.size()) - 1);
  for (int c = column1; c <= column2; ++c) {
    Column& column = columns_[c];
    const int last = std::min(row2, deepestRow(c));
    for (int row = row1; row <= last; ++row) {
      auto& block = column.blocks[row / blockRows];
      if (!block) {
        row |= static_cast<int>(blockRows) - 1;  // on to the next block
        continue;
      }
      Cell& cell = (*block)[row % blockRows];
      if (cell.kind != ValueKind::Empty) changeKind(cell, row, c, ValueKind::Empty);
      if (formatsToo) cell.format = 0;
    }
  }
}

// Moves content and format; the source is left blank. Both must differ.
void CellStore::moveCell(int fromRow, int fromColumn, int toRow, int toColumn) {
  const Cell& source = at(fromRow, fromColumn);
  const Cell& old = at(toRow, toColumn);
  if (source.kind == ValueKind::Empty && source.format == 0 && old.kind == ValueKind::Empty &&
      old.format == 0) {
    return;
  }
  Cell& target = ensure(toRow, toColumn);
  Cell& from = ensure(fromRow, fromColumn);
  if (target.kind != ValueKind::Empty) changeKind(target, toRow, toColumn, ValueKind::Empty);
  target = from;
  from = Cell();
  if (target.kind != ValueKind::Empty) {
    countChange(toRow, toColumn, 1);
    countChange(fromRow, fromColumn, -1);
  }
}

void CellStore::insertRows(int at, int count, int firstColumn, int lastColumn) {
  lastColumn = std::min(lastColumn, static_cast<int>(columns_.size()) - 1);
  for (int c = firstColumn; c <= lastColumn; ++c) {
    for (int row = deepestRow(c); row >= at; --row) moveCell(row, c, row + count, c);
  }
}

void CellStore::deleteRows(int at, int count, int firstColumn, int lastColumn) {
  lastColumn = std::min(lastColumn, static_cast<int>(columns_.size()) - 1);
  clear(at, firstColumn, at + count - 1, lastColumn, true);
  for (int c = firstColumn; c <= lastColumn; ++c) {
    const int deepest = deepestRow(c);
    for (int row = at + count; row <= deepest; ++row) moveCell(row, c, row - count, c);
  }
}

void CellStore::insertColumns(int at, int count, int firstRow, int lastRow) {
  for (int c = static_cast<int>(columns_.size()) - 1; c >= at; --c) {
    const int last = std::min(lastRow, deepestRow(c));
    for (int row = firstRow; row <= last; ++row) moveCell(row, c, row, c + count);
  }
}

void CellStore::deleteColumns(int at, int count, int firstRow, int lastRow) {
  clear(firstRow, at, lastRow, at + count - 1, true);
  for (int c = at + count; c < static_cast<int>(columns_.size()); ++c) {
    const int last = std::min(lastRow, deepestRow(c));
    for (int row = firstRow; row <= last; ++row) moveCell(row, c, row, c - count);
  }
}

}  // namespace lodex
