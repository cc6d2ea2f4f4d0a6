#include "shell/StagePanel.h"

#include <algorithm>

#include "basic/Text.h"

namespace lodex {
namespace {

bool isEditing(int stage) {
  return stage <= static_cast<int>(Stage::Identify);
}

void allowEditing(Worksheet& cells, bool allowed) {
  GridPermissions& permissions = cells.permissions();
  permissions.AllowFormulas = allowed;
  permissions.AllowInCellEditing = allowed;
  permissions.AllowDelete = allowed;
  permissions.AllowAutoFill = allowed;
  permissions.AllowDesigner = allowed;
  permissions.AllowEditHeaders = allowed;
  permissions.AllowMoveRange = allowed;
}

// Where cells can be typed there is room for more of them; else the sheet ends with its content.
void setLimits(Worksheet& cells, bool room) {
  cells.MaxRow(room ? maxRows : std::max(1, cells.LastRow()));
  cells.MaxCol(room ? maxColumns : std::max(1, cells.LastCol()));
}

void selectByName(ListBox& list, std::string_view name, bool selected) {
  for (int i = 0; i < list.count(); ++i) {
    if (list.item(i) == name) list.setSelected(i, selected);
  }
}

}  // namespace

StagePanel::StagePanel(Form& shell, Session& session, DataSheets& sheets,
                       Calculations& calculations)
    : picCalc(shell, "picCalc"),
      optStage(shell, "optStage", {"Open", "Identify", "Calculate", "Save", "End"}),
      Command1(shell, "Command1", "Identify >>"),
      Command2(shell, "Command2", "Calculate >>"),
      cmdNext2(shell, "cmdNext2", "Save >>"),
      cmdNext3(shell, "cmdNext3", "Finish >>"),
      cmdBack0(shell, "cmdBack0", "<< Back"),
      mnuSelectAll1(shell, "mnuSelectAll1", "Select all"),
      mnuDeselectAll1(shell, "mnuDeselectAll1", "Deselect all"),
      mnuSelectRock(shell, "mnuSelectRock", "Select rock methods"),
      mnuSelectMineral(shell, "mnuSelectMineral", "Select mineral methods"),
      mnuSaveSelectionAsDefault(shell, "mnuSaveSelectionAsDefault", "Save selection as default"),
      mnuLoadAll(shell, "mnuLoadAll", "Load all"),
      mnuSelectAllF(shell, "mnuSelectAllF", "Select all"),
      mnuDeselectAllF(shell, "mnuDeselectAllF", "Deselect all"),
      mnuSelectAllDB(shell, "mnuSelectAllDB", "Select all"),
      mnuDeselectAllDB(shell, "mnuDeselectAllDB", "Deselect all"),
      mnuSelectAllID(shell, "mnuSelectAllID", "Select all"),
      mnuDeselectAllID(shell, "mnuDeselectAllID", "Deselect all"),
      mnuRemove(shell, "mnuRemove", "Remove"),
      session_(session),
      sheets_(sheets),
      calculations_(calculations) {
  for (int stage = 0; stage < stageCount; ++stage) {
    fraSo_.emplace_back(shell, "FraSo" + std::to_string(stage));
    fraSo_.back().setVisible(stage == 0);
  }
  cmdBack0.setEnabled(false);
  describe();
  connectCommands();
  connectLists();
  connectMenus();
}

void StagePanel::describe() {
  optStage.setToolTip("Go to a stage of the work");
  Command1.setToolTip("Go on to find out what the columns of the open sheets hold");
  Command2.setToolTip("Go on to choose samples and calculations");
  cmdNext2.setToolTip("Go on to save sheets and results in a database");
  cmdNext3.setToolTip("Go on to what can be done with the saved data");
  cmdBack0.setToolTip("Go back one stage");
  mnuSelectRock.setToolTip("Select the methods whose names begin with R");
  mnuSelectMineral.setToolTip("Select the methods whose names begin with M");
  mnuSaveSelectionAsDefault.setToolTip(
      "Select these methods whenever the calculating stage is entered, until the program ends");
  mnuLoadAll.setToolTip("Read all methods of the calculation group again");
  mnuRemove.setToolTip("Close this data sheet");
  sheets_.lstI.setToolTip("Open data sheets: the selected ones are identified");
  sheets_.lstSrcF.setToolTip("Where samples come from: the selected ones are calculated");
  sheets_.lstSrcD.setToolTip("The selected ones are saved in the database");
  calculations_.lstCalc.setToolTip("Methods: the selected ones are calculated");
}

void StagePanel::connectCommands() {
  const auto to = [this](Button& button, Stage stage) {
    session_.setCommand(button, [this, stage] { SetStage(stage); });
  };
  to(Command1, Stage::Identify);
  to(Command2, Stage::Calculate);
  to(cmdNext2, Stage::Save);
  to(cmdNext3, Stage::End);
  session_.setCommand(cmdBack0, [this] { SetStage(stage_ - 1); });
  keep(optStage.onChange([this] {
    if (optStage.selected() != stage_) SetStage(optStage.selected());
  }));
}

void StagePanel::connectLists() {
  session_.setCommand(sheets_.lstI, [this](int index) { showSheet(sheets_.lstI.item(index)); });
  session_.setCommand(sheets_.lstSrcF,
                      [this](int index) { showSheet(sheets_.lstSrcF.item(index)); });
  session_.setCommand(sheets_.lstSrcD, [this](int index) { clickDestination(index); });
  for (ListBox* list :
       {&sheets_.lstI, &sheets_.lstSrcF, &sheets_.lstSrcD, &calculations_.lstCalc}) {
    list->setMultiple(true);
  }
}

void StagePanel::connectMenus() {
  const auto selectAll = [](MenuItem& entry, ListBox& list, bool selected) {
    entry.setCommand([&list, selected] { list.selectAll(selected); });
  };
  selectAll(mnuSelectAll1, calculations_.lstCalc, true);
  selectAll(mnuDeselectAll1, calculations_.lstCalc, false);
  selectAll(mnuSelectAllF, sheets_.lstSrcF, true);
  selectAll(mnuDeselectAllF, sheets_.lstSrcF, false);
  selectAll(mnuSelectAllDB, sheets_.lstSrcD, true);
  selectAll(mnuDeselectAllDB, sheets_.lstSrcD, false);
  selectAll(mnuSelectAllID, sheets_.lstI, true);
  selectAll(mnuDeselectAllID, sheets_.lstI, false);
  mnuSelectRock.setCommand([this] { selectMethods('R'); });
  mnuSelectMineral.setCommand([this] { selectMethods('M'); });
  mnuSaveSelectionAsDefault.setCommand([this] {
    defaultMethods_.emplace();
    for (const int item : calculations_.lstCalc.selectedItems()) {
      defaultMethods_->push_back(calculations_.lstCalc.item(item));
    }
  });
  session_.setCommand(mnuLoadAll, [this] { calculations_.AlustaCALC(true); });
  session_.setCommand(mnuRemove, [this] {
    const int current = sheets_.lstI.current();
    frmDataIN* sheet = current < 0 ? nullptr : sheets_.find(sheets_.lstI.item(current));
    if (sheet != nullptr && closeSheet) closeSheet(*sheet);
  });
}

// --- Stages ---

void StagePanel::SetStage(int stage) {
  if (stage < 0 || stage >= stageCount) return;
  stage_ = stage;
  // A list that still shows the former name of a sheet would not find it.
  sheets_.TarkastaJaLisaaListaan();
  for (int i = 0; i < stageCount; ++i) FraSo(i).setVisible(i == stage);
  enterStage(static_cast<Stage>(stage));
  switchSheets();
  cmdBack0.setEnabled(stage > 0);
  optStage.select(stage);
}

void StagePanel::VaiheOn(bool visible) {
  picCalc.setVisible(visible);
  SetStage(stage_);
}

void StagePanel::enterStage(Stage stage) {
  switch (stage) {
    case Stage::Open:
      if (showShell) showShell();
      sheets_.F1Ref = Worksheet();
      for (frmDataIN* sheet : allSheets()) {
        sheet->F1D.FixedRows(0);
        if (!sheet->visible()) sheet->show();
      }
      break;
    case Stage::Identify:
      sheets_.F1Ref = Worksheet();
      break;
    case Stage::Calculate:
      chooseSamples();
      chooseMethods();
      break;
    case Stage::Save:
      chooseSheetsToSave();
      break;
    case Stage::End:
      break;
  }
}

std::vector<frmDataIN*> StagePanel::allSheets() {
  std::vector<frmDataIN*> all;
  for (int number = 1; number <= sheets_.DataSheetCount(); ++number) {
    all.push_back(&sheets_.sheet(number));
  }
  return all;
}

void StagePanel::chooseSamples() {
  for (frmDataIN* sheet : allSheets()) {
    selectByName(sheets_.lstSrcF, sheet->caption(), sheet->bIdentified);
    if (!sheet->bIdentified) {
      sheet->hide();
    } else if (!sheet->visible()) {
      sheet->show();
    }
  }
}

void StagePanel::chooseMethods() {
  if (!defaultMethods_) return;
  ListBox& list = calculations_.lstCalc;
  list.selectAll(false);
  for (const std::string& name : *defaultMethods_) selectByName(list, name, true);
}

void StagePanel::chooseSheetsToSave() {
  ListBox& list = sheets_.lstSrcD;
  for (int i = 0; i < list.count(); ++i) {
    const frmDataIN* sheet = sheets_.find(list.item(i));
    list.setSelected(i, sheet != nullptr ? sheet->bIdentified : sheets_.result.F1D.LastRow() > 0);
  }
}

void StagePanel::switchSheets() {
  const bool editing = isEditing(stage_);
  for (frmDataIN* sheet : allSheets()) {
    allowEditing(sheet->F1D, editing);
    setLimits(sheet->F1D, editing);
    sheet->picLe.setVisible(editing);
    sheet->gridF1D.refresh();
  }
}

// --- Lists ---

void StagePanel::showSheet(const std::string& name) {
  frmDataIN* sheet = sheets_.find(name);
  if (sheet == nullptr) return;
  sheet->show();
  sheet->activate();
  if (bringToFront) bringToFront(*sheet);
}

// The window follows the mark of the entry.
void StagePanel::clickDestination(int index) {
  ListBox& list = sheets_.lstSrcD;
  const std::string name = list.item(index);
  frmDataIN* sheet = sheets_.find(name);
  Form* window = sheet;
  if (sheet == nullptr) {
    if (name != sheets_.result.caption()) return;
    window = &sheets_.result;
  } else if (!sheet->bIdentified) {
    session_.dialogs().messageBox(
        "Structure of " + name + " is unknown.\nGo back to Identifying stage!", MessageButtons::Ok,
        MessageIcon::Stop);
    selectByName(list, name, false);
    sheet->hide();
    return;
  }
  if (!list.selected(index)) {
    window->hide();
    return;
  }
  window->show();
  if (bringToFront) bringToFront(*window);
}

void StagePanel::selectMethods(char kind) {
  ListBox& list = calculations_.lstCalc;
  for (int i = 0; i < list.count(); ++i) {
    list.setSelected(i, toUpper(list.item(i)).starts_with(kind));
  }
}

}  // namespace lodex
