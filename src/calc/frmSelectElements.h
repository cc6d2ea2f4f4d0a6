#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Dialogs.h"
#include "form/Form.h"

namespace lodex {

/// Lets the user choose among offers, such as the sources of an item, and put them in order.
class frmSelectElements : public Form {
 public:
  /// The answer of a cancelled dialog.
  static constexpr std::string_view cancelled = "-999.999";

  frmSelectElements(std::string_view caption, const std::vector<std::string>& offers);

  ListBox lstSel{*this, "lstSel"};  // the offers, all checked at first
  Button cmdUp{*this, "cmdUp", "Up"};
  Button cmdDown{*this, "cmdDown", "Down"};
  Button Command1{*this, "Command1", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  /// Positions (from 1) of the checked offers in the order of the list, between commas; empty when
  /// none is checked.
  const std::string& answer() const { return answer_; }

 private:
  void move(int by);
  void accept();

  std::vector<int> positions_;  // of the entries, as they were offered
  std::string answer_{cancelled};
};

/// The positions in an answer; empty when it was cancelled.
std::optional<std::vector<int>> chosenPositions(std::string_view answer);

/// Shows the dialog and returns the chosen positions; empty when cancelled.
std::optional<std::vector<int>> askElements(Dialogs& dialogs, const std::string& caption,
                                            const std::vector<std::string>& offers);

}  // namespace lodex
