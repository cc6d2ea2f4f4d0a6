#include "modal/RetAndCalc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "ModalFixture.h"
#include "basic/Error.h"
#include "basic/Files.h"

namespace lodex {
namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// Chalcopyrite takes the copper in round 1, pyrite the sulphur that is left in round 2.
struct Sulphides : ModalFixture {
  Sulphides() {
    round({{"M/Ccp/170"}}, {assayLine("Cu", 1)});
    round({{"M/Py/150"}}, {assayLine("S", 3)});
    mineral(1, {{1, 34.6}, {2, 30.4}, {3, 35.0}});
    mineral(2, {{2, 46.6}, {3, 53.4}});
  }
};

TEST(RetAndCalc, EachRoundTakesWhatTheOnesBeforeLeave) {
  Sulphides f;
  f.assays({"A-1", "7"}, {1, 2, 3, 4}, {{3.46, 7.7, 8.84, 60}, {0, 0, 0, 50}});
  f.run();
  EXPECT_EQ(f.result.F1MC.ColText(1), "SampleNo");
  EXPECT_EQ(f.result.F1MC.ColText(2), "Ccp %");
  EXPECT_EQ(f.result.F1MC.ColText(4), "Total");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 1), "A-1");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "10.000");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 3), "10.000");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 4), "20.000");
  EXPECT_EQ(f.result.F1MC.TextRC(2, 2), "0.000");
  EXPECT_EQ(f.result.F1MC.MaxCol(), 4);
  EXPECT_EQ(f.result.F1MC.MaxRow(), 2);
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 2), 0, 1e-12);
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 3), 0, 1e-12);
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 4), 0, 1e-12);
  EXPECT_EQ(f.result.F1R.NumberRC(1, 5), 60);  // no mineral holds it
  EXPECT_EQ(f.result.F1BulkC.ColText(2), "Cu %");
  EXPECT_NEAR(f.result.F1BulkC.NumberRC(1, 2), 3.46, 1e-12);
  EXPECT_NEAR(f.result.F1BulkC.NumberRC(1, 4), 8.84, 1e-12);
  EXPECT_EQ(f.result.F1N.TextRC(2, 2), "test");
  EXPECT_EQ(f.solver.txtCase.text(), "Exactly determined");
  EXPECT_NEAR(f.solver.F1X.NumberRC(1, 1), 10, 1e-12);
  EXPECT_EQ(f.session.progress.txtInfo.caption(), "Calculation ready!");
  EXPECT_TRUE(f.logged("Assay SiO2 % feeds no equation"));
  EXPECT_TRUE(f.logged("Assay FeOtot % feeds no equation"));
  EXPECT_FALSE(f.logged("Assay S %"));
}

