#include "modal/SetUp.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

Worksheet twoRoundFile() {
  Worksheet file;
  const char* rows[][4] = {
      {"1", "ore", "", ""},
      {"M/Ccp/170", "M/Py/150", "P/Gangue/9001", ""},
      {"M/Ccp/170", "M/Py/150", "", ""},
      {"Cu (29) / BM", "S (16) / LECO ", "Fe (26) / XRF", ""},
      {"2", "4", "", ""},
      {"P/Gangue/9001", "", "", ""},
      {"###100-TOT", "", "", ""},
      {"0", "", "", ""},
  };
  int r = 0;
  for (const auto& row : rows) {
    ++r;
    for (int c = 1; c <= 4; ++c) file.TextRC(r, c, row[c - 1]);
  }
  return file;
}

TEST(SetUp, FileBecomesRows) {
  Worksheet opt;
  ValmistaF1CalcOpt(twoRoundFile(), opt);
  ASSERT_EQ(opt.LastRow(), 4);  // three equations, then the formula
  EXPECT_EQ(opt.TextRC(1, setup::MineralId), "170");
  EXPECT_EQ(opt.TextRC(1, setup::MineralHead), "M/Ccp");
  EXPECT_EQ(opt.TextRC(1, setup::SampleSpecific), "0");
  EXPECT_EQ(opt.NumberRC(1, setup::ElementRow), 29);
  EXPECT_EQ(opt.TextRC(2, setup::Method), "LECO");
  EXPECT_EQ(opt.TextRC(2, setup::Equation), "S (16) / LECO ");
  EXPECT_EQ(opt.TextRC(3, setup::Mineral), "");
  EXPECT_EQ(opt.TextRC(3, setup::Model), "2");
  EXPECT_EQ(opt.TextRC(1, setup::Text), "4");
  EXPECT_EQ(opt.NumberRC(4, setup::Round), 2);
  EXPECT_EQ(roundCount(opt), 2);

  ModalLists lists;
  collectMinerals(opt, lists);
  EXPECT_EQ(lists.MinIDs, (std::vector<std::string>{"170", "150", "9001"}));
}

TEST(SetUp, RowsBecomeTheFileAgain) {
  Worksheet opt;
  Worksheet file = twoRoundFile();
  ValmistaF1CalcOpt(file, opt);
  ValmistaF1OpenSave(opt, {}, file);
  const Worksheet original = twoRoundFile();
  for (int r = 1; r <= 8; ++r) {
    for (int c = 1; c <= 4; ++c) EXPECT_EQ(file.TextRC(r, c), original.TextRC(r, c)) << r << c;
  }
}

TEST(SetUp, ARoundLeftOutLeavesNoGapInTheFile) {
  Worksheet opt;
  storeRound(opt, 1, {{{"M/Py/150"}}, {{"S (16) / XRF", {}}}, 2}, "2");
  storeRound(opt, 4, {{{"M/Qz/301"}}, {{"Si (14) / XRF", {}}}, 3}, "2");
  Worksheet file, again;
  ValmistaF1OpenSave(opt, {"M/Py/150", "M/Qz/301"}, file);
  ValmistaF1CalcOpt(file, again);
  EXPECT_EQ(roundNumbers(again), (std::vector<int>{1, 2}));
  EXPECT_EQ(again.TextRC(2, setup::Mineral), "M/Qz/301");
  EXPECT_EQ(again.TextRC(2, setup::Model), "3");
  EXPECT_TRUE(loadingRemarks(file, again).empty());
}

TEST(SetUp, RemarksOnAFile) {
  Worksheet file = twoRoundFile();
  file.TextRC(5, 2, "abc");
  file.TextRC(12, 1, "M/Py/150");
  Worksheet opt;
  ValmistaF1CalcOpt(file, opt);
  EXPECT_EQ(roundCount(opt), 2);
  EXPECT_EQ(loadingRemarks(file, opt),
            (std::vector<std::string>{
                "Rows 9 and on are not read: the round in rows 9 and 10 is empty",
                "Decimals abc of the set-up are not a number of decimals and are not used"}));
  file.TextRC(4, 1, "X:abc");  // the text of a calculation is in the same place
  ValmistaF1CalcOpt(file, opt);
  EXPECT_EQ(loadingRemarks(file, opt).size(), 1u);
}

TEST(SetUp, MethodsOfTypedItems) {
  for (const auto& [item, method] : {std::pair{"Cu (29)/BM", "BM"},
                                     {"Cu (29) /BM ", "BM"},
                                     {"Cu (29)/ <<First>>", "<<First>>"},
                                     {"Cu (29)", ""}}) {
    Worksheet file = twoRoundFile(), opt;
    file.TextRC(4, 1, item);
    ValmistaF1CalcOpt(file, opt);
    EXPECT_EQ(opt.TextRC(1, setup::Method), method) << item;
    EXPECT_EQ(opt.NumberRC(1, setup::ElementRow), 29) << item;
  }
}

