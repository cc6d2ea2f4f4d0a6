#pragma once

#include <array>
#include <deque>
#include <string>
#include <string_view>

#include "form/Form.h"
#include "session/Session.h"

namespace lodex {

/// Headings of a thesaurus file. The last two name other system rows than the ones they feed;
/// files are written so.
inline constexpr std::array<std::string_view, 11> thesaurusHeadings = {
    "Value", "In",    "Header", "Element", "Method",    "Unit",
    "Table", "Field", "Type",   "Digits",  "Multiplied"};

/// The editor of the thesaurus: a table of rules that say, for a text in a system row of a data
/// sheet, what to put into the other system rows of that column.
class frmSynonLib : public Form {
 public:
  explicit frmSynonLib(Session& session);

  Worksheet F1Lib;  // a rule per row from row 1 on; the headings are those of the columns
  Grid gridF1Lib{*this, "F1Lib", F1Lib};
  Label lblValue{*this, "lblValue"};
  MenuItem mnuOpen{*this, "mnuOpen", "&Open..."};
  MenuItem mnuSave{*this, "mnuSave", "&Save..."};
  MenuItem mnuSaveDefault{*this, "mnuSaveDefault", "Save As Default"};
  MenuItem mnuDeleteRow{*this, "mnuDeleteRow", "Delete row"};
  /// The entries of the menu "&Sort", one per titled column: "By Value" and so on.
  MenuItem& mnuSort(int column) { return mnuSort_.at(static_cast<size_t>(column) - 1); }

  /// Loads a thesaurus file, sorted by its texts. Throws FileError when it cannot be read; the
  /// former rules stay then.
  void Aukaise(std::string_view path);
  void SaveAs(std::string_view path);
  /// Sorts the rules by a column, ascending.
  void SortBy(int column);

  /// Makes the rule for a header text current: the one that is there (of several the last, the
  /// others go) or a new one. An empty header only gives a message.
  void AddRule(std::string_view header);
  /// Removes the rule of the active cell.
  void DeleteRow();
  /// Shows the text of a clicked rule.
  void clickGrid(int row, int column);

  /// The row of the last search; 0 if it found nothing.
  int FoundRow() const { return foundRow_; }
  /// False after loading and saving.
  bool Changed() const { return changed_; }

 private:
  void Open();
  void Save();
  void SaveAsDefault();
  void showCurrent(int row);
  void showValue(int row);

  Session& session_;
  std::deque<MenuItem> mnuSort_;
  int foundRow_ = 0;
  bool changed_ = false;
};

}  // namespace lodex
