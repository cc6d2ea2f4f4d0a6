#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Dialogs.h"
#include "form/Form.h"

namespace lodex {

/// A list to choose one item from, or several where that is allowed.
class frmSelectFromList : public Form {
 public:
  frmSelectFromList(Dialogs& dialogs, std::string_view caption,
                    const std::vector<std::string>& items, bool several = false);

  ListBox lstItems{*this, "lstItems"};
  Button cmdOK{*this, "cmdOK", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  bool several() const { return several_; }
  /// The chosen items, ";;" between several; empty when cancelled.
  const std::string& answer() const { return answer_; }
  /// The place of the first chosen item, from 0; empty when cancelled.
  std::optional<int> index() const { return index_; }

 private:
  void accept();

  Dialogs& dialogs_;
  bool several_;
  std::string answer_;
  std::optional<int> index_;
};

}  // namespace lodex
