// The method workbooks of the group ROCK against published values and the laws they must keep.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

#include "basic/Text.h"
#include "calc/CalcFixture.h"
#include "calc/ShippedMethod.h"
#include "calc/frmExcelCalc.h"
#include "chem/Elements.h"
#include "chem/Headings.h"

namespace lodex {
namespace {

// --- What holds for every workbook ---------------------------------------------------------------

TEST(ShippedMethodsTest, EveryWorkbookKeepsTheLayout) {
  int books = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(
           std::string(LODEX_BIN_DIR) + "/Geo/C-Groups")) {
    if (entry.path().extension() != ".xls") continue;
    SCOPED_TRACE(entry.path().filename().string());
    ++books;
    Worksheet book;
    book.Read(entry.path().string());
    EXPECT_GT(book.NumberSRC(1, 1, 1), 0) << "no place in the list";
    EXPECT_EQ(book.SheetNumber("Input"), 3);
    EXPECT_EQ(book.SheetNumber("Output"), 5);
    EXPECT_EQ(book.SheetNumber("About"), 6);
    book.Recalc();
    EXPECT_EQ(book.recalcReport().notComputed, 0u);
    EXPECT_EQ(book.recalcReport().changed, 0u)
        << "values in the file are not those of its formulas";
    ASSERT_EQ(book.LastRow(4), book.LastRow(5));
    std::set<std::string> fields;
    for (int row = 1; row <= book.LastRow(5); ++row) {
      EXPECT_FALSE(book.ValueSRC(5, row, 3).isError()) << book.TextSRC(5, row, 1);
      EXPECT_EQ(book.TextSRC(4, row, 2), book.TextSRC(5, row, 2));
      std::string field;
      SafeFieldName(book.TextSRC(5, row, 2), field, false);
      EXPECT_TRUE(fields.insert(toUpper(field)).second)
          << "databases, which ignore case, hold only one field " << field;
      // Outside of the conversions a result must not pass for an analysis of an element.
      if (entry.path().parent_path().filename() == "MISCE") continue;
      std::string name = book.TextSRC(5, row, 2);
      EXPECT_EQ(name.find('.'), std::string::npos) << name;
      if (name == "Ne") continue;
      EXPECT_EQ(ElementNumber(name), 0) << book.TextSRC(5, row, 2);
    }
  }
  EXPECT_EQ(books, 20);
}

TEST(ShippedMethodsTest, ExamplesStandInTheirSheets) {
  Worksheet book;
  book.Read(std::string(LODEX_BIN_DIR) + "/Geo/System/Examples.xls");
  ASSERT_EQ(book.NumSheets(), 5);
  const char* names[] = {"CIPW", "SF", "REE", "PGE", "SULFIDES"};
  for (int sheet = 1; sheet <= 5; ++sheet) {
    EXPECT_EQ(book.SheetName(sheet), names[sheet - 1]);
    EXPECT_EQ(book.TextSRC(sheet, 2, 1), "Source");
    for (int column = 2; column <= book.LastCol(sheet); ++column) {
      EXPECT_NE(book.TextSRC(sheet, 2, column), "") << names[sheet - 1] << ' ' << column;
    }
  }
}

class ShippedGroupTest : public CalcFixture {
 protected:
  ShippedGroupTest() {
    session.record.CGroupsFolder = std::string(LODEX_BIN_DIR) + "/Geo/C-Groups";
    session.record.DefaultCGroup = "ROCK";
  }
  double result(const std::string& sheet, const std::string& field) {
    Worksheet& book = sheets.result.F1D;
    const int number = book.SheetNumber(sheet);
    const FindResult found = book.Find(field, number, 1, 1, 1, book.LastCol(number));
    EXPECT_GT(found.found, 0) << field;
    return found.found ? book.NumberSRC(number, resultrow::firstData, found.column) : NAN;
  }
};

TEST_F(ShippedGroupTest, FeedsEveryColumnOnce) {
  addSheet("rock", {"HEADER|No|a|b|c|d|e|f|g|h|i", "ELEMENT||SiO2|Na2O|FeO|S|Cu|Al2O3|MgO|CaO|K2O",
                    "METHOD", "UNIT||%|%|%|%|ppm|%|%|%|%", "|R1|60|10|20|2|10000|1|1|1|1"});
  loadAndRun();
  EXPECT_GT(result("CIPW", "Pyrite"), 3);
  EXPECT_EQ(result("CIPW", "Thenardite"), 0) << "sulphur was counted again as SO3";
  EXPECT_NEAR(result("SF", "SF Cu") / result("SF", "SF S"), .5, 1e-9);
  EXPECT_NEAR(result("INDICES", "Differentiation index"), result("CIPW", "Differentiation index"),
              1e-9);
}

TEST_F(ShippedGroupTest, CalculatesTheExamples) {
  struct Case {
    const char* group;
    const char* method;
    const char* result;
    double least, most;  // of all samples of the example sheet
  };
  const Case cases[] = {{"ROCK", "CIPW", "Norm sum", 99.999, 100.001},
                        {"ROCK", "SF", "SF S", 33, 41},
                        {"ROCK", "REE", "(Eu/Eu*)", .6, 1.1},
                        {"ROCK", "PGE", "(Pd)M", 1, 3000},
                        {"MINERAL", "SULFIDES", "Total", 90, 100.1}};
  int sheet = 0;
  for (const Case& test : cases) {
    SCOPED_TRACE(test.method);
    session.record.CurrentCGroup = test.group;
    frmExcelCalc form(context, calculations);
    form.readExamples(std::string(LODEX_BIN_DIR) + "/Geo/System/Examples.xls");
    form.AlustaCALC(false);
    form.mnuExamples(++sheet).click();
    const int samples = form.F1D.LastCol();
    form.Calculate(test.method);
    const FindResult found = form.F1D.Find(test.result, 1, 1, 1, form.F1D.LastRow(), 1);
    ASSERT_EQ(found.found, 1);
    for (int column = 2; column <= samples; ++column) {
      const double value = form.F1D.NumberRC(found.row, column);
      EXPECT_TRUE(value >= test.least && value <= test.most) << column << ": " << value;
    }
  }
}

// --- Normalised patterns, indices ---

TEST(ReeTest, NormalisesToChondrite) {
  ShippedMethod ree("ROCK/REE");
  // Post-Archaean shale over the chondrite of Sun and McDonough (1989).
  ree.calculate(
      {{"La ppm", 38.2}, {"Sm ppm", 5.6}, {"Eu ppm", 1.1}, {"Gd ppm", 4.7}, {"Yb ppm", 2.8}});
  EXPECT_NEAR(ree.number("(La)N"), 161.18, .005);
  EXPECT_NEAR(ree.number("(La/Yb)N"), 9.79, .005);
  EXPECT_NEAR(ree.number("(Eu/Eu*)"), .656, .0006);
  EXPECT_NEAR(ree.number("Sum REE"), 52.4, 1e-9);
  EXPECT_EQ(ree.text("(Ce)N"), "");
  EXPECT_EQ(ree.text("(Ce/Ce*)"), "");
}

TEST(PgeTest, NormalisesToMantle) {
  ShippedMethod pge("ROCK/PGE");
  pge.calculate({{"Pd ppb", 7.8}, {"Ir ppb", 1.6}, {"Cu ppm", 60}, {"Pt ppb", -1}});
  EXPECT_NEAR(pge.number("(Pd)M"), 2, 1e-12);
  EXPECT_NEAR(pge.number("(Pd/Ir)M"), 4, 1e-12);
  EXPECT_NEAR(pge.number("(Cu/Pd)"), 60000 / 7.8, 1e-9);
  EXPECT_NEAR(pge.number("Sum PGE"), 9.4, 1e-12);
  EXPECT_EQ(pge.text("(Pt)M"), "");
}

TEST(IndicesTest, ClassifiesByAlkalisAndSilica) {
  struct Case {
    double silica, alkalis;
    const char* name;
  };
  const Case cases[] = {
      {40, 5, "foidite"},
      {44, 10, "foidite"},
      {47, 11, "foidite"},
      {43, 2, "picrobasalt"},
      {43, 5, "basanite or tephrite"},
      {47, 8, "basanite or tephrite"},
      {48, 3, "basalt"},
      {48, 5.5, "trachybasalt"},
      {50.5, 6, "trachybasalt"},
      {53.5, 7, "basaltic trachyandesite"},
      {54, 4, "basaltic andesite"},
      {60, 4, "andesite"},
      {58, 8, "trachyandesite"},
      {49, 9, "phonotephrite"},
      {53, 12, "tephriphonolite"},
      {58, 14, "phonolite"},
      {63, 11, "trachyte or trachydacite"},
      {66, 5, "dacite"},
      {70, 5, "dacite"},
      {71, 9, "rhyolite"},
      {75, 6, "rhyolite"},
  };
  ShippedMethod indices("ROCK/INDICES");
  for (const Case& test : cases) {
    indices.calculate(
        {{"SiO2", test.silica}, {"Na2O", test.alkalis}, {"MgO", 100 - test.silica - test.alkalis}});
    EXPECT_EQ(indices.text("TAS"), test.name) << test.silica << ' ' << test.alkalis;
  }
  EXPECT_EQ(indices.text("Remark"), "");
  indices.calculate({{"SiO2", 60}, {"Al2O3", 20}, {"MgO", 20}});
  for (const char* output : {"TAS", "Alkali class", "Alkali-lime class"}) {
    EXPECT_EQ(indices.text(output), "") << output;
  }
  EXPECT_EQ(indices.text("Remark"), "SiO2 or alkalis missing");
  indices.calculate({});
  EXPECT_EQ(indices.text("CIA"), "");
  EXPECT_EQ(indices.text("Remark"), "no analysis");
}

TEST(IndicesTest, ComputesRatiosOfPureMinerals) {
  ShippedMethod indices("ROCK/INDICES");
  const double al = molarMass("Al2O3"), si = molarMass("SiO2");
  // Albite: unaltered and saturated with alumina; kaolinite: wholly altered.
  indices.calculate({{"SiO2", 6 * si}, {"Al2O3", al}, {"Na2O", molarMass("Na2O")}});
  EXPECT_NEAR(indices.number("CIA"), 50, 1e-4);
  EXPECT_NEAR(indices.number("ASI"), 1, 1e-6);
  EXPECT_NEAR(indices.number("Agpaitic index"), 1, 1e-6);
  indices.calculate({{"SiO2", 2 * si}, {"Al2O3", al}});
  EXPECT_NEAR(indices.number("CIA"), 100, 1e-9);
  EXPECT_EQ(indices.text("ASI"), "");
  // Apatite takes its calcium away, and calcium beyond sodium counts as carbonate.
  indices.calculate({{"Al2O3", al},
                     {"Na2O", molarMass("Na2O")},
                     {"CaO", (1 + 10. / 3) * molarMass("CaO")},
                     {"P2O5", molarMass("P2O5")}});
  EXPECT_NEAR(indices.number("ASI"), .5, 1e-6);
  EXPECT_NEAR(indices.number("CIA"), 100. / 3, 1e-4);
}

TEST(SulphideFractionTest, RecalculatesMixturesToPureSulphide) {
  // Pyrrhotite Fe7S8 and chalcopyrite, half and half in the sulphide, one tenth of the rock.
  const double po = 7 * 55.845 + 8 * 32.065, ccp = 63.546 + 55.845 + 2 * 32.065;
  const double s = 5 * 8 * 32.065 / po + 5 * 2 * 32.065 / ccp, cu = 5 * 63.546 / ccp;
  ShippedMethod sf("ROCK/SF");
  sf.calculate({{"S", s}, {"Cu_BM", cu}, {"Pd ppb", 30}});
  EXPECT_NEAR(sf.number("Sulphide fraction"), 10, 1e-6);
  EXPECT_NEAR(sf.number("Chalcopyrite"), 5, 1e-6);
  EXPECT_NEAR(sf.number("Pyrrhotite"), 5, 1e-6);
  EXPECT_NEAR(sf.number("SF Cu"), 10 * cu, 1e-6);
  EXPECT_NEAR(sf.number("SF Pd ppb"), 300, 1e-4);
  EXPECT_EQ(sf.text("Remark"), "");
  sf.calculate({{"S", .1}, {"Cu_BM", 1}});
  EXPECT_EQ(sf.text("Remark"), "S does not suffice for Cu and Ni");
  sf.calculate({{"Cu_BM", 1}});
  EXPECT_EQ(sf.text("Remark"), "no S");
  EXPECT_EQ(sf.text("SF Cu"), "");
}

}  // namespace
}  // namespace lodex
