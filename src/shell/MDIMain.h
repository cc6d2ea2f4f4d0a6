#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "calc/Calculations.h"
#include "calc/frmExcelCalc.h"
#include "chem/ReferenceTables.h"
#include "db/Connection.h"
#include "db/MineralCatalogue.h"
#include "db/frmCombineDBS.h"
#include "db/frmDB.h"
#include "db/frmDDB.h"
#include "import/DataSheets.h"
#include "import/SaveInDB.h"
#include "import/frmSynonLib.h"
#include "session/Session.h"
#include "session/frmReport.h"
#include "shell/Autosave.h"
#include "shell/Doors.h"
#include "shell/ShellServices.h"
#include "shell/SourceDatabase.h"
#include "shell/StagePanel.h"

namespace lodex {

/// The main window: it owns what lives as long as the session, leads through the stages, and its
/// tools and menus bring up everything else. Long jobs show in session.progress ("tbBottom"), which
/// the window shows as its status line.
class MDIMain : public Form {
 public:
  /// `session` must outlive the window. Nothing is read before Load.
  MDIMain(Session& session, ShellServices services);
  ~MDIMain() override;

  // --- What lives as long as the session ---
  // The controls of these parts belong to this form, too: lstI, lstSrcF, lstSrcD, chkUseThes,
  // chkOnlyNonX, chkFILEISMET, chkUnIDToUser, txtUnID (DataSheets); lstCalc, cmbRoutines,
  // chkAskRefs, cmdGroup, cmdCalculate (Calculations); chkMerge, chkOverWrite, chkAndSave,
  // cmdDefine, cmdSaveInDBNow, lblDB (SavingStage); and those of StagePanel.
  taulukot tables;
  frmSynonLib thesaurus;
  ImportContext importContext;
  DataSheets sheets;
  Calculations calculations;
  frmDB sourceForm;
  frmDDB destinationForm;
  SavingStage saving;
  frmCombineDBS combineForm;
  SourceDatabase source;
  Connection MineralConnection;
  StagePanel stages;
  frmReport report;
  Doors doors;  // what the subsystems bring: windows, docks, commands
  /// The form of single samples, made at its first use.
  frmExcelCalc& singleSample();

  // --- The stage panel's commands ---
  Button cmdIdentify{*this, "cmdIdentify", "Identify"};
  Button cmdBDL{*this, "cmdBDL", "BDLC=OFF"};
  Button Command3{*this, "Command3", "View data..."};

  // --- Tool bar ---
  MenuItem tbOpen{*this, "tbOpen", "Open"};
  MenuItem tbIdentify{*this, "tbIdentify", "Identify"};
  MenuItem tbSources{*this, "tbSources", "Sources"};
  MenuItem tbSingle{*this, "tbSingle", "Single sample"};
  MenuItem tbIni{*this, "tbIni", "Settings"};
  MenuItem tbTutorial{*this, "tbTutorial", "Tutorial"};
  MenuItem butHelp{*this, "butHelp", "Help"};
  ComboBox cmbSets{*this, "cmbSets"};  // the shipped calculation groups
  Label lblSet{*this, "lblSet"};       // its name

  // --- Status line ---
  MenuItem tbLodexGeoDB{*this, "tbLodexGeoDB"};  // the sample database; a click shows its path
  MenuItem tbMineralDB{*this, "tbMineralDB"};    // the mineral database
  MenuItem btChange{*this, "btChange", "Change..."};
  MenuItem tbReport{*this, "tbReport"};  // what was noticed last; a click opens the report

  // --- Menus; those of the subsystems are in Windows.cpp ---
  MenuItem mnuOpen{*this, "mnuOpen", "&Open..."};
  MenuItem mnuNew{*this, "mnuNew", "&New data sheet"};
  MenuItem mnuPaste{*this, "mnuPaste", "&Paste as new data sheet"};
  MenuItem mnuOpenDB{*this, "mnuOpenDB", "Open &database..."};
  MenuItem mnuCloseSheet{*this, "mnuCloseSheet", "&Close data sheet"};
  MenuItem mnuEditIni{*this, "mnuEditIni", "&Edit settings..."};
  MenuItem mnuExit{*this, "mnuExit", "E&xit"};
  /// Last files and databases, entries 1 to 10: "mnuLastFile1", "mnuLastDB1" and so on. Those
  /// beyond the list are invisible.
  MenuItem& mnuLastFile(int place) { return mnuLastFile_.at(static_cast<size_t>(place) - 1); }
  MenuItem& mnuLastDB(int place) { return mnuLastDB_.at(static_cast<size_t>(place) - 1); }
  static constexpr int lastFileCount = 10;

