#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>

#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/CompoundConverter.h"
#include "chem/ReferenceTables.h"
#include "modal/MineralData.h"
#include "modal/MineralDatabase.h"
#include "modal/TabbedText.h"

namespace lodex {
namespace {

const std::string kData = std::string(LODEX_SOURCE_DIR) + "/data";

struct Mineral {
  std::string id, symbol, name, formula, location;
  double density = 0;
  std::vector<CompoundElement> elements;
};

const std::vector<Mineral>& minerals() {
  static const std::vector<Mineral> all = [] {
    const TabbedText text(kData + "/minerals/minerals.txt");
    const CompoundConverter converter;
    std::vector<Mineral> rows;
    for (int r = 0; r < text.recordCount(); ++r) {
      const auto cell = [&](std::string_view heading) {
        return text.cell(r, text.required(heading));
      };
      Mineral mineral{cell("MineralID"),
                      cell("MinSymbol"),
                      cell("Mineral"),
                      cell("Formula"),
                      cell("Location"),
                      numberOf(cell("Density")),
                      {}};
      if (!converter.SolveCompound(mineral.formula, mineral.elements)) {
        ADD_FAILURE() << mineral.symbol << ": " << mineral.formula << " is not a formula";
      }
      rows.push_back(std::move(mineral));
    }
    return rows;
  }();
  return all;
}

const Mineral* mineralOf(std::string_view symbol) {
  for (const auto& mineral : minerals()) {
    if (mineral.symbol == symbol) return &mineral;
  }
  return nullptr;
}

const taulukot& reference() {
  static const taulukot tables = [] {
    taulukot t;
    t.load(kData + "/reference");
    return t;
  }();
  return tables;
}

TEST(ShippedMinerals, RowsCanBeToldApart) {
  EXPECT_GE(minerals().size(), 250U);
  std::set<int> ids;
  std::set<std::string> symbols, places;
  for (const auto& m : minerals()) {
    SCOPED_TRACE(m.id + " " + m.symbol);
    const auto id = parseInteger(m.id);
    ASSERT_TRUE(id && *id > 0);
    EXPECT_TRUE(ids.insert(*id).second);
    EXPECT_TRUE(symbols.insert(toLower(m.symbol)).second);
    EXPECT_TRUE(places.insert(m.name + "|" + m.location).second) << "same mineral and location";
    EXPECT_TRUE(m.density > 0.5 && m.density < 25) << m.density;
  }
}

// A symbol heads a result column and is part of identifiers, between slashes, and calculations.
TEST(ShippedMinerals, SymbolsServeAsHeadingsAndInCalculations) {
  const CompoundConverter converter;
  for (const auto& m : minerals()) {
    SCOPED_TRACE(m.symbol);
    ASSERT_FALSE(m.symbol.empty());
    EXPECT_TRUE(std::isupper(static_cast<unsigned char>(m.symbol[0])));
    for (const char c : m.symbol) EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(c))) << c;
    EXPECT_FALSE(converter.IsCompound(m.symbol)) << "reads as a formula";
  }
}

