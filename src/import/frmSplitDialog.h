#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "form/Form.h"
#include "import/HeadingSplit.h"
#include "import/TextLines.h"

namespace lodex {

/// Asks how a line falls into columns (first mode) or how a column title falls into facts (second
/// mode), with a preview of a sample. Closing it in another way than by OK or Cancel leaves the
/// answers as they were when it opened.
class frmSplitDialog : public Form {
 public:
  enum class Mode { Columns = 1, Titles = 2 };

  /// First mode: `proposal` is the separator in force until the user chooses another one.
  frmSplitDialog(std::string_view sampleLine, const TextSplit& proposal);
  /// Second mode: `parts` are the last answers.
  frmSplitDialog(std::string_view sampleTitle, const TitleParts& parts);

  Mode mode() const { return mode_; }

  // First mode.
  Label fraColumns{*this, "fraColumns"};
  CheckBox chkTab{*this, "chkTab", "Tab"};
  TextBox txtSeparator{*this, "txtSeparator", "Column Separator is:"};
  // Second mode.
  Label fraTitles{*this, "fraTitles", "Columns are consisting of following parts:"};
  CheckBox& chkFact(int fact) { return chkFact_.at(static_cast<size_t>(fact)); }
  TextBox& txtPart(int fact) { return txtPart_.at(static_cast<size_t>(fact)); }
  TextBox txtElSepChar{*this, "txtElSepChar", "Parts are separated by character"};
  // Both.
  TextBox txtSample{*this, "txtSample"};
  TextBox txtPreview{*this, "txtPreview", "As splitted:"};
  Button cmdOK{*this, "cmdOK", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  /// The answer of the first mode. A separator that the user left as proposed keeps the way of
  /// splitting that was proposed with it.
  const TextSplit& split() const { return split_; }
  /// The answer of the second mode; without separator after Cancel.
  const TitleParts& parts() const { return parts_; }

 private:
  frmSplitDialog(Mode mode, std::string_view sample);
  TextSplit chosenSplit() const;
  void accept();
  void cancel();
  void showPreview();
  std::string columnPreview() const;
  std::string titlePreview() const;

  Mode mode_;
  TextSplit proposal_;
  TextSplit split_;
  TitleParts parts_;
  std::deque<CheckBox> chkFact_;
  std::deque<TextBox> txtPart_;
};

}  // namespace lodex
