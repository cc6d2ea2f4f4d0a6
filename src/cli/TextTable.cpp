#include "cli/TextTable.h"

#include <algorithm>
#include <ostream>

#include "basic/Text.h"

namespace lodex {
namespace {

std::string printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == 127; }, ' ');
  return text;
}

}  // namespace

void printTable(std::ostream& out, const std::vector<TableRow>& rows, TableAlignment alignment) {
  std::vector<size_t> widths(rows.front().size());
  for (const TableRow& row : rows) {
    for (size_t c = 0; c < row.size(); ++c) {
      widths[c] = std::max(widths[c], characterCount(row[c]));
    }
  }
  for (const TableRow& row : rows) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string gap(widths[c] - characterCount(row[c]), ' ');
      if (c > 0) line += "  ";
      const bool right = c > 0 && alignment == TableAlignment::Right;
      line += right ? gap + printable(row[c]) : printable(row[c]) + gap;
    }
    out << trimBlanksRight(line) << '\n';
  }
}

}  // namespace lodex
