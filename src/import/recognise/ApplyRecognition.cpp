#include "import/recognise/ApplyRecognition.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "import/recognise/ResultText.h"

namespace lodex {
namespace {

std::vector<double> sortedResults(const Worksheet& sheet, const RecognisedTable& table,
                                  int column) {
  std::vector<double> numbers;
  for (int row = table.firstDataRow; row <= table.lastDataRow; ++row) {
    const ResultText result = readResult(sheet.TextRC(row, column));
    if (result.kind == ResultKind::Number) numbers.push_back(result.number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

bool isOxide(std::string_view element) {
  return element == "LOI" || (element.size() > 2 && element.find('O', 1) != std::string_view::npos);
}

void warnOfMissingUnit(const Worksheet& sheet, const RecognisedTable& table, int column,
                       LogLines& log) {
  const RecognisedColumn& found = table.columns[static_cast<size_t>(column) - 1];
  if (!found.unitText.empty()) {
    log.found.warn("The unit " + found.unitText + " is unknown, so the column is left unidentified",
                   {.column = column});
    return;
  }
  std::string line = "\"" + found.heading + "\" has no unit, so the column is left unidentified";
  const std::vector<double> numbers = sortedResults(sheet, table, column);
  if (!numbers.empty()) {
    line += "; values " + numberText(numbers.front()) + " to " + numberText(numbers.back()) +
            ", median " + numberText(numbers[numbers.size() / 2]);
    const std::string unit = proposedUnit(sheet, table, column);
    if (!unit.empty()) line += ": " + unit + "?";
  }
  log.found.warn(line, {.column = column});
}

// Rows that are no samples stay where they are: whether they are wanted only the user knows.
void reportSections(const RecognisedTable& table, LogLines& log) {
  for (const TableSection& section : table.sections) {
    if (section.kind == SectionKind::Notes && section.names.empty()) continue;
    const char* what = section.kind == SectionKind::QualityControl ? "quality control"
                       : section.kind == SectionKind::SecondTable  ? "a second table"
                                                                   : "averages or notes";
    const std::string names = section.names.empty() ? "" : ": " + join(section.names, ", ");
    log.found.warn("Rows " + std::to_string(section.firstRow) + " to " +
                       std::to_string(section.lastRow) + " look like " + what +
                       "; delete them unless they are samples" + names,
                   {.row = section.firstRow});
  }
  for (const int row : table.controlRows) {
    log.found.note("The name of the sample looks like a standard, blank or repeat", {.row = row});
  }
}

}  // namespace

std::string proposedUnit(const Worksheet& sheet, const RecognisedTable& table, int column) {
  const std::string& element = table.columns[static_cast<size_t>(column) - 1].element;
  const std::vector<double> numbers = sortedResults(sheet, table, column);
  if (numbers.empty() || numbers.front() < 0) return {};
  constexpr double mostPercent = 100;
  if (numbers.back() > mostPercent) return "ppm";
  return isOxide(element) ? "%" : std::string();
}

void applyRecognition(const DescribedSheet& sheet, const RecognisedTable& table, LogLines& log) {
  SheetStructure& structure = sheet.structure;
  log.push_back(table.headingRow == 1
                    ? std::string("-First row is set to HEADER")
                    : "-Row " + std::to_string(table.headingRow) + " is set to HEADER");
  structure.row(sysrow::Header) = table.headingRow;
  structure.firstDataRow = table.firstDataRow;
  for (int column = 1; column <= static_cast<int>(table.columns.size()); ++column) {
    const RecognisedColumn& found = table.columns[static_cast<size_t>(column) - 1];
    if (found.role == ColumnRole::Assay && found.unit.empty()) {
      warnOfMissingUnit(sheet.cells, table, column, log);
    }
  }
  reportSections(table, log);
  for (const int row : {sysrow::Element, sysrow::Method, sysrow::Unit}) {
    log.push_back("-Adding " + std::string(systemRowCaption(row)) + " row");
    sheet.addSystemRow(row, structure.firstDataRow);
  }
  for (int column = 1; column <= static_cast<int>(table.columns.size()); ++column) {
    const RecognisedColumn& found = table.columns[static_cast<size_t>(column) - 1];
    if (found.role != ColumnRole::Assay || found.unit.empty()) continue;
    sheet.setText(sysrow::Element, column, found.element);
    sheet.setText(sysrow::Method, column, found.method);
    sheet.setText(sysrow::Unit, column, found.unit);
  }
}

}  // namespace lodex