// Theoretical compositions as mineralogical handbooks print them, weight per cent.
TEST(ShippedMinerals, CompositionsAgreeWithTheHandbooks) {
  const struct {
    const char *symbol, *element, *oxide;
    double percent;
  } cases[] = {
      {"Ccp", "Cu", "Cu", 34.63},    {"Py", "S", "S", 53.45},       {"Gn", "Pb", "Pb", 86.60},
      {"Sp", "Zn", "Zn", 67.10},     {"Apy", "As", "As", 46.01},    {"Bn", "Cu", "Cu", 63.31},
      {"Ttr", "Sb", "Sb", 29.64},    {"Mag", "Fe", "Fe", 72.36},    {"Ilm", "Ti", "TiO2", 52.65},
      {"Chr", "Cr", "Cr2O3", 67.90}, {"Sch", "W", "WO3", 80.53},    {"Gp", "H", "H2O", 20.93},
      {"Cal", "C", "CO2", 43.97},    {"Fap", "P", "P2O5", 42.22},   {"Zrn", "Zr", "ZrO2", 67.22},
      {"Alm", "Al", "Al2O3", 20.48}, {"Ttn", "Ca", "CaO", 28.60},   {"Ep", "Si", "SiO2", 37.30},
      {"Ms", "K", "K2O", 11.82},     {"Kln", "Al", "Al2O3", 39.50}, {"Tlc", "Si", "SiO2", 63.37},
      {"Mcc", "K", "K2O", 16.92},    {"An", "Ca", "CaO", 20.16},    {"Nph", "Na", "Na2O", 15.91},
      {"Tr", "Mg", "MgO", 24.81},    {"Phl", "Mg", "MgO", 28.98},   {"Jrs", "S", "SO3", 31.97},
      {"Pl100", "Ca", "CaO", 20.16}, {"Ol50", "Si", "SiO2", 34.92}, {"Opx100", "Mg", "MgO", 40.15},
  };
  const CompoundConverter converter;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.symbol);
    const Mineral* mineral = mineralOf(c.symbol);
    ASSERT_NE(mineral, nullptr);
    double percent = 0;
    for (const auto& e : mineral->elements) {
      if (e.symbol != c.element) continue;
      double value = 0, factor = 0;
      ASSERT_TRUE(converter.Convert2(3, c.element, c.oxide, 100 * e.massFraction, value, factor));
      percent = value;
    }
    // 0.2 for elements that the ideal formula of a handbook distributes a little differently
    EXPECT_NEAR(percent, c.percent, 0.2);
  }
}

// A slip in a silicate's or oxide's formula shows as a charge that no oxidation states can balance.
TEST(ShippedMinerals, OxygenMineralsAreElectricallyNeutral) {
  const std::map<std::string, std::pair<int, int>> states = {
      {"H", {1, 1}},  {"Li", {1, 1}},  {"Be", {2, 2}},  {"B", {3, 3}},  {"C", {4, 4}},
      {"N", {-3, 5}}, {"O", {-2, -2}}, {"F", {-1, -1}}, {"Na", {1, 1}}, {"Mg", {2, 2}},
      {"Al", {3, 3}}, {"Si", {4, 4}},  {"P", {5, 5}},   {"S", {-2, 6}}, {"Cl", {-1, -1}},
      {"K", {1, 1}},  {"Ca", {2, 2}},  {"Ti", {4, 4}},  {"V", {3, 5}},  {"Cr", {3, 6}},
      {"Mn", {2, 4}}, {"Fe", {2, 3}},  {"Co", {2, 2}},  {"Ni", {2, 2}}, {"Cu", {1, 2}},
      {"Zn", {2, 2}}, {"As", {3, 5}},  {"Sr", {2, 2}},  {"Y", {3, 3}},  {"Zr", {4, 4}},
      {"Nb", {5, 5}}, {"Mo", {6, 6}},  {"Sn", {4, 4}},  {"Sb", {3, 5}}, {"Ba", {2, 2}},
      {"La", {3, 3}}, {"Ce", {3, 3}},  {"Ta", {5, 5}},  {"W", {6, 6}},  {"Pb", {2, 4}},
      {"Th", {4, 4}}, {"U", {4, 6}}};
  int checked = 0;
  for (const auto& m : minerals()) {
    double low = 0, high = 0, oxygen = 0;
    bool known = true;
    for (const auto& e : m.elements) {
      const auto state = states.find(e.symbol);
      if (state == states.end()) {
        known = false;
        break;
      }
      low += e.atoms * state->second.first;
      high += e.atoms * state->second.second;
      if (e.symbol == "O") oxygen = e.atoms;
    }
    if (!known || oxygen == 0) continue;
    ++checked;
    EXPECT_TRUE(low < 1e-6 && high > -1e-6)
        << m.symbol << " " << m.formula << ": charge between " << low << " and " << high;
  }
  EXPECT_GT(checked, 400);
}

