#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "chem/CompoundConverter.h"
#include "chem/ReferenceTables.h"
#include "form/Form.h"
#include "import/HeadingSplit.h"
#include "import/Identification.h"
#include "import/ItemColumns.h"
#include "import/frmSynonLib.h"
#include "session/Session.h"

namespace lodex {

/// What every data sheet works with.
struct ImportContext {
  Session& session;
  const taulukot& tables;
  frmSynonLib& thesaurus;
  CompoundConverter converter{};

  /// Names and values of a mineral's formula items; empty when there is no mineral database.
  ColumnIdentification::FormulaLookup HaeMinTieto{};
  /// Opens a database file as a source; empty where there is none to do it.
  std::function<void(const std::string& path)> AvaaDB{};

  /// Text files are loaded with all their rows, without a question.
  bool loadAllRows = false;

  // What the shell's check boxes say.
  bool methodFromFileName = false;          // chkFILEISMET
  std::string unidentifiedTable = "USERX";  // txtUnID
};

/// A window with a table and the description of its structure: what data sheets and the
/// calculation results share. The description consists of the system rows of the table and of the
/// numbers in txtH, txtFDR, txtID and txtMinCol; all of it is text that the user may overwrite.
class DataSheetForm : public Form {
 public:
  DataSheetForm(ImportContext& context, std::string_view name, std::string_view caption);

  Worksheet F1D;    // the table with its system rows
  Worksheet F1Ref;  // which columns hold which item; row n belongs to item n
  Grid gridF1D{*this, "F1D", F1D};

  /// Row number of each system row, 0 to 11, "0" for absent ones.
  TextBox& txtH(int index) { return txtH_.at(static_cast<size_t>(index)); }
  const TextBox& txtH(int index) const { return txtH_.at(static_cast<size_t>(index)); }
  TextBox txtFDR{*this, "txtFDR", "First data row is"};
  TextBox txtID{*this, "txtID", "ID Column is:"};
  TextBox txtMinCol{*this, "txtMinCol", "MINERAL Col is:"};
  Label lblHeaders{*this, "lblHeaders", "Headers on row"};
  Label lblDatabase{*this, "lblDatabase", "Database information on row"};
  Label lblOrientation{*this, "lblOrientation", "Data orientation"};
  OptionButtons optOrientation{
      *this, "optOrientation", {"Horizontal (row wise)", "Vertical (column wise)"}};
  CheckBox chkSysRows{*this, "chkSysRows", "Hide system rows (except Header)"};
  Label lblStatus{*this, "lblStatus", "Not Identified"};
  Label shpGreen{*this, "shpGreen"};  // the status light: one of the two shows
  Label shpRed{*this, "shpRed"};
  Label picLe{*this, "picLe"};  // the panel at the left
  OptionButtons tabLe{*this, "tabLe", {"Structure", "Thesaurus"}};

  /// The buttons beside a number of the panel: the one that lets the next click in the grid set it
  /// (captioned with the heading that marks the row or column) and the two that step it.
  struct NumberButtons {
    NumberButtons(Form& form, const std::string& number, std::string_view label)
        : cmdPick(form, "cmdPick" + number, label),
          cmdUp(form, "cmdUp" + number),
          cmdDown(form, "cmdDown" + number) {}
    MenuItem cmdPick;
    Button cmdUp;
    Button cmdDown;
  };
  /// The buttons of a number; throws std::out_of_range for anything but a pick mode.
  NumberButtons& numberButtons(int pickMode) { return numberButtons_.at(pickMode); }

  Button cmdIdentify{*this, "cmdIdentify", "Identify"};
  Button cmdSplit{*this, "cmdSplit", "Split"};
  Button cmdTranspose{*this, "cmdTranspose", "Transpose"};
  Button cmdThesaurus{*this, "cmdThesaurus", "Show Thesaurus"};
  MenuItem mnuIdentify{*this, "mnuIdentify", "&Identify Structure"};
  MenuItem mnuOpenData{*this, "mnuOpenData", "Open data File"};
  MenuItem mnuSaveFile{*this, "mnuSaveFile", "Save File"};
  MenuItem mnuCopy{*this, "mnuCopy", "Copy"};
  MenuItem mnuPaste{*this, "mnuPaste", "Paste"};
  MenuItem mnuSelectAll{*this, "mnuSelectAll", "Select All"};
  MenuItem mnuCopyAll{*this, "mnuCopyAll", "Copy All"};
  MenuItem mnuNew{*this, "mnuNew", "New (Clear)"};
  MenuItem mnuParse{*this, "mnuParse", "Parse"};
  MenuItem mnuInsertRow{*this, "mnuInsertRow", "Insert rows"};
  MenuItem mnuDeleteRow{*this, "mnuDeleteRow", "Delete rows"};
  MenuItem mnuInsertCol{*this, "mnuInsertCol", "Insert columns"};
  MenuItem mnuDeleteCol{*this, "mnuDeleteCol", "Delete columns"};
  MenuItem mnuFreeze{*this, "mnuFreeze", "Freeze header rows"};
  MenuItem mnuUnfreeze{*this, "mnuUnfreeze", "Unfreeze header rows"};
  MenuItem mnuPanel{*this, "mnuPanel", "Structure Panel"};  // shows and hides picLe
  /// The entries of "Copy Row Content", one per system row but the last.
  MenuItem& mnuCopyRow(int systemRow) { return mnuCopyRow_.at(static_cast<size_t>(systemRow)); }
  MenuItem mnuCopyRowMineral{*this, "mnuCopyRowMineral", "From Mineral"};

