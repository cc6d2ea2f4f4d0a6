#include "calc/frmSelectElements.h"

#include <numeric>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

frmSelectElements::frmSelectElements(std::string_view caption,
                                     const std::vector<std::string>& offers)
    : Form("frmSelectElements", caption), positions_(offers.size()) {
  for (const std::string& offer : offers) lstSel.add(offer, true);
  std::iota(positions_.begin(), positions_.end(), 1);
  cmdUp.setCommand([this] { move(-1); });
  cmdDown.setCommand([this] { move(1); });
  Command1.setCommand([this] { accept(); });
  cmdCancel.setCommand([this] {
    answer_ = cancelled;
    close();
  });
}

void frmSelectElements::move(int by) {
  const int from = lstSel.current();
  const int to = from + by;
  if (from < 0 || to < 0 || to >= lstSel.count()) return;
  const std::string text = lstSel.item(from);
  const bool checked = lstSel.checked(from);
  lstSel.setItem(from, lstSel.item(to));
  lstSel.setChecked(from, lstSel.checked(to));
  lstSel.setItem(to, text);
  lstSel.setChecked(to, checked);
  std::swap(positions_[static_cast<size_t>(from)], positions_[static_cast<size_t>(to)]);
  lstSel.setCurrent(to);
}

void frmSelectElements::accept() {
  std::vector<std::string> chosen;
  for (int i = 0; i < lstSel.count(); ++i) {
    if (lstSel.checked(i)) chosen.push_back(std::to_string(positions_[static_cast<size_t>(i)]));
  }
  answer_ = join(chosen, ",");
  close();
}

std::optional<std::vector<int>> chosenPositions(std::string_view answer) {
  if (trimBlanks(answer) == frmSelectElements::cancelled) return std::nullopt;
  std::vector<int> positions;
  for (const std::string& piece : split(answer, ",")) {
    if (const auto position = parseInteger(piece)) positions.push_back(*position);
  }
  return positions;
}

std::optional<std::vector<int>> askElements(Dialogs& dialogs, const std::string& caption,
                                            const std::vector<std::string>& offers) {
  frmSelectElements dialog(caption, offers);
  dialogs.showModal(dialog);
  return chosenPositions(dialog.answer());
}

}  // namespace lodex
