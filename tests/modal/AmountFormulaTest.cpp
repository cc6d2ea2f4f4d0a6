#include "modal/AmountFormula.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

const std::vector<std::string> labels = {"M/Po/1", "M/Poly/2", "M/Ccp/3", "P/Fe-Ox/4"};

TEST(AmountFormula, NamesBecomeReferences) {
  using F = AmountFormula;
  struct Row {
    const char* text;
    const char* expected;
    F::Layout layout;
    F::Totals totals;
  } rows[] = {
      {"2.5*Po-Ccp", "2.5*A1-A3", F::Layout::Column, F::Totals::Unknown},
      {"Poly+Po", "A2+A1", F::Layout::Column, F::Totals::Unknown},
      {"Fe-Ox*2", "A4*2", F::Layout::Column, F::Totals::Unknown},
      {"Polymer", "Polymer", F::Layout::Column, F::Totals::Unknown},
      {"Total-Po", "Total-A1", F::Layout::Column, F::Totals::Unknown},
      {"M/Poly/2*2+Ccp", "C1*2+D1", F::Layout::Row, F::Totals::Allowed},
      {"100-@", "100-(B1+C1+D1+E1)", F::Layout::Row, F::Totals::Allowed},
      {"Total/2", "(B1+C1+D1+E1)/2", F::Layout::Row, F::Totals::Allowed},
      {"", "0", F::Layout::Row, F::Totals::Allowed},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(withReferences(row.text, labels, row.layout, row.totals), row.expected) << row.text;
  }
}

TEST(AmountFormula, MoreMineralsThanLetters) {
  std::vector<std::string> many;
  for (int i = 1; i <= 40; ++i) many.push_back("M/S" + std::to_string(i) + "/" + std::to_string(i));
  EXPECT_EQ(
      withReferences("S40+S4", many, AmountFormula::Layout::Row, AmountFormula::Totals::Allowed),
      "AO1+E1");
}

TEST(AmountFormula, EvaluatesEachSample) {
  Worksheet scratch;
  AmountFormula column(scratch, "2.5*Po-Ccp", labels, AmountFormula::Layout::Column,
                       AmountFormula::Totals::Unknown);
  EXPECT_DOUBLE_EQ(column.evaluate({4, 0, 1, 0}), 9);
  EXPECT_DOUBLE_EQ(column.evaluate({0, 0, 1, 0}), -1);
  Worksheet other;
  AmountFormula row(other, "100-@", labels, AmountFormula::Layout::Row,
                    AmountFormula::Totals::Allowed);
  EXPECT_DOUBLE_EQ(row.evaluate({10, 20, 30, 0}), 40);
  AmountFormula broken(other, "Po*Unknown1x", labels, AmountFormula::Layout::Row,
                       AmountFormula::Totals::Allowed);
  EXPECT_EQ(broken.evaluate({1, 1, 1, 1}), 0);
  EXPECT_TRUE(broken.failed());
}

TEST(AmountFormula, Coefficients) {
  struct Row {
    const char* text;
    const char* symbol;
    double expected;
  } rows[] = {
      {"Py=1 Ccp=0.5", "Ccp", 0.5},
      {"Py=1,Ccp=0.5", "Py", 1},
      {"Cpy=3, Py=2", "Py", 2},
      {"Py=x", "Py", 0},
      {"Py=2*Ccp", "Py", 0},
      {"Py", "Py", 0},
      {"Py=1", "", 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CoefficientOf(row.text, row.symbol), row.expected) << row.text << " " << row.symbol;
  }
}

TEST(AmountFormula, ExpressionWithItsCoefficients) {
  EXPECT_EQ(splitExpression("Py=2*Ccp").formula, "2*Ccp");
  EXPECT_EQ(splitExpression("Py=2*Ccp").coefficients, "Py=1");
  EXPECT_EQ(splitExpression("2*Ccp").formula, "2*Ccp");
  EXPECT_EQ(splitExpression("2*Ccp").coefficients, "");
}

}  // namespace
}  // namespace lodex
