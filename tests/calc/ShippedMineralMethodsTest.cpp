// The method workbooks of the groups MINERAL, MISCE and Ni-SURVEY.

#include <gtest/gtest.h>

#include <cmath>

#include "calc/ShippedMethod.h"
#include "chem/Elements.h"

namespace lodex {
namespace {

struct Cation {
  const char* oxide;
  double mass;  // of the oxide, for one cation
};

const std::map<std::string, Cation> cations = {
    {"nSi", {"SiO2", 60.0843}},  {"nTi", {"TiO2", 79.8658}},   {"nAl", {"Al2O3", 50.98064}},
    {"nCr", {"Cr2O3", 75.9952}}, {"nFe3", {"Fe2O3", 79.8441}}, {"nFe2", {"FeO", 71.8444}},
    {"nMn", {"MnO", 70.937445}}, {"nMg", {"MgO", 40.3044}},    {"nCa", {"CaO", 56.0774}},
    {"nNa", {"Na2O", 30.98947}}, {"nK", {"K2O", 47.098}},      {"nNi", {"NiO", 74.6928}},
    {"nZn", {"ZnO", 81.3794}},   {"nBa", {"BaO", 153.3264}}};

enum class Iron { AsAnalysed, AllAsFeO };

// The analysis that a formula makes, with all iron as FeO where a microprobe would give it so.
Analysis analysisOf(const Analysis& formula, Iron iron) {
  Analysis analysis;
  double sum = 0;
  for (const auto& [ion, atoms] : formula) {
    const bool reduced = iron == Iron::AllAsFeO && ion == "nFe3";
    const Cation& cation = cations.at(reduced ? "nFe2" : ion);
    analysis[cation.oxide] += atoms * cation.mass;
    sum += atoms * cation.mass;
  }
  for (auto& [oxide, percent] : analysis) percent *= 98 / sum;
  return analysis;
}

struct Formula {
  const char* name;
  const char* method;
  Iron iron;
  Analysis atoms;
  Analysis results;
};

TEST(MineralFormulaTest, GivesBackTheFormulaOfAnIdealAnalysis) {
  const Formula formulas[] = {
      {"olivine Fo90",
       "OLIVINE",
       Iron::AllAsFeO,
       {{"nSi", 1}, {"nMg", 1.79}, {"nFe2", .2}, {"nNi", .01}},
       {{"Fo", 89.5}, {"Fa", 10}, {"Liebenbergite", .5}, {"Fo number", 89.949749}}},
      {"acmite, probed",
       "PYROXENE",
       Iron::AllAsFeO,
       {{"nSi", 2}, {"nNa", 1}, {"nFe3", 1}},
       {{"Aegirine", 100}, {"nFe2", 0}}},
      {"omphacite, probed",
       "PYROXENE",
       Iron::AllAsFeO,
       {{"nSi", 2}, {"nNa", .5}, {"nCa", .5}, {"nAl", .4}, {"nFe3", .1}, {"nMg", .4}, {"nFe2", .1}},
       {{"Jd", 40}, {"Aegirine", 10}, {"Di", 40}, {"Hd", 10}}},
      {"augite with ferric iron analysed",
       "PYROXENE",
       Iron::AsAnalysed,
       {{"nSi", 1.9}, {"nAl", .15}, {"nFe3", .05}, {"nCa", .8}, {"nMg", .9}, {"nFe2", .2}},
       {{"nAl IV", .1},
        {"nAl VI", .05},
        {"Tschermakite", 5},
        {"Esseneite", 5},
        {"Mg#", 81.818182},
        {"Wo quad", 41.025641}}},
      {"enstatite",
       "PYROXENE",
       Iron::AllAsFeO,
       {{"nSi", 2}, {"nMg", 1.6}, {"nFe2", .4}},
       {{"En", 80}, {"Fs", 20}, {"Fs quad", 20}}},
      {"labradorite",
       "FELDSPAR",
       Iron::AsAnalysed,
       {{"nSi", 2.4}, {"nAl", 1.6}, {"nCa", .6}, {"nNa", .38}, {"nK", .02}},
       {{"An", 60}, {"Ab", 38}, {"Or", 2}, {"Cations", 5}}},
      {"andradite, probed",
       "GARNET",
       Iron::AllAsFeO,
       {{"nSi", 3}, {"nCa", 3}, {"nFe3", 2}},
       {{"Adr", 100}, {"Grs", 0}, {"Alm", 0}}},
      {"garnet of an eclogite, probed",
       "GARNET",
       Iron::AllAsFeO,
       {{"nSi", 3}, {"nAl", 1.8}, {"nFe3", .2}, {"nMg", 1.2}, {"nFe2", 1.2}, {"nCa", .6}},
       {{"Prp", 40}, {"Alm", 40}, {"Adr", 10}, {"Grs", 10}, {"Mg#", 50}}},
      {"magnetite, probed",
       "SPINEL",
       Iron::AllAsFeO,
       {{"nFe3", 2}, {"nFe2", 1}},
       {{"Ferric of iron", 66.666667}}},
      {"titanomagnetite, probed",
       "SPINEL",
       Iron::AllAsFeO,
       {{"nFe3", 1.2}, {"nFe2", 1.4}, {"nTi", .4}},
       {{"Usp", 40}}},
      {"chromite, probed",
       "SPINEL",
       Iron::AllAsFeO,
       {{"nCr", 1.2}, {"nAl", .6}, {"nFe3", .2}, {"nMg", .6}, {"nFe2", .4}},
       {{"Cr#", 66.666667}, {"Mg#", 60}, {"Ferric part", 10}}},
      {"biotite",
       "BIOTITE",
       Iron::AllAsFeO,
       {{"nK", 2}, {"nMg", 3}, {"nFe2", 2.5}, {"nAl", 3}, {"nSi", 5.5}},
       {{"nAl IV", 2.5}, {"nAl VI", .5}, {"Site M", 6}, {"Site I", 2}, {"nOH", 4}}},
      {"hornblende, probed",
       "AMPHIBOLE",
       Iron::AllAsFeO,
       {{"nSi", 6.8},
        {"nAl", 1.6},
        {"nFe3", .8},
        {"nMg", 3},
        {"nFe2", .8},
        {"nCa", 1.8},
        {"nNa", .3},
        {"nK", .1}},
       {{"nAl IV", 1.2},
        {"nAl VI", .4},
        {"Site C", 5},
        {"Site B", 2},
        {"nNa B", .2},
        {"Site A", .2}}},
      {"glaucophane",
       "AMPHIBOLE",
       Iron::AsAnalysed,
       {{"nSi", 8}, {"nAl", 1.4}, {"nFe3", .6}, {"nMg", 2}, {"nFe2", 1}, {"nNa", 2}},
       {{"nNa B", 2}, {"Site A", 0}}},
  };
  for (const Formula& formula : formulas) {
    SCOPED_TRACE(formula.name);
    ShippedMethod method(std::string("MINERAL/") + formula.method);
    method.calculate(analysisOf(formula.atoms, formula.iron));
    for (const auto& [ion, atoms] : formula.atoms) {
      EXPECT_NEAR(method.number(ion), atoms, 1e-4) << ion;
    }
    for (const auto& [name, value] : formula.results) {
      EXPECT_NEAR(method.number(name), value, value > 9 ? 0.02 : 2e-3) << name;
    }
    EXPECT_EQ(method.text("Remark"), "");
  }
}

// Ferric iron after Droop (1987): the cations are as many as they ought to be, the charges balance
// the oxygens, and no iron gets lost. Where all iron does not suffice, all of it is ferric.
TEST(MineralFormulaTest, BalancesCharges) {
  struct Mineral {
    const char* method;
    double oxygens, cations;
    const char* large;  // ions that do not count among the cations
    Analysis formula;
  };
  const Mineral minerals[] = {
      {"PYROXENE", 6, 4, "", {{"nSi", 1.8}, {"nAl", .2}, {"nMg", .8}, {"nCa", .8}, {"nFe2", .4}}},
      {"GARNET", 12, 8, "", {{"nSi", 2.9}, {"nAl", 1.9}, {"nMg", .8}, {"nCa", .6}, {"nFe2", 1.8}}},
      {"SPINEL", 4, 3, "", {{"nTi", .1}, {"nCr", .8}, {"nAl", .5}, {"nMg", .5}, {"nFe2", 1.1}}},
      {"AMPHIBOLE",
       23,
       13,
       "nCa nNa nK",
       {{"nSi", 6.5}, {"nAl", 1.9}, {"nMg", 2.8}, {"nFe2", 1.9}, {"nCa", 1.9}, {"nNa", .5}}},
  };
  const std::map<std::string, int> charges = {{"nSi", 4}, {"nTi", 4},  {"nAl", 3},
                                              {"nCr", 3}, {"nFe3", 3}, {"nFe2", 2},
                                              {"nMg", 2}, {"nCa", 2},  {"nNa", 1}};
  for (const Mineral& mineral : minerals) {
    SCOPED_TRACE(mineral.method);
    ShippedMethod method(std::string("MINERAL/") + mineral.method);
    const Analysis analysis = analysisOf(mineral.formula, Iron::AllAsFeO);
    method.calculate(analysis);
    double charge = 0, cations = 0;
    for (const auto& [ion, atoms] : mineral.formula) {
      charge += charges.at(ion) * method.number(ion);
      const bool counts = std::string(mineral.large).find(ion) == std::string::npos;
      if (counts) cations += method.number(ion);
    }
    const double fe3 = method.number("nFe3");
    EXPECT_GT(fe3, .01);
    EXPECT_NEAR(charge + 3 * fe3, 2 * mineral.oxygens, 1e-9);
    EXPECT_NEAR(cations + fe3, mineral.cations, 1e-9);
    const auto ironOver = [&](const char* ion) {
      return (method.number("nFe2") + method.number("nFe3")) / method.number(ion);
    };
    EXPECT_NEAR(ironOver("nMg"), mineral.formula.at("nFe2") / mineral.formula.at("nMg"), 1e-6);
  }
}

TEST(MineralFormulaTest, LetsTheUserChooseTheIron) {
  ShippedMethod garnet("MINERAL/GARNET");
  const Analysis andradite = analysisOf({{"nSi", 3}, {"nCa", 3}, {"nFe3", 2}}, Iron::AllAsFeO);
  garnet.choose("Formula", "Ferric iron", 3, 3);
  garnet.calculate(andradite);
  EXPECT_EQ(garnet.number("nFe3"), 0);
  garnet.choose("Formula", "Ferric iron", 3, 4);
  garnet.calculate(andradite);
  EXPECT_NEAR(garnet.number("nFe3"), 2, 1e-4);
  EXPECT_EQ(garnet.number("nFe2"), 0);
  garnet.calculate({});
  EXPECT_EQ(garnet.text("Remark"), "no analysis");
  EXPECT_EQ(garnet.text("Alm"), "");
}

TEST(SulphidesTest, CountsAtoms) {
  ShippedMethod sulphides("MINERAL/SULFIDES");
  sulphides.calculate({{"Cu", 34.63}, {"Fe", 30.43}, {"S", 34.94}});
  EXPECT_NEAR(sulphides.number("at Cu"), 25, .01);
  EXPECT_NEAR(sulphides.number("(Fe/S)"), .5, 1e-3);
  sulphides.calculate({{"Co", 35.52}, {"As", 45.16}, {"S", 19.33}});
  EXPECT_NEAR(sulphides.number("Metal ratio"), .5, 1e-3);
  EXPECT_EQ(sulphides.text("(Fe/S)"), "0");
}

TEST(ConversionTest, OxidesAndElementsGoBothWays) {
  ShippedMethod toElements("MISCE/OXIDES"), toOxides("MISCE/ELEMENTS");
  toElements.calculate({{"SiO2", 60}, {"Fe2O3", 5}, {"FeO", 4}, {"P2O5", .3}});
  const double iron = 5 * 111.69 / 159.6882 + 4 * 55.845 / 71.8444;
  EXPECT_NEAR(toElements.number("Fe %"), iron, 1e-6);
  EXPECT_EQ(toElements.text("K %"), "");
  toOxides.calculate({{"Si", toElements.number("Si %")},
                      {"Fe", toElements.number("Fe %")},
                      {"P", toElements.number("P %")}});
  EXPECT_NEAR(toOxides.number("SiO2 %"), 60, 1e-5);
  EXPECT_NEAR(toOxides.number("P2O5 %"), .3, 1e-6);
  EXPECT_NEAR(toOxides.number("Fe2O3tot %"), iron * 159.6882 / 111.69, 1e-5);
}

TEST(RecalculationTest, DensityAndVolatileFree) {
  ShippedMethod density("MISCE/DENSITY");
  density.calculate({{"Quartz", 50}, {"Magnetite", 50}});
  EXPECT_NEAR(density.number("Density"), 100 / (50 / 2.65 + 50 / 5.2), 1e-12);
  EXPECT_EQ(density.text("Remark"), "");
  density.calculate({});
  EXPECT_EQ(density.text("Density"), "");
  ShippedMethod dry("MISCE/DRY");
  dry.calculate({{"SiO2", 45}, {"MgO", 36}, {"FeO", 5}, {"FeOtot", 9}, {"LOI", 10}});
  EXPECT_NEAR(dry.number("SiO2_DRY %"), 50, 1e-12);
  EXPECT_NEAR(dry.number("FeOtot_DRY %"), 10, 1e-12);
  EXPECT_NEAR(dry.number("Total with LOI"), 100, 1e-12);
}

TEST(NickelTest, SplitsByAssaysOrMagnesia) {
  struct Case {
    const char* name;
    Analysis analysis;
    double sulphide, silicate;
    const char* how;
  };
  const Case cases[] = {
      {"two assays", {{"Ni ppm", 2000}, {"Ni_BM ppm", 1400}, {"MgO", 30}}, 1400, 600, "two assays"},
      {"the same column twice",
       {{"Ni ppm", 2000}, {"Ni_BM ppm", 2000}, {"MgO", 20}},
       1000,
       1000,
       "from MgO"},
      {"not more silicate nickel than nickel", {{"Ni ppm", 500}, {"MgO", 40}}, 0, 500, "from MgO"},
      {"nothing known of silicates", {{"Ni ppm", 500}}, 500, 0, "all taken as sulphide"},
  };
  ShippedMethod nickel("Ni-SURVEY/NICKEL");
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    nickel.calculate(test.analysis);
    EXPECT_NEAR(nickel.number("Sulphide nickel"), test.sulphide, 1e-9);
    EXPECT_NEAR(nickel.number("Silicate nickel"), test.silicate, 1e-9);
    EXPECT_EQ(nickel.text("How"), test.how);
  }
  nickel.calculate({{"S", 1}});
  EXPECT_EQ(nickel.text("Sulphide nickel"), "");
}

}  // namespace
}  // namespace lodex
