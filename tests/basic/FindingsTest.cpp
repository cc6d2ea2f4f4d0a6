#include "basic/Findings.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

TEST(FindingsTest, CountsManyOfAKindPerFileAndSheet) {
  Findings found;
  for (int row = 1; row <= 300; ++row) found.warn("text counted as 0", {"a.xls", "Cu", row, 2});
  found.warn("text counted as 0", {"a.xls", "Zn", 7, 2});
  ASSERT_EQ(found.all().size(), 2u);
  EXPECT_EQ(found.all()[0].count, 300u);
  EXPECT_EQ(found.all()[0].places.size(), Findings::placesKept);
  EXPECT_EQ(describe(found.all()[0]), "a.xls, sheet Cu, B1: text counted as 0 (300 times)");
  EXPECT_EQ(found.count(Severity::Warning), 301u);
  EXPECT_FALSE(found.hasErrors());

  Findings sum;
  sum.append(found);
  sum.append(found);
  EXPECT_EQ(sum.all()[0].count, 600u);
  EXPECT_EQ(sum.count(Severity::Warning), 602u);
}

TEST(FindingsTest, BoundsWhatItKeepsButNotWhatItCounts) {
  Findings found;
  constexpr size_t many = Findings::findingsKept + 500;
  for (size_t i = 0; i < many; ++i) found.error("record " + std::to_string(i) + " is damaged");
  EXPECT_EQ(found.all().size(), Findings::findingsKept + 1);
  EXPECT_EQ(found.all().back().count, 500u);
  EXPECT_EQ(found.count(Severity::Error), many);
}

TEST(FindingsTest, NamesTheFileOfWhatReadersOfContentNoticed) {
  Findings found;
  found.error("the sheet ends early", {.sheet = "Cu", .row = 12});
  found.nameFile("/data/ores.xls");
  EXPECT_EQ(describe(found.all()[0]), "ores.xls, sheet Cu, row 12: the sheet ends early");
  found.error("the sheet ends early", {.file = "/data/ores.xls", .sheet = "Cu", .row = 15});
  EXPECT_EQ(found.all().size(), 1u);
}

TEST(OutcomeTest, SetsTheExitStatus) {
  Outcome outcome;
  outcome.found.warn("a guess");
  EXPECT_EQ(outcome.exitStatus(), 0);
  outcome.found.error("a loss");
  EXPECT_EQ(outcome.exitStatus(), 1);
  EXPECT_EQ((Outcome{Ended::Aborted, "after sample 3", {}}).exitStatus(), 1);
}

}  // namespace
}  // namespace lodex