TEST(SetUp, MineralInTwoRoundsStandsTwice) {
  Worksheet file = twoRoundFile();
  file.TextRC(6, 1, "M/Py/150");
  Worksheet opt;
  ValmistaF1CalcOpt(file, opt);
  ModalLists lists;
  collectMinerals(opt, lists);
  EXPECT_EQ(lists.MinLabels, (std::vector<std::string>{"M/Ccp/170", "M/Py/150", "M/Py/150"}));
  EXPECT_EQ(MineralIndex(lists, "150"), 2);
  EXPECT_EQ(mineralsInNoRound(file, lists), (std::vector<std::string>{"P/Gangue/9001"}));
}

TEST(SetUp, RoundsGrowShrinkAndKeepTheirOrder) {
  Worksheet opt;
  const auto round = [](std::vector<std::string> minerals, std::vector<std::string> equations) {
    SetUpRound r;
    for (const auto& m : minerals) r.minerals.push_back({m, false, false});
    for (const auto& e : equations) r.equations.push_back({e, {}});
    return r;
  };
  storeRound(opt, 1, round({"M/Py/1"}, {"S (16) / XRF"}), "2");
  storeRound(opt, 3, round({"M/Qz/3"}, {"Si (14) / XRF"}), "2");
  storeRound(opt, 2, round({"M/Ccp/2"}, {"Cu (29) / XRF"}), "2");
  EXPECT_EQ(roundNumbers(opt), (std::vector<int>{1, 2, 3}));

  storeRound(opt, 1,
             round({"M/Py/1", "M/Po/4", "M/Ccp/2"},
                   {"S (16) / XRF", "Fe (26) / XRF", "a (1) / X", "b (2) / X", "c (3) / X"}),
             "3");
  EXPECT_EQ(findRound(opt, 1).count, 5);
  EXPECT_EQ(opt.TextRC(4, setup::Mineral), "");
  EXPECT_EQ(opt.TextRC(1, setup::Text), "3");
  EXPECT_EQ(opt.TextRC(6, setup::Mineral), "M/Ccp/2");

  storeRound(opt, 1, round({}, {"S (16) / XRF"}), "3");
  EXPECT_EQ(opt.LastRow(), 3);
  EXPECT_EQ(opt.TextRC(1, setup::Mineral), "");  // nothing of the minerals before is left

  storeRound(opt, 2, {}, "3");
  EXPECT_EQ(roundNumbers(opt), (std::vector<int>{1, 3}));
}

TEST(SetUp, EquationsFillTheirColumns) {
  SetUpRound round;
  round.model = 3;
  round.equations = {{"SiO2 (14) / Leach / XRF ", {}},
                     {"X-Density", {0, "d.txt", 1, 4, "Py=5"}},
                     {"X:2*Py", {1, "", 0, 0, "2*Py"}},
                     {"###2.5*Py-Ccp", {}}};
  Worksheet opt;
  storeRound(opt, 1, round, "");
  EXPECT_EQ(opt.TextRC(1, setup::ElementRow), "14");
  EXPECT_EQ(opt.TextRC(1, setup::Method), "XRF");
  EXPECT_EQ(opt.TextRC(2, setup::ElementRow), "");
  EXPECT_EQ(opt.TextRC(2, setup::XFile), "d.txt");
  EXPECT_EQ(opt.NumberRC(2, setup::XValueColumn), 4);
  EXPECT_EQ(opt.TextRC(3, setup::XFile), "");
  EXPECT_EQ(opt.TextRC(3, setup::Text), "2*Py");
  EXPECT_EQ(opt.TextRC(4, setup::Text), "");
  const auto back = readRound(opt, 1);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->model, 3);
  EXPECT_EQ(back->equations[1].x.text, "Py=5");
  EXPECT_FALSE(readRound(opt, 2));
}

TEST(SetUp, OddFilesGiveWhatTheyHold) {
  Worksheet opt, empty;
  ValmistaF1CalcOpt(empty, opt);
  EXPECT_EQ(opt.LastRow(), 0);
  EXPECT_EQ(roundCount(opt), 0);

  Worksheet file;
  file.TextRC(4, 1, "S / XRF");     // no bracket: no element row
  file.TextRC(4, 2, "X:(Py+1)*2");  // a bracket of its own
  file.TextRC(10, 1, "lost");       // after an empty round
  ValmistaF1CalcOpt(file, opt);
  ASSERT_EQ(opt.LastRow(), 2);
  EXPECT_EQ(opt.TextRC(1, setup::ElementRow), "");
  EXPECT_EQ(opt.TextRC(1, setup::Method), "XRF");
  EXPECT_EQ(equationKind(opt.TextRC(2, setup::Equation)), EquationKind::XCalculated);
}

TEST(SetUp, Report) {
  Worksheet opt;
  ValmistaF1CalcOpt(twoRoundFile(), opt);
  EXPECT_EQ(setUpReport(opt, "Total number of rounds = 2"),
            "**** Mineral quantification setup: ****\r\n"
            "Samples to be quantified:\r\n"
            "  Total number of rounds = 2\r\n"
            "Round\tMinerals\tElements\tEstimation method\r\n"
            "1\tM/Ccp/170, M/Py/150\tCu (29) / BM, S (16) / LECO , Fe (26) / XRF\tNon-negative "
            "Least Square (NNLS)\r\n"
            "2\tP/Gangue/9001\t###100-TOT\tLeast Square (LS)\r\n");
}

}  // namespace
}  // namespace lodex
