// Texts that stand for numbers: decimal commas and values below a detection limit.
#include "import/DecimalCommas.h"

#include <gtest/gtest.h>

#include "import/BelowDetection.h"

namespace lodex {
namespace {

TEST(DecimalCommas, OnlyOneCommaMakesANumber) {
  struct Case {
    const char* text;
    double number;  // 0 for none
  };
  for (const Case& test : {Case{"72,34", 72.34}, Case{" -0,5 ", -.5}, Case{"1,2E3", 1200},
                           Case{",5", .5}, Case{"1.020,5", 0}, Case{"1,2,3", 0}, Case{"<0,01", 0},
                           Case{"72", 0}, Case{",", 0}, Case{"", 0}, Case{"a,b", 0}}) {
    const auto number = numberWithComma(test.text);
    EXPECT_EQ(number.has_value(), test.number != 0) << test.text;
    EXPECT_EQ(number.value_or(0), test.number) << test.text;
  }
}

TEST(DecimalCommas, IdentifiersAndTextsKeepThem) {
  Worksheet cells;
  const char* rows[4][4] = {{"SampleNo", "SiO2", "Rock", "Code"},
                            {"ID", "X(Si)1/1", "X", ""},
                            {"TEXT(10)", "SINGLE", "TEXT(20)", ""},
                            {"1,5", "72,34", "2,5", "3,5"}};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      cells.TextRC(row + 1, column + 1, rows[row][column]);
    }
  }
  SheetStructure structure;
  structure.row(sysrow::Header) = 1;
  structure.row(sysrow::Identified) = 2;
  structure.row(sysrow::Type) = 3;
  structure.firstDataRow = 4;
  structure.idColumn = 1;
  const DescribedSheet sheet{cells, structure};
  EXPECT_EQ(findDecimalCommas(sheet).count, 1);
  EXPECT_EQ(findDecimalCommas(sheet).example, "72,34");
  EXPECT_EQ(convertDecimalCommas(sheet), 1);
  EXPECT_EQ(cells.NumberRC(4, 2), 72.34);
  for (const int column : {1, 3, 4}) EXPECT_EQ(cells.TextRC(4, column), rows[3][column - 1]);
}

TEST(BelowDetection, HalfOfAPositiveLimit) {
  struct Case {
    const char* text;
    double half;  // 0 for none
  };
  for (const Case& test : {Case{"< 5", 2.5}, Case{"<0.01", 0.005}, Case{" <1E-2 ", 0.005},
                           Case{"<0", 0}, Case{"<-5", 0}, Case{"<x", 0}, Case{"<", 0}, Case{"5", 0},
                           Case{">5", 0}, Case{"<<5", 0}, Case{"", 0}}) {
    const auto half = halfOfLimit(test.text);
    EXPECT_EQ(half.has_value(), test.half != 0) << test.text;
    EXPECT_EQ(half.value_or(0), test.half) << test.text;
  }
}

}  // namespace
}  // namespace lodex
