#include "modal/Nnls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace lodex {
namespace {

struct Solved {
  std::vector<double> x, w;
  double rnorm = 0;
  NnlsMode mode = NnlsMode::Solved;
};

// `a` is stored column by column.
Solved solve(std::vector<double> a, int m, int n, std::vector<double> b) {
  Solved s{std::vector<double>(static_cast<size_t>(n)), std::vector<double>(static_cast<size_t>(n)),
           0, NnlsMode::Solved};
  std::vector<double> zz(static_cast<size_t>(m));
  std::vector<int> index(static_cast<size_t>(n));
  s.mode =
      Nnls(a.data(), m, m, n, b.data(), s.x.data(), s.rnorm, s.w.data(), zz.data(), index.data());
  return s;
}

TEST(Nnls, TextbookCase) {
  const Solved s = solve({.0372, .6861, .6233, .6344, .2868, .7071, .6245, .6170}, 4, 2,
                         {.8587, .1781, .0747, .8405});
  EXPECT_EQ(s.mode, NnlsMode::Solved);
  EXPECT_EQ(s.x[0], 0);  // exactly: the column never enters
  EXPECT_NEAR(s.x[1], 0.6929, 5e-5);
  EXPECT_NEAR(s.rnorm, 0.9118922, 5e-8);
}

TEST(Nnls, DegenerateSystems) {
  // Two equal columns: the second is not independent of the first, which takes it all.
  const Solved twins = solve({1, 2, 3, 1, 2, 3}, 3, 2, {2, 4, 6});
  EXPECT_NEAR(twins.x[0], 2, 1e-12);
  EXPECT_EQ(twins.x[1], 0);

  // A right-hand side against every column leaves x at 0 and all of b unexplained.
  const Solved against = solve({1, 1, 2, 1}, 2, 2, {-3, -4});
  EXPECT_EQ(against.x, (std::vector<double>{0, 0}));
  EXPECT_DOUBLE_EQ(against.rnorm, 5);

  // As many columns as equations are used up: nothing is left over, the dual vector is cleared.
  const Solved square = solve({2, 0, 0, 4}, 2, 2, {2, 2});
  EXPECT_DOUBLE_EQ(square.x[0], 1);
  EXPECT_DOUBLE_EQ(square.x[1], 0.5);
  EXPECT_EQ(square.rnorm, 0);
  EXPECT_EQ(square.w, (std::vector<double>{0, 0}));

  double rnorm = 0;
  EXPECT_EQ(Nnls(nullptr, 0, 0, 3, nullptr, nullptr, rnorm, nullptr, nullptr, nullptr),
            NnlsMode::BadDimensions);
}

// The conditions of Kuhn and Tucker hold exactly at the solution, whatever the way to it.
TEST(Nnls, RandomProblemsAreOptimal) {
  std::mt19937 random(20240117);
  std::uniform_real_distribution<double> uniform(-0.3, 1);
  for (int round = 0; round < 2000; ++round) {
    const int m = 1 + static_cast<int>(random() % 14);
    const int n = 1 + static_cast<int>(random() % 12);
    std::vector<double> a(static_cast<size_t>(m * n)), b(static_cast<size_t>(m));
    for (double& v : a) v = uniform(random);
    for (double& v : b) v = uniform(random);
    const Solved s = solve(a, m, n, b);
    if (s.mode == NnlsMode::IterationLimit) continue;
    std::vector<double> r = b;
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < m; ++i)
        r[static_cast<size_t>(i)] -=
            a[static_cast<size_t>(i + j * m)] * s.x[static_cast<size_t>(j)];
    }
    double norm = 0;
    for (const double v : r) norm += v * v;
    ASSERT_NEAR(s.rnorm, std::sqrt(norm), 1e-9) << "problem " << round;
    for (int j = 0; j < n; ++j) {
      double gradient = 0;
      for (int i = 0; i < m; ++i)
        gradient += a[static_cast<size_t>(i + j * m)] * r[static_cast<size_t>(i)];
      const double xj = s.x[static_cast<size_t>(j)];
      ASSERT_GE(xj, 0) << "problem " << round;
      if (xj > 0) {
        ASSERT_NEAR(gradient, 0, 1e-7) << "problem " << round << ", unknown " << j;
      } else if (m > n) {
        // A column that nearly depends on the others may be left out by the independence test.
        ASSERT_LT(gradient, 1e-7) << "problem " << round << ", unknown " << j;
      }
    }
  }
}

TEST(Nnls, HundredByHundred) {
  const int n = 100;
  std::vector<double> a(static_cast<size_t>(n) * n), b(static_cast<size_t>(n));
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      a[static_cast<size_t>(i + j * n)] = i == j ? 10 : 1.0 / (1 + std::abs(i - j));
      b[static_cast<size_t>(i)] += a[static_cast<size_t>(i + j * n)] * (j % 3);
    }
  }
  const Solved s = solve(a, n, n, b);
  for (int j = 0; j < n; ++j) EXPECT_NEAR(s.x[static_cast<size_t>(j)], j % 3, 1e-9);
}

TEST(Nnls, Rotations) {
  struct Row {
    const char* name;
    double a, b, c, s, sig;
  } rows[] = {
      {"a larger", -4, 3, -0.8, 0.6, 5},
      {"b larger", 3, -4, 0.6, -0.8, 5},
      {"both 0", 0, 0, 0, 1, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    double c, s, sig;
    GivensCompute(row.a, row.b, c, s, sig);
    EXPECT_NEAR(c, row.c, 1e-15);
    EXPECT_NEAR(s, row.s, 1e-15);
    EXPECT_NEAR(sig, row.sig, 1e-15);
    double x = row.a, y = row.b;
    GivensApply(c, s, x, y);
    EXPECT_NEAR(x, sig, 1e-15);
    EXPECT_NEAR(y, 0, 1e-15);
  }
}

}  // namespace
}  // namespace lodex
