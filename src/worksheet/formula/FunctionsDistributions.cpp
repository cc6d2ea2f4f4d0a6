// Probability distributions and the tests built on them.
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>

#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

namespace bm = boost::math;

constexpr double largestDegrees = 1e10;

// Runs a computation of the library, which throws outside of a function's domain.
template <typename Compute>
Operand guarded(Compute compute) {
  try {
    return Operand(static_cast<double>(compute()));
  } catch (const std::exception&) {
    return ErrorCode::Num;
  }
}

bool isProbability(double p) {
  return p > 0 && p < 1;
}

Operand fnNormDist(Evaluator&, Arguments a) {
  if (a[2].number <= 0) return ErrorCode::Num;
  return guarded([&] {
    const bm::normal distribution(a[1].number, a[2].number);
    return a[3].number != 0 ? bm::cdf(distribution, a[0].number)
                            : bm::pdf(distribution, a[0].number);
  });
}

Operand fnNormInv(Evaluator&, Arguments a) {
  if (!isProbability(a[0].number) || a[2].number <= 0) return ErrorCode::Num;
  return guarded([&] { return bm::quantile(bm::normal(a[1].number, a[2].number), a[0].number); });
}

Operand fnTDist(Evaluator&, Arguments a) {
  const double degrees = std::floor(a[1].number);
  const double tails = std::floor(a[2].number);
  if (a[0].number < 0 || degrees < 1 || degrees > largestDegrees || (tails != 1 && tails != 2)) {
    return ErrorCode::Num;
  }
  return guarded(
      [&] { return tails * bm::cdf(bm::complement(bm::students_t(degrees), a[0].number)); });
}

Operand fnTInv(Evaluator&, Arguments a) {
  const double degrees = std::floor(a[1].number);
  if (!(a[0].number > 0 && a[0].number <= 1) || degrees < 1 || degrees > largestDegrees)
    return ErrorCode::Num;
  if (a[0].number == 1) return 0.0;
  return guarded(
      [&] { return bm::quantile(bm::complement(bm::students_t(degrees), a[0].number / 2)); });
}

Operand fnFDist(Evaluator&, Arguments a) {
  const double d1 = std::floor(a[1].number);
  const double d2 = std::floor(a[2].number);
  if (a[0].number < 0 || d1 < 1 || d2 < 1 || d1 > largestDegrees || d2 > largestDegrees)
    return ErrorCode::Num;
  return guarded([&] { return bm::cdf(bm::complement(bm::fisher_f(d1, d2), a[0].number)); });
}

Operand fnFInv(Evaluator&, Arguments a) {
  const double d1 = std::floor(a[1].number);
  const double d2 = std::floor(a[2].number);
  if (!(a[0].number > 0 && a[0].number <= 1) || d1 < 1 || d2 < 1 || d1 > largestDegrees ||
      d2 > largestDegrees) {
    return ErrorCode::Num;
  }
  return guarded([&] { return bm::quantile(bm::complement(bm::fisher_f(d1, d2), a[0].number)); });
}

Operand fnChiDist(Evaluator&, Arguments a) {
  const double degrees = std::floor(a[1].number);
  if (a[0].number < 0 || degrees < 1 || degrees > largestDegrees) return ErrorCode::Num;
  return guarded([&] { return bm::cdf(bm::complement(bm::chi_squared(degrees), a[0].number)); });
}

Operand fnChiInv(Evaluator&, Arguments a) {
  const double degrees = std::floor(a[1].number);
  if (!(a[0].number > 0 && a[0].number <= 1) || degrees < 1 || degrees > largestDegrees)
    return ErrorCode::Num;
  return guarded(
      [&] { return bm::quantile(bm::complement(bm::chi_squared(degrees), a[0].number)); });
}

Operand fnPoisson(Evaluator&, Arguments a) {
  const double x = std::floor(a[0].number);
  const double mean = a[1].number;
  if (x < 0 || mean < 0) return ErrorCode::Num;
  if (mean == 0) return a[2].number != 0 || x == 0 ? 1.0 : 0.0;
  return guarded([&] {
    const bm::poisson distribution(mean);
    return a[2].number != 0 ? bm::cdf(distribution, x) : bm::pdf(distribution, x);
  });
}

