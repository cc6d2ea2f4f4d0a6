#include "session/Log.h"

#include "basic/Error.h"
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
    button->onClick([this] { save(); });
  }
  for (Button* button : {static_cast<Button*>(&mnuClear), &cmdClear}) {
    button->onClick([this] { currentPane().setText(""); });
  }
  mnuCopy.onClick([this] { session_.clipboard().setText(currentPane().text()); });
  for (Button* button :
       {static_cast<Button*>(&mnuHide), static_cast<Button*>(&mnuClose), &cmdClose}) {
    button->onClick([this] { close(); });
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
  try {
    writeFileWhole(*path, currentPane().text());
  } catch (const Error& error) {
    session_.dialogs().messageBox("Error " + std::to_string(error.number()) + " " + error.what(),
                                  MessageButtons::Ok, MessageIcon::Stop);
  }
}

Progress::Progress() : Form("tbBottom") {
  cmdAbort.setVisible(false);
  cmdAbort.onClick([this] { AbortFlag = true; });
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

}  // namespace lodex
