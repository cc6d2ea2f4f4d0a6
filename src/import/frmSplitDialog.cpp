#include "import/frmSplitDialog.h"

#include "basic/Text.h"
#include "chem/Headings.h"

namespace lodex {

frmSplitDialog::frmSplitDialog(Mode mode, std::string_view sample)
    : Form("frmSplitDialog", "Split Data"), mode_(mode) {
  txtSample.setText(sample);
  txtSample.setCaption(mode == Mode::Columns ? "First row:" : "Original:");
  fraColumns.setVisible(mode == Mode::Columns);
  fraTitles.setVisible(mode == Mode::Titles);
  for (int fact = 0; fact < titleFactCount; ++fact) {
    const std::string number = std::to_string(fact);
    chkFact_.emplace_back(*this, "chkFact" + number, titleFacts[static_cast<size_t>(fact)]);
    txtPart_.emplace_back(*this, "txtPart" + number, "is part number");
    txtPart_.back().setToolTip("Give zero to find it in anywhere");
    txtPart_.back().setText("0");
  }
  cmdOK.setCommand([this] { accept(); });
  cmdCancel.setCommand([this] { cancel(); });
}

frmSplitDialog::frmSplitDialog(std::string_view sampleLine, const TextSplit& proposal)
    : frmSplitDialog(Mode::Columns, sampleLine) {
  proposal_ = proposal;
  split_ = proposal;
  const bool isTab = proposal.separator.find('\t') != std::string::npos;
  chkTab.setChecked(isTab);
  txtSeparator.setEnabled(!isTab);
  if (!isTab) txtSeparator.setText(proposal.separator);
  keep(chkTab.onChange([this] {
    txtSeparator.setEnabled(!chkTab.checked());
    showPreview();
  }));
  keep(txtSeparator.onChange([this] { showPreview(); }));
  showPreview();
}

frmSplitDialog::frmSplitDialog(std::string_view sampleTitle, const TitleParts& parts)
    : frmSplitDialog(Mode::Titles, sampleTitle) {
  parts_ = parts;
  txtElSepChar.setText(parts.strSep2);
  const std::vector<std::string> numbers = lodex::split(parts.strSepNo, ",");
  const std::vector<std::string> wanted = lodex::split(parts.bSep, ",");
  for (int fact = 0; fact < titleFactCount; ++fact) {
    const auto place = static_cast<size_t>(fact);
    if (place < numbers.size() && !numbers[place].empty()) txtPart(fact).setText(numbers[place]);
    chkFact(fact).setChecked(place < wanted.size() && wanted[place] == "1");
    keep(chkFact(fact).onChange([this] { showPreview(); }));
    keep(txtPart(fact).onChange([this] { showPreview(); }));
  }
  keep(txtElSepChar.onChange([this] { showPreview(); }));
  showPreview();
}

TextSplit frmSplitDialog::chosenSplit() const {
  const std::string separator = chkTab.checked() ? "\t" : txtSeparator.text();
  return separator == proposal_.separator ? proposal_ : TextSplit{separator, false, false};
}

void frmSplitDialog::accept() {
  if (mode_ == Mode::Columns) {
    split_ = chosenSplit();
  } else {
    parts_ = {txtElSepChar.text(), "", ""};
    for (int fact = 0; fact < titleFactCount; ++fact) {
      const std::string comma = fact == 0 ? "" : ",";
      parts_.strSepNo += comma + std::to_string(txtPart(fact).number());
      parts_.bSep += comma + (chkFact(fact).checked() ? "1" : "0");
    }
  }
  close();
}

void frmSplitDialog::cancel() {
  split_ = {};
  parts_.strSep2.clear();
  close();
}

void frmSplitDialog::showPreview() {
  txtPreview.setText(mode_ == Mode::Columns ? columnPreview() : titlePreview());
}

std::string frmSplitDialog::columnPreview() const {
  std::vector<std::string> lines = splitLine(txtSample.text(), chosenSplit());
  for (size_t i = 0; i < lines.size(); ++i) lines[i] = std::to_string(i + 1) + "=" + lines[i];
  return join(lines, "\r\n");
}

std::string frmSplitDialog::titlePreview() const {
  const std::vector<std::string> pieces = SplitText(txtSample.text(), txtElSepChar.text());
  std::vector<std::string> lines;
  for (size_t fact = 0; fact < titleFacts.size(); ++fact) {
    const int part = txtPart_[fact].number();
    if (!chkFact_[fact].checked() || part == 0) continue;
    const bool present = part > 0 && part <= static_cast<int>(pieces.size());
    lines.push_back(std::string(titleFacts[fact]) + "=" +
                    (present ? pieces[static_cast<size_t>(part) - 1] : std::string()));
  }
  return join(lines, "\r\n");
}

}  // namespace lodex