Operand fnBinomDist(Evaluator&, Arguments a) {
  const double successes = std::floor(a[0].number);
  const double trials = std::floor(a[1].number);
  if (successes < 0 || trials < successes || a[2].number < 0 || a[2].number > 1)
    return ErrorCode::Num;
  return guarded([&] {
    const bm::binomial distribution(trials, a[2].number);
    return a[3].number != 0 ? bm::cdf(distribution, successes) : bm::pdf(distribution, successes);
  });
}

Operand fnExponDist(Evaluator&, Arguments a) {
  if (a[0].number < 0 || a[1].number <= 0) return ErrorCode::Num;
  const double power = std::exp(-a[0].number * a[1].number);
  return a[2].number != 0 ? -std::expm1(-a[0].number * a[1].number) : a[1].number * power;
}

Operand fnWeibull(Evaluator&, Arguments a) {
  const double x = a[0].number;
  const double shape = a[1].number;
  const double scale = a[2].number;
  if (x < 0 || shape <= 0 || scale <= 0) return ErrorCode::Num;
  const double power = std::pow(x / scale, shape);
  if (a[3].number != 0) return -std::expm1(-power);
  return shape / scale * std::pow(x / scale, shape - 1) * std::exp(-power);
}

Operand fnGammaDist(Evaluator&, Arguments a) {
  if (a[0].number < 0 || a[1].number <= 0 || a[2].number <= 0) return ErrorCode::Num;
  return guarded([&] {
    const bm::gamma_distribution<> distribution(a[1].number, a[2].number);
    return a[3].number != 0 ? bm::cdf(distribution, a[0].number)
                            : bm::pdf(distribution, a[0].number);
  });
}

Operand fnGammaLn(Evaluator&, Arguments a) {
  if (a[0].number <= 0) return ErrorCode::Num;
  return guarded([&] { return bm::lgamma(a[0].number); });
}

Operand fnLogNormDist(Evaluator&, Arguments a) {
  if (a[0].number <= 0 || a[2].number <= 0) return ErrorCode::Num;
  return guarded(
      [&] { return bm::cdf(bm::normal(a[1].number, a[2].number), std::log(a[0].number)); });
}

Operand fnConfidence(Evaluator&, Arguments a) {
  const double size = std::floor(a[2].number);
  if (!isProbability(a[0].number) || a[1].number <= 0 || size < 1) return ErrorCode::Num;
  return guarded([&] {
    return bm::quantile(bm::complement(bm::normal(), a[0].number / 2)) * a[1].number /
           std::sqrt(size);
  });
}

Operand fnStandardize(Evaluator&, Arguments a) {
  if (a[2].number <= 0) return ErrorCode::Num;
  return (a[0].number - a[1].number) / a[2].number;
}

double varianceOf(const std::vector<double>& numbers) {
  return squaredDeviations(numbers) / (static_cast<double>(numbers.size()) - 1);
}

// Student's test: 1 paired, 2 equal variances, 3 unequal ones (Welch).
Operand fnTTest(Evaluator& ev, Arguments a) {
  const double tails = std::floor(a[2].number);
  const double type = std::floor(a[3].number);
  if ((tails != 1 && tails != 2) || type < 1 || type > 3) return ErrorCode::Num;
  std::vector<double> x;
  std::vector<double> y;
  Operand error;
  if (type == 1) {
    if (!pairsOf(ev, a[0], a[1], x, y, error)) return error;
  } else if (!numbersOf(ev, a.first(1), x, error) || !numbersOf(ev, a.subspan(1, 1), y, error)) {
    return error;
  }
  const auto n = static_cast<double>(x.size());
  const auto m = static_cast<double>(y.size());
  if (n < 2 || m < 2) return ErrorCode::DivisionByZero;
  double t = 0;
  double degrees = 0;
  if (type == 1) {
    std::vector<double> differences(x.size());
    for (size_t i = 0; i < x.size(); ++i) differences[i] = x[i] - y[i];
    t = meanOf(differences) / std::sqrt(varianceOf(differences) / n);
    degrees = n - 1;
  } else if (type == 2) {
    degrees = n + m - 2;
    const double pooled = (squaredDeviations(x) + squaredDeviations(y)) / degrees;
    t = (meanOf(x) - meanOf(y)) / std::sqrt(pooled * (1 / n + 1 / m));
  } else {
    const double vx = varianceOf(x) / n;
    const double vy = varianceOf(y) / m;
    t = (meanOf(x) - meanOf(y)) / std::sqrt(vx + vy);
    degrees = (vx + vy) * (vx + vy) / (vx * vx / (n - 1) + vy * vy / (m - 1));
  }
  if (!std::isfinite(t)) return ErrorCode::DivisionByZero;
  return guarded(
      [&] { return tails * bm::cdf(bm::complement(bm::students_t(degrees), std::abs(t))); });
}