// Twelve minerals over three rounds. Each round has elements that no later round holds; all else is
// arbitrary, so that what comes back proves the subtraction between the rounds.
TEST(RetAndCalc, TwelveMineralsOverThreeRoundsComeBack) {
  ModalFixture f;
  std::mt19937 random(12);
  std::uniform_real_distribution<double> content(1, 20);
  const char* names[] = {"Cu", "Ni", "Zn", "Pb", "S", "P", "Ti", "Au", "Si", "Al", "Ca", "Na", "K"};
  const std::vector<int> rows = {1, 5, 14, 15, 3, 13, 12, 6, 4, 7, 9, 10, 11};
  int number = 0;
  for (size_t group = 0; group < 3; ++group) {
    std::vector<RoundMineral> minerals;
    std::vector<RoundEquation> equations;
    for (size_t i = 0; i < 4; ++i) {
      ++number;
      minerals.push_back({"M/Min" + std::to_string(number) + "/" + std::to_string(number)});
    }
    const size_t last = group == 2 ? 5 : 4;
    for (size_t i = 0; i < last; ++i) {
      equations.push_back(assayLine(names[group * 4 + i], rows[group * 4 + i]));
    }
    f.round(minerals, equations, group == 1 ? 0 : 2);
  }
  std::vector<std::vector<double>> amounts, assays;
  std::vector<std::string> ids;
  std::vector<std::vector<double>> composition(12, std::vector<double>(rows.size()));
  for (int m = 0; m < 12; ++m) {
    std::vector<std::pair<int, double>> cells;
    for (size_t e = static_cast<size_t>(m / 4) * 4; e < rows.size(); ++e) {
      const double own = e % 4 == static_cast<size_t>(m % 4) ? 30 : 0;
      composition[static_cast<size_t>(m)][e] = content(random) + own;
      cells.push_back({rows[e], composition[static_cast<size_t>(m)][e]});
    }
    f.mineral(m + 1, cells);
  }
  for (int s = 0; s < 5; ++s) {
    ids.push_back("S" + std::to_string(s));
    amounts.emplace_back();
    assays.emplace_back(rows.size());
    for (int m = 0; m < 12; ++m) {
      amounts.back().push_back((s + m) % 5 == 0 ? 0 : content(random) / 2);
      for (size_t e = 0; e < rows.size(); ++e) {
        assays.back()[e] += amounts.back().back() * composition[static_cast<size_t>(m)][e] / 100;
      }
    }
  }
  f.assays(ids, rows, assays);
  f.request.digits = 6;
  f.run();
  for (int s = 0; s < 5; ++s) {
    for (int m = 0; m < 12; ++m) {
      EXPECT_NEAR(f.result.F1MC.NumberRC(s + 1, m + 2),
                  amounts[static_cast<size_t>(s)][static_cast<size_t>(m)], 1e-6)
          << "sample " << s << ", mineral " << m + 1;
    }
    for (int k = 2; k <= static_cast<int>(rows.size()) + 1; ++k) {
      EXPECT_NEAR(f.result.F1R.NumberRC(s + 1, k), 0, 1e-9);
    }
  }
}

TEST(RetAndCalc, MissingAssaysStayMissing) {
  Sulphides f;
  f.assays({"1"}, {1, 2, 3}, {{3.46, none, 3.5}});
  f.run();
  EXPECT_EQ(f.result.F1R.TextRC(1, 3), "");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "10.000");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 3), "0.000");

  Sulphides g;  // no sulphur at all: the equation counts with 0, which is reported
  g.assays({"1"}, {1, 2}, {{3.46, 5}});
  g.run();
  EXPECT_EQ(g.result.F1MC.TextRC(1, 3), "0.000");
  EXPECT_TRUE(g.logged("Equation S (3) / XRF of round 2 has no assay"));
}

TEST(RetAndCalc, AnEquationTakesNoAssayOfAnotherMethod) {
  ModalFixture f;
  f.round({{"M/Py/1"}}, {{"S (3) / LECO", {}}});
  f.mineral(1, {{3, 50}});
  f.assays({"1"}, {3}, {{5}});  // by XRF
  const Outcome outcome = f.run();
  EXPECT_TRUE(outcome.done());
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "0.000");
  EXPECT_EQ(f.result.F1R.NumberRC(1, 2), 5);
  EXPECT_TRUE(f.result.equationColumns.empty());
  EXPECT_TRUE(f.logged("Equation S (3) / LECO of round 1 has no assay: 0 is taken for it"));
  EXPECT_EQ(outcome.found.count(Severity::Warning), 1u);
}

// Columns without a method belong to a method of that name, which other elements need not have.
TEST(RetAndCalc, FirstMethodIsTheElementsOwn) {
  for (const char* method : {firstMethod, ""}) {
    ModalFixture f;
    f.round({{"M/Qz/1"}}, {{assayItem("Si", 4, method), {}}});
    f.assays({"1"}, {4, 3}, {{50, 8}});
    f.result.F1Kirja.ColText(2, firstMethod);
    f.result.F1Kirja.TextRC(3, 1, "");
    f.result.F1Kirja.NumberRC(3, 2, 3);  // S has no method
    for (int row = 1; row <= f.F1ELoc.LastRow(); ++row) f.result.F1Disso.NumberRC(row, 2, 1);
    f.mineral(1, {{4, 100}});
    f.run();
    EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "50.000") << method;
    EXPECT_FALSE(f.logged("has no assay")) << method;
  }
}

