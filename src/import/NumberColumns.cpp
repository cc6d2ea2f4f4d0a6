#include "import/NumberColumns.h"

namespace lodex {
namespace {

bool holdsNumbers(const DescribedSheet& sheet, int column) {
  return sheet.text(sysrow::Identified, column).starts_with("X") &&
         !sheet.text(sysrow::Type, column).starts_with("TEXT");
}

}  // namespace

void forEachTextAmongNumbers(const DescribedSheet& sheet,
                             const std::function<void(int, int, const std::string&)>& found) {
  if (!sheet.has(sysrow::Identified) || sheet.structure.firstDataRow == 0) return;
  const Worksheet& cells = sheet.cells;
  for (int column = 2; column <= cells.LastCol(); ++column) {
    if (!holdsNumbers(sheet, column)) continue;
    for (int row = sheet.structure.firstDataRow; row <= cells.LastRow(); ++row) {
      const Value value = cells.ValueRC(row, column);
      if (value.kind() == ValueKind::Text) found(row, column, value.asText());
    }
  }
}

}  // namespace lodex
