#include "chem/Elements.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

TEST(Elements, NumberOfTheSymbolAtTheHead) {
  struct Row {
    const char* text;
    int number;
    int strict;
    const char* left;  // the text after ElementNumber
  };
  const Row rows[] = {
      {"", 0, 0, ""},           {"   ", 0, 0, ""},         {"C", 6, 6, "C"},
      {"Co", 27, 27, "Co"},     {"CO", 6, 6, "C"},         {"CO2", 6, 6, "C"},
      {"X", 0, 0, "X"},         {"Al2O3", 13, 13, "Al"},   {"FeO", 26, 26, "Fe"},
      {"Cu%", 29, 29, "Cu"},    {"  Si % ", 14, 14, "Si"}, {"Fe_XRF", 26, 0, "Fe"},
      {"Ni/TOT", 28, 0, "Ni"},  {"S_leco", 16, 0, "S"},    {"CuFeS2", 29, 29, "Cu"},
      {"CaCO3", 20, 20, "Ca"},  {"PbAs", 0, 0, "PbAs"},  // a capital A does not end a symbol
      {"PbZn", 0, 0, "PbZn"},                            // nor does Z
      {"CL", 0, 0, "CL"},       {"Feo", 0, 0, "Feo"},      {"Unq", 104, 104, "Unq"},
      {"Unh", 106, 106, "Unh"}, {"Rf", 0, 0, "Rf"},        {"Mg#", 0, 0, "Mg#"},
      {"LOI", 0, 0, "L"},       {"si", 0, 0, "si"},        {"2H", 0, 0, "2H"},
      {"Sä", 0, 0, "Sä"},
  };
  for (const Row& row : rows) {
    std::string text = row.text;
    EXPECT_EQ(ElementNumber(text), row.number) << row.text;
    EXPECT_EQ(text, row.left) << row.text;
    text = row.text;
    EXPECT_EQ(ElementNumberStrict(text), row.strict) << row.text;
  }
}

TEST(Elements, TablesAgree) {
  const auto& symbols = ElementSymbols();
  ASSERT_EQ(symbols.size(), 107u);
  for (int n = 1; n <= 106; ++n) {
    std::string text = symbols[n];
    EXPECT_EQ(ElementNumber(text), n) << symbols[n];
    EXPECT_EQ(AtomicNumberOfSymbol(symbols[n]), n <= 103 ? n : 0);
    EXPECT_EQ(AtomicWeight(n) > 0, n <= 103) << symbols[n];
  }
  // Weights rise with the number but for these well-known pairs.
  for (int n = 2; n <= 92; ++n) {
    const bool inverted = n == 19 || n == 28 || n == 53 || n == 91;  // K, Ni, I, Pa
    const bool radioactive = n >= 84 && n <= 89;
    if (radioactive) continue;
    EXPECT_EQ(AtomicWeight(n) < AtomicWeight(n - 1), inverted) << symbols[n];
  }
  EXPECT_EQ(AtomicWeight(0), 0);
  EXPECT_EQ(AtomicWeight("fe"), 0);
  EXPECT_DOUBLE_EQ(AtomicWeight("Fe"), 55.845);
}

}  // namespace
}  // namespace lodex
