#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "worksheet/Value.h"

namespace lodex {

struct FormulaCell;

/// One stored cell, 16 bytes: what it holds and the index of its format. A cell without content
/// may still carry a format.
struct Cell {
  union {
    double number = 0;  // Number, and Boolean as 1 or 0
    SharedText::Rep* text;
    ErrorCode error;
    FormulaCell* formula;
  };
  std::uint32_t format = 0;
  ValueKind kind = ValueKind::Empty;
};

/// The cells of one sheet, kept in blocks of rows per column: access takes constant time, numbers
/// and empty cells allocate nothing of their own, and the last used row and column are always
/// known. Rows and columns count from 1; arguments must be at least 1.
class CellStore {
 public:
  CellStore() = default;
  CellStore(CellStore&&) noexcept = default;
  CellStore& operator=(CellStore&&) noexcept;
  ~CellStore();

  /// The cell, or an empty one that lives forever. The pointer of a stored cell stays valid until
  /// rows or columns move or its block is cleared.
  const Cell& at(int row, int column) const {
    const auto c = static_cast<size_t>(column);
    if (c >= columns_.size()) return emptyCell;
    const auto b = static_cast<size_t>(row) / blockRows;
    const Column& strip = columns_[c];
    if (b >= strip.blocks.size() || !strip.blocks[b]) return emptyCell;
    return (*strip.blocks[b])[static_cast<size_t>(row) % blockRows];
  }

  void setNumber(int row, int column, double number) {
    Cell& cell = ensure(row, column);
    if (cell.kind != ValueKind::Number) changeKind(cell, row, column, ValueKind::Number);
    cell.number = number;
  }

  /// Stores content and keeps the cell's format. An Empty value and an empty text clear it.
  void set(int row, int column, const Value& value);

  /// Takes ownership of the formula.
  void setFormula(int row, int column, std::unique_ptr<FormulaCell> formula);

  /// The content as a value; for a formula its cached value.
  Value value(int row, int column) const { return valueOf(at(row, column)); }
  static Value valueOf(const Cell& cell);

  std::uint32_t format(int row, int column) const { return at(row, column).format; }
  void setFormat(int row, int column, std::uint32_t format);

  /// The last row and column that hold content; 0 when there is none. They do not scan.
  int lastRow() const { return lastRow_; }
  int lastColumn() const { return lastColumn_; }

  /// Memory that the cells take, without what texts and formulas own; it never shrinks.
  size_t bytes() const { return bytes_; }

  /// Number of cells with content in a row or column; 0 for one never used.
  int usedInRow(int row) const;
  int usedInColumn(int column) const;

  /// Clears content and, if asked, formats of a block (all ends inclusive).
  void clear(int row1, int column1, int row2, int column2, bool formatsToo);

  /// Opens `count` empty rows or columns before the given one, or removes them; what lies behind
  /// moves. With a range given, only columns (or rows) from `first` to `last` move.
  void insertRows(int at, int count, int firstColumn, int lastColumn);
  void deleteRows(int at, int count, int firstColumn, int lastColumn);
  void insertColumns(int at, int count, int firstRow, int lastRow);
  void deleteColumns(int at, int count, int firstRow, int lastRow);

  /// Calls visit(row, column, cell) for every cell with content or format, column by column.
  template <typename Visit>
  void forEach(Visit visit) const {
    for (size_t c = 1; c < columns_.size(); ++c) {
      for (size_t b = 0; b < columns_[c].blocks.size(); ++b) {
        if (!columns_[c].blocks[b]) continue;
        const Block& block = *columns_[c].blocks[b];
        for (size_t i = 0; i < blockRows; ++i) {
          if (block[i].kind != ValueKind::Empty || block[i].format != 0) {
            visit(static_cast<int>(b * blockRows + i), static_cast<int>(c), block[i]);
          }
        }
      }
    }
  }

  /// The same row by row.
  template <typename Visit>
  void forEachByRow(Visit visit) const {
    std::vector<size_t> stored;
    size_t blocks = 0;
    for (size_t c = 1; c < columns_.size(); ++c) {
      if (!columns_[c].blocks.empty()) stored.push_back(c);
      blocks = std::max(blocks, columns_[c].blocks.size());
    }
    std::vector<std::pair<size_t, const Block*>> here;  // the columns that have block b
    for (size_t b = 0; b < blocks; ++b) {
      here.clear();
      for (const size_t c : stored) {
        if (b < columns_[c].blocks.size() && columns_[c].blocks[b]) {
          here.emplace_back(c, columns_[c].blocks[b].get());
        }
      }
      for (size_t i = 0; i < blockRows; ++i) {
        for (const auto& [c, block] : here) {
          const Cell& cell = (*block)[i];
          if (cell.kind != ValueKind::Empty || cell.format != 0) {
            visit(static_cast<int>(b * blockRows + i), static_cast<int>(c), cell);
          }
        }
      }
    }
  }

  /// Calls visit(row, column, cell) for the cells with content of a block (all ends inclusive),
  /// column by column, until it returns false; then returns false itself.
  template <typename Visit>
  bool visit(int row1, int column1, int row2, int column2, Visit visit) const {
    const size_t lastColumn = std::min(static_cast<size_t>(column2) + 1, columns_.size());
    for (size_t c = static_cast<size_t>(column1); c < lastColumn; ++c) {
      const auto& blocks = columns_[c].blocks;
      size_t row = static_cast<size_t>(row1);
      const size_t end = std::min(static_cast<size_t>(row2) + 1, blocks.size() * blockRows);
      while (row < end) {
        const size_t blockEnd = std::min(end, (row / blockRows + 1) * blockRows);
        const auto& block = blocks[row / blockRows];
        for (; block && row < blockEnd; ++row) {
          const Cell& cell = (*block)[row % blockRows];
          if (cell.kind == ValueKind::Empty) continue;
          if (!visit(static_cast<int>(row), static_cast<int>(c), cell)) return false;
        }
        row = blockEnd;
      }
    }
    return true;
  }

  /// Rows are stored in blocks of this many; block 0 of a column holds the rows below it.
  static constexpr size_t blockRows = 64;
  /// Number of columns with storage, and of blocks in one of them (columns from 1).
  int storedColumns() const { return columns_.empty() ? 0 : static_cast<int>(columns_.size()) - 1; }
  size_t storedBlocks(int column) const {
    return static_cast<size_t>(column) < columns_.size()
               ? columns_[static_cast<size_t>(column)].blocks.size()
               : 0;
  }

 private:
  using Block = std::array<Cell, blockRows>;
  struct Column {
    std::vector<std::unique_ptr<Block>> blocks;
    int used = 0;
  };
  static const Cell emptyCell;

  Cell& ensure(int row, int column) {
    const auto c = static_cast<size_t>(column);
    const auto b = static_cast<size_t>(row) / blockRows;
    if (c < columns_.size() && b < columns_[c].blocks.size() && columns_[c].blocks[b]) {
      return (*columns_[c].blocks[b])[static_cast<size_t>(row) % blockRows];
    }
    return grow(row, column);
  }
  Cell& grow(int row, int column);
  void changeKind(Cell& cell, int row, int column, ValueKind kind);
  void countChange(int row, int column, int change);
  void moveCell(int fromRow, int fromColumn, int toRow, int toColumn);
  void release(Cell& cell);
  int deepestRow(int column) const;

  std::vector<Column> columns_;          // index 0 unused
  std::vector<std::int32_t> usedInRow_;  // index 0 unused
  int lastRow_ = 0;
  int lastColumn_ = 0;
  size_t bytes_ = 0;
};

}  // namespace lodex
