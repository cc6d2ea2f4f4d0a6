#include "modal/AssaySheet.h"

#include <gtest/gtest.h>

#include "ModalFixture.h"
#include "basic/Error.h"

namespace lodex {
namespace {

// Rows: 1 header, 2 element, 3 method, 4 unit, then data; column 1 holds the captions, column 2 the
// identifiers.
struct Sheet {
  Sheet() { column({"HEADER", "ELEMENT", "METHOD", "UNIT"}); }
  void column(const std::vector<std::string>& cells) {
    ++columns;
    for (size_t r = 0; r < cells.size(); ++r) {
      sheet.TextRC(static_cast<int>(r) + 1, columns, cells[r]);
    }
  }
  AssaySheet source() { return {&sheet, 1, 2, 3, 4, 5, 2, "Ores"}; }

  Worksheet sheet;
  int columns = 0;
};

struct Retrieved : ModalFixture {
  explicit Retrieved(Sheet& sheet) {
    onlyText = retrieveAssays(sheet.source(), F1ELoc, lists, result, {found});
    for (const Finding& finding : found.all()) log += describe(finding) + "\n";
  }
  Findings found;
  std::vector<int> onlyText;
  std::string log;
};

TEST(AssaySheet, FactorsByNameAndUnit) {
  struct Row {
    const char* element;
    const char* unit;
    double value, expected;
  } rows[] = {
      {"Cu", "%", 2, 2},         {"CuO", "%", 10, 7.989},  {"Fe2O3", "%", 10, 8.998},
      {"Si", "%", 10, 21.393},   {"Cu", "ppm", 5000, 0.5}, {"Au", "PPB", 1e7, 1},
      {"Ni", "%", 3, 3},  // a factor of 0 is none
      {" Cu ", "Ppm", 10000, 1}, {"CuTOT", "%", 2, 2},     {"Fe2O3 tot", "%", 10, 8.998},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.element) + " " + row.unit);
    Sheet s;
    s.column({"Sample", "Sample", "", "", "S1"});
    s.column({"x", row.element, "", row.unit, std::to_string(row.value)});
    Retrieved r(s);
    EXPECT_NEAR(r.result.F1Ini.NumberRC(1, 2), row.expected, 1e-12);
  }
}

TEST(AssaySheet, ATotalServesBeforeAPart) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1"});
  s.column({"FeO", "FeO", "", "%", "6"});
  s.column({"Fe2O3T", "Fe2O3tot", "", "%", "10"});
  s.column({"Fe2O3", "Fe2O3", "", "%", "3"});
  Retrieved r(s);
  const AssayColumn total = describeColumn(s.source(), 4, r.F1ELoc);
  EXPECT_TRUE(total.isTotal);
  EXPECT_EQ(r.result.F1Kirja.NumberRC(total.elementRow, 1), 3);
  EXPECT_NE(r.log.find("(FeO) feeds no equation: a later column"), std::string::npos) << r.log;
  EXPECT_NE(r.log.find("(Fe2O3) feeds no equation: an earlier column"), std::string::npos);
}

TEST(AssaySheet, MethodsAndColumns) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1", "S2"});
  s.column({"Cu", "Cu", "", "%", "1", "2"});
  s.column({"Cu_BM", "Cu", "BM", "%", "3", "4"});
  s.column({"Cu_BM2", "Cu", "BM", "%", "5", "6"});
  s.column({"S", "S", "LECO", "%", "7", "8"});
  Retrieved r(s);
  EXPECT_EQ(r.result.F1Kirja.ColText(1), firstMethod);
  EXPECT_EQ(r.result.F1Kirja.ColText(2), "BM");
  EXPECT_EQ(r.result.F1Kirja.ColText(3), "LECO");
  EXPECT_EQ(r.result.F1Kirja.NumberRC(1, 1), 2);
  EXPECT_EQ(r.result.F1Kirja.NumberRC(1, 2), 3);  // the first of the two
  EXPECT_EQ(r.result.F1Kirja.NumberRC(3, 3), 5);
  EXPECT_EQ(r.result.F1Kirja.TextRC(3, 1), "");
  EXPECT_EQ(r.result.F1Ini.ColText(4), "Cu_BM2");
  EXPECT_EQ(r.lists.SampleIDs, (std::vector<std::string>{"S1", "S2"}));
  EXPECT_NE(r.log.find("column 5 (Cu_BM2) feeds no equation"), std::string::npos);
}

