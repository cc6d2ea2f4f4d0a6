#include "modal/MineralData.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

TEST(ParseMineralID, ReadsEveryForm) {
  const struct {
    std::string text, kind, symbol, id;
  } rows[] = {{"M/Py/123", "M", "Py", "123"},
              {"P/Gangue/7", "P", "Gangue", "7"},
              {"M/123", "M", "", "123"},
              {"P/7", "P", "", "7"},
              {"Py/12", "M", "Py", "12"},
              {"Qz/12", "M", "Qz", "12"},
              {"123", "M", "", "123"},
              {"M/O'Brien/5", "M", "O'Brien", "5"},
              {"M/Py/007", "M", "Py", "7"},
              {"Mt", "k", "s", "i"},
              {"", "k", "s", "i"},
              {"M/Py/", "k", "s", "i"},
              {"M/Py/x", "k", "s", "i"},
              {"/", "k", "s", "i"},
              {"Qz/99999999999", "k", "s", "i"}};
  for (const auto& row : rows) {
    std::string kind = "k";
    std::string symbol = "s";
    std::string id = "i";
    ParseMineralID(row.text, kind, symbol, id);
    EXPECT_EQ(kind, row.kind) << row.text;
    EXPECT_EQ(symbol, row.symbol) << row.text;
    EXPECT_EQ(id, row.id) << row.text;
  }
}

TEST(MineralIndex, ComparesNumbers) {
  const ModalLists lists{{"12", "7", "12"}, {}, {}};
  EXPECT_EQ(MineralIndex(lists, "7.0"), 2);
  EXPECT_EQ(MineralIndex(lists, "012"), 1);
  EXPECT_EQ(MineralIndex(lists, "8"), 0);
  EXPECT_EQ(MineralIndex(lists, ""), 0);
}

TEST(MineralColumn, LooksForSymbolAndPercent) {
  Worksheet sheet;
  sheet.ColText(1, "Qz %");
  sheet.ColText(2, "Pyrite %");
  sheet.ColText(3, "Py % XRF");
  sheet.ColText(4, "Py %");
  sheet.ColText(6, "Gn %");
  EXPECT_EQ(MineralColumn("M/Py/123", sheet), 3);
  EXPECT_EQ(MineralColumn("Pyrite", sheet), 2);
  EXPECT_EQ(MineralColumn("M/Qz/1", sheet), 0) << "column 1 holds the samples";
  EXPECT_EQ(MineralColumn("M/Gn/1", sheet), 0) << "behind an empty heading";
}

TEST(FormatRounded, RoundsHalfUpInSinglePrecisionAndPads) {
  const struct {
    double value;
    int digits;
    std::string text;
  } rows[] = {{0, 3, "0.000"},
              {0, 0, "0."},
              {1, 2, "1.00"},
              {2.5, 0, "3"},
              {-2.5, 0, "-3"},
              {12.345, 2, "12.35"},
              {2.675, 2, "2.68"},
              {0.0004, 3, "0.000"},
              {-0.0004, 3, "0.000"},
              {99.9996, 3, "100.000"},
              {33.3333333, 4, "33.3333"},
              {0.000002, 6, "0.000002"},
              {1e-12, 3, "0.000"},
              {1234.5, -2, "1200"}};
  for (const auto& row : rows) {
    EXPECT_EQ(FormatRounded(row.value, row.digits), row.text) << row.value << ", " << row.digits;
  }
  EXPECT_EQ(FormatRounded(1.5, 30).size(), 24u) << "22 decimals at most";
}

TEST(AtomicNumberOf, ReadsTheSymbolAtTheHead) {
  const struct {
    std::string text;
    int number;
  } rows[] = {{"SiO2", 14},   {"CuFeS2", 29}, {"CaCO3", 20}, {"CO2", 6},      {"S", 16},
              {"CL", 0},      {"", 0},        {"Cu %", 29},  {" Fe2O3 ", 26}, {"FeAs", 0},
              {"FeZn", 0},    {"Fe_XRF", 0},  {"Fe/XRF", 0}, {"fe", 0},       {"K2O", 19},
              {"Mineral", 0}, {"Lr", 103},    {"X", 0},      {"H%", 1},       {"Co", 27}};
  for (const auto& row : rows) EXPECT_EQ(AtomicNumberOf(row.text), row.number) << row.text;
}

TEST(ElementAndFactor, TakesTheLastUnit) {
  const struct {
    std::string text;
    int number;
    double factor;
  } rows[] = {{"Cu %", 29, 1},           {"Au g/t", 79, 10000}, {"Au PPB", 79, 10000000},
              {"Au % ppm ppb", 79, 1e7}, {"Cu", 29, 0},         {"ppm", 0, 10000}};
  for (const auto& row : rows) {
    bool isElement = false;
    double factor = -1;
    EXPECT_EQ(ElementAndFactor(row.text, isElement, factor), row.number) << row.text;
    EXPECT_EQ(isElement, row.number != 0) << row.text;
    EXPECT_EQ(factor, row.factor) << row.text;
  }
}

TEST(AverageDensity, IsTheHarmonicMeanByWeight) {
  EXPECT_FLOAT_EQ(AverageDensity({50, 50}, {2, 4}), 100.0f / 37.5f);
  EXPECT_EQ(AverageDensity({50}, {2, 4}), -1);
  EXPECT_EQ(AverageDensity({50, 50}, {2, 0}), -1);
  EXPECT_EQ(AverageDensity({}, {}), 0);
  EXPECT_EQ(AverageDensity({0, 0}, {2, 3}), 0);
}

}  // namespace
}  // namespace lodex