Operand fnFTest(Evaluator& ev, Arguments a) {
  std::vector<double> x;
  std::vector<double> y;
  Operand error;
  if (!numbersOf(ev, a.first(1), x, error) || !numbersOf(ev, a.subspan(1, 1), y, error))
    return error;
  if (x.size() < 2 || y.size() < 2) return ErrorCode::DivisionByZero;
  const double vx = varianceOf(x);
  const double vy = varianceOf(y);
  if (vx == 0 || vy == 0) return ErrorCode::DivisionByZero;
  return guarded([&] {
    const bm::fisher_f distribution(static_cast<double>(x.size()) - 1,
                                    static_cast<double>(y.size()) - 1);
    const double above = bm::cdf(bm::complement(distribution, vx / vy));
    return 2 * std::min(above, 1 - above);
  });
}

Operand fnBetaDist(Evaluator&, Arguments a) {
  const double low = numberOr(a, 3, 0);
  const double high = numberOr(a, 4, 1);
  const double x = (a[0].number - low) / (high - low);
  if (a[1].number <= 0 || a[2].number <= 0 || !(x >= 0 && x <= 1)) return ErrorCode::Num;
  return guarded([&] { return bm::cdf(bm::beta_distribution<>(a[1].number, a[2].number), x); });
}

Operand fnBetaInv(Evaluator&, Arguments a) {
  const double low = numberOr(a, 3, 0);
  const double high = numberOr(a, 4, 1);
  if (a[1].number <= 0 || a[2].number <= 0 || !isProbability(a[0].number)) return ErrorCode::Num;
  return guarded([&] {
    return low + (high - low) *
                     bm::quantile(bm::beta_distribution<>(a[1].number, a[2].number), a[0].number);
  });
}

Operand fnGammaInv(Evaluator&, Arguments a) {
  if (!(a[0].number >= 0 && a[0].number < 1) || a[1].number <= 0 || a[2].number <= 0)
    return ErrorCode::Num;
  return guarded([&] {
    return bm::quantile(bm::gamma_distribution<>(a[1].number, a[2].number), a[0].number);
  });
}

Operand fnLogInv(Evaluator&, Arguments a) {
  if (!isProbability(a[0].number) || a[2].number <= 0) return ErrorCode::Num;
  return guarded(
      [&] { return std::exp(bm::quantile(bm::normal(a[1].number, a[2].number), a[0].number)); });
}

// The fewest successes whose cumulative probability reaches the asked one.
Operand fnCritBinom(Evaluator&, Arguments a) {
  const double trials = std::floor(a[0].number);
  const double p = a[1].number;
  if (trials < 0 || trials > 1e6 || !(p >= 0 && p <= 1) || !(a[2].number > 0 && a[2].number < 1)) {
    return ErrorCode::Num;
  }
  return guarded([&] {
    const bm::binomial distribution(trials, p);
    double low = 0;
    double high = trials;
    while (low < high) {
      const double middle = std::floor((low + high) / 2);
      if (bm::cdf(distribution, middle) >= a[2].number)
        high = middle;
      else
        low = middle + 1;
    }
    return low;
  });
}

double logChoose(double n, double k) {
  return bm::lgamma(n + 1) - bm::lgamma(k + 1) - bm::lgamma(n - k + 1);
}

// Factor by factor where they are few, which is more exact than logarithms; infinite otherwise.
double choose(double n, double k) {
  k = std::min(k, n - k);
  if (k > 200) return std::numeric_limits<double>::infinity();
  double product = 1;
  for (double i = 1; i <= k; ++i) product = product * (n - k + i) / i;
  return product;
}

