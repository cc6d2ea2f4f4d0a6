#include "calc/SampleJoin.h"

#include <algorithm>

namespace lodex {
namespace {

bool holdsNumber(const SourceSheet& sheet, int row) {
  for (int column = 1; column <= sheet.cells->LastCol(); ++column) {
    if (sheet.cells->ValueRC(row, column).isNumber()) return true;
  }
  return false;
}

void fillA1(const SourceSheets& sheets, SampleTable& A1, Findings& found) {
  int total = 0;
  for (const SourceSheet& sheet : sheets) {
    if (sheet.selected) total += sheet.cells->LastRow();
  }
  A1.Size(total, 3);
  int used = 0;
  for (const SourceSheet& sheet : sheets) {
    if (!sheet.selected || !sheet.hasSamples()) continue;
    for (int row = sheet.structure.firstDataRow; row <= sheet.cells->LastRow(); ++row) {
      const std::string id = sheet.sampleId(row);
      if (id.empty()) {
        if (holdsNumber(sheet, row)) {
          found.error("A row of numbers without sample identifier was left out",
                      {.sheet = sheet.caption, .row = row});
        }
        continue;
      }
      A1.Cell(1, ++used, id);
      A1.Cell(2, used, std::to_string(sheet.number));
      A1.Cell(3, used, std::to_string(row));
    }
  }
  A1.Resize(used);
  A1.SortBy(1);
}

int countSamples(const SampleTable& A1) {
  int count = 0;
  for (int row = 1; row <= A1.RowCount(); ++row) {
    if (row == 1 || A1.SortedCell(1, row) != A1.SortedCell(1, row - 1)) ++count;
  }
  return count;
}

std::string duplicateLine(const std::string& id, const std::string& caption,
                          const std::string& usedRow, const std::string& omittedRow) {
  return " Error: Duplicate rows of sample " + id + " found. Row " + usedRow + " of file " +
         caption + " used. Row " + omittedRow + " of file " + caption + " omitted!";
}

// The column of A2 that has this sheet's pair, or the first free one.
int pairColumn(const SampleTable& A2, int row, const std::string& sheet) {
  int column = 2;
  while (!A2.Cell(column, row).empty() && A2.Cell(column, row) != sheet) column += 2;
  return column;
}

}  // namespace

SampleJoin joinSamples(const SourceSheets& sheets,
                       const std::function<void(std::string_view line)>& log, Findings& found) {
  SampleJoin join;
  SampleTable& A1 = join.A1;
  SampleTable& A2 = join.A2;
  fillA1(sheets, A1, found);
  const auto selected = std::count_if(sheets.begin(), sheets.end(),
                                      [](const SourceSheet& sheet) { return sheet.selected; });
  A2.Size(countSamples(A1), 2 * static_cast<int>(selected) + 1);
  int sample = 0;
  for (int row = 1; row <= A1.RowCount(); ++row) {
    const std::string& id = A1.SortedCell(1, row);
    const std::string& sheet = A1.SortedCell(2, row);
    if (sample == 0 || A2.Cell(1, sample) != id) A2.Cell(1, ++sample, id);
    const int column = pairColumn(A2, sample, sheet);
    if (!A2.Cell(column, sample).empty()) {
      ++join.duplicates;
      const std::string& caption = findSheet(sheets, std::stoi(sheet))->caption;
      const std::string& omitted = A1.SortedCell(3, row);
      log(duplicateLine(id, caption, A2.Cell(column + 1, sample), omitted));
      found.error("A further row of the sample was left out",
                  {.sheet = caption, .row = std::stoi(omitted), .record = id});
      continue;
    }
    A2.Cell(column, sample, sheet);
    A2.Cell(column + 1, sample, A1.SortedCell(3, row));
  }
  return join;
}

}  // namespace lodex
