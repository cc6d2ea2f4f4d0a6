#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>

#include "basic/Numbers.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;

struct Amounts {
  int status = -1;
  std::vector<std::string> headings;              // symbols and "Total"
  std::map<std::string, std::vector<double>> of;  // by sample, one value per heading
};

// Runs `lodex modal` on shipped files in a home folder of its own and reads the first table that
// it prints: a heading line that begins with "SampleNo", then a line per sample up to a blank one.
Amounts runModal(const std::string& assays, const std::string& setUp) {
  const fs::path bin = LODEX_BIN_DIR;
  const fs::path examples = bin / "Geo" / "examples";
  const fs::path home = fs::temp_directory_path() / ("lodex_examples_" + std::to_string(getpid()));
  fs::create_directories(home);
  const std::string command = "HOME='" + home.string() + "' '" + (bin / "lodex").string() +
                              "' modal --assays '" + (examples / assays).string() + "' --setup '" +
                              (examples / setUp).string() + "' --out '" +
                              (home / "result.xls").string() + "' 2>/dev/null";
  Amounts amounts;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return amounts;
  std::string output;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
  const int result = pclose(pipe);
  amounts.status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
  fs::remove_all(home);

  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string first, word;
    words >> first;
    if (amounts.headings.empty()) {
      if (first != "SampleNo") continue;
      while (words >> word) {
        if (word != "%") amounts.headings.push_back(word);
      }
    } else if (first.empty()) {
      break;
    } else {
      while (words >> word) amounts.of[first].push_back(numberOf(word));
    }
  }
  return amounts;
}

// The mixtures that the ore samples were made of; the examples' README has the numbers, too.
TEST(ShippedExamples, OreSamplesComeBack) {
  const Amounts found = runModal("ore_assays.txt", "ore.mmq");
  ASSERT_EQ(found.status, 0);
  ASSERT_EQ(found.of.size(), 20U);
  const struct {
    const char* symbol;
    double lx1047, lx1057, tolerance;  // olivine and orthopyroxene share the error of silica
  } mixtures[] = {{"Ccp", 0.62, 5.25, 0.1},    {"PnCo1", 1.12, 1.50, 0.1},
                  {"Pyh", 4.46, 5.75, 0.1},    {"OlN80", 42.21, 19.25, 1},
                  {"OpxA80", 19.70, 21.00, 1}, {"Aug80", 11.26, 14.00, 0.3},
                  {"Pl60", 14.07, 26.25, 0.3}, {"BtA80", 3.75, 3.50, 0.2},
                  {"Ilm", 0.75, 1.05, 0.1},    {"Mag", 2.06, 2.45, 0.3}};
  for (size_t i = 0; i < std::size(mixtures); ++i) {
    const auto& mixture = mixtures[i];
    SCOPED_TRACE(mixture.symbol);
    ASSERT_EQ(found.headings.at(i), mixture.symbol);
    EXPECT_NEAR(found.of.at("LX-1047").at(i), mixture.lx1047, mixture.tolerance);
    EXPECT_NEAR(found.of.at("LX-1057").at(i), mixture.lx1057, mixture.tolerance);
  }
}

TEST(ShippedExamples, EverySetUpExplainsItsRocks) {
  const struct {
    const char *assays, *setUp;
    size_t samples;
  } cases[] = {{"ore_assays.txt", "ore.mmq", 20},
               {"ore_assays_2.csv", "ore.mmq", 6},
               {"granites.txt", "granite.mmq", 6},
               {"gabbros.txt", "gabbro.mmq", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.assays);
    const Amounts found = runModal(c.assays, c.setUp);
    EXPECT_EQ(found.status, 0);
    EXPECT_EQ(found.of.size(), c.samples);
    ASSERT_GE(found.headings.size(), 2U);
    EXPECT_EQ(found.headings.back(), "Total");
    EXPECT_EQ(found.headings.end()[-2], "Rest");
    for (const auto& [sample, values] : found.of) {
      SCOPED_TRACE(sample);
      ASSERT_EQ(values.size(), found.headings.size());
      EXPECT_NEAR(values.back(), 100, 0.5);
      EXPECT_LT(values.end()[-2], 3) << "unexplained";
    }
  }
}

}  // namespace
}  // namespace lodex