Operand fnHypGeomDist(Evaluator&, Arguments a) {
  const double hits = std::floor(a[0].number);
  const double sample = std::floor(a[1].number);
  const double marked = std::floor(a[2].number);
  const double all = std::floor(a[3].number);
  if (hits < 0 || sample < hits || marked < hits || all < sample || all < marked ||
      sample - hits > all - marked) {
    return ErrorCode::Num;
  }
  return guarded([&] {
    const double ways = choose(marked, hits) * choose(all - marked, sample - hits);
    const double total = choose(all, sample);
    if (std::isfinite(ways) && std::isfinite(total)) return ways / total;
    return std::exp(logChoose(marked, hits) + logChoose(all - marked, sample - hits) -
                    logChoose(all, sample));
  });
}

Operand fnNegBinomDist(Evaluator&, Arguments a) {
  const double failures = std::floor(a[0].number);
  const double successes = std::floor(a[1].number);
  if (failures < 0 || successes < 1 || !(a[2].number > 0 && a[2].number < 1)) return ErrorCode::Num;
  return guarded([&] {
    return std::exp(logChoose(failures + successes - 1, successes - 1)) *
           std::pow(a[2].number, successes) * std::pow(1 - a[2].number, failures);
  });
}

Operand fnZTest(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a.first(1), numbers, error)) return error;
  if (numbers.size() < 2) return ErrorCode::NotAvailable;
  const double deviation = given(a, 2) ? a[2].number : std::sqrt(varianceOf(numbers));
  if (deviation <= 0) return ErrorCode::DivisionByZero;
  const double z = (meanOf(numbers) - a[1].number) /
                   (deviation / std::sqrt(static_cast<double>(numbers.size())));
  return guarded([&] { return bm::cdf(bm::complement(bm::normal(), z)); });
}

Operand fnChiTest(Evaluator& ev, Arguments a) {
  const int rows = Evaluator::rowsOf(a[0]);
  const int columns = Evaluator::columnsOf(a[0]);
  std::vector<double> actual;
  std::vector<double> expected;
  Operand error;
  if (!pairsOf(ev, a[0], a[1], actual, expected, error)) return error;
  if (actual.empty()) return ErrorCode::DivisionByZero;
  double sum = 0;
  for (size_t i = 0; i < actual.size(); ++i) {
    if (expected[i] == 0) return ErrorCode::DivisionByZero;
    sum += (actual[i] - expected[i]) * (actual[i] - expected[i]) / expected[i];
  }
  const double degrees =
      rows > 1 && columns > 1 ? (rows - 1.0) * (columns - 1.0) : rows * columns - 1.0;
  if (degrees < 1) return ErrorCode::NotAvailable;
  return guarded([&] { return bm::cdf(bm::complement(bm::chi_squared(degrees), sum)); });
}

Operand fnErf(Evaluator&, Arguments a) {
  return given(a, 1) ? std::erf(a[1].number) - std::erf(a[0].number) : std::erf(a[0].number);
}

Operand fnNormSDist(Evaluator&, Arguments a) {
  return guarded([&] { return bm::cdf(bm::normal(), a[0].number); });
}

Operand fnNormSInv(Evaluator&, Arguments a) {
  if (!isProbability(a[0].number)) return ErrorCode::Num;
  return guarded([&] { return bm::quantile(bm::normal(), a[0].number); });
}

