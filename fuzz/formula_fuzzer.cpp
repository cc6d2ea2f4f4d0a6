// Formulas as a user may type them: one a line, into the cells of two sheets; recalculated, moved,
// and printed again.
#include <cstdlib>
#include <string>
#include <string_view>

#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/formula/Parser.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  using namespace lodex;
  if (size > 4096) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Worksheet book;
  book.NumSheets(2);
  for (int row = 1; row <= 4; ++row) book.NumberSRC(2, row, 1, row * 1.25);
  book.TextSRC(2, 1, 2, "text");
  book.setDefinedNames({{"Name", "Sheet2!$A$1:$A$4"}, {"Other", "A1+Name"}});
  int row = 0;
  for (const std::string& line : split(text, "\n")) {
    std::string problem;
    if (const auto node = formula::parseFormula(line, problem)) {
      // What is printed reads as the same formula.
      const std::string printed = formula::formulaText(*node);
      const auto again = formula::parseFormula(printed, problem);
      if (!again || formula::formulaText(*again) != printed) std::abort();
    }
    ++row;
    if (row % 8 == 7) {
      book.setArrayFormula(1, row, 2, row + 1, 3, line);
    } else {
      book.EntrySRC(row % 3 == 0 ? 2 : 1, row, row % 5 + 1, "=" + line);
    }
    if (row > 30) break;
  }
  book.Recalc();
  book.InsertRange(2, 1, 3, 1, Shift::Rows);
  book.CopyRange(20, 3, 24, 5, book.SS(), 1, 1, 5, 3);
  book.NumberSRC(2, 1, 1, 7);
  book.Recalc();
  book.DeleteRange(1, 2, 1, 2, Shift::Columns);
  book.DeleteSheets(2, 1);
  book.Recalc();
  return 0;
}