TEST(RetAndCalc, DissolutionScalesTheEquations) {
  Sulphides f;
  f.mineral(1, {}, 0.5);  // half of the chalcopyrite dissolves
  f.assays({"1"}, {1, 3}, {{1.73, 1.75}});
  f.run();
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "10.000");
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 2), 0, 1e-12);
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 3), 0, 1e-12);
}

TEST(RetAndCalc, RestTo100) {
  for (const auto& [copper, rest, total] :
       {std::tuple{3.46, "90.00", "100.00"}, {69.2, "0.00", "200.00"}}) {
    ModalFixture f;
    f.request.digits = 2;
    f.round({{"M/Ccp/1"}}, {assayLine("Cu", 1)});
    f.round({{"P/Rest/2"}}, {{"###100-TOT", {}}}, 0);
    f.mineral(1, {{1, 34.6}});
    f.mineral(2, {{4, 50}});
    f.assays({"1"}, {1, 4}, {{copper, 50}});
    f.run();
    EXPECT_EQ(f.result.F1MC.TextRC(1, 3), rest);
    EXPECT_EQ(f.result.F1MC.TextRC(1, 4), total);
    // What a formula gives is subtracted like any other amount.
    EXPECT_NEAR(f.result.F1R.NumberRC(1, 3), copper > 10 ? 50 : 5, 1e-9);
  }
}

TEST(RetAndCalc, FormulaRound) {
  Sulphides f;
  f.round({{"M/Po/3"}}, {{"###2.5*Py-Ccp", {}}}, 0);
  f.mineral(3, {});
  f.assays({"1"}, {1, 2, 3}, {{3.46, 7.7, 8.84}});
  f.run();
  EXPECT_EQ(f.result.F1MC.TextRC(1, 4), "15.000");
}

TEST(RetAndCalc, CalculatedLine) {
  Sulphides f;
  f.round({{"M/Po/3"}, {"M/Mag/4"}},
          {{"X:Po=Ccp*2", {1, "", 0, 0, "Po=Ccp*2"}}, {"X:Mag=Ccp-@", {1, "", 0, 0, "Mag=Ccp-@"}}});
  f.mineral(3, {});
  f.mineral(4, {});
  f.assays({"1"}, {1, 2, 3}, {{3.46, 7.7, 8.84}});
  f.run();
  EXPECT_EQ(f.result.F1MC.TextRC(1, 4), "20.000");
  EXPECT_EQ(f.result.F1MC.TextRC(1, 5), "0.000");  // -10, which a non-negative round takes as 0
}

TEST(RetAndCalc, LineFromAFile) {
  const std::string file = testing::TempDir() + "/modal_xline.txt";
  writeFileWhole(file, "SampleNo\tDensity\tMag\n7.0\t3\t12\nB\t3\t5\n7\t3\t99\n");
  ModalFixture f;
  f.round({{"M/Mag/4"}, {"M/Py/2"}}, {{"X-Mag", {0, file, 1, 3, "Mag=2"}}, assayLine("S", 3)});
  f.mineral(1, {});
  f.mineral(2, {{3, 50}});
  f.assays({"7", "B", "C"}, {3}, {{5}, {10}, {0}});
  f.run();
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "6.000");  // the first row of the sample, halved
  EXPECT_EQ(f.result.F1MC.TextRC(2, 2), "2.500");
  EXPECT_EQ(f.result.F1MC.TextRC(3, 2), "0.000");  // not in the file
  EXPECT_EQ(f.result.F1MC.TextRC(1, 3), "10.000");

  ModalFixture g;  // as it comes out of a set-up file, which keeps no file names
  g.round({{"M/Mag/4"}}, {{"X-Mag", {}}});
  g.assays({"7"}, {3}, {{5}});
  EXPECT_TRUE(g.run().failed());
  EXPECT_EQ(g.session.progress.txtInfo.caption(), "Ready!");
}