constexpr FunctionInfo table[] = {
    {"NORMDIST", 4, 4, 293, "NNNB", fnNormDist},
    {"NORM.DIST", 4, 4, newer, "NNNB", fnNormDist},
    {"NORMSDIST", 1, 1, 294, "N", fnNormSDist},
    {"NORMINV", 3, 3, 295, "N", fnNormInv},
    {"NORM.INV", 3, 3, newer, "N", fnNormInv},
    {"NORMSINV", 1, 1, 296, "N", fnNormSInv},
    {"NORM.S.INV", 1, 1, newer, "N", fnNormSInv},
    {"NORM.S.DIST", 2, 2, newer, "NB",
     [](Evaluator& ev, Arguments a) {
       if (a[1].number != 0) return fnNormSDist(ev, a);
       return guarded([&] { return bm::pdf(bm::normal(), a[0].number); });
     }},
    {"BETADIST", 3, 5, 270, "NNNnn", fnBetaDist},
    {"BETAINV", 3, 5, 272, "NNNnn", fnBetaInv},
    {"BETA.INV", 3, 5, newer, "NNNnn", fnBetaInv},
    {"GAMMAINV", 3, 3, 287, "N", fnGammaInv},
    {"GAMMA.INV", 3, 3, newer, "N", fnGammaInv},
    {"LOGINV", 3, 3, 291, "N", fnLogInv},
    {"LOGNORM.INV", 3, 3, newer, "N", fnLogInv},
    {"CRITBINOM", 3, 3, 278, "N", fnCritBinom},
    {"BINOM.INV", 3, 3, newer, "N", fnCritBinom},
    {"HYPGEOMDIST", 4, 4, 289, "N", fnHypGeomDist},
    {"NEGBINOMDIST", 3, 3, 292, "N", fnNegBinomDist},
    {"ZTEST", 2, 3, 324, "RNn", fnZTest},
    {"Z.TEST", 2, 3, newer, "RNn", fnZTest},
    {"CHITEST", 2, 2, 306, "A", fnChiTest},
    {"CHISQ.TEST", 2, 2, newer, "A", fnChiTest},
    {"FISHER", 1, 1, 283, "N",
     [](Evaluator&, Arguments a) { return Operand(std::atanh(a[0].number)); }},
    {"FISHERINV", 1, 1, 284, "N",
     [](Evaluator&, Arguments a) { return Operand(std::tanh(a[0].number)); }},
    {"ERF", 1, 2, addIn, "Nn", fnErf},
    {"ERFC", 1, 1, addIn, "N",
     [](Evaluator&, Arguments a) { return Operand(std::erfc(a[0].number)); }},
    {"TDIST", 3, 3, 301, "N", fnTDist},
    {"TINV", 2, 2, 332, "N", fnTInv},
    {"T.INV.2T", 2, 2, newer, "N", fnTInv},
    {"FDIST", 3, 3, 281, "N", fnFDist},
    {"F.DIST.RT", 3, 3, newer, "N", fnFDist},
    {"FINV", 3, 3, 282, "N", fnFInv},
    {"F.INV.RT", 3, 3, newer, "N", fnFInv},
    {"CHIDIST", 2, 2, 274, "N", fnChiDist},
    {"CHISQ.DIST.RT", 2, 2, newer, "N", fnChiDist},
    {"CHIINV", 2, 2, 275, "N", fnChiInv},
    {"CHISQ.INV.RT", 2, 2, newer, "N", fnChiInv},
    {"POISSON", 3, 3, 300, "NNB", fnPoisson},
    {"POISSON.DIST", 3, 3, newer, "NNB", fnPoisson},
    {"BINOMDIST", 4, 4, 273, "NNNB", fnBinomDist},
    {"BINOM.DIST", 4, 4, newer, "NNNB", fnBinomDist},
    {"EXPONDIST", 3, 3, 280, "NNB", fnExponDist},
    {"EXPON.DIST", 3, 3, newer, "NNB", fnExponDist},
    {"WEIBULL", 4, 4, 302, "NNNB", fnWeibull},
    {"WEIBULL.DIST", 4, 4, newer, "NNNB", fnWeibull},
    {"GAMMADIST", 4, 4, 286, "NNNB", fnGammaDist},
    {"GAMMA.DIST", 4, 4, newer, "NNNB", fnGammaDist},
    {"GAMMALN", 1, 1, 271, "N", fnGammaLn},
    {"GAMMALN.PRECISE", 1, 1, newer, "N", fnGammaLn},
    {"LOGNORMDIST", 3, 3, 290, "N", fnLogNormDist},
    {"CONFIDENCE", 3, 3, 277, "N", fnConfidence},
    {"CONFIDENCE.NORM", 3, 3, newer, "N", fnConfidence},
    {"STANDARDIZE", 3, 3, 297, "N", fnStandardize},
    {"TTEST", 4, 4, 316, "AANN", fnTTest},
    {"T.TEST", 4, 4, newer, "AANN", fnTTest},
    {"FTEST", 2, 2, 310, "A", fnFTest},
    {"F.TEST", 2, 2, newer, "A", fnFTest},
};

}  // namespace

FunctionList distributionFunctions() {
  return table;
}

}  // namespace lodex::formula
