#include "modal/LinearModels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "modal/Svd.h"
#include "modal/frmSolve.h"

namespace lodex {
namespace {

// Janousek, V. et al. (2016), Geochemical Modelling of Igneous Processes: plagioclase, olivine and
// diopside in a rock, weight per cent of SiO2, Al2O3, FeOt, MgO, CaO and Na2O.
const std::vector<double> publishedMinerals = {
    50.54, 31.70, 0, 0, 14.36, 3.40, 39.19, 0, 18.75, 42.06, 0, 0, 55.49, 0, 0, 18.61, 25.90, 0};
const std::vector<double> publishedRock = {48.125, 15.85, 5.625, 16.34, 12.36, 1.70};

std::vector<double> solved(EstimationModel model, int m, int n, const std::vector<double>& a,
                           const std::vector<double>& b) {
  LinearModels models;
  models.start(model, m, n, a.data());
  std::vector<double> x(static_cast<size_t>(n));
  EXPECT_EQ(models.solve(b.data(), x.data(), nullptr), "");
  return x;
}

TEST(LinearModels, PublishedRockInEveryModel) {
  for (const auto model : {EstimationModel::LeastSquare, EstimationModel::WeighedLeastSquare,
                           EstimationModel::NonNegative, EstimationModel::WeighedNonNegative}) {
    SCOPED_TRACE(static_cast<int>(model));
    LinearModels models;
    models.start(model, 6, 3, publishedMinerals.data());
    std::vector<double> x(3), r(6);
    EXPECT_EQ(models.solve(publishedRock.data(), x.data(), r.data()), "");
    EXPECT_NEAR(x[0], 0.5, 1e-12);
    EXPECT_NEAR(x[1], 0.3, 1e-12);
    EXPECT_NEAR(x[2], 0.2, 1e-12);
    for (const double residual : r) EXPECT_NEAR(residual, 0, 1e-12);
  }
}

TEST(LinearModels, PublishedSingularValues) {
  LinearModels models;
  models.start(EstimationModel::LeastSquare, 6, 3, publishedMinerals.data());
  std::vector<double> x(3);
  models.solve(publishedRock.data(), x.data(), nullptr);
  std::vector<double> w(models.singularValues().begin(), models.singularValues().begin() + 3);
  std::sort(w.rbegin(), w.rend());
  EXPECT_NEAR(w[0], 96.48893, 5e-6);
  EXPECT_NEAR(w[1], 41.69443, 5e-6);
  EXPECT_NEAR(w[2], 21.935281, 5e-7);
}

TEST(LinearModels, NegativeAmountsOnlyWithoutTheConstraint) {
  const std::vector<double> a = {.0372, .6861, .6233, .6344, .2868, .7071, .6245, .6170};
  const std::vector<double> b = {.8587, .1781, .0747, .8405};
  const auto free = solved(EstimationModel::LeastSquare, 4, 2, a, b);
  EXPECT_NEAR(free[0], -2.563884, 5e-7);
  EXPECT_NEAR(free[1], 3.111911, 5e-7);
  const auto bound = solved(EstimationModel::NonNegative, 4, 2, a, b);
  EXPECT_EQ(bound[0], 0);
  EXPECT_NEAR(bound[1], 0.6929, 5e-5);
}

TEST(LinearModels, SingularSystemTakesTheShortestSolution) {
  const auto x = solved(EstimationModel::LeastSquare, 2, 2, {1, 1, 1, 1}, {4, 4});
  EXPECT_NEAR(x[0], 2, 1e-12);
  EXPECT_NEAR(x[1], 2, 1e-12);
}

// With every right-hand side at 25 the two equations differ only in their coefficients: 100/(10*4)
// and 100/(20*4) times 1. The plain solution would be the mean of 10 and 20.
TEST(LinearModels, WeighedModelsDivideByTheAssay) {
  const auto x = solved(EstimationModel::WeighedLeastSquare, 2, 1, {1, 1}, {10, 20});
  EXPECT_NEAR(x[0], 25 * (2.5 + 1.25) / (2.5 * 2.5 + 1.25 * 1.25), 1e-12);
  const auto nn = solved(EstimationModel::WeighedNonNegative, 2, 1, {1, 1}, {10, 20});
  EXPECT_NEAR(nn[0], x[0], 1e-12);
  // An assay of 0 becomes 1E-8, and its equation is met almost exactly.
  const auto zero = solved(EstimationModel::WeighedLeastSquare, 2, 1, {1, 1}, {0, 20});
  EXPECT_NEAR(zero[0], 1e-8, 1e-12);
}

TEST(LinearModels, LaterWeighedCasesUseTheFirstDecomposition) {
  LinearModels models;
  const std::vector<double> a = {1, 1, 2, 1, 3, 1};
  models.start(EstimationModel::WeighedLeastSquare, 3, 2, a.data());
  std::vector<double> first(2), second(2), alone(2);
  const std::vector<double> b1 = {5, 7, 9}, b2 = {2, 8, 3};
  models.solve(b1.data(), first.data(), nullptr);
  models.solve(b2.data(), second.data(), nullptr);
  models.start(EstimationModel::WeighedLeastSquare, 3, 2, a.data());
  models.solve(b2.data(), alone.data(), nullptr);
  EXPECT_GT(std::abs(second[0] - alone[0]), 1e-3);
  models.start(EstimationModel::WeighedLeastSquare, 3, 2, a.data());
  models.solve(b1.data(), alone.data(), nullptr);
  EXPECT_EQ(first, alone);
}

TEST(LinearModels, ResidualsOfAnUnderdeterminedSystemStopAtItsRows) {
  LinearModels models;
  const std::vector<double> a = {1, 1};  // one equation, two unknowns
  models.start(EstimationModel::LeastSquare, 1, 2, a.data());
  std::vector<double> x(2), r(1), b = {4};
  models.solve(b.data(), x.data(), r.data());
  EXPECT_NEAR(x[0], 2, 1e-12);
  EXPECT_NEAR(r[0], 2, 1e-12);  // 4 - x1, without x2
}

TEST(Svd, ProductGivesTheMatrixBack) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (const auto& [m, n] : {std::pair{5, 3}, {4, 4}, {3, 6}, {1, 1}, {100, 100}, {7, 1}}) {
    SCOPED_TRACE(std::to_string(m) + " x " + std::to_string(n));
    const int side = std::max(m, n);
    const auto at = [side](int i, int j) { return static_cast<size_t>(i + j * side); };
    std::vector<double> a(static_cast<size_t>(side) * side), v(a.size());
    std::vector<double> w(static_cast<size_t>(n)), rv1(w.size());
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < m; ++i) a[at(i, j)] = uniform(random);
    }
    std::vector<double> u = a;
    ASSERT_TRUE(SvdDecompose(u.data(), side, m, n, w.data(), v.data(), side, rv1.data()));
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < n; ++j) {
        double sum = 0;
        for (int k = 0; k < n; ++k) sum += u[at(i, k)] * w[static_cast<size_t>(k)] * v[at(j, k)];
        ASSERT_NEAR(sum, a[at(i, j)], 1e-12);
      }
    }
    for (const double value : w) EXPECT_GE(value, 0);
  }
}

