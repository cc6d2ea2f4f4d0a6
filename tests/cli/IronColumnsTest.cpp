// Iron as laboratories report it: FeO and Fe2O3 analysed, and totals as either, in all mixtures of
// values, zeros and blanks, through the thesaurus and the shipped methods.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <tuple>

#include "basic/Files.h"
#include "cli/RunLodex.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

constexpr double feoPerFe2o3 = 2 * 71.8444 / 159.6882;
constexpr double ferrous = 6;
constexpr double ferric = 3;
constexpr double total = ferrous + ferric * feoPerFe2o3;

enum Column { FeO, Fe2O3, FeOtot, Fe2O3tot };
constexpr std::array<double, 4> values = {ferrous, ferric, total, total / feoPerFe2o3};

enum class Cell { Blank, Zero, Value };
using Cells = std::array<Cell, 4>;

Cells cellsOf(int number) {
  Cells cells;
  for (Cell& cell : cells) {
    cell = static_cast<Cell>(number % 3);
    number /= 3;
  }
  return cells;
}

struct Iron {
  double ferric, ferrous;
  double asFeO() const { return ferrous + ferric * feoPerFe2o3; }
  /// Zeros fill columns of what was not analysed.
  bool isMissing() const { return asFeO() == 0; }
};

// Both states where both are known, one of them perhaps as what the other leaves of a total; else
// all iron, split by Le Maitre's equation for volcanic rocks.
Iron expectedIron(const Cells& cells, double silica, double alkalis) {
  const auto has = [&](Column column) { return cells[column] == Cell::Value; };
  const bool hasTotal = has(FeOtot) || has(Fe2O3tot);
  if ((has(FeO) || has(Fe2O3)) && (has(FeO) + has(Fe2O3) + hasTotal > 1)) return {ferric, ferrous};
  double iron = hasTotal ? total : has(FeO) ? ferrous : has(Fe2O3) ? ferric * feoPerFe2o3 : 0;
  const double ratio = 0.93 - 0.0042 * silica - 0.022 * alkalis;  // FeO/(FeO+Fe2O3)
  const double sum = iron / (ratio + (1 - ratio) * feoPerFe2o3);
  return {sum * (1 - ratio), sum * ratio};
}

class IronColumns : public testing::Test {
 protected:
  IronColumns() {
    std::filesystem::create_directories(folder);
    std::string text =
        "Sample\tSiO2 %\tAl2O3 %\tMgO %\tNa2O %\tK2O %\tCaO %\tMnO %\tCr2O3 %\t"
        "FeO %\tFe2O3 %\tFeO total\tFe2O3T (%)\n";
    for (int i = 0; i < 81; ++i) {
      text += std::to_string(100 + i) + "\t50\t15\t20\t3\t1\t0\t0\t0";
      const Cells cells = cellsOf(i);
      for (size_t c = 0; c < cells.size(); ++c) {
        text += '\t';
        if (cells[c] == Cell::Zero) text += '0';
        if (cells[c] == Cell::Value) text += std::to_string(values[c]);
      }
      text += '\n';
    }
    writeFileWhole(path("rocks.txt"), text);
  }
  ~IronColumns() override { std::filesystem::remove_all(folder); }

  std::string path(const std::string& name) const { return (folder / name).string(); }

  void calculate(const std::string& group) {
    const CommandRun outcome = runLodex("calc '" + path("rocks.txt") + "' --group " + group +
                                        " --out '" + path("results.xls") + "' 2>&1");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    results.Read(path("results.xls"));
  }
  Value value(const std::string& method, int sample, const std::string& name) const {
    const int sheet = results.SheetNumber(method);
    const FindResult found = results.Find(name, sheet, 1, 1, 1, results.LastCol(sheet));
    EXPECT_GT(found.found, 0) << name;
    EXPECT_EQ(results.NumberSRC(sheet, 6 + sample, 2), 100 + sample);
    return results.ValueSRC(sheet, 6 + sample, found.column);
  }
  std::string text(const std::string& method, int sample, const std::string& name) const {
    return value(method, sample, name).asText();
  }
  double result(const std::string& method, int sample, const std::string& name) const {
    return value(method, sample, name).asNumber();
  }

  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex iron " + std::to_string(::getpid()));
  Worksheet results;
};

std::string described(int sample) {
  const char* names[] = {"FeO", "Fe2O3", "FeOtot", "Fe2O3tot"};
  const char* states[] = {" blank ", " 0 ", " given "};
  std::string text;
  const Cells cells = cellsOf(sample);
  for (size_t c = 0; c < cells.size(); ++c) {
    text += names[c] + std::string(states[static_cast<size_t>(cells[c])]);
  }
  return text;
}

TEST_F(IronColumns, CountOnceInRocks) {
  calculate("ROCK");
  for (int i = 0; i < 81; ++i) {
    SCOPED_TRACE(described(i));
    const Iron iron = expectedIron(cellsOf(i), 50, 4);
    if (iron.isMissing()) {
      EXPECT_EQ(text("CIPW", i, "Remark"), "missing: iron");
      EXPECT_EQ(text("CIPW", i, "Norm FeO") + text("INDICES", i, "Mg#"), "");
      continue;
    }
    const double scale = 100 / (89 + iron.ferric + iron.ferrous);
    EXPECT_NEAR(result("CIPW", i, "Norm Fe2O3"), iron.ferric * scale, 1e-5);
    EXPECT_NEAR(result("CIPW", i, "Norm FeO"), iron.ferrous * scale, 1e-5);
    EXPECT_NEAR(result("INDICES", i, "Iron number"), iron.asFeO() / (iron.asFeO() + 20), 1e-5);
  }
}