TEST(ShippedMinerals, PhasesAreCompleteAndKnowTheirFields) {
  const TabbedText phases(kData + "/minerals/phases.txt");
  std::set<std::string> fields, ids;
  for (int row = 1; row <= reference().F1ELoc.LastRow(); ++row) {
    fields.insert(reference().F1ELoc.TextRC(row, eloc::PhaseField));
  }
  for (const auto& m : minerals()) ids.insert(m.id);
  for (int r = 0; r < phases.recordCount(); ++r) {
    const std::string symbol = phases.cell(r, phases.required("PhaseSymbol"));
    SCOPED_TRACE(symbol);
    // A number that a mineral has too would make the calculation take one for the other.
    EXPECT_TRUE(ids.insert(phases.cell(r, phases.required("PCID"))).second);
    EXPECT_EQ(mineralOf(symbol), nullptr);
    double total = 0;
    for (size_t c = 4; c < phases.headings().size(); ++c) {
      EXPECT_TRUE(fields.count(phases.headings()[c])) << phases.headings()[c];
      total += numberOf(phases.cell(r, static_cast<int>(c)));
    }
    EXPECT_TRUE(symbol == "Rest" || std::abs(total - 99.7) < 1.5) << total;
  }
}

TEST(ShippedMinerals, DissolutionRowsBelongToMinerals) {
  const TabbedText rows(kData + "/minerals/dissolution.txt");
  std::map<std::string, std::string> symbolOf;
  for (const auto& m : minerals()) symbolOf[m.id] = m.symbol;
  std::set<std::string> seen;
  for (int r = 0; r < rows.recordCount(); ++r) {
    const auto cell = [&](std::string_view heading) {
      return rows.cell(r, rows.required(heading));
    };
    SCOPED_TRACE(rows.place(r));
    const std::string id = cell("MineralID"), symbol = cell("MinSymbol");
    const bool isDefault = symbol == "000" || symbol == "D00";
    EXPECT_EQ(isDefault, id == "0");
    EXPECT_TRUE(isDefault || symbolOf[id] == symbol) << symbolOf[id];
    EXPECT_TRUE(seen.insert(cell("Method") + "|" + symbol).second) << "twice";
    const auto fraction = parseNumber(cell("FractionExtracted"));
    EXPECT_TRUE(fraction && *fraction >= 0 && *fraction <= 1);
  }
}

TEST(ShippedMinerals, BuildADatabaseWithoutWarnings) {
  const auto target = std::filesystem::temp_directory_path() /
                      ("lodex_shipped_" + std::to_string(::getpid()) + ".mdb");
  const std::string folder = kData + "/minerals";
  const MineralDatabaseReport report = buildMineralDatabase(
      {folder + "/minerals.txt", folder + "/phases.txt", folder + "/dissolution.txt"},
      reference().F1ELoc, pathText(target));
  std::filesystem::remove(target);
  EXPECT_EQ(report.compositions, static_cast<int>(minerals().size()));
  EXPECT_THAT(report.warnings, testing::IsEmpty());
}

// Set-ups name minerals by number and elements by row: both must still be what their texts say.
TEST(ShippedExamples, SetUpsReferToTheirMineralsAndElements) {
  const TabbedText phases(kData + "/minerals/phases.txt");
  std::map<std::string, std::string> known;
  for (const auto& m : minerals()) known["M/" + m.id] = m.symbol;
  for (int r = 0; r < phases.recordCount(); ++r)
    known["P/" + phases.cell(r, 0)] = phases.cell(r, 1);
  for (const char* name : {"ore.mmq", "granite.mmq", "gabbro.mmq"}) {
    SCOPED_TRACE(name);
    const auto lines = split(readFile(kData + "/examples/" + name), "\n");
    std::set<std::string> listed, used;
    for (size_t line = 1; line < lines.size(); ++line) {
      const bool equations = line >= 2 && line % 3 == 0;
      const bool minerals = line == 1 || (line >= 2 && line % 3 == 2);
      for (const auto& item : split(lines[line], "\t")) {
        SCOPED_TRACE(item);
        if (minerals && !item.empty()) {
          std::string kind, symbol, id;
          ParseMineralID(item, kind, symbol, id);
          EXPECT_EQ(known[kind + "/" + id], symbol);
          (line == 1 ? listed : used).insert(item);
        } else if (equations && !item.starts_with("###")) {
          const size_t open = item.find(" ("), close = item.find(") / ");
          ASSERT_TRUE(open != std::string::npos && close != std::string::npos);
          const auto row = parseInteger(item.substr(open + 2, close - open - 2));
          ASSERT_TRUE(row.has_value());
          EXPECT_EQ(reference().F1ELoc.TextRC(*row, eloc::Form), item.substr(0, open) + " %");
        }
      }
    }
    EXPECT_EQ(listed, used);
  }
}

}  // namespace
}  // namespace lodex