TEST(RetAndCalc, MineralInTwoRounds) {
  ModalFixture f;
  f.round({{"M/Py/150"}}, {assayLine("Fe", 2)});
  f.round({{"M/Py/150"}}, {assayLine("S", 3)});
  f.mineral(1, {{2, 40}, {3, 50}});
  f.mineral(2, {{2, 40}, {3, 50}});
  f.assays({"1"}, {2, 3}, {{4, 10}});
  f.run();
  EXPECT_EQ(f.result.F1MC.TextRC(1, 2), "10.000");  // the second solve, from what the first left
  EXPECT_EQ(f.result.F1MC.TextRC(1, 3), "");
  EXPECT_NEAR(f.result.F1R.NumberRC(1, 2), -4, 1e-12);  // both were subtracted
}

// A user who presses Abort as soon as the progress line shows a text.
struct AbortingUser {
  explicit AbortingUser(ModalFixture& fixture, std::string text)
      : pump([this, text] {
          if (session.progress.txtInfo.caption().find(text) == std::string::npos) return;
          session.progress.cmdAbort.click();
        }),
        session(Services{fixture.dialogs, pump, fixture.clipboard}) {}
  NoEvents pump;
  Session session;
};

TEST(RetAndCalc, AnAbortKeepsWholeSamples) {
  const struct {
    const char* at;  // the progress text at which the user aborts
    int kept;
    const char* reason;
  } rows[] = {
      {"Solving...", 0, "before any sample was calculated"},
      {"round 2", 0, "before the first sample was finished, 0 of 1,000"},
      {"Solving sample 257 ", 256, "after sample S256, 256 of 1,000"},
      {"Fixing", 0, "before the first sample was finished, 0 of 1,000"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.at);
    Sulphides f;
    std::vector<std::string> ids;
    for (int s = 1; s <= 1000; ++s) ids.push_back("S" + std::to_string(s));
    f.assays(ids, {1, 2, 3}, std::vector<std::vector<double>>(1000, {3.46, 7.7, 8.84}));
    f.run();  // results of an earlier run must not shine through
    AbortingUser user(f, row.at);
    const Outcome outcome = RetAndCalc(f.request, ModalMode::SolveAgain, f.lists, f.result,
                                       f.solver, f.scratch, user.session);
    EXPECT_TRUE(outcome.aborted());
    EXPECT_EQ(outcome.reason, row.reason);
    EXPECT_EQ(user.session.log.txtLog.text(), "!! Aborted !!");
    EXPECT_FALSE(user.session.progress.AbortFlag);
    EXPECT_FALSE(user.session.progress.cmdAbort.visible());
    for (int s = 1; s <= 1000; ++s) {
      const bool kept = s <= row.kept;
      ASSERT_EQ(f.result.F1MC.TextRC(s, 2), kept ? "10.000" : "") << s;
      ASSERT_EQ(f.result.F1MC.TextRC(s, 4), kept ? "20.000" : "") << s;
      ASSERT_EQ(f.result.F1R.HasContent(s, 2), kept) << s;
      ASSERT_EQ(f.result.F1BulkC.HasContent(s, 2), kept) << s;
      ASSERT_EQ(f.result.F1N.TextRC(s, 2), kept ? "test" : "") << s;
      if (kept) {
        ASSERT_NEAR(f.result.F1R.NumberRC(s, 2), 3.46 - f.result.F1BulkC.NumberRC(s, 2), 1e-6);
      }
    }
  }
}

