#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "chem/ReferenceTables.h"
#include "db/Connection.h"
#include "form/Controls.h"
#include "form/Form.h"
#include "modal/RetAndCalc.h"
#include "modal/SetUp.h"
#include "modal/StoredAssays.h"
#include "session/Session.h"

namespace lodex {

/// Colours of the element buttons.
inline constexpr int elementWithData = 65535;       // yellow
inline constexpr int elementWithoutData = 8421504;  // grey

/// Edits the set-up of a modal calculation, one round at a time, and starts the calculation.
class frmMinCalc : public Form {
 public:
  frmMinCalc(Session& session, taulukot& tables, ModalLists& lists, frmResult& result,
             frmSolve& solver);

  Worksheet F1CalcOpt;   // the set-up: see SetUp.h
  Worksheet F1OpenSave;  // its file image
  ModalScratch scratch;

  ListBox lstMin{*this, "lstMin"};
  ListBox lstMinR{*this, "lstMinR"};  // checked: sample-specific composition
  ListBox lstSpec{*this, "lstSpec"};  // parallel to lstMinR
  ListBox lstElR{*this, "lstElR"};
  ListBox lstMet{*this, "lstMet"};
  ListBox lstXCol{*this, "lstXCol"};
  TextBox txtRound{*this, "txtRound"};
  TextBox txtDigits{*this, "txtDigits"};
  TextBox txtEX{*this, "txtEX"};
  Label labRounds{*this, "labRounds"};
  Label labDigits{*this, "labDigits", "Decimal places:"};
  Label labEX{*this, "labEX", "Equation: Y="};
  CheckBox chkAllTot{*this, "chkAllTot", "All TOT"};
  OptionButtons optMalli{*this, "optMalli", modelCaptions()};
  OptionButtons optX{*this, "optX", {"File", "Calculation"}};
  Button Command2{*this, "Command2", "Accept Method"};
  Button cmdOpenXFile{*this, "cmdOpenXFile", "Open File"};
  Button cmdXOK{*this, "cmdXOK", "OK"};
  Button cmdCalc{*this, "cmdCalc", "Calculate"};
  Button cmdRun{*this, "cmdRun", "Run"};
  Button cmdReset{*this, "cmdReset", "Reset"};
  Button cmdReport{*this, "cmdReport", "Report"};
  Button cmdOK{*this, "cmdOK", "OK"};
  MenuItem mnuRequery{*this, "mnuRequery", "Requery and Calculate"};
  MenuItem mnuAddeq{*this, "mnuAddeq", "Add equation..."};
  MenuItem IsTotMinus100{*this, "IsTotMinus100", "Is Total-100"};

  /// Where the assays come from. The caller keeps the worksheet alive; a change needs `Alusta`.
  AssaySheet source;
  /// The other source: a sample database, in place of the sheet while it names one.
  StoredSource stored;
  Worksheet F1Ref;  // its method map: see buildMethodMap
  /// True while the data must be read before the next calculation.
  bool retrieveData = true;
  std::string setUpName;
  ErrorSimulation simulation;

  /// Prepares the element buttons from the source.
  void Alusta();
  /// elementWithData for an element (row of F1ELoc, from 1) that the source has a column of.
  int elementColour(int elementRow) const;
  /// A click on an element: lists its methods; a second one accepts the only method there is.
  void E(int elementRow);

  /// Puts a mineral of lstMin into the round; takes a mineral or an equation out of it.
  void addMineral(int index);
  void removeMineral(int index);
  void removeEquation(int index);
  /// A pick in lstXCol: the value column of a file, or a mineral for the calculation.
  void pickXColumn(int index);

  void StoreCurrentRound();
  void HaeKierros();
  /// Stores the round and goes `step` rounds on; never below round 1.
  void UpDown1(int step);
  /// Loads a set-up file, asking for one when the name is empty and `silent` is not set; an empty
  /// name with `silent` takes what F1OpenSave holds. `ok` is set when that gave rounds. A
  /// file that cannot be read leaves the form with what was read up to there.
  void OpenFile(std::string_view name, bool silent, bool& ok);
  /// Makes the form show the set-up in F1OpenSave.
  void takeOpenSave();
  void ValmistaF1OpenSave() { lodex::ValmistaF1OpenSave(F1CalcOpt, lists_.MinLabels, F1OpenSave); }

  /// Runs the calculation, reports what it noticed and shows the result form unless the run is
  /// automated. False when it failed, which the user saw in a message box.
  bool RetAndCalc(ModalMode mode);

 private:
  /// Tells the user of an error instead of letting it out of a button.
  void listFields(int elementRow);
  void listMethods(int elementRow);
  void acceptMethod();
  void addEquation(std::string_view item, const XLine& x = {});
  void openXFile();
  void acceptXLine();
  void showXColumns();
  void calculate();
  void reset();
  void report();
  void clearRoundLists();
  /// What txtDigits asks for, the usual number when it does not hold one.
  int decimals();

  Session& session_;
  taulukot& tables_;
  ModalLists& lists_;
  frmResult& result_;
  frmSolve& solver_;
  Connection minerals_;
  std::vector<int> colours_;   // per element row, index 0 for row 1
  int selectedElement_ = 0;    // element row shown in lstMet
  std::vector<XLine> xLines_;  // parallel to lstElR
  XLine newX_;                 // of the panel, until it is accepted
};

}  // namespace lodex
