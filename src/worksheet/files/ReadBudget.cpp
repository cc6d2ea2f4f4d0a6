#include "worksheet/files/ReadBudget.h"

#include "basic/Error.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

// With these a file of 2 MB stays below 1 GB. Real files need a small part of it: a cell takes some
// five bytes of a compressed file and 16 in memory.
constexpr size_t memoryOfAnyFile = size_t{512} << 20, memoryPerByte = 100;
constexpr size_t formulasOfAnyFile = size_t{64} << 20, formulasPerByte = 64;
constexpr size_t shownByAnyFile = size_t{256} << 20, shownPerByte = 256;

}  // namespace

ReadBudget::ReadBudget(size_t fileBytes)
    : memoryLeft_(memoryOfAnyFile + memoryPerByte * fileBytes),
      formulasLeft_(formulasOfAnyFile + formulasPerByte * fileBytes),
      shownLeft_(shownByAnyFile + shownPerByte * fileBytes) {}

void ReadBudget::take(size_t bytes) {
  if (bytes > memoryLeft_) {
    throw FileError("its cells need more memory than a file of its size should");
  }
  memoryLeft_ -= bytes;
}

void ReadBudget::takeFormulas(size_t cells, size_t textBytes) {
  const size_t each = sizeof(FormulaCell) + sizeof(void*) * 2 + textBytes;
  if (cells > memoryLeft_ / each || (textBytes > 0 && cells > formulasLeft_ / textBytes)) {
    throw FileError("its formulas need more memory than a file of its size should");
  }
  formulasLeft_ -= cells * textBytes;
  take(cells * each);
}

void ReadBudget::takeText(std::string_view text) {
  take(text.size() + 2 * sizeof(std::string_view));
}

void ReadBudget::showText(size_t bytes) {
  if (bytes > shownLeft_) {
    throw FileError("its cells show more text than a file of its size should");
  }
  shownLeft_ -= bytes;
}

void ReadBudget::followFurther(const CellStore& cells) {
  if (&cells != sheet_) {
    sheet_ = &cells;
    followed_ = 0;
  }
  take(cells.bytes() - followed_);
  followed_ = cells.bytes();
}

}  // namespace lodex