TEST_F(IronColumns, CountOnceInMinerals) {
  calculate("MINERAL");
  const double moles = 50 / 60.0843;  // of silicon
  for (int i = 0; i < 81; ++i) {
    SCOPED_TRACE(described(i));
    const Cells cells = cellsOf(i);
    const Iron iron = expectedIron(cells, 50, 4);
    if (iron.isMissing()) continue;
    const bool bothKnown = iron.ferric == ferric;
    for (const char* mineral :
         {"OLIVINE", "PYROXENE", "FELDSPAR", "GARNET", "SPINEL", "BIOTITE", "AMPHIBOLE"}) {
      SCOPED_TRACE(mineral);
      const double silicon = result(mineral, i, "nSi") / moles;
      const double fe3 = result(mineral, i, "nFe3") / silicon;
      const double fe2 = result(mineral, i, "nFe2") / silicon;
      EXPECT_NEAR(fe2 + fe3, iron.asFeO() / 71.8444, 1e-6);
      if (bothKnown) {
        EXPECT_NEAR(fe3, ferric * 2 / 159.6882, 1e-6);
      }
    }
  }
}

TEST_F(IronColumns, CountOnceInConversions) {
  calculate("MISCE");
  for (int i = 0; i < 81; ++i) {
    SCOPED_TRACE(described(i));
    const Cells cells = cellsOf(i);
    const Iron iron = expectedIron(cells, 50, 4);
    EXPECT_NEAR(result("OXIDES", i, "Fe %"), iron.asFeO() * 55.845 / 71.8444, 1e-5);
    EXPECT_NEAR(result("ELEMENTS", i, "FeOtot %"), iron.asFeO(), 1e-5);
    if (iron.isMissing()) continue;
    double sum = 89;
    if (cells[FeO] == Cell::Value && cells[Fe2O3] == Cell::Value) {
      sum += ferrous + ferric;
    } else if (cells[Fe2O3tot] == Cell::Value) {
      sum += values[Fe2O3tot];
    } else if (cells[FeOtot] == Cell::Value) {
      sum += total;
    } else {
      sum += cells[FeO] == Cell::Value ? ferrous : cells[Fe2O3] == Cell::Value ? ferric : 0;
    }
    EXPECT_NEAR(result("DRY", i, "Oxide sum"), sum, 1e-5);
  }
}

// A column that a sheet lacks does not pass its part on to another.
TEST_F(IronColumns, MayBeLeftOut) {
  const double ratio = 0.93 - 0.0042 * 60 - 0.022 * 4;
  const double split = total / (ratio + (1 - ratio) * feoPerFe2o3);
  const double v3 = split * (1 - ratio), v2 = split * ratio;
  const std::string t = std::to_string(total), u = std::to_string(total / feoPerFe2o3);
  const std::string fe = std::to_string(total * 55.845 / 71.8444);
  const std::string fePpm = std::to_string(total * 55.845 / 71.8444 * 10000);
  for (const auto& [headings, cells, fe3, fe2] :
       std::initializer_list<std::tuple<std::string, std::string, double, double>>{
           {"FeO %\tFe2O3T %", "6\t" + u, ferric, ferrous},
           {"FeO %\tFeO* %", "6\t" + t, ferric, ferrous},
           {"Fe2O3 %\tFe2O3(T) %", "3\t" + u, ferric, ferrous},
           {"FeO %\tFe_ICP ppm", "6\t" + fePpm, ferric, ferrous},
           {"TFe2O3\tFe ppm", u + "\t12", v3, v2},
           {"Fe2O3T %\tFe2O3 %", u + "\t" + u, v3, v2},
           {"FeO (tot) (wt.%)", t, v3, v2},
           {"FeOT", t, v3, v2},
           {"Fe2O3 %", u, v3, v2},
           {"Fe %", fe, v3, v2},
       }) {
    SCOPED_TRACE(headings);
    writeFileWhole(path("rocks.txt"), "Sample\tSiO2 %\tAl2O3 %\tMgO %\tNa2O %\tK2O %\tCaO %\t" +
                                          headings + "\n100\t60\t15\t5\t3\t1\t0\t" + cells + "\n");
    calculate("ROCK");
    const double scale = 100 / (84 + fe3 + fe2);
    EXPECT_NEAR(result("CIPW", 0, "Norm Fe2O3"), fe3 * scale, 1e-5);
    EXPECT_NEAR(result("CIPW", 0, "Norm FeO"), fe2 * scale, 1e-5);
  }
}

// A method that asks for total iron alone takes the total, not the FeO in the column before it.
TEST_F(IronColumns, PreferTheTotalWhereOnlyThatIsAskedFor) {
  const std::string u = std::to_string(total / feoPerFe2o3);
  writeFileWhole(path("rocks.txt"), "Sample\tMgO %\tFeO %\tFe2O3T %\n100\t5\t6\t" + u + "\n");
  calculate("USER");
  const double magnesium = 5 / 40.3044;
  EXPECT_NEAR(result("TEMPLATE", 0, "Mg#"), 100 * magnesium / (magnesium + total / 71.8444), 1e-4);
}

}  // namespace
}  // namespace lodex
