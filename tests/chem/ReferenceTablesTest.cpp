#include "chem/ReferenceTables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <set>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "chem/CompoundConverter.h"
#include "chem/Elements.h"

namespace lodex {
namespace {

const std::string referenceFolder = std::string(LODEX_SOURCE_DIR) + "/data/reference";

class ReferenceTables : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    tables = new taulukot;
    tables->load(referenceFolder);
  }
  static void TearDownTestSuite() { delete tables; }

  static taulukot* tables;
  const CompoundConverter converter;

  // The factor from one form to another; NaN where they have none.
  double factorOf(std::string_view from, std::string_view to) const {
    double value = 0, factor = NAN;
    converter.Convert2(3, from, to, 1, value, factor);
    return factor;
  }
  // The formula of a column such as "FeOtot %".
  static std::string formulaOf(const std::string& column) {
    const std::string name = column.substr(0, column.find(' '));
    return name == "FeOtot" ? "FeO" : name;
  }
  // Factors are kept with four decimals.
  static void expectFactor(double kept, double exact, const std::string& name) {
    EXPECT_NEAR(kept, exact, 1e-4 * std::max(1.0, exact)) << name;
  }
  static std::string keyText(int sheet, int row, int column) {
    return tables->F1Key1.TextSRC(sheet, row, column);
  }
};
taulukot* ReferenceTables::tables = nullptr;

TEST_F(ReferenceTables, PeriodicTable) {
  const Worksheet& data = tables->F1Data;
  EXPECT_EQ(data.LastRow(), 141);
  EXPECT_EQ(data.LastCol(), 45);
  EXPECT_EQ(data.TextRC(1, 2), "Symbol");
  EXPECT_EQ(data.TextRC(1, 45), "Enthalpy of Formation at 298.15 K Gas kJ/mol");
  for (int n = 1; n <= 140; ++n) {
    const std::string symbol = data.TextRC(n + 1, 2);
    EXPECT_EQ(data.NumberRC(n + 1, 1), n);
    EXPECT_EQ(symbol.empty(), n >= 114 && n <= 119) << n;
    if (n <= 106) {
      EXPECT_EQ(symbol, ElementSymbols()[n]);
    }
    if (n > 103) continue;
    EXPECT_EQ(data.NumberRC(n + 1, 4), AtomicWeight(n)) << symbol;
  }
  const std::map<int, std::string> items = {
      {112, "Fe2"},         {113, "Fe3"},      {120, "MF"},       {121, "MF_CATIONS"},
      {123, "MF_FEREALLO"}, {125, "MF_SITE1"}, {133, "MF_SITE9"}, {134, "MF_O"},
      {138, "MF_H2O"},      {139, "MF_BO3"},   {140, "MF_NAME"}};
  for (const auto& [n, symbol] : items) EXPECT_EQ(data.TextRC(n + 1, 2), symbol);
  EXPECT_EQ(data.TextRC(27, 5), "+3");
}

// Typing mistakes show against what holds for all elements.
TEST_F(ReferenceTables, PropertiesArePlausible) {
  const Worksheet& data = tables->F1Data;
  for (int n = 1; n <= 103; ++n) {
    const int row = n + 1;
    const std::string symbol = data.TextRC(row, 2);
    const auto number = [&](int column) { return data.NumberRC(row, column); };
    const auto ordered = [&](int low, int high) {
      return number(low) == 0 || number(high) == 0 || number(low) < number(high);
    };
    // Arsenic melts only under pressure, above the temperature at which it sublimes.
    EXPECT_TRUE(ordered(9, 11) || symbol == "As") << symbol;
    EXPECT_TRUE(ordered(20, 21) && ordered(21, 22)) << symbol;
    EXPECT_LT(number(7), 23) << symbol;
    EXPECT_LE(number(12), 3.98) << symbol;
    EXPECT_NEAR(number(27), number(26) * number(4), number(27) * 1e-3) << symbol;
    const bool gas = data.TextRC(row, 32) == "gas";
    EXPECT_EQ(gas, number(11) > 0 && number(11) < 298.15) << symbol;
    // Electrons of the configuration add up to the atomic number.
    int electrons = 0;
    for (const std::string& part : split(data.TextRC(row, 8), " ")) {
      static const std::map<std::string, int> cores = {{"[He]", 2},  {"[Ne]", 10}, {"[Ar]", 18},
                                                       {"[Kr]", 36}, {"[Xe]", 54}, {"[Rn]", 86}};
      const auto core = cores.find(part);
      electrons += core != cores.end() ? core->second : std::stoi(part.substr(2));
    }
    EXPECT_EQ(electrons, n) << symbol;
  }
}

