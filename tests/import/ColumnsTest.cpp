// Column types and the columns of an item.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "import/ColumnTypes.h"
#include "import/ImportFixture.h"
#include "import/ItemColumns.h"

namespace lodex {
namespace {

using testing::ElementsAre;

struct TypeCase {
  const char* name;
  std::vector<std::string> cells;
  std::string type;
};

TEST(ColumnType, ComesFromTheContent) {
  const TypeCase cases[] = {
      {"nothing", {}, "LONG"},
      {"whole numbers", {"1", "", "-20"}, "LONG"},
      {"written with decimals but whole", {"12.0"}, "LONG"},
      {"a decimal", {"1", "2.5"}, "SINGLE"},
      {"too large for an integer", {"3000000000"}, "SINGLE"},
      {"below detection", {"1.5", "<0.01"}, "TEXT(15)"},
      {"text after numbers, longest counts", {"123456789", "a"}, "TEXT(19)"},
      {"length in characters", {"äöå"}, "TEXT(13)"},
      {"decimal comma is text", {"1,5"}, "TEXT(13)"},
  };
  for (const TypeCase& c : cases) {
    Worksheet sheet;
    fill(sheet, c.cells);
    EXPECT_EQ(columnType(sheet, 1, 1, sheet.LastRow()), c.type) << c.name;
  }
}

TEST(IdColumnType, IsLongOrATextInTens) {
  const TypeCase cases[] = {
      {"numbers", {"1", "2147483646"}, "LONG(U,I)"},
      {"leading zeros", {"7", "00123"}, "TEXT(10)(U,I)"},
      {"decimals", {"10.25", "11"}, "TEXT(10)(U,I)"},
      {"whole but written with decimals", {"12.0"}, "TEXT(10)(U,I)"},
      {"powers", {"50", "5E1"}, "TEXT(10)(U,I)"},
      {"signs", {"+5"}, "TEXT(10)(U,I)"},
      {"blanks around", {" 7"}, "TEXT(10)(U,I)"},
      {"a cell of blanks is none", {"7", "  "}, "LONG(U,I)"},
      {"negative", {"-7", "0"}, "LONG(U,I)"},
      {"limit", {"2147483647"}, "TEXT(20)(U,I)"},
      {"negative limit", {"-2147483647"}, "TEXT(20)(U,I)"},
      {"text", {"A-1"}, "TEXT(10)(U,I)"},
      {"half to even down", {"ABCDE"}, "TEXT(10)(U,I)"},
      {"above the half", {"ABCDEF"}, "TEXT(20)(U,I)"},
      {"half to even up", {"ABCDEFGHIJKLMNO"}, "TEXT(30)(U,I)"},
      {"quote", {"O'Brien"}, "TEXT(20)(U,I)"},
  };
  for (const TypeCase& c : cases) {
    Worksheet sheet;
    fill(sheet, c.cells);
    EXPECT_EQ(idColumnType(sheet, 1, 1, sheet.LastRow(), [](int) {}), c.type) << c.name;
  }
}

TEST(ElementOfCell, AcceptsFormulasOnly) {
  const CompoundConverter converter;
  const std::pair<const char*, int> cases[] = {
      {"Si", 14}, {"SiO2", 14}, {"SiTOT", 14}, {"FeOtot", 26}, {"Fe2O3", 26}, {"S TOT", 16},
      {"TOT", 0}, {"LOI", 0},   {"Sample", 0}, {"", 0},        {"12", 0},
  };
  for (const auto& [text, number] : cases)
    EXPECT_EQ(elementOfCell(text, converter), number) << text;
}

TEST(ItemColumns, SearchesTheWantedSheets) {
  Worksheet first;
  Worksheet second;
  fill(first, {"x", "ELEMENT|SiO2|Fe|SiTOT|MF_OH"});
  fill(second, {"ELEMENT|Fe2O3|Si"});
  const CompoundConverter converter;
  const std::vector<ItemSheet> sheets = {{1, &first, 2}, {2, &second, 1}, {3, &second, 0}};
  std::vector<ItemColumn> columns;
  EXPECT_TRUE(ItemColumns({"SiO2", false, {}}, sheets, converter, columns));
  EXPECT_THAT(columns, ElementsAre(ItemColumn{1, 2, 1}, ItemColumn{1, 4, 1}, ItemColumn{2, 3, 1}));
  EXPECT_TRUE(ItemColumns({"Fe", false, {2}}, sheets, converter, columns));
  EXPECT_THAT(columns, ElementsAre(ItemColumn{2, 2, 1}));
  EXPECT_FALSE(ItemColumns({"MF_OH", false, {}}, sheets, converter, columns));
  EXPECT_TRUE(ItemColumns({"MF_OH", true, {}}, sheets, converter, columns));
  EXPECT_THAT(columns, ElementsAre(ItemColumn{1, 5, 1}));
  EXPECT_FALSE(ItemColumns({"Au", true, {}}, sheets, converter, columns));
}

TEST_F(ImportFixture, ResultColumnsAnswerMethodAndUnitToo) {
  frmCResult& result = sheets.result;
  fill(result.F1D,
       {"HEADER|ID|a|b|c|d", "ELEMENT||Ni|Ni|Ni|SiO2", "METHOD||XRF||TOT|", "UNIT||ppm|ppm|%|%"});
  SheetStructure structure;
  structure.rows = {1, 2, 3, 4};
  result.setStructure(structure);
  struct Case {
    std::string request;
    std::vector<int> columns;
  };
  const Case cases[] = {{"Ni_XRF ppm", {3}}, {"Ni ppm", {4}}, {"Ni_TOT %", {5}},
                        {"Ni/TOT ppm", {4}}, {"SiO2 %", {6}}, {"Ni_ICP ppm", {}}};
  for (const Case& c : cases) {
    std::vector<ItemColumn> hits;
    EXPECT_EQ(result.FindColumnC(c.request, hits), !c.columns.empty()) << c.request;
    std::vector<int> found;
    for (const ItemColumn& hit : hits) found.push_back(hit.column);
    EXPECT_EQ(found, c.columns) << c.request;
  }
}

}  // namespace
}  // namespace lodex
