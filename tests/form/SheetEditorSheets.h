#pragma once

#include <string>
#include <vector>

#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex::test {

/// Fills a sheet from row 1, column 1: rows between "|", cells between ",", each as typed.
inline void enterRows(Worksheet& sheet, const std::string& text) {
  int row = 0;
  for (const std::string& line : split(text, "|")) {
    ++row;
    int column = 0;
    for (const std::string& cell : split(line, ",")) sheet.EntryRC(row, ++column, cell);
  }
}

/// The same back, as displayed or as entered.
inline std::string rowsOf(const Worksheet& sheet, bool entries = false) {
  std::vector<std::string> lines;
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    std::vector<std::string> cells;
    for (int column = 1; column <= sheet.LastCol(); ++column) {
      cells.push_back(entries ? sheet.EntryRC(row, column) : sheet.TextRC(row, column));
    }
    lines.push_back(join(cells, ","));
  }
  return join(lines, "|");
}

}  // namespace lodex::test
