#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "calc/Calculations.h"
#include "import/DataSheets.h"
#include "import/SaveInDB.h"
#include "session/Session.h"

namespace lodex {

/// The stages of the work, in the order of the panel.
enum class Stage { Open = 0, Identify = 1, Calculate = 2, Save = 3, End = 4 };
inline constexpr int stageCount = 5;

/// The panel at the left of the main window that leads through the stages, with the pop-up menus of
/// its lists. The controls are made on the shell's form; the lists and options themselves belong to
/// DataSheets (lstI, lstSrcF, lstSrcD), Calculations (lstCalc) and SavingStage. In all four lists
/// the user selects several items; a click reports the item that was toggled.
class StagePanel {
 public:
  StagePanel(Form& shell, Session& session, DataSheets& sheets, Calculations& calculations);

  Label picCalc;           // the panel
  OptionButtons optStage;  // the stages by name, for going to any of them
  /// The frame of a stage, "FraSo0" to "FraSo4"; only that of the current stage is visible.
  Label& FraSo(int stage) { return fraSo_.at(static_cast<size_t>(stage)); }
  Button Command1;  // to stage 1; in FraSo0
  Button Command2;  // to stage 2; in FraSo1
  Button cmdNext2;  // to stage 3; in FraSo2
  Button cmdNext3;  // to stage 4; in FraSo3
  Button cmdBack0;  // back a stage; one for all frames, below them

  // Entries of the pop-up menus: mnuPopUp1 on lstCalc, mnuPopUpF on lstSrcF, mnuPopUpDB on lstSrcD,
  // mnuPopUpID on lstI. The menus themselves are the view's.
  MenuItem mnuSelectAll1, mnuDeselectAll1;
  MenuItem mnuSelectRock, mnuSelectMineral;  // by the first letter of the method
  MenuItem mnuSaveSelectionAsDefault;        // until the program ends
  MenuItem mnuLoadAll;                       // reads all workbooks of the group again
  MenuItem mnuSelectAllF, mnuDeselectAllF;
  MenuItem mnuSelectAllDB, mnuDeselectAllDB;
  MenuItem mnuSelectAllID, mnuDeselectAllID;
  MenuItem mnuRemove;  // closes the current sheet of lstI

  /// The stage in force.
  int stage() const { return stage_; }
  /// Goes to a stage, 0 to 4; another number is ignored.
  void SetStage(int stage);
  void SetStage(Stage stage) { SetStage(static_cast<int>(stage)); }
  /// Shows or hides the panel and sets the stage in force anew.
  void VaiheOn(bool visible);

  /// Brings a form in front of the others.
  std::function<void(Form&)> bringToFront{};
  /// Closes a data sheet after asking; false when the user wants to keep it.
  std::function<bool(frmDataIN&)> closeSheet{};
  /// Shows the main window.
  std::function<void()> showShell{};

 private:
  void describe();
  void connectCommands();
  void connectLists();
  void connectMenus();
  void enterStage(Stage stage);
  void switchSheets();
  void chooseSamples();
  void chooseMethods();
  void chooseSheetsToSave();
  void showSheet(const std::string& name);
  void clickDestination(int index);
  void selectMethods(char kind);
  std::vector<frmDataIN*> allSheets();

  Session& session_;
  DataSheets& sheets_;
  Calculations& calculations_;
  std::deque<Label> fraSo_;
  std::optional<std::vector<std::string>> defaultMethods_;
  int stage_ = 0;
};

}  // namespace lodex