TEST(AssaySheet, CellsThatAreNoNumbers) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1", "S2", "", "S4", ""});
  s.column({"Cu", "Cu", "", "%", "<0.01", "", "2", "0.5", ""});
  Retrieved r(s);
  ASSERT_EQ(r.lists.SampleIDs, (std::vector<std::string>{"S1", "S2", "", "S4"}));
  EXPECT_EQ(r.result.F1Ini.TextRC(1, 2), "0");
  EXPECT_EQ(r.result.F1Ini.TextRC(2, 2), "");
  EXPECT_EQ(r.result.F1Ini.TextRC(3, 2), "2");
  EXPECT_EQ(r.log,
            "sheet Ores, row 7: The row has no sample identifier\n"
            "sheet Ores, C5: Text counts as 0\n");
  EXPECT_FALSE(r.found.hasErrors());
}

TEST(AssaySheet, CommasAndNegativeValuesAreReported) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1", "S2", "S3"});
  s.column({"Cu", "Cu", "", "%", "n.a.", " 48,125", "1,5"});
  s.column({"S", "S", "", "%", "-1", "-0.5", "<1"});
  s.column({"Si", "Si", "", "%", "", "", ""});
  Retrieved r(s);
  EXPECT_EQ(r.log,
            "sheet Ores, C5: Text counts as 0 (2 times)\n"
            "sheet Ores, C6: A number with a decimal comma counts as 0: write it with a point "
            "(2 times)\n"
            "sheet Ores, D5: Negative value (2 times)\n");
  EXPECT_EQ(r.found.count(Severity::Error), 2u);  // numbers were lost
  EXPECT_EQ(r.onlyText, std::vector<int>{2});
}

TEST(AssaySheet, NumbersInCellsOfTextCount) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1", "S2"});
  s.column({"Cu", "Cu", "", "%", "1", "2"});
  s.sheet.ValueSRC(1, 5, s.columns, Value::text("12.50"));
  Retrieved r(s);
  EXPECT_EQ(r.result.F1Ini.NumberRC(1, 2), 12.5);
  EXPECT_EQ(r.log, "");
}

TEST(AssaySheet, NothingIsIgnoredInSilence) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1"});
  s.column({"Cu g/t", "Cu", "", "g/t", "5"});
  s.column({"FeOT %", "FeOT", "", "%", "8"});
  s.column({"SiO2", "", "", "", "50"});
  s.column({"Rock", "", "", "", "gabbro"});
  Retrieved r(s);
  EXPECT_EQ(r.log,
            "sheet Ores, column D: Assay column 4 (FeOT %) feeds no equation: its element is not "
            "known\n"
            "sheet Ores, column E: Assay column 5 (SiO2) feeds no equation: its element is not "
            "known\n"
            "sheet Ores, column C: Unit g/t of column 3 (Cu g/t) is not known: its values are "
            "taken as %\n");
}

TEST(AssaySheet, UnknownStructureIsAnError) {
  Sheet s;
  s.column({"Sample", "Sample", "", "", "S1"});
  s.column({"Rock", "Rock", "", "", "5"});
  EXPECT_THROW(Retrieved r(s), Error);
  ModalFixture f;
  AssaySheet source = s.source();
  source.elementRow = 0;
  Findings found;
  EXPECT_THROW(retrieveAssays(source, f.F1ELoc, f.lists, f.result, {found}), Error);
}

}  // namespace
}  // namespace lodex
