#include "worksheet/formula/ChangeMap.h"

#include <bit>

#include "basic/Limits.h"
#include "worksheet/Worksheet.h"

namespace lodex::formula {
namespace {

// The bits of rows `row1` to `row2` (inclusive) that fall into a word.
std::uint64_t rowMask(std::uint32_t word, int row1, int row2) {
  std::uint64_t mask = ~std::uint64_t(0);
  if (static_cast<std::uint32_t>(row1) / 64 == word) mask &= ~std::uint64_t(0) << (row1 % 64);
  if (static_cast<std::uint32_t>(row2) / 64 == word) mask &= ~std::uint64_t(0) >> (63 - row2 % 64);
  return mask;
}

}  // namespace

void ChangeMap::layOut(const Worksheet& book) {
  sheets_.clear();
  touched_.clear();
  size_t total = 0;
  sheets_.resize(static_cast<size_t>(book.NumSheets()) + 1);
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    const CellStore& cells = book.cells(sheet);
    const int columns = std::min(maxColumns, cells.storedColumns() + 16);
    auto& strips = sheets_[static_cast<size_t>(sheet)];
    strips.resize(static_cast<size_t>(columns) + 1);
    for (int column = 1; column <= columns; ++column) {
      const size_t words =
          std::min<size_t>(cells.storedBlocks(column) * 5 / 4 + 1, maxRows / 64 + 1);
      strips[static_cast<size_t>(column)] = {static_cast<std::uint32_t>(total),
                                             static_cast<std::uint32_t>(words)};
      total += words;
    }
  }
  words_.assign(total, 0);
}

bool ChangeMap::anyMarked(const Area& area) const {
  for (int sheet = area.sheet; sheet <= area.lastSheet; ++sheet) {
    for (int column = area.column1; column <= area.column2; ++column) {
      const Strip* strip = stripOf(sheet, column);
      if (strip == nullptr) break;
      const std::uint32_t from = static_cast<std::uint32_t>(area.row1) / 64;
      const std::uint32_t last = static_cast<std::uint32_t>(area.row2) / 64;
      for (std::uint32_t word = from; word <= last && word < strip->words; ++word) {
        const std::uint64_t bits = words_[strip->first + word];
        if (bits != 0 && (bits & rowMask(word, area.row1, area.row2)) != 0) return true;
      }
    }
  }
  return false;
}

bool ChangeMap::takeMarked(const Area& area, int sheet, int& row, int& column) {
  for (; column <= area.column2; ++column, row = area.row1) {
    const Strip* strip = stripOf(sheet, column);
    if (strip == nullptr) return false;
    const std::uint32_t last = static_cast<std::uint32_t>(area.row2) / 64;
    for (std::uint32_t word = static_cast<std::uint32_t>(row) / 64;
         word <= last && word < strip->words; ++word) {
      std::uint64_t& bits = words_[strip->first + word];
      const std::uint64_t wanted = bits & rowMask(word, row, area.row2);
      if (wanted == 0) continue;
      row = static_cast<int>(word * 64) + std::countr_zero(wanted);
      bits &= ~(wanted & (~wanted + 1));
      return true;
    }
  }
  return false;
}

void ChangeMap::unmark(int sheet, int row, int column) {
  const Strip* strip = stripOf(sheet, column);
  const auto word = static_cast<std::uint32_t>(row) / 64;
  if (strip == nullptr || word >= strip->words) return;
  words_[strip->first + word] &= ~(std::uint64_t(1) << (row % 64));
}

}  // namespace lodex::formula
