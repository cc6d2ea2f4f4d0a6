#include "db/frmConnect.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

#include "basic/Files.h"

namespace lodex {

namespace {

struct DatabaseKind {
  const char* text;
  const char* extension;
};
constexpr std::array kKinds{DatabaseKind{"Microsoft Access", "mdb"},
                            DatabaseKind{"ODBC Database", "dsn"}};

}  // namespace

frmConnect::frmConnect(Session& session) : Form("frmConnect", "Open Database"), session_(session) {
  for (const DatabaseKind& kind : kKinds) ListDBTypes.add(kind.text);
  for (const std::string& path : LastFiles(session.record, "Session")) {
    if (!path.empty()) lstLast.add(path);
  }
  txtFolder.setText(session.record.UserPath + "\\data");
  ListDBTypes.onChange([this] { chooseType(); });
  txtFolder.onChange([this] { fillFiles(); });
  lstFiles.onChange([this] {
    if (lstFiles.current() >= 0) txtFile.setText(lstFiles.item(lstFiles.current()));
  });
  ListDBTypes.setCurrent(0);
  Command2.onClick([this] { openFile(); });
  cmdBrowse.onClick([this] { browse(); });
  cmdOpenLast.onClick([this] { openLast(); });
  for (Button* button : {&cmdCancel, &cmdCanc, &cmdLinkDone}) {
    button->onClick([this] { close(); });
  }
}

void frmConnect::chooseType() {
  const int kind = ListDBTypes.current();
  if (kind < 0) return;
  txtPattern.setText(std::string("*.") + kKinds[static_cast<size_t>(kind)].extension);
  fillFiles();
}

void frmConnect::fillFiles() {
  const std::string wanted = extensionOf(txtPattern.text());
  std::vector<std::string> names;
  std::error_code failed;
  for (std::filesystem::directory_iterator at(nativePath(txtFolder.text()), failed), end;
       !failed && at != end; at.increment(failed)) {
    const std::string name = pathText(at->path().filename());
    if (extensionOf(name) == wanted && !at->is_directory(failed)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  lstFiles.clear();
  for (const std::string& name : names) lstFiles.add(name);
}

void frmConnect::openFile() {
  if (!txtFile.text().empty()) {
    take(txtFolder.text() + "\\" + txtFile.text(), chkMapE.checked());
  }
}

void frmConnect::browse() {
  const auto files = session_.dialogs().openFiles(
      {"Open Database", "Access database (*.mdb)|*mdb", txtFolder.text(), "", false});
  if (!files.empty() && !files.front().empty()) take(files.front(), chkMapE.checked());
}

void frmConnect::openLast() {
  if (lstLast.current() >= 0) take(lstLast.item(lstLast.current()), chkMapLast.checked());
}

void frmConnect::take(const std::string& path, bool mapAfresh) {
  result_ = path;
  mapAfresh_ = mapAfresh;
  PushLastFile(session_.record, path, "Session");
  close();
}

}  // namespace lodex
