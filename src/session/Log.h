#pragma once

#include <string>
#include <string_view>

#include "form/Form.h"

namespace lodex {

class Session;

/// Where a log line goes.
enum class LogKind { Errors = 0, Log = 1, Both = 2 };

/// The log window: a pane for the log and one for errors. The texts stay while it is hidden.
class frmLog : public Form {
 public:
  explicit frmLog(Session& session);

  OptionButtons TabStrip1{*this, "TabStrip1", {"Log", "Errors"}};
  TextBox txtLog{*this, "txtLog"};
  TextBox txtErr{*this, "txtErr"};
  MenuItem mnuSave{*this, "mnuSave", "&Save..."};
  MenuItem mnuClear{*this, "mnuClear", "C&lear"};
  MenuItem mnuCopy{*this, "mnuCopy", "&Copy"};
  MenuItem mnuHide{*this, "mnuHide", "&Hide"};
  MenuItem mnuClose{*this, "mnuClose", "Cl&ose"};
  Button cmdSave{*this, "cmdSave", "Save..."};
  Button cmdClear{*this, "cmdClear", "Clear"};
  Button cmdClose{*this, "cmdClose", "Close"};

  /// Adds a line at the end of a pane; all but the first follow a CR LF.
  /// With `unique` nothing is added when the pane already contains the text.
  void LisaaLog(std::string_view text, LogKind kind = LogKind::Log, bool unique = false);
  /// Empties both panes.
  void clear();
  /// An empty error pane receives "No Errors" when the window is activated.
  void activate() override;

 private:
  /// The pane whose tab is open.
  TextBox& currentPane() { return TabStrip1.selected() == 0 ? txtLog : txtErr; }
  void save();

  Session& session_;
};

/// The status line of long jobs: the bar, its text and the Abort button.
class Progress : public Form {
 public:
  Progress();

  ProgressBar bar{*this, "bar"};
  Label txtInfo{*this, "txtInfo"};
  Button cmdAbort{*this, "cmdAbort", "Abort"};

  /// Value 0 ends a job: the bar is reset, Abort is hidden and the text reads "Ready!". Any other
  /// value sets the bar and, if the text is not empty, the text.
  void ShowProgress(std::string_view text, int value);
  /// True clears the abort flag; the Abort button gets the given visibility.
  void ShowStop(bool visible);

  /// Stops showing a job, unless one is still running.
  void reset();

  /// Set by the Abort button, polled and cleared by the job.
  bool AbortFlag = false;

 private:
  friend class JobScope;
  int jobs_ = 0;  // one inside the other
};

/// Whether the user may abort a job; one that cannot be aborted does not poll.
enum class Abort { Offered, NotOffered };

/// A long job: the Abort button is shown while it lives, and the progress line is reset at its end,
/// however it ends. A job within a job leaves both to the outer one.
class JobScope {
 public:
  explicit JobScope(Session& session, Abort button = Abort::Offered);
  ~JobScope();
  JobScope(const JobScope&) = delete;
  JobScope& operator=(const JobScope&) = delete;

  /// Lets events happen and returns true if the user pressed Abort, then and from then on. Poll it
  /// once per unit of work.
  bool aborted(LogKind kind = LogKind::Log, std::string_view line = "!! Aborted !!");
  /// Aborts the job as the button does: clears the flag and logs the line, once.
  void abort(LogKind kind = LogKind::Log, std::string_view line = "!! Aborted !!");

 private:
  Session& session_;
  bool aborted_ = false;
};

}  // namespace lodex
