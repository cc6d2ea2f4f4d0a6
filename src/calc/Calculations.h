#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "calc/CalculationGroup.h"
#include "calc/CalculationRun.h"
#include "calc/ItemSources.h"
#include "import/DataSheets.h"

namespace lodex {

/// The calculations of the shell: the group in use, its list of methods, the item sources and the
/// command that runs what is selected. The controls are made on the shell's form.
class Calculations {
 public:
  Calculations(Form& shell, ImportContext& context, DataSheets& sheets);

  ListBox lstCalc;       // methods of the group; the selected ones are run
  ComboBox cmbRoutines;  // the same, in the tool bar
  CheckBox chkAskRefs;   // ask where an item has several sources
  Button cmdGroup;       // shows the group in use and changes it
  Button cmdCalculate;   // what it does is for the shell to set

  CalculationGroup group;

  /// Set while a database is the source of samples: gives its tables in place of the data sheets.
  /// Which of them are selected is for lstSrcF to say.
  std::function<SourceSheets()> databaseTables{};

  /// Lets the user choose a group and loads it.
  void ChangeGroup();
  /// Loads the group in use, or the default one where there is none. A workbook that cannot be
  /// read ends the loading unless it is to be skipped; what was read until then is kept.
  void AlustaCALC(bool clearList, UnreadableBook unreadable = UnreadableBook::Stop);
  /// Builds the item sources in the shell's F1Ref anew, for all methods or for one.
  void Alusta(std::string_view item);
  /// The numbers of the methods of a group that the item sources feed: those for which the map that
  /// holds for them, their own or the common one, names any source. Empty for an unknown group.
  std::vector<int> HaeRutiiniLista(std::string_view group) const;
  /// Runs the selected methods over the samples of the selected sheets.
  void Calculate();
  /// Shows where items come from and lets the user change it.
  void ShowSources();
  /// The map was edited: it holds for the sheets selected now.
  void sourcesEdited();

  /// What samples are read from, with the marks of lstSrcF.
  SourceSheets sourceSheets() const;

 private:
  bool findGroupsFolder();
  void fillLists();
  void ensureSources(const SourceSheets& sheets);
  void freezeIdentifiers();
  bool keepResults();
  std::vector<const Worksheet*> openTables() const;
  void showResult(const CalculationOutcome& outcome, const SheetStructure& structure);

  static std::string selectionOf(const SourceSheets& sheets);

  Form& shell_;
  ImportContext& context_;
  DataSheets& sheets_;
  std::string builtFor_;  // the selected sheets and their elements when F1Ref was built
  bool running_ = false;
};

/// The open data sheets as places to read samples from, none of them selected.
SourceSheets openSourceSheets(DataSheets& sheets);

}  // namespace lodex
