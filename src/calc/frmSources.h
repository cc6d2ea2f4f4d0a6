#pragma once

#include <functional>
#include <string>
#include <vector>

#include "calc/CalculationGroup.h"
#include "calc/ItemSources.h"
#include "chem/ReferenceTables.h"
#include "form/Form.h"
#include "session/Session.h"

namespace lodex {

/// What the calculation options work on.
struct SourcesCaller {
  Form& form;                        // shown again at the end
  std::vector<std::string> items;    // "-ALL-" and the methods, or the caption of one form
  Worksheet& F1Ref;                  // the caller's map, which OK replaces
  SourceSheets sheets;               // what sources may name
  std::function<void()> rebuild{};   // builds the common map of the caller anew
  std::function<void()> accepted{};  // after OK
  CalculationGroup& group;           // the loaded methods
  CheckBox* chkAskRefs = nullptr;    // the caller's, which the window shows too
};

/// "Calculation Options": which columns feed which element, for all methods or for one, and the
/// method workbooks themselves. It works on a copy of the map and hands it back on OK.
class frmSources : public Form {
 public:
  frmSources(Session& session, const taulukot& tables, SourcesCaller caller);

  Worksheet F1Ref;
  ListBox lstItem{*this, "lstItem", "Calculation:"};
  /// An entry per element: its symbol, checked when it has sources; the current one is selected.
  ListBox TarnPD1{*this, "TarnPD1"};
  /// The sources of the selected element; what is unchecked is not used.
  ListBox lstEls{*this, "lstEls", "Uncheck element to not use it"};
  CheckBox chkAskRefs{*this, "chkAskRefs", "Ask when ambiguous"};
  TextBox txtSrcList{*this, "txtSrcList"};
  Button cmdGet{*this, "cmdGet", "Reset"};
  Button cmdList{*this, "cmdList", "Show List..."};
  Button cmdOK2{*this, "cmdOK2", "Hide"};
  Button cmdSAdd{*this, "cmdSAdd", "Add.."};
  Button cmdSEdit{*this, "cmdSEdit", "Edit.."};
  Button cmdSDel{*this, "cmdSDel", "Delete"};
  Button cmdMethods{*this, "cmdMethods", "Methods..."};
  Button cmdOK{*this, "cmdOK", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  Worksheet E;  // the method workbook under edit
  Grid gridE{*this, "E", E};
  ListBox lstCalc{*this, "lstCalc"};
  Button cmdRoutine{*this, "cmdRoutine"};
  Button cmdApply{*this, "cmdApply", "Apply"};
  Button cmdSave{*this, "cmdSave", "Save"};
  Button cmdSaveAs{*this, "cmdSaveAs", "Save As ..."};
  OptionButtons TabStrip1{*this, "TabStrip1", {"Sources", "Methods"}};
  Label fraSources{*this, "fraSources"};
  Label fraRoutine{*this, "fraRoutine"};

  /// Brings the form in line with the selected item.
  void Paivita();

 private:
  void connectControls();
  void showElements();
  void showSources();
  void useChecked();
  void reset();
  void list();
  void add();
  void edit();
  void remove();
  void chooseMethods();
  void accept();
  void readMethod();
  int apply();
  void save();
  void saveAs();

  std::string item() const;
  int element() const { return TarnPD1.current() + 1; }
  std::string symbol() const;
  std::vector<ItemSource> sources() const { return sourcesOf(F1Ref, mapSheet_, element()); }
  void setSourcesOfElement(const std::vector<ItemSource>& sources);

  Session& session_;
  SourcesCaller caller_;
  int mapSheet_ = 1;    // of the item
  int shownItem_ = -1;  // in lstItem
  int shownElement_ = -1;
  int shownMethod_ = -1;  // in lstCalc
  int editedMethod_ = 0;  // whose workbook E is
};

}  // namespace lodex
