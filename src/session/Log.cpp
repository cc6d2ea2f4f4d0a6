#include "session/Log.h"

#include <utility>

#include "basic/Files.h"
#include "session/Session.h"

namespace lodex {
namespace {

void addLine(TextBox& pane, std::string_view text, bool unique) {
  if (unique && pane.text().find(text) != std::string::npos) return;
  if (pane.text().empty()) {
    pane.setText(text);
  } else {
    pane.appendText("\r\n" + std::string(text));
  }
}

}  // namespace

frmLog::frmLog(Session& session) : Form("frmLog", "Log"), session_(session) {
  for (Button* button : {static_cast<Button*>(&mnuSave), &cmdSave}) {
    session_.setCommand(*button, [this] { save(); });
  }
  for (Button* button : {static_cast<Button*>(&mnuClear), &cmdClear}) {
    button->setCommand([this] { currentPane().setText(""); });
  }
  mnuCopy.setCommand([this] { session_.clipboard().setText(currentPane().text()); });
  for (Button* button :
       {static_cast<Button*>(&mnuHide), static_cast<Button*>(&mnuClose), &cmdClose}) {
    button->setCommand([this] { close(); });
  }
}

void frmLog::LisaaLog(std::string_view text, LogKind kind, bool unique) {
  if (kind != LogKind::Log) addLine(txtErr, text, unique);
  if (kind != LogKind::Errors) addLine(txtLog, text, unique);
}

void frmLog::clear() {
  txtLog.setText("");
  txtErr.setText("");
}

void frmLog::activate() {
  if (txtErr.text().empty()) txtErr.setText("No Errors");
}

void frmLog::save() {
  const auto path = session_.dialogs().saveFile(
      {"Save", "Text files (*.txt)|*.txt", session_.record.BasePath + "/data", "", false});
  if (!path) return;
  writeFileWhole(*path, currentPane().text());
}

Progress::Progress() : Form("tbBottom") {
  cmdAbort.setVisible(false);
  cmdAbort.setCommand([this] { AbortFlag = true; });
}

void Progress::ShowProgress(std::string_view text, int value) {
  if (value == 0) {
    bar.setValue(bar.maximum());
    bar.setValue(0);
    cmdAbort.setVisible(false);
    txtInfo.setCaption("Ready!");
    hide();
    return;
  }
  if (!visible()) show();
  bar.setValue(value);
  if (text.empty()) return;
  txtInfo.setCaption(text);
  txtInfo.setVisible(true);
}

void Progress::ShowStop(bool visible) {
  if (visible) AbortFlag = false;
  cmdAbort.setVisible(visible);
}

void Progress::reset() {
  if (jobs_ > 0) return;
  AbortFlag = false;
  if (visible() || cmdAbort.visible()) ShowProgress("", 0);
}

JobScope::JobScope(Session& session, Abort button) : session_(session) {
  if (session_.progress.jobs_++ > 0) return;
  session_.progress.AbortFlag = false;
  session_.progress.ShowStop(button == Abort::Offered);
}

JobScope::~JobScope() {
  if (--session_.progress.jobs_ == 0) session_.progress.ShowProgress("", 0);
}

bool JobScope::aborted(LogKind kind, std::string_view line) {
  session_.pumpEvents();
  if (session_.progress.AbortFlag) abort(kind, line);
  return aborted_;
}

void JobScope::abort(LogKind kind, std::string_view line) {
  session_.progress.AbortFlag = false;
  if (!std::exchange(aborted_, true)) session_.log.LisaaLog(line, kind);
}

}  // namespace lodex
