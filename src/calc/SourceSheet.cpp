#include "calc/SourceSheet.h"

#include <algorithm>

#include "basic/Numbers.h"

namespace lodex {

std::string SourceSheet::text(int systemRow, int column) const {
  const int row = structure.row(systemRow);
  if (row < 1 || row > cells->LastRow() || !hasColumn(column)) return {};
  return cells->TextRC(row, column);
}

std::string SourceSheet::heading(int column) const {
  std::string title = text(sysrow::Header, column);
  return title.empty() ? text(sysrow::Element, column) : title;
}

bool SourceSheet::hasSamples() const {
  return hasColumn(structure.idColumn) && structure.firstDataRow > 0 &&
         structure.firstDataRow <= cells->LastRow();
}

std::string SourceSheet::sampleId(int row) const {
  return cells->TextRC(row, structure.idColumn);
}

const SourceSheet* findSheet(const SourceSheets& sheets, int number) {
  const auto found = std::find_if(sheets.begin(), sheets.end(),
                                  [&](const SourceSheet& sheet) { return sheet.number == number; });
  return found == sheets.end() ? nullptr : &*found;
}

SampleRows::SampleRows(const SourceSheet& sheet) {
  if (!sheet.hasSamples()) return;
  const int last = sheet.cells->LastRow();
  rows_.reserve(static_cast<size_t>(last - sheet.structure.firstDataRow + 1));
  for (int row = sheet.structure.firstDataRow; row <= last; ++row) {
    std::string id = sheet.sampleId(row);
    if (!id.empty()) rows_.emplace(std::move(id), row);
  }
}

int SampleRows::rowOf(const std::string& sampleId) const {
  auto found = rows_.find(sampleId);
  if (found == rows_.end()) {
    const auto number = parseNumber(sampleId);
    if (number) found = rows_.find(numberText(*number));
  }
  return found == rows_.end() ? 0 : found->second;
}

}  // namespace lodex