  MenuItem mnuIdentify{*this, "mnuIdentify", "&Identify"};
  MenuItem mnuSources{*this, "mnuSources", "&Sources..."};
  MenuItem mnuCalculate{*this, "mnuCalculate", "&Calculate"};
  MenuItem mnuGroup{*this, "mnuGroup", "Calculation &group..."};
  MenuItem mnuSingle{*this, "mnuSingle", "Si&ngle sample"};

  MenuItem mnuSaveInDB{*this, "mnuSaveInDB", "Sa&ve in database"};

  MenuItem mnuCascade{*this, "mnuCascade", "&Cascade"};
  MenuItem mnuTile{*this, "mnuTile", "&Tile"};
  MenuItem mnuTileVertical{*this, "mnuTileVertical", "Tile &vertically"};
  MenuItem mnuButtonsToggle{*this, "mnuButtonsToggle", "Tool &bar"};  // checked: it is visible
  MenuItem mnuStagesToggle{*this, "mnuStagesToggle", "&Stages"};      // checked: the panel is
  Label tbMain{*this, "tbMain"};                                      // the tool bar

  MenuItem mnuHelp{*this, "mnuHelp", "&Help"};
  MenuItem mnuAbout{*this, "mnuAbout", "&About Lodex Geo"};

  // --- Start and end ---

  /// The load event: reads the settings and prepares everything while the splash window shows what
  /// is being done, then shows the window. False when another process of the program is to be used:
  /// the window stays hidden and the program should end.
  bool Load();
  bool loaded() const { return loaded_; }
  /// Asks about data sheets that a process left which is gone, and opens them if wanted. Load calls
  /// it at its end.
  void OfferRecovery();
  /// Whether the window may close: asks once. After a yes all other forms are closed and the copies
  /// of edited sheets are removed.
  bool QueryUnload();
  /// The window's X: QueryUnload, then the end of the program.
  void close() override;
  /// The menu's exit, which asks in its own words.
  void Exit();

  // --- Commands ---

  /// Opens what the user chooses and goes to the identifying stage.
  void Open();
  /// Opens files without asking for them, such as those dropped on the window.
  void dropFiles(const std::vector<std::string>& paths);
  /// Asks for a database and makes it the source.
  void OpenDatabase();
  frmDataIN& NewSheet();
  /// A new sheet with the text of the clipboard, which is identified.
  void PasteAsSheet();
  /// Closes a data sheet; asks first when it was edited. False when the user wants to keep it.
  bool CloseSheet(frmDataIN& sheet);
  /// Identifies the sheets selected in lstI. With `askLog` the log is shown and the saving stage
  /// follows.
  bool IDENTIFY(bool askLog);
  void Calculate();
  void SaveInDB();
  /// Puts the current row of the last sheet into the form of single samples and shows it.
  void SingleSample();
  /// Lets the user choose an ini file and opens it in the editor.
  void EditIni();
  /// Help on a window, by the name of its form.
  void Help(std::string_view topic);
  /// Takes a text of the form "file;<path>" from another program and opens the file.
  void LinkExecute(std::string_view text);
  void SetStage(int stage) { stages.SetStage(stage); }
  void VaiheOn(bool visible) { stages.VaiheOn(visible); }
  /// An empty procedure; what calls it is served by Open.
  void AukaiseDataFilet() {}

  // --- Timers, which are the window's ---

  /// 5 seconds after a job: clears the word "Ready!".
  void tmrReady();
  /// From time to time, best while the user rests: copies edited sheets for recovery.
  void AutosaveNow();

  Session& session() { return session_; }

 private:
  void run(Button& button, const std::function<void()>& command);
  void connectStages();
  void connectTools();
  void connectMenus();
  void connectDatabases();
  void connectReport();
  void describeTools();
  void makeLastFileEntries();

  void watchForms();
  bool useOtherInstance();
  void tellSplash(std::string_view text);
  void readThesaurus();
  void loadGroup();
  void showDatabases();
  void openMinerals();
  void recover(const SavedSheet& saved);

  bool exitAsked(std::string_view question, std::string_view title);
  void unloadForms();
  void end();

  void openPaths(const std::vector<std::string>& paths);
  bool openDatabase(const std::string& path, const MapRequest& request = {true, true, false});
  void changeDatabase();
  void remember(const std::string& path, std::string_view section);
  void refreshLastFiles();
  void openLast(std::string_view section, int place);
  void chooseSet();
  void showSet(const std::string& set);
  void toggleBdl();
  void startViewer();
  void bringToFront(Form& form);
  bool goTo(const Place& place);

  Session& session_;
  ShellServices services_;
  std::deque<MenuItem> mnuLastFile_;
  std::deque<MenuItem> mnuLastDB_;
  std::unique_ptr<frmExcelCalc> single_;
  std::unique_ptr<MineralCatalogue> minerals_;
  std::unique_ptr<Autosave> autosave_;
  Subscription progressLine_;
  bool loaded_ = false;
};

}  // namespace lodex
