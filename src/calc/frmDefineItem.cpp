#include "calc/frmDefineItem.h"

namespace lodex {

frmDefineItem::frmDefineItem(std::string_view caption, const SourceSheets& sheets)
    : Form("frmDefineItem", caption), sheets_(sheets) {
  for (const SourceSheet& sheet : sheets) cmbSheet.add(sheet.caption);
  keep(cmbSheet.onChange([this] { showColumns(); }));
  cmdOK.setEnabled(false);
  keep(cmbColumn.onChange([this] { cmdOK.setEnabled(cmbColumn.current() >= 0); }));
  cmdOK.setCommand([this] { accept(); });
  cmdCancel.setCommand([this] { close(); });
  if (cmbSheet.count() > 0) cmbSheet.setCurrent(0);
}

void frmDefineItem::showColumns() {
  if (cmbSheet.current() == shownSheet_) return;
  shownSheet_ = cmbSheet.current();
  cmbColumn.clear();
  if (shownSheet_ < 0) return;
  const SourceSheet& sheet = sheets_[static_cast<size_t>(shownSheet_)];
  for (int column = 1; column <= sheet.cells->LastCol(); ++column) {
    cmbColumn.add(std::to_string(column) + " " + sheet.heading(column));
  }
}

void frmDefineItem::accept() {
  if (shownSheet_ < 0 || cmbColumn.current() < 0) return;
  answer_ = ItemSource{sheets_[static_cast<size_t>(shownSheet_)].number, cmbColumn.current() + 1};
  close();
}

}  // namespace lodex
