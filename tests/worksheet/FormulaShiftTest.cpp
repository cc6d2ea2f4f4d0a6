#include "worksheet/files/FormulaShift.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

TEST(FormulaShift, MovesOnlyWhatIsRelative) {
  struct Case {
    const char* name;
    const char* formula;
    const char* shifted;  // by two rows and one column
  };
  const Case cases[] = {
      {"plain", "A1+B2", "B3+C4"},
      {"absolute parts", "$A1+B$2+$C$3", "$A3+C$2+$C$3"},
      {"range", "SUM(A1:B2)", "SUM(B3:C4)"},
      {"whole columns", "SUM(A:C)+SUM($A:C)", "SUM(B:D)+SUM($A:D)"},
      {"whole rows", "SUM(1:3)", "SUM(3:5)"},
      {"other sheet", "Sheet2!A1+'A1 B2'!A1", "Sheet2!B3+'A1 B2'!B3"},
      {"text that looks like a reference", "\"A1\"&\"say \"\"A1\"\"\"",
       "\"A1\"&\"say \"\"A1\"\"\""},
      {"function that looks like a reference", "LOG10(A1)", "LOG10(B3)"},
      {"name that looks like a reference", "A1B+Fe2O3_x", "A1B+Fe2O3_x"},
      {"other workbook", "[1]Sheet1!A1", "[1]Sheet1!B3"},
      {"table reference", "Table1[[#This Row],[A1]]", "Table1[[#This Row],[A1]]"},
      {"number with a power", "1.5E+3*A1", "1.5E+3*B3"},
      {"last column leaves the sheet", "XFD1+A1", "#REF!+B3"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(shiftedFormula(row.formula, 2, 1), row.shifted);
  }
  EXPECT_EQ(shiftedFormula("A1", -1, 0), "#REF!");
}

}  // namespace
}  // namespace lodex
