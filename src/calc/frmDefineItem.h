#pragma once

#include <optional>
#include <string_view>

#include "calc/ItemSources.h"
#include "form/Form.h"

namespace lodex {

/// Defines a source of an item by hand: a sheet and one of its columns.
class frmDefineItem : public Form {
 public:
  frmDefineItem(std::string_view caption, const SourceSheets& sheets);

  ListBox cmbSheet{*this, "cmbSheet", "Sheet:"};
  ListBox cmbColumn{*this, "cmbColumn",
                    "Column:"};  // columns of the current sheet: number and heading
  Button cmdOK{*this, "cmdOK", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  /// Empty when cancelled.
  const std::optional<ItemSource>& answer() const { return answer_; }

 private:
  void showColumns();
  void accept();

  const SourceSheets& sheets_;
  int shownSheet_ = -1;
  std::optional<ItemSource> answer_;
};

}  // namespace lodex