TEST_F(ReferenceTables, ValencesGiveTheOxidesOfTheLocationTable) {
  const Worksheet& elements = tables->F1El;
  ASSERT_EQ(elements.LastRow(), 104);
  EXPECT_EQ(elements.TextRC(1, 4), "at.weight");
  EXPECT_EQ(elements.TextRC(2, 4), "1.0079");
  for (int n = 1; n <= 103; ++n) {
    const std::string symbol = elements.TextRC(n + 1, 1);
    EXPECT_EQ(symbol, ElementSymbols()[n]);
    EXPECT_NEAR(elements.NumberRC(n + 1, 4), AtomicWeight(n), 0.00005001) << symbol;
    for (const int column : {2, 5, 7, 9, 11, 13}) {
      EXPECT_EQ(elements.HasContent(n + 1, column), elements.HasContent(n + 1, column + 1))
          << symbol << " column " << column;
    }
    if (n > 92) continue;
    std::vector<CompoundElement> oxide;
    const std::string formula = tables->F1ELoc.TextRC(n, eloc::Oxide);
    EXPECT_EQ(converter.SolveCompound(formula, oxide), elements.HasContent(n + 1, 2)) << symbol;
    if (oxide.empty()) continue;
    ASSERT_EQ(oxide.size(), 2u) << formula;
    EXPECT_EQ(oxide[0].symbol, symbol);
    EXPECT_EQ(oxide[0].atoms, elements.NumberRC(n + 1, 2)) << formula;
    EXPECT_EQ(oxide[1].atoms, elements.NumberRC(n + 1, 3)) << formula;
  }
}

TEST_F(ReferenceTables, FactorsOfTheLocationTableFollowFromAtomicWeights) {
  const Worksheet& table = tables->F1ELoc;
  ASSERT_EQ(table.LastRow(), 115);
  EXPECT_EQ(table.ColText(eloc::MulitEl), "MulitEl");
  std::set<std::string> names;
  for (int row = 1; row <= 115; ++row) {
    const std::string element = table.TextRC(row, eloc::Element);
    const std::string form = table.TextRC(row, eloc::Form);
    const bool ppm = form.ends_with(" ppm");
    EXPECT_EQ(table.NumberRC(row, eloc::Multiplier), ppm ? 10000 : 1) << element;
    for (const int column : {eloc::Element, eloc::Oxide, eloc::Oxide2}) {
      const std::string name = table.TextRC(row, column);
      EXPECT_TRUE(name.empty() || names.insert(name).second) << name << " stands twice";
    }
    if (row > 92) continue;
    EXPECT_EQ(element, ElementSymbols()[row]);
    const std::string target = formulaOf(form);
    const std::string column = form.substr(0, form.find(' ')) + " %";
    EXPECT_EQ(table.TextRC(row, eloc::MineralField), column);
    EXPECT_EQ(table.TextRC(row, eloc::PhaseField), column);
    EXPECT_EQ(table.TextRC(row, eloc::Table), ppm ? "SampleChemistry2" : "SampleChemistry>");
    expectFactor(table.NumberRC(row, eloc::MulitEl), factorOf(element, target), element);
    const std::pair<int, int> oxides[] = {{eloc::Oxide, eloc::MultiOx},
                                          {eloc::Oxide2, eloc::MultiOx2}};
    for (const auto& [name, factor] : oxides) {
      const std::string oxide = table.TextRC(row, name);
      EXPECT_EQ(oxide.empty(), !table.HasContent(row, factor)) << element;
      if (oxide.empty()) continue;
      expectFactor(table.NumberRC(row, factor), factorOf(oxide, target), oxide);
    }
  }
  const struct {
    int row;
    const char* form;
    double element, oxide;
  } known[] = {{1, "H2O %", 8.937, 1},      {6, "CO2 %", 3.6642, 1}, {14, "SiO2 %", 2.1393, 1},
               {26, "FeOtot %", 1.2865, 1}, {28, "Ni %", 1, 0.7858}, {79, "Au ppm", 1, 0.8914}};
  for (const auto& row : known) {
    EXPECT_EQ(table.TextRC(row.row, eloc::Form), row.form);
    EXPECT_DOUBLE_EQ(table.NumberRC(row.row, eloc::MulitEl), row.element) << row.form;
    EXPECT_DOUBLE_EQ(table.NumberRC(row.row, eloc::MultiOx), row.oxide) << row.form;
  }
  EXPECT_EQ(table.NumberRC(26, eloc::MultiOx2), 0.8998);
}

