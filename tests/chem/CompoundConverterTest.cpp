#include "chem/CompoundConverter.h"

#include <gtest/gtest.h>

#include <random>

namespace lodex {
namespace {

// "Si 1 O 2" for a formula, "" for none.
std::string atomsOf(const std::string& formula) {
  std::vector<CompoundElement> elements{{}};
  const bool solved = CompoundConverter().SolveCompound(formula, elements);
  EXPECT_EQ(solved, !elements.empty()) << formula;
  EXPECT_EQ(CompoundConverter().IsCompound(formula), solved) << formula;
  std::string text;
  double fractions = 0;
  for (const CompoundElement& element : elements) {
    char atoms[32];
    snprintf(atoms, sizeof atoms, " %.4g", element.atoms);
    text += (text.empty() ? "" : " ") + element.symbol + atoms;
    fractions += element.massFraction;
  }
  EXPECT_NEAR(fractions, solved ? 1 : 0, 1e-12) << formula;
  return text;
}

TEST(CompoundConverter, ReadsFormulas) {
  const struct {
    const char* formula;
    const char* atoms;
  } rows[] = {
      {"Si", "Si 1"},
      {" SiO2 ", "Si 1 O 2"},
      {"CO", "C 1 O 1"},
      {"Co", "Co 1"},
      {"Ca5(PO4)3(OH)", "Ca 5 P 3 O 13 H 1"},
      {"K4[Fe(CN)6]", "K 4 Fe 1 C 6 N 6"},
      {"{Mg[Al(OH)2]2}2", "Mg 2 Al 4 O 8 H 8"},
      {"CH3COOH", "C 2 H 4 O 2"},
      // Decimals and fractions
      {"(Mg0.9Fe0.1)2SiO4", "Mg 1.8 Fe 0.2 Si 1 O 4"},
      {"Fe0.95S", "Fe 0.95 S 1"},
      {"Ca1.9Na0.1Mg4.5Fe0.5Si7.9Al0.1O22(OH)2",
       "Ca 1.9 Na 0.1 Mg 4.5 Fe 0.5 Si 7.9 Al 0.1 O 24 H 2"},
      {"Si3O9.98", "Si 3 O 9.98"},
      {"Mn0.00Fe2O4", "Fe 2 O 4"},
      {"Fe2/3S", "Fe 0.6667 S 1"},
      // Hydrates
      {"CuSO4.5H2O", "Cu 1 S 1 O 9 H 10"},
      {"CuSO4·5H2O", "Cu 1 S 1 O 9 H 10"},
      {"CuSO4 * 5H2O", "Cu 1 S 1 O 9 H 10"},
      {"FeCl3.6H2O", "Fe 1 Cl 3 H 12 O 6"},
      {"Na2CO3.10H2O", "Na 2 C 1 O 13 H 20"},
      {"CaSO4.0.5H2O", "Ca 1 S 1 O 4.5 H 1"},
      {"CaSO4.1/2H2O", "Ca 1 S 1 O 4.5 H 1"},
      {"Al2O3.2SiO2.2H2O", "Al 2 O 9 Si 2 H 4"},
      {"3CaO.Al2O3", "Ca 3 O 6 Al 2"},
      {"Mg3(PO4)2.8H2O", "Mg 3 P 2 O 16 H 16"},
      // Charges
      {"Fe3+", "Fe 1"},
      {"Fe+3", "Fe 1"},
      {"Fe²⁺", "Fe 1"},
      {"SO4--", "S 1 O 4"},
      {"SO4-2", "S 1 O 4"},
      {"SO42-", "S 1 O 4"},
      {"SO4 2-", "S 1 O 4"},
      {"(PO4)3-", "P 1 O 4"},
      {"PO4^3-", "P 1 O 4"},
      {"NH4+", "N 1 H 4"},
      {"Fe2+Fe3+2O4", "Fe 3 O 4"},
      {"H₂O", "H 2 O 1"},
  };
  for (const auto& row : rows) EXPECT_EQ(atomsOf(row.formula), row.atoms) << row.formula;
}

TEST(CompoundConverter, RejectsWhatIsNoFormula) {
  for (const char* text : {"",       " ",      "LOI",      "Total",        "Sample",     "SiTOT",
                           "si",     "sio2",   "FeOtot",   "Si %",         "mg#",        "X",
                           "2",      "Fe1-xS", "Fe(1-x)S", "(Mg,Fe)2SiO4", "Al2O3+SiO2", "Na2O+K2O",
                           "Fe-Ni",  "Ni/Co",  "Pb-207",   "(SiO2",        "SiO2)",      "(SiO2]",
                           "()",     "Si()2",  "Fe0",      "SiO2.",        ".SiO2",      "Fe1/0",
                           "Fe2..3", "+",      "^",        "Fe^x",         "Fe9999999",  "H2O?",
                           "Ä"}) {
    EXPECT_EQ(atomsOf(text), "") << text;
  }
  EXPECT_EQ(atomsOf(std::string(400, '(')), "");
  EXPECT_EQ(atomsOf(std::string(100000, 'C')), "");
}

TEST(CompoundConverter, SurvivesRandomText) {
  const std::string alphabet = "FeSiOHCaMg0123456789.()[]{}+-*^/ \xC2\xB7";
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    atomsOf(text);
  }
}

TEST(CompoundConverter, MolarMasses) {
  const CompoundConverter converter;
  EXPECT_NEAR(converter.MolarMass("SiO2"), 60.0843, 1e-4);
  EXPECT_NEAR(converter.MolarMass("CuSO4.5H2O"), 249.685, 1e-3);
  EXPECT_EQ(converter.MolarMass("LOI"), 0);
}

TEST(CompoundConverter, ConvertsAmounts) {
  const CompoundConverter converter;
  const struct {
    const char* from;
    const char* to;
    double factor;  // 0 where there is none
  } rows[] = {
      {"Fe2O3", "FeO", 0.8998},
      {"Si", "SiO2", 2.1393},
      {"Fe", "FeO", 1.2865},
      {"H", "H2O", 8.9367},
      {"C", "CO2", 3.6642},
      {"NiO", "Ni", 0.7858},
      {"CaCO3", "CO2", 0.4397},
      {"CaCO3", "CaO", 0.5603},
      {"SiO2", "SiO2", 1},
      {"Fe3O4 %", "FeO ppm", 9309},
      {"Au ppb", "Au g/t", 0.001},
      {"Sm2O3 ppm", "Sm", 0.8624},
      {"mg/l Cu", "Cu mg/l", 1},
      {"Cu mg/l", "Cu ppm", 0},
      {"SiO2", "MgO", 0},
      {"SiO2", "H2O", 0},
      {"O", "SiO2", 0},
      {"LOI", "Si", 0},
      {"Si", "Total", 0},
      {"Si % %", "SiO2", 0},
      {"Si XRF %", "SiO2", 0},
      {"2 ppm Si", "SiO2", 0},  // the amount is an argument of its own
  };
  for (const auto& row : rows) {
    double value = -1, factor = -1;
    EXPECT_EQ(converter.Convert2(3, row.from, row.to, 50, value, factor), row.factor > 0)
        << row.from << " to " << row.to;
    if (row.factor > 0) {
      EXPECT_NEAR(factor / row.factor, 1, 1e-4) << row.from << " to " << row.to;
      EXPECT_DOUBLE_EQ(value, 50 * factor);
    } else {
      EXPECT_EQ(value, -1) << row.from << " to " << row.to;
    }
  }
  double value = 0, factor = 0;
  EXPECT_TRUE(converter.Convert2(3, "1800 ppm Sm2O3", "Sm %", value, factor));
  EXPECT_NEAR(value, 0.15523, 1e-5);
  EXPECT_FALSE(converter.Convert2(3, "ppm Sm2O3", "Sm %", value, factor));
  EXPECT_FALSE(converter.Convert2(2, "1 % Si", "SiO2 %", value, factor));
  EXPECT_FALSE(converter.Convert2(3, "Si", "SiO2", 1e308, value, factor) && std::isinf(value));
}

TEST(CompoundConverter, FormOfAReadValue) {
  const CompoundConverter converter;
  double value = 2;
  EXPECT_TRUE(converter.ConvertForm("Si", "SiO2", 10000, value));
  EXPECT_NEAR(value, 42786.7, 0.1);
  value = 2;
  EXPECT_FALSE(converter.ConvertForm("LOI", "SiO2", 10000, value));
  EXPECT_EQ(value, 20000);
}

TEST(CompoundConverter, HeadingsBecomeItems) {
  const CompoundConverter converter;
  const struct {
    const char* heading;
    const char* formula;
    const char* symbol;
    const char* method;
    const char* unit;
    bool oxide;
  } rows[] = {
      {"Fe2O3_XRF (wt%)", "Fe2O3", "Fe", "XRF", "%", true},
      {"Cu, ppm", "Cu", "Cu", "", "ppm", false},
      {"Au/FA g/t", "Au", "Au", "FA", "g/t", false},
      {"SiO2 [%]", "SiO2", "Si", "", "%", true},
      {"Zn%", "Zn", "Zn", "", "%", false},
      {"H2O", "H2O", "H", "", "", true},
      {"CaCO3 wt.%", "CaCO3", "Ca", "", "%", false},
      {"S MG/L", "S", "S", "", "mg/l", false},
  };
  for (const auto& row : rows) {
    HeadingItem item;
    EXPECT_TRUE(converter.ConvertText(row.heading, item)) << row.heading;
    EXPECT_EQ(item.formula, row.formula) << row.heading;
    EXPECT_EQ(item.symbol, row.symbol) << row.heading;
    EXPECT_EQ(item.method, row.method) << row.heading;
    EXPECT_EQ(item.unit, row.unit) << row.heading;
    EXPECT_EQ(item.isOxide, row.oxide) << row.heading;
  }
  for (const char* heading :
       {"", "Sample No", "No", "LOI %", "Fe total iron %", "%", "(ppm)", "Depth m"}) {
    HeadingItem item;
    item.formula = "old";
    EXPECT_FALSE(converter.ConvertText(heading, item)) << heading;
    EXPECT_EQ(item.formula, "") << heading;
  }
}

TEST(StructuralFormula, OlivineOnFourOxygens) {
  std::vector<std::pair<std::string, double>> cations;
  ASSERT_TRUE(CationsPerOxygens({{"SiO2", 34.96}, {"FeO", 36.77}, {"MnO", 0.52}, {"MgO", 27.04}}, 4,
                                cations));
  const std::pair<const char*, double> expected[] = {
      {"Si", 0.989}, {"Fe", 0.870}, {"Mn", 0.0125}, {"Mg", 1.140}};
  ASSERT_EQ(cations.size(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(cations[i].first, expected[i].first);
    EXPECT_NEAR(cations[i].second, expected[i].second, 0.0005);
  }
}

TEST(StructuralFormula, RefusesWhatHasNoCations) {
  using Analysis = std::vector<std::pair<std::string, double>>;
  for (const Analysis& analysis :
       {Analysis{}, Analysis{{"SiO2", 0}}, Analysis{{"SiO2", -1}}, Analysis{{"S", 1}},
        Analysis{{"CaCO3", 1}}, Analysis{{"SiO2", NAN}}, Analysis{{"O2", 1}}}) {
    Analysis cations{{"old", 1}};
    EXPECT_FALSE(CationsPerOxygens(analysis, 4, cations));
    EXPECT_TRUE(cations.empty());
  }
  Analysis cations;
  EXPECT_FALSE(CationsPerOxygens({{"SiO2", 50}}, 0, cations));
}

}  // namespace
}  // namespace lodex
