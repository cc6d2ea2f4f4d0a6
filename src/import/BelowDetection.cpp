#include "import/BelowDetection.h"

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "import/NumberColumns.h"

namespace lodex {

std::optional<double> halfOfLimit(std::string_view text) {
  text = trimWhite(text);
  if (!text.starts_with('<')) return {};
  const auto limit = parseNumber(trimWhite(text.substr(1)));
  if (!limit || *limit <= 0) return {};
  return *limit / 2;
}

int convertBelowDetection(const DescribedSheet& sheet) {
  int converted = 0;
  forEachTextAmongNumbers(sheet, [&](int row, int column, const std::string& text) {
    const auto half = halfOfLimit(text);
    if (!half) return;
    sheet.cells.NumberRC(row, column, *half);
    ++converted;
  });
  return converted;
}

}  // namespace lodex
