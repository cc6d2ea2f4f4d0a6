#pragma once

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "calc/Calculations.h"
#include "import/DataSheetForm.h"

namespace lodex {

class MethodRunner;

/// Runs a method by hand on values that the user types: titles such as "SiO2 %" in column A,
/// a sample in each column after it, and the results appear below the input.
class frmExcelCalc : public DataSheetForm {
 public:
  frmExcelCalc(ImportContext& context, Calculations& calculations);

  ListBox lstCalc{*this, "lstCalc"};           // the methods
  ComboBox cmbRoutines{*this, "cmbRoutines"};  // the same, in the tool bar
  MenuItem mnuCalcToggle{*this, "mnuCalcToggle", "CALCULATE"};
  MenuItem mnuCGroup{*this, "mnuCGroup", "C-Group..."};
  Button cmdCalculate{*this, "cmdCalculate", "Calculate"};
  Button cmdSources{*this, "cmdSources", "Sources..."};

  /// Example sheets; every one has an entry "mnuExamples<n>" that copies it into F1D.
  Worksheet F1Examples;
  MenuItem& mnuExamples(int sheet) { return mnuExamples_.at(static_cast<size_t>(sheet) - 1); }
  int exampleCount() const { return static_cast<int>(mnuExamples_.size()); }
  /// Reads the examples from a workbook. Throws FileError and keeps the former ones.
  void readExamples(std::string_view path);

  /// Loads the group in use; a workbook that cannot be read is passed over.
  void AlustaCALC(bool hideShell);
  /// Whether the method is loaded; if so it becomes the current one.
  bool CalcExcel(std::string_view method);
  int E_Nro(std::string_view method) const { return calculations_.group.MethodIndex(method); }
  int E_InputSheet(std::string_view method) const;
  int E_OutputSheet(std::string_view method) const;

  /// Calculates all sample columns. Nothing happens when the method or one of its sheets "Input"
  /// and "Output" is missing.
  void Calculate(std::string_view method);

  /// Shows which titles feed which element, and lets the user change that. It holds until the
  /// titles change.
  void ShowSources();

  /// Puts one row of a data sheet into the first sample column.
  void takeSample(const DataSheetForm& sheet, int row);

 private:
  void clearInput();
  void fillMethods();
  void showExample(int sheet);
  int resultRow() const;
  int clearResults();
  Worksheet describedInput(int lastRow, int samples) const;
  SourceSheets inputSheets(const Worksheet& table) const;
  void ensureSources(const SourceSheets& sheets);
  void calculate(int number);
  void writeResults(const MethodRunner& runner, int number, int column,
                    std::map<std::string, int>& rows);

  Calculations& calculations_;
  std::deque<MenuItem> mnuExamples_;
  Worksheet sources_;     // the item-source map, on a sheet with the caption of this form
  std::string builtFor_;  // the titles when it was built
};

}  // namespace lodex
