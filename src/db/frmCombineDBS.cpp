#include "db/frmCombineDBS.h"

#include "basic/Error.h"
#include "db/CombineDatabases.h"
#include "db/FieldLists.h"
#include "db/OpenDatabase.h"
#include "db/frmAddField.h"

namespace lodex {

namespace {

constexpr const char* kDatabases = "Microsoft Access Database (*.mdb)|*.mdb";

}  // namespace

frmCombineDBS::frmCombineDBS(Session& session)
    : Form("frmCombineDBS", "Combine Databases"), session_(session) {
  keep(lstSDB.onChange([this] {
    const std::string path = currentText(lstSDB);
    if (path != chosen_.path) session_.run([this] { AvaaLista(); });
  }));
  keep(lstTables.onChange([this] { showFields(chosen_.map, lstTables, lstFld); }));
  keep(lstFld.onChange([this] {
    const std::string field = currentText(lstFld);
    if (field.empty()) return lstProp.setText("");
    session_.run([&] {
      lstProp.setText(fieldProperties(chosen_.connection, currentText(lstTables), field));
    });
  }));
  const auto connect = [this](Button& button, void (frmCombineDBS::*command)()) {
    session_.setCommand(button, [this, command] { (this->*command)(); });
  };
  connect(cmdAddDB, &frmCombineDBS::addSource);
  connect(cmdRemoveDB, &frmCombineDBS::removeSource);
  connect(cmdOpen, &frmCombineDBS::openDestination);
  connect(cmdNew, &frmCombineDBS::newDestination);
  connect(cmdCombine, &frmCombineDBS::combine);
  connect(cmdAddTable, &frmCombineDBS::addTable);
  connect(cmdAddField, &frmCombineDBS::addField);
  session_.setCommand(cmdRemoveTable, [this] {
    const std::string table = currentText(lstTables);
    if (!table.empty()) executeIfSure("DROP TABLE " + quoteName(table));
  });
  session_.setCommand(cmdRemoveFld, [this] {
    const std::string field = currentText(lstFld);
    if (field.empty()) return;
    executeIfSure("ALTER TABLE " + quoteName(currentText(lstTables)) + " DROP COLUMN " +
                  quoteName(field));
  });
}

void frmCombineDBS::AvaaLista() {
  chosen_ = {};
  chosen_.path = currentText(lstSDB);
  if (!chosen_.path.empty()) {
    JobScope job(session_);
    openDatabase(session_, chosen_.connection, chosen_.path);
    mapTables(session_, chosen_, false, MapRole::Source);
  }
  showTables(chosen_.map, lstTables);
  lstFld.clear();
  lstProp.setText("");
}

void frmCombineDBS::addSource() {
  const auto files =
      session_.dialogs().openFiles({"", kDatabases, session_.record.GeoPath + "\\data", "", false});
  if (files.empty()) return;
  lstSDB.add(files.front());
  lstSDB.setCurrent(lstSDB.count() - 1);
}

void frmCombineDBS::removeSource() {
  if (lstSDB.current() < 0) return;
  lstSDB.remove(lstSDB.current());
  AvaaLista();
}

void frmCombineDBS::openDestination() {
  const auto files =
      session_.dialogs().openFiles({"", kDatabases, session_.record.GeoPath + "\\data", "", false});
  if (!files.empty()) txtDDB.setText(files.front());
}

void frmCombineDBS::newDestination() {
  const auto path = session_.dialogs().saveFile({"", "Destination Access database (*.mdb)|*.mdb",
                                                 session_.record.GeoPath + "\\data", "", false});
  if (!path) return;
  createDatabase(*path);
  txtDDB.setText(*path);
  session_.dialogs().messageBox("Database: " + *path + " created.");
}

void frmCombineDBS::combine() {
  if (session_.dialogs().messageBox("Are you sure to combine databases?", MessageButtons::YesNo,
                                    MessageIcon::Question) != Answer::Yes) {
    session_.log.clear();
    session_.log.LisaaLog(combiningTitle, LogKind::Log);
    return;
  }
  combineDatabases(session_, lstSDB.items(), txtDDB.text());
}

void frmCombineDBS::addTable() {
  if (!chosen_.connection.IsOpen()) return;
  const auto name = session_.dialogs().inputBox("Give name for new table", "", "");
  if (name && !name->empty()) executeIfSure("CREATE TABLE " + quoteName(*name));
}

void frmCombineDBS::addField() {
  const std::string table = currentText(lstTables);
  if (table.empty()) return;
  frmAddField dialog(session_, chosen_.connection, table);
  session_.dialogs().showModal(dialog);
  if (!dialog.added()) return;
  takeField(chosen_.map, table, dialog);
  showFields(chosen_.map, lstTables, lstFld);
}

void frmCombineDBS::executeIfSure(const std::string& statement) {
  session_.run([&] {
    if (session_.dialogs().messageBox("Are you sure to execute command:\n" + statement,
                                      MessageButtons::YesNo,
                                      MessageIcon::Question) != Answer::Yes) {
      return;
    }
    chosen_.connection.Execute(statement);
    AvaaLista();
  });
}

}  // namespace lodex
