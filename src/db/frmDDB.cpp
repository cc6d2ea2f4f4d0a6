#include "db/frmDDB.h"

#include <optional>
#include <utility>

#include "basic/Error.h"
#include "basic/Files.h"
#include "db/FieldLists.h"
#include "db/frmAddField.h"

namespace lodex {

frmDDB::frmDDB(Session& session) : Form("frmDDB", "Destination database"), session_(session) {
  keep(lstDTables.onChange([this] { showFields(destination_.map, lstDTables, lstDFields); }));
  keep(lstDFields.onChange([this] {
    const std::string field = currentText(lstDFields);
    if (field.empty()) return;
    session_.run([&] {
      txtDParam.setText(fieldProperties(destination_.connection, currentText(lstDTables), field));
    });
  }));
  session_.setCommand(Command2, [this] { askExisting(); });
  session_.setCommand(Command1, [this] { askNew(); });
  session_.setCommand(cmdSame, [this] { takeSource(); });
  session_.setCommand(cmdCreateTable, [this] { createTable(); });
  session_.setCommand(cmdCreateField, [this] { createField(); });
  cmdOK.setCommand([this] { hide(); });
}

bool frmDDB::openDestination(const std::string& path, bool create) {
  MappedDatabase opened;
  opened.path = path;
  bool mapped = false;
  std::optional<JobScope> job(session_);
  try {
    if (create) ensureDatabase(path);
    mapped = MapDatabase(session_, opened, {}, MapRole::Destination).done();
  } catch (const Error& failure) {
    session_.log.LisaaLog(failure.what(), LogKind::Both);
  }
  job.reset();
  if (!mapped) {
    session_.dialogs().messageBox("Database could not be mapped!", MessageButtons::Ok,
                                  MessageIcon::None, "Tarn");
    return false;
  }
  destination_ = std::move(opened);
  txtDDB.setText(shownName(path));
  refreshTables();
  return true;
}

void frmDDB::refreshTables() {
  showTables(destination_.map, lstDTables);
  lstDFields.clear();
  txtDParam.setText("");
}

void frmDDB::askExisting() {
  const auto files = session_.dialogs().openFiles({"", "Microsoft Access Database (*.mdb)|*.mdb",
                                                   session_.record.UserPath + "\\data", "", false});
  if (!files.empty()) openDestination(files.front(), false);
}

void frmDDB::askNew() {
  const auto path = session_.dialogs().saveFile({"", "Destination Access database (*.mdb)|*.mdb",
                                                 session_.record.UserPath + "\\data", "", false});
  if (path) openDestination(*path, true);
}

void frmDDB::takeSource() {
  const std::string path = sourceDatabase ? sourceDatabase() : std::string();
  if (path.empty()) {
    session_.dialogs().messageBox("Source not defined!", MessageButtons::Ok, MessageIcon::Stop,
                                  "Tarn");
    return;
  }
  openDestination(path, false);
}

void frmDDB::createTable() {
  const auto name =
      session_.dialogs().inputBox("Give name for a new table", "New Table", "USERTABLE");
  if (!name || name->empty()) return;
  try {
    const std::string command = "CREATE TABLE " + quoteName(*name);
    if (session_.dialogs().messageBox("Are you sure to run command:\n" + command,
                                      MessageButtons::YesNoCancel,
                                      MessageIcon::Question) != Answer::Yes) {
      return;
    }
    destination_.connection.Execute(command);
    mapTables(session_, destination_, true, MapRole::Destination);
    refreshTables();
  } catch (const Error& failure) {
    session_.dialogs().messageBox("Error in creating table " + *name + " " +
                                  std::to_string(failure.number()));
  }
}

void frmDDB::createField() {
  const std::string table = currentText(lstDTables);
  if (table.empty()) {
    session_.dialogs().messageBox("Select table");
    return;
  }
  frmAddField dialog(session_, destination_.connection, table);
  session_.dialogs().showModal(dialog);
  if (!dialog.added()) return;
  takeField(destination_.map, table, dialog);
  showFields(destination_.map, lstDTables, lstDFields);
}

}  // namespace lodex
