#pragma once

#include <cstddef>
#include <string_view>

#include "worksheet/CellStore.h"

namespace lodex {

/// Keeps what a file may ask for in proportion to its size: one array formula over a whole sheet,
/// or one long text in every cell, takes a few bytes of a file and gigabytes of memory or of
/// output. Every function throws FileError when the file asks for too much.
class ReadBudget {
 public:
  explicit ReadBudget(size_t fileBytes);

  /// A formula of `textBytes` in each of `cells` cells.
  void takeFormulas(size_t cells, size_t textBytes);
  /// A text that is kept once, however many cells show it.
  void takeText(std::string_view text);
  /// One more cell that shows a text.
  void showText(size_t bytes);
  /// The cells of the sheet that is being read, as far as they have come.
  void follow(const CellStore& cells) {
    if (&cells != sheet_ || cells.bytes() != followed_) followFurther(cells);
  }

 private:
  void take(size_t bytes);
  void followFurther(const CellStore& cells);

  size_t memoryLeft_;
  size_t formulasLeft_;  // bytes of their texts
  size_t shownLeft_;
  const CellStore* sheet_ = nullptr;
  size_t followed_ = 0;  // bytes of the sheet that have been taken
};

}  // namespace lodex
