#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Form.h"
#include "session/Session.h"

namespace lodex {

/// The report of what the commands noticed: one table, newest command first, with severity, count,
/// text and place of each finding. Clicking a line (or Enter on it) goes to its place. It opens by
/// itself after a command that left something out.
class frmReport : public Form {
 public:
  explicit frmReport(Session& session);

  Worksheet F1Report;
  Grid gridF1Report{*this, "F1Report", F1Report};
  CheckBox chkNotes{*this, "chkNotes", "Notes"};
  Label lblPlace{*this, "lblPlace"};  // why a click did not lead anywhere
  Button cmdCopy{*this, "cmdCopy", "Copy"};
  Button cmdSave{*this, "cmdSave", "Save..."};
  Button cmdClear{*this, "cmdClear", "Clear"};
  Button cmdClose{*this, "cmdClose", "Close"};

  /// Brings a place to the front; false when what it names is not open.
  std::function<bool(const Place&)> goTo{};
  /// Called after a command that noticed something with the numbers of its errors and warnings,
  /// such as "2 errors, 1 warning"; "" when there are only notes, and when the report is emptied.
  std::function<void(const std::string& summary)> onSummary{};

  /// The table as lines of text with tabs.
  std::string text() const;
  void clear();

 private:
  struct Noticed {
    std::string title;
    Findings found;
  };
  void take(std::string_view command, const Findings& found);
  void fill();
  void fillCells();
  void addCommand(const Noticed& command);
  void addFinding(const Finding& finding);
  int addRow(const std::vector<std::string>& cells, const Place& place = {});
  void paint(int row, Severity severity);
  void visit(int row);
  void save();

  Session& session_;
  Subscription notices_;
  std::deque<Noticed> commands_;  // newest first
  std::vector<Place> places_;     // by row, the first row at 0
};

}  // namespace lodex
