#include "form/frmSelectFromList.h"

#include "basic/Text.h"

namespace lodex {

frmSelectFromList::frmSelectFromList(Dialogs& dialogs, std::string_view caption,
                                     const std::vector<std::string>& items, bool several)
    : Form("frmSelectFromList", caption), dialogs_(dialogs), several_(several) {
  for (const std::string& item : items) lstItems.add(item);
  lstItems.setMultiple(several);
  lstItems.setActivateCommand([this](int) { accept(); });
  cmdOK.setCommand([this] { accept(); });
  cmdCancel.setCommand([this] { close(); });
}

void frmSelectFromList::accept() {
  std::vector<int> chosen = lstItems.selectedItems();
  if (!several_ || chosen.empty()) {
    chosen.clear();
    if (lstItems.current() >= 0) chosen.push_back(lstItems.current());
  }
  if (chosen.empty()) {
    dialogs_.messageBox("No selected");
    return;
  }
  std::vector<std::string> texts;
  for (const int item : chosen) texts.push_back(lstItems.item(item));
  answer_ = join(texts, ";;");
  index_ = chosen.front();
  close();
}

}  // namespace lodex
