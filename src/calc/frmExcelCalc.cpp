#include "calc/frmExcelCalc.h"

#include <algorithm>

#include "basic/Text.h"
#include "calc/ItemHeading.h"
#include "calc/MethodRunner.h"
#include "calc/frmSources.h"

namespace lodex {
namespace {

constexpr std::string_view resultTitle = "Calculation Result";
// The table that the input is turned into: system rows, then a row per sample.
constexpr int firstSampleRow = 5;
constexpr int titleColumns = 2;

}  // namespace

frmExcelCalc::frmExcelCalc(ImportContext& context, Calculations& calculations)
    : DataSheetForm(context, "frmExcelCalc", "Single Sample Calculation"),
      calculations_(calculations) {
  const char* hints[] = {"Give input data in columns A, B->",
                         " - In A column give title (e.g. SiO2 %)",
                         " - In B,C,D...etc -columns give value (e.g. 12.3) without unit",
                         "When calculating result appears below the input values",
                         "Select File - Examples to load example data for tutorial"};
  int row = 0;
  for (const char* hint : hints) F1D.TextRC(++row, 1, hint);
  lstCalc.setVisible(false);
  picLe.setVisible(false);
  fillMethods();
  const std::string examples = context.session.record.GeoPath + "\\System\\Examples.xls";
  if (FileExists(examples)) session().run([&] { readExamples(examples); });
  mnuCalcToggle.setCommand([this] {
    mnuCalcToggle.setChecked(!mnuCalcToggle.checked());
    lstCalc.setVisible(mnuCalcToggle.checked());
  });
  session().setCommand(mnuCGroup, [this] {
    calculations_.ChangeGroup();
    fillMethods();
  });
  session().setCommand(cmdSources, [this] { ShowSources(); });
  session().setCommand(cmdCalculate, [this] { Calculate(cmbRoutines.text()); });
  lstCalc.setActivateCommand(
      [this](int method) { session().run([&] { Calculate(lstCalc.item(method)); }); });
  keep(lstCalc.onChange([this] {
    if (lstCalc.current() >= 0) cmbRoutines.setText(lstCalc.item(lstCalc.current()));
  }));
}

// --- Methods and examples ---

void frmExcelCalc::AlustaCALC(bool hideShell) {
  calculations_.AlustaCALC(hideShell, UnreadableBook::Skip);
  fillMethods();
}

void frmExcelCalc::fillMethods() {
  lstCalc.clear();
  cmbRoutines.clear();
  for (const std::string& name : calculations_.group.MethodListOrder()) {
    lstCalc.add(name);
    cmbRoutines.add(name);
  }
  if (E_Nro(cmbRoutines.text()) == 0 && lstCalc.count() > 0) cmbRoutines.setText(lstCalc.item(0));
}

bool frmExcelCalc::CalcExcel(std::string_view method) {
  const int number = E_Nro(method);
  if (number == 0) return false;
  cmbRoutines.setText(calculations_.group.method(number).name());
  show();
  return true;
}

int frmExcelCalc::E_InputSheet(std::string_view method) const {
  return calculations_.group.InputSheetOf(method);
}

int frmExcelCalc::E_OutputSheet(std::string_view method) const {
  return calculations_.group.OutputSheetOf(method);
}

void frmExcelCalc::readExamples(std::string_view path) {
  F1Examples.Read(path);
  for (int sheet = 1; sheet <= F1Examples.NumSheets(); ++sheet) {
    if (sheet > exampleCount()) {
      mnuExamples_.emplace_back(*this, "mnuExamples" + std::to_string(sheet));
      session().setCommand(mnuExamples_.back(), [this, sheet] { showExample(sheet); });
    }
    mnuExamples(sheet).setCaption(F1Examples.SheetName(sheet));
  }
  for (int entry = 1; entry <= exampleCount(); ++entry) {
    mnuExamples(entry).setVisible(entry <= F1Examples.NumSheets());
  }
}

void frmExcelCalc::showExample(int sheet) {
  if (sheet > F1Examples.NumSheets()) return;
  gridF1D.edit("Example", [&] {
    clearInput();
    F1Examples.cells(sheet).forEach([&](int row, int column, const Cell& cell) {
      F1D.ValueSRC(1, row, column, CellStore::valueOf(cell));
      if (cell.format == 0) return;
      F1D.setFormat(1, row, column, F1Examples.formats().at(cell.format));
    });
  });
}

void frmExcelCalc::clearInput() {
  F1D = Worksheet();
}

void frmExcelCalc::takeSample(const DataSheetForm& sheet, int row) {
  const SheetStructure from = sheet.structure();
  const SourceSheet source{sheet.sheetNumber(), sheet.caption(), &sheet.F1D, from, false, false};
  gridF1D.edit("Take sample", [&] {
    clearInput();
    int place = 0;
    for (int column = std::max(1, from.idColumn); column <= sheet.F1D.LastCol(); ++column) {
      const std::string title = source.heading(column);
      const std::string element = source.text(sysrow::Element, column);
      const std::string unit = source.text(sysrow::Unit, column);
      // A heading that identification has read is shown with its unit.
      const bool isRead = column != from.idColumn && !element.empty() && !unit.empty();
      F1D.TextRC(++place, 1, isRead ? element + " " + unit : title);
      F1D.ValueSRC(1, place, 2, sheet.F1D.ValueRC(row, column));
    }
  });
}

// --- Calculating ---

// The row of the result title; 0 if nothing was calculated yet.
int frmExcelCalc::resultRow() const {
  const int last = F1D.LastRow();
  if (last == 0) return 0;
  const FindResult title = F1D.Find(resultTitle, F1D.Sheet(), 1, 1, last, 1);
  return title.found > 0 ? title.row : 0;
}

// Makes room below the input and returns the row of the result title.
int frmExcelCalc::clearResults() {
  const int last = F1D.LastRow();
  const int row = resultRow();
  if (row == 0) return last + 2;
  if (last > row) F1D.ClearRange(row + 1, 1, last, F1D.LastCol());
  return row;
}

// The input as a described table: a column per title and a row per sample.
Worksheet frmExcelCalc::describedInput(int lastRow, int samples) const {
  Worksheet table;
  const int rows = std::min(lastRow, maxColumns - titleColumns);
  for (int row = 1; row <= rows; ++row) {
    const std::string title = F1D.TextRC(row, 1);
    if (title.empty()) continue;
    const int column = row + titleColumns;
    const ItemHeading heading = itemHeading(title, SymbolEnd::Loose, context().converter);
    table.TextRC(sysrow::Header + 1, column, title);
    if (!heading.formula.empty()) {
      table.TextRC(sysrow::Element + 1, column, elementCell(heading));
    } else {
      table.TextRC(sysrow::Header + 1, column, heading.form);
    }
    table.TextRC(sysrow::Method + 1, column, heading.method);
    table.TextRC(sysrow::Unit + 1, column, unitCell(heading));
    for (int sample = 1; sample <= samples; ++sample) {
      table.ValueSRC(1, firstSampleRow + sample - 1, column, F1D.ValueRC(row, sample + 1));
    }
  }
  for (int sample = 1; sample <= samples; ++sample) {
    table.NumberRC(firstSampleRow + sample - 1, titleColumns, sample);
  }
  return table;
}

SourceSheets frmExcelCalc::inputSheets(const Worksheet& table) const {
  SheetStructure structure;
  for (const int row : {sysrow::Header, sysrow::Element, sysrow::Method, sysrow::Unit}) {
    structure.row(row) = row + 1;
  }
  structure.firstDataRow = firstSampleRow;
  structure.idColumn = titleColumns;
  return {{1, caption(), &table, structure, false, true}};
}

// The map is good as long as the rows have the same titles.
void frmExcelCalc::ensureSources(const SourceSheets& sheets) {
  std::string titles;
  for (int column = titleColumns + 1; column <= sheets[0].cells->LastCol(); ++column) {
    titles += sheets[0].text(sysrow::Header, column) + "\n";
  }
  if (titles == builtFor_) return;
  builtFor_ = titles;
  sources_ = Worksheet();
  sources_.SheetName(1, caption());
  buildSources(sources_, sheets, context().converter, {.item = caption()});
}

void frmExcelCalc::ShowSources() {
  const int last = resultRow() > 0 ? resultRow() - 1 : F1D.LastRow();
  const Worksheet table = describedInput(last, std::max(0, F1D.LastCol() - 1));
  const SourceSheets sheets = inputSheets(table);
  ensureSources(sheets);
  const auto rebuild = [&] {
    builtFor_.clear();
    ensureSources(sheets);
  };
  frmSources form(session(), context().tables,
                  {*this, {caption()}, sources_, sheets, rebuild, {}, calculations_.group});
  session().dialogs().showModal(form);
}

void frmExcelCalc::writeResults(const MethodRunner& runner, int number, int column,
                                std::map<std::string, int>& rows) {
  const MethodBook& method = calculations_.group.method(number);
  for (int row = 1; row <= method.book.LastRow(method.outputSheet); ++row) {
    const std::string title = method.outputName(row);
    if (title.empty()) continue;
    const auto place = rows.emplace(title, F1D.LastRow() + 1);
    const int target = place.first->second;
    if (place.second) F1D.TextRC(target, 1, title);
    const Value value = runner.output(number, row);
    if (value.isNumber() || value.kind() == ValueKind::NumericText) {
      F1D.NumberRC(target, column, value.asNumber());
    } else {
      F1D.ValueSRC(F1D.Sheet(), target, column,
                   value.isEmpty() ? value : Value::text(value.asText()));
    }
  }
}

void frmExcelCalc::Calculate(std::string_view name) {
  const int number = E_Nro(name);
  if (number == 0 || E_InputSheet(name) == 0 || E_OutputSheet(name) == 0) return;
  gridF1D.edit("Calculate", [&] { calculate(number); });
}

void frmExcelCalc::calculate(int number) {
  const WideLimits wide(F1D);
  const int resultRow = clearResults();
  F1D.TextRC(resultRow, 1, "");
  const int lastColumn = F1D.LastCol();
  const Worksheet table = describedInput(std::min(resultRow - 1, F1D.LastRow()), lastColumn - 1);
  F1D.TextRC(resultRow, 1, resultTitle);

  const SourceSheets sheets = inputSheets(table);
  ensureSources(sheets);
  MethodRunner runner(calculations_.group, sheets, sources_, context().converter);
  std::map<std::string, int> rows;
  for (int column = 2; column <= lastColumn; ++column) {
    runner.startSample(std::to_string(column - 1));
    runner.calculate(number);
    writeResults(runner, number, column, rows);
  }
  session().notice(runner.found());
  if (F1D.LastRow() > resultRow) {
    F1D.changeFormat(resultRow + 1, 1, F1D.LastRow(), std::max(1, lastColumn),
                     [](CellFormat& format) { format.numberFormat = "0.000"; });
  }
}

}  // namespace lodex
