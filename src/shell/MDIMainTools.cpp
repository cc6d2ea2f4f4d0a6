// What the tools, menus and buttons of the main window do, and what they say of themselves.
#include "basic/Files.h"
#include "shell/MDIMain.h"

namespace lodex {
namespace {

constexpr const char* shippedSets[] = {"ROCK", "MINERAL", "Ni-SURVEY", "MISCE", "USER", "OTHER"};

}  // namespace

void MDIMain::run(Button& button, const std::function<void()>& command) {
  session_.setCommand(button, command);
}

void MDIMain::connectStages() {
  stages.showShell = [this] { show(); };
  stages.bringToFront = [this](Form& form) { bringToFront(form); };
  stages.closeSheet = [this](frmDataIN& sheet) { return CloseSheet(sheet); };
  run(cmdIdentify, [this] {
    single_.reset();
    IDENTIFY(true);
  });
  run(calculations.cmdCalculate, [this] { Calculate(); });
  run(saving.cmdSaveInDBNow, [this] { SaveInDB(); });
  run(cmdBDL, [this] { toggleBdl(); });
  run(Command3, [this] { startViewer(); });
  Command3.setEnabled(static_cast<bool>(services_.startViewer));
}

void MDIMain::connectTools() {
  run(tbOpen, [this] { Open(); });
  run(tbIdentify, [this] {
    if (IDENTIFY(false) && !session_.log.txtErr.text().empty()) session_.log.show();
  });
  run(tbSources, [this] { calculations.ShowSources(); });
  run(tbSingle, [this] { SingleSample(); });
  run(tbIni, [this] { EditIni(); });
  run(tbTutorial, [this] { Help("tutorial"); });
  run(butHelp, [this] { Help(name()); });
  run(tbLodexGeoDB, [this] {
    session_.dialogs().messageBox("LodexGeo -database currently in use:\n" +
                                  tbLodexGeoDB.caption());
  });
  run(tbMineralDB, [this] {
    session_.dialogs().messageBox("Mineral -database currently in use:\n" + tbMineralDB.caption());
  });
  run(btChange, [this] { changeDatabase(); });
  for (const char* set : shippedSets) cmbSets.add(set);
  session_.setCommand(cmbSets, [this](int) { chooseSet(); });
  session_.setCommand(calculations.cmbRoutines, [this](int item) {
    const std::string method = calculations.cmbRoutines.item(item);
    frmExcelCalc& form = singleSample();
    if (form.CalcExcel(method)) bringToFront(form);
  });
  for (MenuItem* help : {&tbTutorial, &butHelp, &mnuHelp}) {
    help->setEnabled(static_cast<bool>(services_.showHelp));
  }
  for (MenuItem* ini : {&tbIni, &mnuEditIni}) {
    ini->setEnabled(static_cast<bool>(services_.startEditor));
  }
}

void MDIMain::connectMenus() {
  run(mnuOpen, [this] { Open(); });
  run(mnuNew, [this] { NewSheet(); });
  run(mnuPaste, [this] { PasteAsSheet(); });
  run(mnuOpenDB, [this] { OpenDatabase(); });
  run(mnuCloseSheet, [this] {
    if (frmDataIN* sheet = sheets.LastSheet()) CloseSheet(*sheet);
  });
  run(mnuEditIni, [this] { EditIni(); });
  run(mnuExit, [this] { Exit(); });

  mnuIdentify.setCommand([this] { tbIdentify.click(); });
  mnuSources.setCommand([this] { tbSources.click(); });
  mnuCalculate.setCommand([this] { calculations.cmdCalculate.click(); });
  mnuGroup.setCommand([this] { calculations.cmdGroup.click(); });
  mnuSingle.setCommand([this] { tbSingle.click(); });
  mnuSaveInDB.setCommand([this] { saving.cmdSaveInDBNow.click(); });

  const auto arranges = [this](MenuItem& entry, Arrangement arrangement) {
    run(entry, [this, arrangement] {
      if (services_.arrange) services_.arrange(arrangement);
    });
  };
  arranges(mnuCascade, Arrangement::Cascade);
  arranges(mnuTile, Arrangement::TileHorizontally);
  arranges(mnuTileVertical, Arrangement::TileVertically);

  mnuButtonsToggle.setChecked(true);
  run(mnuButtonsToggle, [this] { tbMain.setVisible(!tbMain.visible()); });
  keep(tbMain.onChange([this] { mnuButtonsToggle.setChecked(tbMain.visible()); }));
  mnuStagesToggle.setChecked(true);
  run(mnuStagesToggle, [this] { VaiheOn(!stages.picCalc.visible()); });
  keep(stages.picCalc.onChange([this] { mnuStagesToggle.setChecked(stages.picCalc.visible()); }));

  run(mnuHelp, [this] { Help(name()); });
  run(mnuAbout, [this] {
    session_.dialogs().messageBox("Lodex Geo " + services_.version, MessageButtons::Ok,
                                  MessageIcon::Information, "Lodex Geo");
  });
}

void MDIMain::showSet(const std::string& set) {
  lblSet.setCaption(set);
  cmbSets.setText(set);
}

// The name is shown whatever becomes of it; what is calculated with is the group in cmdGroup.
void MDIMain::chooseSet() {
  if (cmbSets.current() < 0) return;
  const std::string set = cmbSets.item(cmbSets.current());
  showSet(set);
  SessionRecord& record = session_.record;
  if (!FileExists(record.CGroupsFolder + "\\" + set)) return;
  record.CurrentCGroup = set;
  calculations.AlustaCALC(false);
}

void MDIMain::toggleBdl() {
  sheets.ConvertBelowDetection = !sheets.ConvertBelowDetection;
  cmdBDL.setCaption(sheets.ConvertBelowDetection ? "BDLC=ON" : "BDLC=OFF");
}

void MDIMain::describeTools() {
  struct Hint {
    Control& control;
    const char* text;
  };
  const Hint hints[] = {
      {tbOpen, "Open data files"},
      {mnuOpen, "Open data files"},
      {tbIdentify, "Find out what the columns of the selected sheets hold"},
      {mnuIdentify, "Find out what the columns of the selected sheets hold"},
      {cmdIdentify, "Identify the selected sheets, show the log and go on to saving"},
      {tbSources, "Choose which columns feed the calculations"},
      {mnuSources, "Choose which columns feed the calculations"},
      {tbSingle, "Calculate the current row of the data sheet by hand"},
      {mnuSingle, "Calculate the current row of the data sheet by hand"},
      {tbIni, "Edit an ini file; changes take effect on the next start"},
      {mnuEditIni, "Edit an ini file; changes take effect on the next start"},
      {tbTutorial, "A first walk through the program"},
      {butHelp, "Help"},
      {cmbSets, "Calculation groups"},
      {lblSet, "The calculation group chosen here last"},
      {tbLodexGeoDB, "Sample database in use"},
      {tbMineralDB, "Mineral database in use"},
      {btChange, "Use another sample database"},
      {cmdBDL, "Toggle to turn Below Detection Limit (BDL) conversion ON or OFF"},
      {Command3, "View the destination database in the data viewer; this program ends"},
      {mnuNew, "Make an empty data sheet"},
      {mnuPaste, "Make a data sheet of the text on the clipboard and identify it"},
      {mnuOpenDB, "Open a database as the source of samples"},
      {mnuCloseSheet, "Close the data sheet that was worked with last"},
      {mnuSaveInDB, "Save the sheets selected for saving"},
      {mnuGroup, "Choose another calculation group"},
      {mnuCalculate, "Run the selected methods over the selected samples"},
      {calculations.cmdGroup, "The calculation group in use; click to choose another one"},
      {calculations.cmdCalculate, "Run the selected methods over the selected samples"},
      {calculations.cmbRoutines, "Calculate single samples with this method"},
      {calculations.chkAskRefs, "Ask where an item has several columns to come from"},
      {sheets.chkUseThes, "Rewrite what laboratories write by the rules of the thesaurus"},
      {sheets.chkOnlyNonX, "Leave columns alone that are identified already"},
      {sheets.chkFILEISMET, "The name of the file is the method of its columns"},
      {sheets.chkUnIDToUser, "Columns that stay unidentified are saved in this table"},
      {sheets.txtUnID, "Table for columns that stay unidentified"},
      {saving.chkMerge, "Look samples up by their key instead of adding new records"},
      {saving.chkOverWrite, "Values that are in the database already may be replaced"},
      {saving.chkAndSave, "Choose the database to save in"},
      {saving.cmdDefine, "Choose the database to save in"},
      {saving.cmdSaveInDBNow, "Save the selected sheets in the database"},
      {saving.lblDB, "The database to save in"},
  };
  for (const Hint& hint : hints) hint.control.setToolTip(hint.text);
}

}  // namespace lodex
