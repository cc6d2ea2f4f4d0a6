#pragma once

#include "form/SheetEditor.h"

namespace lodex {

/// The system's clipboard: copied cells go there as tab text and, up to some size, as an HTML table
/// that keeps their looks.
class GridClipboard : public Clipboard {
 public:
  /// The cells whose text is about to be set; without any only the text is.
  void describe(const Worksheet& sheet, const CellBlock& block) {
    sheet_ = &sheet;
    block_ = block;
  }
  std::string text() override;
  void setText(std::string_view text) override;

 private:
  const Worksheet* sheet_ = nullptr;
  CellBlock block_;
};

/// Cells as an HTML table.
std::string htmlTable(const Worksheet& sheet, const CellBlock& block);

}  // namespace lodex