TEST(RetAndCalc, SimulatedErrorsStartFromTheOriginal) {
  Sulphides f;
  f.assays({"1"}, {1, 2, 3}, {{3.46, 7.7, 8.84}});
  f.simulation.assays = 5;
  double sum = 0, squares = 0;
  const int runs = 400;
  for (int i = 0; i < runs; ++i) {
    f.run(ModalMode::Simulate);
    const double copper = f.result.F1Ini.NumberRC(1, 2);
    sum += copper;
    squares += copper * copper;
  }
  const double mean = sum / runs;
  const double sd = std::sqrt(squares / runs - mean * mean);
  EXPECT_NEAR(mean, 3.46, 5 * 0.173 / std::sqrt(runs));
  EXPECT_NEAR(sd, 0.173, 0.04);
  EXPECT_EQ(f.result.F1Ini2.NumberRC(1, 2), 3.46);
  EXPECT_EQ(f.result.F1Ini.TextRC(1, 1), "1");
}

TEST(RetAndCalc, WeighedLeastSquareIsTrueForTheFirstSampleOnly) {
  const auto amountOf = [](const std::vector<std::vector<double>>& samples, int sample) {
    ModalFixture f;
    f.round({{"M/Py/1"}}, {assayLine("S", 3), assayLine("Fe", 2)}, 1);
    f.mineral(1, {{3, 50}, {2, 45}});
    f.assays(std::vector<std::string>(samples.size(), "x"), {3, 2}, samples);
    f.run();
    EXPECT_EQ(f.logged("weighs by the assays of the first sample"), samples.size() > 1);
    return f.result.F1MC.NumberRC(sample, 2);
  };
  const double alone = amountOf({{5, 9}}, 1);
  EXPECT_NEAR(alone, 12, 1e-12);  // between 10 by the sulphur and 20 by the iron
  EXPECT_EQ(amountOf({{5, 9}, {5, 9}}, 1), alone);
  EXPECT_NE(amountOf({{5, 4.5}, {5, 9}}, 2), alone);
}

TEST(RetAndCalc, ARoundTooLargeIsRefused) {
  ModalFixture f;
  f.round(std::vector<RoundMineral>(frmSolve::largestSystem + 1, {"M/Py/1"}), {assayLine("S", 3)});
  f.lists = {{"1"}, {"M/Py/1"}, {}};
  f.assays({"1"}, {3}, {{5}});
  const Outcome outcome = f.run();
  EXPECT_TRUE(outcome.failed());
  EXPECT_EQ(outcome.reason.substr(0, 8), "Round 1 ");
}

TEST(RetAndCalc, OddSetUpsAreReported) {
  ModalFixture f;
  f.round({{"M/Py/1"}, {"M/Py/2"}, {"P/Gangue/2"}}, {});
  f.round({}, {assayLine("S", 3)});
  f.round({{"M/Qz/3"}}, {assayLine("SiO2", 8), assayLine("FeOtot", 2), assayLine("SiO2", 4)}, 7);
  f.assays({}, {3}, {});
  f.run();
  EXPECT_TRUE(f.logged("Round 1 has no equations"));
  EXPECT_TRUE(f.logged("Round 2 has no minerals"));
  EXPECT_TRUE(f.logged("Estimation model 7 of round 3 is not known: Weighed Non-negative"));
  EXPECT_TRUE(f.logged("Equation SiO2 (8) / XRF takes Mg, element row 8, not SiO2"));
  EXPECT_FALSE(f.logged("Equation FeOtot (2) / XRF takes"));
  EXPECT_FALSE(f.logged("Equation SiO2 (4) / XRF takes"));
  EXPECT_TRUE(f.logged("Minerals M/Py/1 and M/Py/2 share the symbol Py"));
  EXPECT_TRUE(f.logged("Minerals M/Py/2 and P/Gangue/2 share the number 2"));
  EXPECT_EQ(f.result.F1MC.LastRow(), 0);
}

}  // namespace
}  // namespace lodex
