#include "import/DecimalCommas.h"

#include "basic/Numbers.h"
#include "import/NumberColumns.h"

namespace lodex {

std::optional<double> numberWithComma(std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos || text.find('.') != std::string_view::npos) return {};
  std::string withPoint(text);
  withPoint[comma] = '.';
  return parseNumber(withPoint);
}

DecimalCommas findDecimalCommas(const DescribedSheet& sheet) {
  DecimalCommas found;
  forEachTextAmongNumbers(sheet, [&](int, int, const std::string& text) {
    if (!numberWithComma(text)) return;
    if (++found.count == 1) found.example = text;
  });
  return found;
}

int convertDecimalCommas(const DescribedSheet& sheet) {
  int converted = 0;
  forEachTextAmongNumbers(sheet, [&](int row, int column, const std::string& text) {
    const auto number = numberWithComma(text);
    if (!number) return;
    sheet.cells.NumberRC(row, column, *number);
    ++converted;
  });
  return converted;
}

}  // namespace lodex