TEST_F(ReferenceTables, SheetsOfTheClassification) {
  const std::pair<const char*, int> sheets[] = {
      {"Thesaurus", 150},    {"Multiplier", 129}, {"Unit", 4},
      {"Unit_Multipl", 121}, {"METHOD", 5},       {"Page", 150},
      {"Member", 150},       {"Mineral", 43},     {"listbox", 180}};
  const Worksheet& key = tables->F1Key1;
  ASSERT_EQ(key.NumSheets(), 9);
  for (int sheet = 1; sheet <= 9; ++sheet) {
    EXPECT_EQ(key.SheetName(sheet), sheets[sheet - 1].first);
    EXPECT_EQ(key.LastRow(sheet), sheets[sheet - 1].second) << key.SheetName(sheet);
  }
  EXPECT_EQ(keyText(key1::Thesaurus, 6, 2), "C");
  EXPECT_EQ(keyText(key1::Thesaurus, 6, 3), "CO2");
  EXPECT_EQ(keyText(key1::Thesaurus, 150, 2), "Tuntematon");
  EXPECT_EQ(keyText(key1::Multiplier, 6, 1), "3.664124552");
  EXPECT_EQ(keyText(key1::Unit, 1, 6), "w-%");
  EXPECT_EQ(keyText(key1::METHOD, 5, 1), "Trace Ni");
  EXPECT_EQ(keyText(key1::Page, 6, 7), "CO2%");
  EXPECT_EQ(keyText(key1::Mineral, 9, 1), "Biotite");
  const char* first[] = {"H", "Li", "Na", "K", "Rb", "Cs", "Fr"};
  for (int row = 1; row <= 7; ++row) EXPECT_EQ(keyText(key1::listbox, row, 2), first[row - 1]);
}