  int SystemRows(int index) const { return structure().row(index); }
  int FirstDataRow() const { return structure().firstDataRow; }
  int IDColumn() const { return structure().idColumn; }
  int MineralColumn() const { return structure().mineralColumn; }
  /// The numbers of the text boxes; anything but a row or column number counts as 0.
  SheetStructure structure() const;
  /// Sets all numbers at once, without the reactions to each single change.
  void setStructure(const SheetStructure& structure);

  /// What the next click in the grid sets: 1 to 12 a system row, 20 the first data row, 21 the ID
  /// column, 22 the mineral column, 0 nothing.
  int PickMode() const { return pickMode_; }
  void setPickMode(int pickMode);
  void clickGrid(int row, int column);
  /// Steps a number of the panel, never below 0, and repaints. The boxes are those of PickMode.
  void stepNumber(int pickMode, int by);

  bool bIdentified = false;
  bool MineralAsked = false;
  bool MineralRead = false;
  /// True while the status light is green.
  bool statusGreen() const { return structure().row(sysrow::Element) > 0; }
  /// False after loading.
  bool Changed = false;

  /// Place in the list of data sheets, from 1; 0 for a window that is not in it.
  int sheetNumber() const { return sheetNumber_; }
  void setSheetNumber(int number);
  /// The sheet as a place to look for items.
  ItemSheet itemSheet() const;

  void AjaTunnista(const IdentifyRequest& request);
  void AutoIdentify(bool useThesaurus);
  void TunnistaSarakkeet(bool onlyNonX);
  void CheckIDCOL(int newColumn, int oldColumn);
  void TutkiOtsikot();
  void SplittaaOtsikko(bool showDialog);
  /// Repaints the sheet to show its structure.
  void Varjaa(bool resetLimits);
  /// Lays out the panels after a change of size; the view does the work.
  void Koko() { gridF1D.refresh(); }

  void InsertRow();
  void DeleteRow();
  void InsertCol();
  void DeleteCol();
  void Transpose();
  void NewSheet();
  void CopyAllCells();
  void Freeze(bool freeze);
  virtual void Parse();

 protected:
  /// What this kind of sheet lets identification write.
  virtual IdentifyRules rules() const;
  /// The cells no longer come from the file that was read.
  virtual void forgetSource() {}
  /// True for sheets that ask whether to read mineral formulas.
  virtual bool asksForFormulas() const { return true; }

  ImportContext& context() const { return context_; }
  Session& session() const { return context_.session; }
  DescribedSheet described(SheetStructure& structure) { return {F1D, structure}; }
  void logLines(const LogLines& lines);
  /// Changes the table and its structure together as one step of undo, then repaints.
  void edit(std::string_view name, const std::function<void(const DescribedSheet&)>& change);

  TitleParts titleParts_;

 private:
  struct Span {
    int first, last;
    int count() const { return last - first + 1; }
  };
  void connectControls();
  void connectHistory();
  void connectPanel();
  void addNumberButtons(int pickMode, const std::string& number, std::string_view label);
  void runAllSheets(const IdentifyRequest& request, SheetStructure& numbers, LogLines& log);
  void runSteps(const IdentifyRequest& request, const DescribedSheet& sheet, LogLines& log);
  void runAutoIdentify(bool useThesaurus, const DescribedSheet& sheet, LogLines& log);
  void runColumns(bool onlyNonX, const DescribedSheet& sheet, LogLines& log);
  bool mayReadFormulas(LogLines& log);
  TextBox* pickedBox(int pickMode);
  void addRule(int column);
  // Selected rows or columns, ends inclusive; without a selection the active one.
  Span selectedRows() const;
  Span selectedColumns() const;
  void openData();
  void saveData();

  ImportContext& context_;
  std::deque<TextBox> txtH_;
  std::deque<MenuItem> mnuCopyRow_;
  std::map<int, NumberButtons> numberButtons_;  // by pick mode
  int pickMode_ = 0;
  int sheetNumber_ = 0;
  int lastIdColumn_ = 0;
  Descriptions descriptions_ = Descriptions::Rewrite;
  bool settingStructure_ = false;
};

}  // namespace lodex
