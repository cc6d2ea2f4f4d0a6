#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cli/RunLodex.h"

namespace lodex {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

CommandRun runMinerals(const std::string& arguments) {
  return runLodex("minerals " + arguments + " 2>&1");
}

TEST(MineralsCommand, ListsWhatWasAskedFor) {
  const auto both = runMinerals("--element Cu --element fe");
  EXPECT_EQ(both.status, 0) << both.text;
  EXPECT_THAT(both.text, StartsWith("MineralID\tMinSymbol\tMineral\tFormula\tDensity\n"));
  EXPECT_THAT(both.text, HasSubstr("\tCcp\tChalcopyrite\tCuFeS2\t"));
  EXPECT_THAT(both.text, Not(HasSubstr("\tPyrite\t")));
  EXPECT_THAT(both.text, Not(HasSubstr("\tCovellite\t")));

  const auto found = runMinerals("--find chalco --element Cu");
  EXPECT_THAT(found.text, HasSubstr("\tChalcopyrite\t"));
  EXPECT_THAT(found.text, Not(HasSubstr("\tBornite\t")));
}

TEST(MineralsCommand, RefusesClearly) {
  const struct {
    const char *arguments, *reason;
    int status;
  } rows[] = {
      {"--element Xx", "There is no element Xx", 1},
      {"--db /nowhere/x.mdb", "/nowhere/x.mdb does not exist", 1},
      {"--elements Cu", "--elements", 2},
  };
  for (const auto& row : rows) {
    const auto outcome = runMinerals(row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.arguments;
    EXPECT_THAT(outcome.text, HasSubstr(row.reason)) << row.arguments;
  }
}

}  // namespace
}  // namespace lodex
