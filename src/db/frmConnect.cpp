#include "db/frmConnect.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>
#include <vector>

#include "basic/Error.h"
#include "basic/Files.h"
#include "db/DatabaseKinds.h"
#include "session/Ini.h"

namespace lodex {

namespace {

struct ListedKind {
  const char* text;
  const char* extension;
};
constexpr std::array kListed{ListedKind{"Microsoft Access", "mdb"},
                             ListedKind{"ODBC Database", "dsn"}};

// Where the browsing of folders can begin.
std::vector<std::string> startFolders(const SessionRecord& record) {
  std::vector<std::string> folders;
  const std::string root = pathText(std::filesystem::current_path().root_path());
  for (const std::string& start : {record.UserPath, record.BasePath, ExpandEnv("%HOME%"), root}) {
    const std::string folder = pathText(nativePath(start));
    const bool known = std::find(folders.begin(), folders.end(), folder) != folders.end();
    if (!folder.empty() && !known) folders.push_back(folder);
  }
  return folders;
}

// Names in a folder, sorted; what cannot be read counts as empty.
std::vector<std::string> namesIn(const std::string& folder, bool folders) {
  std::vector<std::string> names;
  std::error_code failed;
  for (std::filesystem::directory_iterator at(nativePath(folder), failed), end;
       !failed && at != end; at.increment(failed)) {
    std::error_code unknown;
    if (at->is_directory(unknown) == folders) names.push_back(pathText(at->path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

frmConnect::frmConnect(Session& session) : Form("frmConnect", "Open Database"), session_(session) {
  int row = 0;
  for (const ListedKind& kind : kListed) {
    F1FTypes.TextRC(++row, 1, kind.text);
    F1FTypes.TextRC(row, 2, kind.extension);
  }
  for (row = 1; F1FTypes.HasContent(row, 1); ++row) ListDBTypes.add(F1FTypes.TextRC(row, 1));
  for (const std::string& path : LastFiles(session.record, "Session")) {
    if (!path.empty()) lstLast.add(path);
  }
  txtFolder.setText(pathText(nativePath(session.record.UserPath + "\\data")));
  keep(ListDBTypes.onChange([this] { chooseType(); }));
  for (const std::string& start : startFolders(session.record)) Drive1.add(start);
  for (const auto& [name, path] : {std::pair("Sample database: ", session.record.SampleDbPath),
                                   std::pair("Mineral database: ", session.record.MineralDbPath)}) {
    if (!path.empty()) txtInUse.appendText(name + path + "\r\n");
  }
  keep(txtFolder.onChange([this] {
    txtFile.setText("");  // the file of another folder
    showFolder();
  }));
  Drive1.setCurrent(0);
  Drive1.setCommand([this](int drive) { txtFolder.setText(Drive1.item(drive)); });
  Dir1.setActivateCommand([this](int) { session_.run([this] { changeFolder(); }); });
  keep(lstFiles.onChange([this] {
    if (lstFiles.current() >= 0) txtFile.setText(lstFiles.item(lstFiles.current()));
  }));
  lstFiles.setActivateCommand([this](int) { session_.run([this] { openFile(); }); });
  lstLast.setActivateCommand([this](int) { session_.run([this] { openLast(); }); });
  ListDBTypes.setCurrent(0);
  showFolder();
  session_.setCommand(Command2, [this] { openFile(); });
  session_.setCommand(cmdBrowse, [this] { browse(); });
  session_.setCommand(cmdOpenLast, [this] { openLast(); });
  for (Button* button : {&cmdCancel, &cmdCanc, &cmdLinkDone}) {
    button->setCommand([this] { close(); });
  }
}

void frmConnect::chooseType() {
  const int kind = ListDBTypes.current();
  if (kind < 0) return;
  txtPattern.setText("*." + F1FTypes.TextRC(kind + 1, 2));
  fillFiles();
}

void frmConnect::showFolder() {
  Dir1.clear();
  Dir1.add("..");
  for (const std::string& name : namesIn(txtFolder.text(), true)) {
    if (!name.starts_with(".")) Dir1.add(name);
  }
  fillFiles();
}

void frmConnect::changeFolder() {
  if (Dir1.current() < 0) return;
  const std::string& name = Dir1.item(Dir1.current());
  if (name == "..") {
    txtFolder.setText(pathText(nativePath(txtFolder.text()).parent_path()));
  } else {
    txtFolder.setText(pathText(nativePath(txtFolder.text()) / nativePath(name)));
  }
}

void frmConnect::fillFiles() {
  const std::string wanted = extensionOf(txtPattern.text());
  lstFiles.clear();
  for (const std::string& name : namesIn(txtFolder.text(), false)) {
    if (extensionOf(name) == wanted) lstFiles.add(name);
  }
}

void frmConnect::openFile() {
  const std::string& name = txtFile.text();
  if (name.empty()) return;
  take(namesServer(name) ? name : txtFolder.text() + "\\" + name, chkMapE.checked());
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
  try {
    if (!holdsSecret(path)) PushLastFile(session_.record, path, "Session");
  } catch (const FileError& error) {
    session_.log.LisaaLog(error.what());  // the database can be opened all the same
  }
  close();
}

}  // namespace lodex
