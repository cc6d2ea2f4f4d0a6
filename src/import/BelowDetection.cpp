#include "import/BelowDetection.h"

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

std::optional<double> halfOfLimit(std::string_view text) {
  text = trimWhite(text);
  if (!text.starts_with('<')) return {};
  const auto limit = parseNumber(trimWhite(text.substr(1)));
  if (!limit || *limit <= 0) return {};
  return *limit / 2;
}

int convertBelowDetection(const DescribedSheet& sheet) {
  if (!sheet.has(sysrow::Identified) || sheet.structure.firstDataRow == 0) return 0;
  Worksheet& cells = sheet.cells;
  int converted = 0;
  for (int column = 2; column <= cells.LastCol(); ++column) {
    if (!sheet.text(sysrow::Identified, column).starts_with("X(")) continue;
    for (int row = sheet.structure.firstDataRow; row <= cells.LastRow(); ++row) {
      const Value value = cells.ValueRC(row, column);
      if (value.kind() != ValueKind::Text) continue;
      const auto half = halfOfLimit(value.asText());
      if (!half) continue;
      cells.NumberRC(row, column, *half);
      ++converted;
    }
  }
  return converted;
}

}  // namespace lodex
