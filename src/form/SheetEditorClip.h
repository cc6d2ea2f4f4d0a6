#pragma once

#include <string>
#include <string_view>

#include "form/SheetEditorBlock.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// The cells that were last copied or cut in this program, formulas and formats included. The
/// clipboard holds their text; as long as it holds that text, pasting means these cells.
class CopiedCells {
 public:
  /// There is one, as there is one clipboard.
  static CopiedCells& last();

  void keep(const Worksheet& book, const CellBlock& block, std::string_view text, bool cut);
  bool standFor(std::string_view clipboardText) const;

  Worksheet cells;  // at the places where they were copied
  CellBlock block;
  bool cut = false;

 private:
  std::string text_;
};

}  // namespace lodex