TEST(frmSolve, SolvesItsSheets) {
  ScriptedDialogs dialogs;
  frmSolve form(dialogs);
  form.resize(6, 3, 2);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 3; ++j) {
      form.f1A.NumberRC(i + 1, j + 1, publishedMinerals[static_cast<size_t>(i + j * 6)] / 100);
    }
    form.F1B.NumberRC(i + 1, 1, publishedRock[static_cast<size_t>(i)]);
    form.F1B.NumberRC(i + 1, 2, publishedRock[static_cast<size_t>(i)] * 2);
  }
  form.optMalli.select(2);
  form.cmdSolve.click();
  EXPECT_EQ(form.txtARows.text(), "6");
  EXPECT_EQ(form.txtACols.text(), "3");
  EXPECT_EQ(form.txtCase.text(), "Overdetermined");
  EXPECT_NEAR(form.F1X.NumberRC(1, 1), 50, 1e-10);
  EXPECT_NEAR(form.F1X.NumberRC(2, 2), 60, 1e-10);
  EXPECT_NEAR(form.F1R.NumberRC(4, 2), 0, 1e-10);
}

TEST(frmSolve, UnequalRowsAreRefused) {
  ScriptedDialogs dialogs;
  dialogs.expectMessage("A and B do not match");
  frmSolve form(dialogs);
  form.resize(2, 3, 1);
  form.F1B.MaxRow(3);
  form.F1X.NumberRC(1, 1, 7);
  form.cmdSolve.click();
  EXPECT_EQ(form.txtCase.text(), "Underdetermined");
  EXPECT_EQ(form.F1X.NumberRC(1, 1), 7);
  EXPECT_TRUE(dialogs.allAsked());
}

}  // namespace
}  // namespace lodex
