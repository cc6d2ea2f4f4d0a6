#include "calc/ItemHeading.h"

#include <gtest/gtest.h>

#include "calc/SampleJoin.h"

namespace lodex {
namespace {

TEST(ItemHeading, ReadsItemsOfMethods) {
  struct Case {
    const char* text;
    SymbolEnd end;
    const char* form;
    const char* formula;
    const char* method;
    int element;
    double unit;
    bool total;
  };
  const CompoundConverter converter;
  constexpr auto Loose = SymbolEnd::Loose;
  constexpr auto Strict = SymbolEnd::Strict;
  for (const Case& c : {
           Case{"SiO2 %", Loose, "SiO2", "SiO2", "", 14, 1, false},
           Case{"FeOtot %", Strict, "FeOtot", "FeO", "", 26, 1, true},
           Case{"Fe2O3(T)_XRF %", Loose, "Fe2O3(T)", "Fe2O3", "XRF", 26, 1, true},
           Case{"FeO* %", Loose, "FeO*", "FeO", "", 26, 1, true},
           Case{"FeO (T) %", Loose, "FeO", "FeO", "", 26, 1, true},
           Case{"Fe2O3 total %", Strict, "Fe2O3", "Fe2O3", "", 26, 1, true},
           Case{"Fe2O3_TOT %", Loose, "Fe2O3", "Fe2O3", "", 26, 1, true},
           Case{"Ni_BM ppm", Loose, "Ni", "Ni", "BM", 28, 10000, false},
           Case{"Ni_BM ppm", Strict, "Ni_BM", "", "", 0, 10000, false},
           Case{"Ni/TOT ppb", Loose, "Ni", "Ni", "", 28, 10000000, false},
           Case{"H2O+ %", Loose, "H2O+", "H2O+", "", 1, 1, false},
           Case{"Au", Loose, "Au", "Au", "", 79, 0, false},
           Case{"Structural height", Loose, "Structural height", "", "", 0, 0, false},
           Case{"LOI/%", Loose, "LOI", "", "", 0, 1, false},
           Case{"Sum of Pt (ppb)", Loose, "Sum of Pt", "", "", 0, 10000000, false},
           Case{"SiO2 [%]", Loose, "SiO2", "SiO2", "", 14, 1, false},
           Case{"%", Loose, "", "", "", 0, 1, false},
       }) {
    const ItemHeading heading = itemHeading(c.text, c.end, converter);
    EXPECT_EQ(heading.form, c.form) << c.text;
    EXPECT_EQ(heading.formula, c.formula) << c.text;
    EXPECT_EQ(heading.method, c.method) << c.text;
    EXPECT_EQ(heading.element, c.element) << c.text;
    EXPECT_EQ(heading.unitFactor, c.unit) << c.text;
    EXPECT_EQ(heading.isTotal, c.total) << c.text;
  }
}

TEST(SampleJoin, OfNothingIsEmpty) {
  const Worksheet empty;
  SheetStructure structure;
  structure.firstDataRow = 2;
  structure.idColumn = 1;
  const auto log = [](std::string_view) { FAIL(); };
  Findings found;
  EXPECT_EQ(joinSamples({}, log, found).A2.RowCount(), 0);
  EXPECT_EQ(joinSamples({{1, "e", &empty, structure, false, true}}, log, found).A2.RowCount(), 0);
  Worksheet sheet;
  sheet.TextRC(2, 1, "S1");
  EXPECT_EQ(
      joinSamples({{1, "not selected", &sheet, structure, false, false}}, log, found).A2.RowCount(),
      0);
  structure.firstDataRow = 0;
  EXPECT_EQ(
      joinSamples({{1, "no data row", &sheet, structure, false, true}}, log, found).A2.RowCount(),
      0);
}

}  // namespace
}  // namespace lodex