TEST_F(ReferenceTables, ItemsAgreeAcrossTheClassification) {
  Worksheet& key = tables->F1Key1;
  std::map<int, int> members;  // positions given so far, by page
  std::set<std::string> spellings;
  for (int row = 1; row <= 150; ++row) {
    key.Sheet(key1::Thesaurus);
    const std::string item = key.RowText(row);
    for (const auto& [sheet, symbolColumn] : {std::pair(key1::Multiplier, 6),
                                              {key1::Unit_Multipl, 5},
                                              {key1::Page, 6},
                                              {key1::Member, 21}}) {
      if (row > key.LastRow(sheet)) continue;
      key.Sheet(sheet);
      EXPECT_EQ(key.RowText(row), item) << key.SheetName(sheet);
      EXPECT_EQ(keyText(sheet, row, symbolColumn), item) << key.SheetName(sheet);
    }
    for (int column = 2; column <= 6; ++column) {
      const std::string spelling = keyText(key1::Thesaurus, row, column);
      EXPECT_TRUE(spelling.empty() || spellings.insert(spelling).second) << spelling;
      if (row <= 129) {
        EXPECT_EQ(keyText(key1::Multiplier, row, column - 1).empty(), spelling.empty()) << item;
      }
      if (row > 92 || !converter.IsCompound(spelling)) continue;
      const std::string form = formulaOf(tables->F1ELoc.TextRC(row, eloc::Form));
      const double factor = key.NumberSRC(key1::Multiplier, row, column - 1);
      EXPECT_NEAR(factor / factorOf(spelling, form), 1, 1e-4) << spelling;
    }
    std::map<int, int> pages;
    for (int column = 1; column <= 5; ++column) {
      const int page = static_cast<int>(key.NumberSRC(key1::Page, row, column));
      if (page > 0) ++pages[page];
    }
    for (int page = 1; page <= 20; ++page) {
      const int position = static_cast<int>(key.NumberSRC(key1::Member, row, page));
      EXPECT_EQ(position, pages[page] ? ++members[page] : 0) << item << " page " << page;
    }
    if (row > 92) continue;
    EXPECT_EQ(item, ElementSymbols()[row]);
    const bool ppm = tables->F1ELoc.NumberRC(row, eloc::Multiplier) == 10000;
    EXPECT_EQ(key.NumberSRC(key1::Page, row, 1), ppm ? 2 : 1) << item;
    const double units[] = {ppm ? 10000.0 : 1, ppm ? 1 : 1e-4, ppm ? 1e-3 : 1e-7};
    for (int unit = 1; unit <= 3; ++unit) {
      EXPECT_DOUBLE_EQ(key.NumberSRC(key1::Unit_Multipl, row, unit), units[unit - 1]) << item;
    }
  }
  std::set<std::string> minerals;
  for (int row = 1; row <= 43; ++row) {
    for (int column = 1; column <= 7; ++column) {
      const std::string name = keyText(key1::Mineral, row, column);
      EXPECT_TRUE(name.empty() || minerals.insert(name).second) << name;
    }
  }
}

TEST_F(ReferenceTables, DamagedFilesAreNamedAndNothingChanges) {
  namespace fs = std::filesystem;
  const fs::path folder =
      fs::temp_directory_path() / ("lodex-reference-test-" + std::to_string(::getpid()));
  const struct {
    const char* file;
    const char* content;  // null removes the file
    const char* complaint;
  } rows[] = {
      {"F1El.txt", nullptr, "F1El.txt"},
      {"F1Data.txt", "Number\tSymbol\n1\tH\n", "its first heading is \"Number\""},
      {"F1El.txt", "Element\tOxCation\nH\t2\n", "2 headings instead of 14"},
      {"F1El.txt", "", "0 headings"},
      {"F1Key1/listbox.txt", "Index\tName\n", "no rows"},
      {"F1Key1/Mineral.txt", "Mineral\nPyrite\t1\t2\t3\t4\t5\t6\t7\n", "row 2 has more than 7"},
  };
  taulukot own;
  own.load(referenceFolder);
  for (const auto& row : rows) {
    fs::remove_all(folder);
    fs::copy(referenceFolder, folder, fs::copy_options::recursive);
    if (row.content) {
      writeFileWhole(pathText(folder / row.file), row.content);
    } else {
      fs::remove(folder / row.file);
    }
    try {
      own.load(pathText(folder));
      ADD_FAILURE() << row.complaint;
    } catch (const FileError& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(row.complaint));
      EXPECT_THAT(error.what(), testing::HasSubstr(fileNameOf(row.file)));
    }
    EXPECT_EQ(own.F1Data.LastRow(), 141) << row.complaint;
    EXPECT_EQ(own.F1Key1.NumSheets(), 9) << row.complaint;
  }
  fs::remove_all(folder);
}

}  // namespace
}  // namespace lodex
