#include "chem/Headings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lodex {
namespace {

using Strings = std::vector<std::string>;

TEST(Headings, SplitIntoElementMethodUnit) {
  struct Row {
    const char* heading;
    bool strict;
    const char* element;
    const char* method;
    const char* unit;
  };
  const Row rows[] = {
      {"SiO2 %", true, "SiO2", "", "%"},
      {"Au_FA ppb", true, "Au", "FA", "ppb"},
      {"Ni/TOT ppm", true, "Ni", "TOT", "ppm"},
      {"Au ppb", true, "Au", "", "ppb"},
      {"Cu_AAS_ %", true, "Cu", "AAS", "%"},
      {"Fe2O3 - XRF %", true, "Fe2O3", "- XRF", "%"},
      {"Cu%", true, "Cu", "", "%"},
      {" Au ppm", true, "Au", "", "ppm"},
      {"Cu ppm %", true, "Cu", "ppm", "%"},  // the last unit named in the order ppm, ppb, % wins
      {"Cu ppb ppm", true, "Cu", "", "ppb"},
      {"AU PPB", false, "AU", "", "ppb"},
      {"AU PPB", true, "", "old", "ppb"},
      {"Zn", true, "", "old", ""},
      {"Zn", false, "", "", ""},
      {"", false, "", "", ""},
      {"%", false, "", "", "%"},
      {"LOI 1000 C %", false, "LOI", "1000 C", "%"},
      {"Magn. susc ppm", false, "Magn", ". susc", "ppm"},
  };
  for (const Row& row : rows) {
    std::string element = "old", method = "old", unit = "old";
    SplitHeading(row.heading, element, method, unit, row.strict);
    EXPECT_EQ(element, row.element) << row.heading;
    EXPECT_EQ(method, row.method) << row.heading;
    EXPECT_EQ(unit, row.unit) << row.heading;
  }
}

TEST(Headings, FactorOfAMethodHeading) {
  struct Row {
    const char* heading;
    bool oxide;
    double factor;
  };
  const Row rows[] = {
      {"SiO2 %", true, 1},      {"Si %", false, 1},     {"Au g/t", false, 10000},
      {"Ni ppm", false, 10000}, {"Ni PPB", false, 1e7}, {"Ni", false, 0},
      {"Os ppb", false, 1e7},   {"O2", false, 0},       {"CuOx ppm ppb", true, 1e7},
      {"LOI %", false, 1},      {"FeO_XRF %", true, 1}, {"Fe_XRF O %", false, 1},
      {"", false, 0},           {"Cu mg/l", false, 0},  {"Fe TOT %", true, 1},
  };
  for (const Row& row : rows) {
    bool oxide = !row.oxide;
    double factor = -1;
    HeadingFactor(row.heading, oxide, factor);
    EXPECT_EQ(oxide, row.oxide) << row.heading;
    EXPECT_EQ(factor, row.factor) << row.heading;
  }
}

TEST(Headings, DataUnitsCountGramsPerTonAsPpb) {
  EXPECT_EQ(DataUnitFactor("%"), 1);
  EXPECT_EQ(DataUnitFactor("Ppm"), 10000);
  for (const char* unit : {"ppb", "g/t", "MG/L", " G/t "}) EXPECT_EQ(DataUnitFactor(unit), 1e7);
  for (const char* unit : {"", "m", "wt%"}) EXPECT_EQ(DataUnitFactor(unit), 0);
}

TEST(Headings, SafeFieldName) {
  struct Row {
    const char* text;
    bool slash;
    const char* clean;
  };
  const Row rows[] = {
      {"Fe/TOT %", true, "Fe_TOT %"},
      {"Fe/TOT %", false, "Fe/TOT %"},
      {"Cu-Ni.x", false, "Cu_Ni_x"},
      {"a:b@c[d]`z{|}~", false, "a_b_c_d__z{___"},
      {"mg#", false, "mg_"},
      {"Näyte №", false, "N_yte _"},
      {"tab\there", false, "tab_here"},
      {"09AZaz", true, "09AZaz"},
      {"", true, ""},
      {"bad\xFF", true, "bad_"},
  };
  for (const Row& row : rows) {
    std::string clean = "old";
    EXPECT_EQ(SafeFieldName(row.text, clean, row.slash), std::string(row.text) != row.clean)
        << row.text;
    EXPECT_EQ(clean, row.clean) << row.text;
  }
}

TEST(Headings, SplitText) {
  EXPECT_EQ(SplitText("", ","), Strings());
  EXPECT_EQ(SplitText("a,b", ""), Strings({"a,b"}));
  EXPECT_EQ(SplitText("a,b,", ","), Strings({"a", "b", ""}));
  EXPECT_EQ(SplitText("Cu (29) / AAS", " / "), Strings({"Cu (29)", "AAS"}));
}

TEST(Headings, ItemReferences) {
  struct Row {
    const char* text;
    const char* kind;  // "" where it is no reference
    int item;
    std::vector<std::int32_t> rest;
  };
  const Row rows[] = {
      {"M12/3/5", "M", 12, {3, 5}},
      {"P7", "P", 7, {}},
      {"12/3", "M", 12, {3}},
      {"M/12/3", "M", 12, {3}},
      {" 5 ", "M", 5, {}},
      {"2147483647", "M", 2147483647, {}},
      {"", "", 0, {}},
      {"M", "", 0, {}},
      {"Q12", "", 0, {}},
      {"1/2/3/4", "", 0, {}},
      {"12/", "", 0, {}},
      {"2147483648", "", 0, {}},
      {"-3", "", 0, {}},
      {"1.5", "", 0, {}},
      {"M/Py/123", "", 0, {}},
  };
  for (const Row& row : rows) {
    std::string kind = "old";
    std::int32_t item = -1;
    std::vector<std::int32_t> rest{9};
    EXPECT_EQ(ParseItemRef(row.text, kind, item, rest), *row.kind != '\0') << row.text;
    EXPECT_EQ(kind, row.kind) << row.text;
    EXPECT_EQ(item, row.item) << row.text;
    EXPECT_EQ(rest, row.rest) << row.text;
  }
}

TEST(Headings, RoundToWorksInSinglePrecision) {
  EXPECT_DOUBLE_EQ(RoundTo(2.345, 2), 2.35);  // 2.345 as a single is a little more
  EXPECT_DOUBLE_EQ(RoundTo(1.005, 2), 1.0);   // and 1.005 a little less
  EXPECT_DOUBLE_EQ(RoundTo(1.2345, 2), 1.23);
  EXPECT_DOUBLE_EQ(RoundTo(-2.5, 0), -2);  // the floor, not away from zero
  EXPECT_DOUBLE_EQ(RoundTo(1250, -2), 1300);
  EXPECT_DOUBLE_EQ(RoundTo(0, 3), 0);
  for (const double bad : {1e39, -1e39, std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(RoundTo(bad, 2), -999);
  }
  EXPECT_EQ(RoundTo(1, 400), -999);
  EXPECT_EQ(RoundTo(1, -400), -999);
}

TEST(Headings, RandomGaussIsNormalAndRepeatable) {
  SeedRandom(1);
  const double first = RandomGauss(5, 2);
  constexpr int n = 20000;
  double sum = 0, squares = 0;
  int within = 0;
  for (int i = 0; i < n; ++i) {
    const double z = RandomGauss(5, 2) - 5;
    sum += z;
    squares += z * z;
    within += std::abs(z) < 2;
  }
  EXPECT_NEAR(sum / n, 0, 0.06);
  EXPECT_NEAR(std::sqrt(squares / n), 2, 0.05);
  EXPECT_NEAR(static_cast<double>(within) / n, 0.6827, 0.015);
  EXPECT_EQ(RandomGauss(3, 0), 3);
  SeedRandom(1);
  EXPECT_EQ(RandomGauss(5, 2), first);
}

}  // namespace
}  // namespace lodex
