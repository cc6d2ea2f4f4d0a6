#include "db/frmDB.h"

#include <array>

#include "basic/Error.h"
#include "chem/Elements.h"
#include "db/FieldLists.h"
#include "db/frmConnect.h"

namespace lodex {

namespace {

constexpr int kLastElement = 92;
constexpr int kOpeningSteps = 5;

}  // namespace

frmDB::frmDB(Session& session, Form& shell)
    : Form("frmDB", "Source database"), session_(session), shell_(shell) {
  keep(lstTables.onChange([this] { showFields(source_.map, lstTables, lstFields); }));
  keep(lstFields.onChange([this] {
    const std::string field = currentText(lstFields);
    if (field.empty()) return;
    try {
      txtParam.setText(fieldProperties(source_.connection, currentText(lstTables), field));
    } catch (const Error&) {
      txtParam.setText("");
    }
  }));
  keep(chkFilterOn.onChange([this] { fillFilters(); }));
  session_.setCommand(cmdOpenSDB, [this] { askDatabase(); });
  session_.setCommand(cmdDefineKeyTable, [this] { askKeyTable(); });
  session_.setCommand(cmdOK, [this] { accept(); });
  cmdCancel.setCommand([this] { close(); });
}

void frmDB::show() {
  SourceDbInUse = true;
  Form::show();
}

void frmDB::close() {
  SourceDbInUse = false;
  Form::close();
}

bool frmDB::OpenDBFromMDI(const std::string& path, const MapRequest& request) {
  if (onMacroLine) onMacroLine("OPENDB " + shownName(path));
  if (path.size() <= 2) return false;
  session_.record.SessionDbPath = path;
  session_.record.ConnectionKind.clear();
  session_.record.ConnectionKindLast.clear();
  const Outcome outcome = OpenSampleDatabase(session_, source_, request);
  if (!outcome.done()) {
    session_.progress.txtInfo.setCaption("");
    if (outcome.failed()) {
      session_.dialogs().messageBox("Error in opening database " + shownName(path),
                                    MessageButtons::Ok, MessageIcon::Stop);
    }
    return false;
  }
  shell_.setCaption("TarnKraph (" + shownName(path) + ")");
  if (onOpened) onOpened(source_.map);
  return true;
}

bool frmDB::AvaaDB(const std::string& path, const MapRequest& request) {
  if (path.empty()) return false;
  JobScope job(session_);
  session_.progress.bar.setMaximum(kOpeningSteps);
  session_.progress.ShowProgress("Opening database...", 1);
  if (!OpenDBFromMDI(path, request)) return false;
  session_.progress.bar.setMaximum(kOpeningSteps);
  session_.progress.ShowProgress("Opening database...", 2);
  txtDB.setText(shownName(source_.path));
  showTables(source_.map, lstTables);
  lstFields.clear();
  txtParam.setText("");
  fillFilters();
  session_.progress.ShowProgress("Opening database...", 3);
  SourceDbInUse = true;
  pairElements();
  session_.progress.ShowProgress("Opening database...", kOpeningSteps);
  return true;
}

void frmDB::pairElements() {
  F1Ref = Worksheet();
  std::array<int, kLastElement + 1> last{};
  const int count = source_.map.tableCount();
  for (int row = 1; row <= count; ++row) {
    int column = 1;
    for (std::string& field : source_.map.fields(row)) {
      ++column;
      const int element = ElementNumber(field);
      if (element < 1 || element > kLastElement) continue;
      int& place = last[static_cast<size_t>(element)];
      F1Ref.NumberRC(element, ++place, row);
      F1Ref.NumberRC(element, ++place, column);
    }
  }
}

void frmDB::fillFilters() {
  cmbFilter.clear();
  if (!chkFilterOn.checked()) return;
  for (const std::string& filter : source_.map.FilterList) cmbFilter.add(filter);
}

void frmDB::askDatabase() {
  frmConnect dialog(session_);
  session_.dialogs().showModal(dialog);
  AvaaDB(dialog.ConnectResult(), {true, dialog.ReadMapFile(), dialog.SaveMapFile()});
}

void frmDB::askKeyTable() {
  const std::vector<std::string> tables = source_.map.tables();
  const auto chosen = session_.dialogs().selectFromList("Select the key table", tables);
  if (chosen) txtKeyTable.setText(tables[static_cast<size_t>(*chosen)]);
}

void frmDB::accept() {
  if (txtDB.text().empty()) return;
  SourceDbInUse = true;
  pairElements();
  if (onAccepted) onAccepted(source_.path);
  hide();
  shell_.show();
}

}  // namespace lodex
