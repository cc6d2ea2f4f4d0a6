// Rules of the norm one by one: where minor oxides go, and how Middlemost's ratios follow the rock.

#include <gtest/gtest.h>

#include "calc/ShippedMethod.h"

namespace lodex {
namespace {

// Saturated and rich in everything that minor minerals ask for; 100 per cent.
const Analysis rock = {{"SiO2", 60}, {"TiO2", 1}, {"Al2O3", 15}, {"Fe2O3", 2}, {"FeO", 5},
                       {"MgO", 4},   {"CaO", 6},  {"Na2O", 4},   {"K2O", 3}};

double moles(double mass, const std::string& formula) {
  return mass / molarMass(formula);
}

struct Rule {
  const char* name;
  Analysis analysis;  // in place of, or beside, the oxides of the rock
  Analysis minerals;  // in grams, from the grams of the analysis
};

TEST(CipwRules, GiveMinorOxidesTheirMinerals) {
  const double p = moles(1, "P2O5");
  const double apatite = 1 + p * 10 / 3 * molarMass("CaO");
  const double fluorine = molarMass("F") - molarMass("O") / 2;  // in place of oxygen
  const double feldspar = molarMass("Al2O3") + 6 * molarMass("SiO2");
  const double chromium = moles(.3, "Cr2O3") + moles(.1, "V2O3");
  const Rule rules[] = {
      {"zirconium in zircon", {{"ZrO2", .2}}, {{"Z", moles(.2, "ZrO2") * molarMass("ZrSiO4")}}},
      {"phosphorus in apatite", {{"P2O5", 1}}, {{"Ap", apatite}, {"Unassigned", 0}}},
      {"phosphorus beyond lime stays",
       {{"P2O5", 1}, {"CaO", .7}},
       {{"Ap", .7 + moles(.7, "CaO") * .3 * molarMass("P2O5")},
        {"An", 0},
        {"Unassigned", 1 - moles(.7, "CaO") * .3 * molarMass("P2O5")}}},
      {"little fluorine goes into apatite",
       {{"P2O5", 1}, {"F", .05}},
       {{"Ap", apatite + moles(.05, "F") * fluorine},
        {"Fluorite", 0},
        {"Free oxygen", moles(.05, "F") / 2 * molarMass("O")}}},
      {"more fluorine makes fluorite",
       {{"P2O5", 1}, {"F", .5}},
       {{"Ap", apatite + p * 2 / 3 * fluorine},
        {"Fluorite", (moles(.5, "F") - p * 2 / 3) / 2 * molarMass("CaF2")},
        {"Free oxygen", moles(.5, "F") / 2 * molarMass("O")}}},
      {"fluorine alone makes fluorite",
       {{"F", .5}},
       {{"Fluorite", moles(.5, "F") / 2 * molarMass("CaF2")}}},
      {"fluorine beyond lime stays",
       {{"F", .5}, {"CaO", .2}},
       {{"Fluorite", moles(.2, "CaO") * molarMass("CaF2")},
        {"Unassigned", .5 - moles(.2, "CaO") * 2 * molarMass("F")}}},
      {"chlorine in halite",
       {{"Cl", .4}},
       {{"Hl", moles(.4, "Cl") * molarMass("NaCl")},
        {"Ab", (moles(4, "Na2O") - moles(.4, "Cl") / 2) * (molarMass("Na2O") + feldspar)},
        {"Free oxygen", moles(.4, "Cl") / 2 * molarMass("O")}}},
      {"chlorine without soda stays", {{"Cl", .4}, {"Na2O", 0}}, {{"Hl", 0}, {"Unassigned", .4}}},
      {"sulphate in thenardite",
       {{"SO3", .6}},
       {{"Thenardite", moles(.6, "SO3") * molarMass("Na2SO4")},
        {"Ab", (moles(4, "Na2O") - moles(.6, "SO3")) * (molarMass("Na2O") + feldspar)}}},
      {"halite before thenardite",
       {{"Cl", .4}, {"SO3", .6}, {"Na2O", .5}},
       {{"Hl", moles(.4, "Cl") * molarMass("NaCl")},
        {"Thenardite", (moles(.5, "Na2O") - moles(.4, "Cl") / 2) * molarMass("Na2SO4")},
        {"Ab", 0}}},
      {"sulphide in pyrite",
       {{"S", .5}},
       {{"Pyrite", moles(.5, "S") / 2 * molarMass("FeS2")},
        {"Free oxygen", moles(.5, "S") / 2 * molarMass("O")},
        {"Thenardite", 0}}},
      {"pyrite before chromite and ilmenite",
       {{"S", 6}, {"FeO", 5}, {"Cr2O3", .3}},
       {{"Pyrite", moles(5, "FeO") * molarMass("FeS2")},
        {"Chromite", 0},
        {"Il", 0},
        {"Mt", 0},
        {"Hm", 2},
        {"Unassigned", .3 + 6 - moles(5, "FeO") * 2 * molarMass("S")}}},
      {"carbon dioxide in calcite",
       {{"CO2", 1}},
       {{"Cc", moles(1, "CO2") * molarMass("CaCO3")}, {"Nc", 0}}},
      {"carbon dioxide beyond lime stays",
       {{"CO2", 6}},
       {{"Cc", moles(6, "CaO") * molarMass("CaCO3")},
        {"Di", 0},
        {"An", 0},
        {"Unassigned", 6 - moles(6, "CaO") * molarMass("CO2")}}},
      {"chromium with vanadium in chromite",
       {{"Cr2O3", .3}, {"V2O3", .1}},
       {{"Chromite", .4 + chromium * molarMass("FeO")},
        {"Mt", moles(2, "Fe2O3") * (molarMass("Fe2O3") + molarMass("FeO"))}}},
      {"rubidium and caesium count with potassium",
       {{"Rb2O", .1}, {"Cs2O", .05}},
       {{"Or", 3.15 + (moles(3, "K2O") + moles(.1, "Rb2O") + moles(.05, "Cs2O")) * feldspar}}},
      {"lithium counts with sodium",
       {{"Li2O", .1}},
       {{"Ab", 4.1 + (moles(4, "Na2O") + moles(.1, "Li2O")) * feldspar}}},
      {"barium and strontium count with calcium",
       {{"BaO", .3}, {"SrO", .2}, {"CO2", 6}},
       {{"Cc", 6.5 + (moles(6, "CaO") + moles(.3, "BaO") + moles(.2, "SrO")) * molarMass("CO2")}}},
      {"manganese, nickel and cobalt count with iron",
       {{"MnO", .5}, {"NiO", .3}, {"CoO", .1}, {"FeO", 0}, {"Fe2O3", 0}, {"TiO2", 3}},
       {{"Il", .9 + (moles(.5, "MnO") + moles(.3, "NiO") + moles(.1, "CoO")) * molarMass("TiO2")}}},
  };
  ShippedMethod norm("ROCK/CIPW");
  for (const Rule& rule : rules) {
    SCOPED_TRACE(rule.name);
    Analysis analysis = rule.analysis;
    analysis.insert(rock.begin(), rock.end());
    analysis["Oxidation"] = 1;
    double total = -1;
    for (const auto& [oxide, percent] : analysis) total += percent;
    norm.calculate(analysis);
    for (const auto& [mineral, grams] : rule.minerals) {
      EXPECT_NEAR(norm.number(mineral), grams * 100 / total, 1e-5) << mineral;
    }
    EXPECT_NEAR(norm.number("Norm sum") + norm.number("Free oxygen") + norm.number("Unassigned"),
                100, 1e-9);
  }
}

TEST(CipwRules, NormaliseMinorOxidesAsTold) {
  Analysis analysis = {{"ZrO2", .2}, {"BaO", .3}, {"Oxidation", 1}};
  for (const auto& [oxide, percent] : rock) analysis[oxide] = percent * .9;
  const double zircon = moles(.2, "ZrO2") * molarMass("ZrSiO4");
  ShippedMethod norm("ROCK/CIPW");
  norm.calculate(analysis);
  EXPECT_NEAR(norm.number("Z"), zircon * 100 / 90.5, 1e-5);
  norm.choose("Choices", "Minor oxides", 2, 1);
  norm.calculate(analysis);
  EXPECT_NEAR(norm.number("Z"), zircon * 100 / 100.5, 1e-5);
  const double orthoclase = moles(3, "K2O") * 2 * molarMass("KAlSi3O8");
  EXPECT_NEAR(norm.number("Or"), orthoclase * 100 / 100.5, 1e-5);
  EXPECT_NEAR(norm.number("Norm sum"), 100, 1e-9);
}

TEST(CipwRules, FollowMiddlemostByRockType) {
  struct Field {
    const char* name;
    double silica, alkalis, ratio;
  };
  const Field fields[] = {
      {"foidite, few alkalis", 40, 2, .15},
      {"foidite", 40, 5, .2},
      {"foidite beside basanite", 44, 9, .3},
      {"foidite, many alkalis", 45, 12, .4},
      {"picrobasalt", 43, 2, .15},
      {"basanite", 43, 5, .2},
      {"basanite, more alkalis", 43, 7, .3},
      {"tephrite", 46, 5.8, .2},
      {"phonotephrite", 50, 9, .35},
      {"tephriphonolite", 54, 11, .4},
      {"phonolite", 58, 14, .5},
      {"basalt", 50, 3, .2},
      {"basaltic andesite", 55, 4, .3},
      {"andesite", 60, 5, .35},
      {"dacite", 66, 5, .4},
      {"rhyolite", 74, 8, .5},
      {"rhyolite, few alkalis", 76, 4, .5},
      {"trachybasalt", 49, 6, .3},
      {"basaltic trachyandesite", 53, 7, .35},
      {"trachyandesite", 57, 8, .4},
      {"trachyte", 65, 11, .5},
  };
  ShippedMethod norm("ROCK/CIPW");
  for (const Field& field : fields) {
    SCOPED_TRACE(field.name);
    // Half as much of everything, and water: the fields are those of the water-free rock.
    Analysis analysis = {{"SiO2", field.silica / 2},
                         {"Na2O", field.alkalis / 4},
                         {"K2O", field.alkalis / 4},
                         {"FeOtot", 2},
                         {"CaO", (96 - field.silica - field.alkalis) / 2},
                         {"Oxidation", 5}};
    norm.calculate(analysis);
    EXPECT_NEAR(norm.number("Norm Fe2O3") / norm.number("Norm FeO"), field.ratio, 1e-9);
    // Analysed states make no difference to it, but the total stays.
    analysis.erase("FeOtot");
    analysis["FeO"] = 2 - .5 * .899808502;
    analysis["Fe2O3"] = .5;
    norm.calculate(analysis);
    EXPECT_NEAR(norm.number("Norm Fe2O3") / norm.number("Norm FeO"), field.ratio, 1e-9);
  }
}

}  // namespace
}  // namespace lodex
