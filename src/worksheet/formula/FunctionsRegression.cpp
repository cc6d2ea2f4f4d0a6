// Correlation and least squares.
#include <cmath>

#include "worksheet/formula/FunctionHelp.h"
#include "worksheet/formula/Matrix.h"

namespace lodex::formula {
namespace {

// Sums over pairs (x, y), of distances from the means.
struct Pairs {
  double n = 0, meanX = 0, meanY = 0, xx = 0, yy = 0, xy = 0;
};

bool readPairs(Evaluator& ev, const Operand& x, const Operand& y, Pairs& sums, Operand& error) {
  std::vector<double> xs;
  std::vector<double> ys;
  if (!pairsOf(ev, x, y, xs, ys, error)) return false;
  error = ErrorCode::DivisionByZero;
  if (xs.empty()) return false;
  sums.n = static_cast<double>(xs.size());
  sums.meanX = meanOf(xs);
  sums.meanY = meanOf(ys);
  for (size_t i = 0; i < xs.size(); ++i) {
    const double dx = xs[i] - sums.meanX;
    const double dy = ys[i] - sums.meanY;
    sums.xx += dx * dx;
    sums.yy += dy * dy;
    sums.xy += dx * dy;
  }
  return true;
}

// Of functions whose arguments are known y values and known x values.
template <typename Result>
Operand ofLine(Evaluator& ev, Arguments a, Result result) {
  Pairs sums;
  Operand error;
  if (!readPairs(ev, a[1], a[0], sums, error)) return error;
  if (sums.xx == 0) return ErrorCode::DivisionByZero;
  return result(sums);
}

Operand correlation(Evaluator& ev, Arguments a, bool squared) {
  Pairs sums;
  Operand error;
  if (!readPairs(ev, a[0], a[1], sums, error)) return error;
  if (sums.xx == 0 || sums.yy == 0) return ErrorCode::DivisionByZero;
  const double r = sums.xy / std::sqrt(sums.xx * sums.yy);
  return squared ? r * r : r;
}

Operand covariance(Evaluator& ev, Arguments a, double less) {
  Pairs sums;
  Operand error;
  if (!readPairs(ev, a[0], a[1], sums, error)) return error;
  return sums.n <= less ? Operand(ErrorCode::DivisionByZero) : Operand(sums.xy / (sums.n - less));
}

Operand fnForecast(Evaluator& ev, Arguments a) {
  return ofLine(ev, a.subspan(1), [&](const Pairs& s) {
    return Operand(s.meanY + s.xy / s.xx * (a[0].number - s.meanX));
  });
}

Operand fnSteyx(Evaluator& ev, Arguments a) {
  return ofLine(ev, a, [](const Pairs& s) {
    if (s.n < 3) return Operand(ErrorCode::DivisionByZero);
    return Operand(std::sqrt(std::max(0.0, s.yy - s.xy * s.xy / s.xx) / (s.n - 2)));
  });
}

// A least squares fit y = b + m1 x1 + m2 x2 + ... of n samples.
struct Fit {
  int samples = 0;
  int variables = 0;
  bool constant = true;
  bool transposed = false;           // samples run along a row
  std::vector<double> coefficients;  // b, m1, m2, ...
  std::vector<double> errors;        // standard errors of these
  double residual = 0;               // sum of squares
  double regression = 0;
  double degrees = 0;
};

// The known x values as one row per sample; without them 1, 2, 3 ...
bool readVariables(Evaluator& ev, Arguments a, size_t index, int samples, bool transposed,
                   Matrix& x, Operand& error) {
  if (!given(a, index)) {
    x = Matrix(samples, 1);
    for (int i = 0; i < samples; ++i) x.at(i, 0) = i + 1;
    return true;
  }
  Matrix raw;
  if (!readMatrix(ev, a[index], raw, error)) return false;
  if (!transposed) {
    x = std::move(raw);
    return true;
  }
  x = Matrix(raw.columns, raw.rows);
  for (int i = 0; i < x.rows; ++i) {
    for (int j = 0; j < x.columns; ++j) x.at(i, j) = raw.at(j, i);
  }
  return true;
}

// Makes the columns orthogonal one after the other (Gram and Schmidt's way), so that nearly
// dependent variables do not spoil the fit; a column that depends on those before it gets the
// coefficient 0.
bool solve(const Matrix& x, const std::vector<double>& y, Fit& fit) {
  const int n = x.rows;
  const int k = x.columns + (fit.constant ? 1 : 0);
  if (n < 1 || static_cast<double>(n) * k * k > 5e9) return false;
  // Distances from the means are better conditioned than the raw columns.
  std::vector<double> means(static_cast<size_t>(x.columns), 0.0);
  double meanY = 0;
  if (fit.constant) {
    for (int i = 0; i < n; ++i) meanY += y[static_cast<size_t>(i)] / n;
    for (int j = 0; j < x.columns; ++j) {
      for (int i = 0; i < n; ++i) means[static_cast<size_t>(j)] += x.at(i, j) / n;
    }
  }
  const int m = x.columns;
  Matrix q(n, m);
  Matrix r(m, m);
  std::vector<double> rest(y);
  for (double& value : rest) value -= meanY;
  double total = 0;
  for (const double value : rest) total += value * value;
  std::vector<double> projected(static_cast<size_t>(m), 0.0);
  std::vector<bool> dependent(static_cast<size_t>(m), false);
  for (int j = 0; j < m; ++j) {
    double before = 0;
    for (int i = 0; i < n; ++i) {
      q.at(i, j) = x.at(i, j) - means[static_cast<size_t>(j)];
      before += q.at(i, j) * q.at(i, j);
    }
    // Twice, since the first round leaves rounding errors of the projection.
    for (int round = 0; round < 2; ++round) {
      for (int p = 0; p < j; ++p) {
        if (dependent[static_cast<size_t>(p)]) continue;
        double dot = 0;
        for (int i = 0; i < n; ++i) dot += q.at(i, p) * q.at(i, j);
        for (int i = 0; i < n; ++i) q.at(i, j) -= dot * q.at(i, p);
        r.at(p, j) += dot;
      }
    }
    double norm = 0;
    for (int i = 0; i < n; ++i) norm += q.at(i, j) * q.at(i, j);
    if (norm <= before * 1e-20 || norm == 0) {
      dependent[static_cast<size_t>(j)] = true;
      continue;
    }
    norm = std::sqrt(norm);
    r.at(j, j) = norm;
    double dot = 0;
    for (int i = 0; i < n; ++i) {
      q.at(i, j) /= norm;
      dot += q.at(i, j) * rest[static_cast<size_t>(i)];
    }
    for (int i = 0; i < n; ++i) rest[static_cast<size_t>(i)] -= dot * q.at(i, j);
    projected[static_cast<size_t>(j)] = dot;
  }
  // Back substitution; the inverse of r gives the standard errors.
  std::vector<double> slopes(static_cast<size_t>(m), 0.0);
  Matrix inverse(m, m);
  int rank = 0;
  for (int j = m - 1; j >= 0; --j) {
    if (dependent[static_cast<size_t>(j)]) continue;
    ++rank;
    double sum = projected[static_cast<size_t>(j)];
    for (int p = j + 1; p < m; ++p) sum -= r.at(j, p) * slopes[static_cast<size_t>(p)];
    slopes[static_cast<size_t>(j)] = sum / r.at(j, j);
    for (int column = j; column < m; ++column) {
      double entry = column == j ? 1 : 0;
      for (int p = j + 1; p <= column; ++p) entry -= r.at(j, p) * inverse.at(p, column);
      inverse.at(j, column) = entry / r.at(j, j);
    }
  }
  fit.residual = 0;
  for (const double value : rest) fit.residual += value * value;
  fit.regression = total - fit.residual;
  fit.degrees = n - rank - (fit.constant ? 1 : 0);
  double intercept = meanY;
  for (int j = 0; j < m; ++j)
    intercept -= slopes[static_cast<size_t>(j)] * means[static_cast<size_t>(j)];
  fit.coefficients.assign(1, fit.constant ? intercept : 0);
  fit.coefficients.insert(fit.coefficients.end(), slopes.begin(), slopes.end());
  const double variance = fit.degrees > 0 ? fit.residual / fit.degrees : 0;
  fit.errors.assign(1, 0);
  double interceptVariance = 1.0 / n;
  for (int p = 0; p < m; ++p) {
    double dot = 0;
    double own = 0;
    for (int j = 0; j < m; ++j) dot += inverse.at(j, p) * means[static_cast<size_t>(j)];
    for (int column = 0; column < m; ++column) own += inverse.at(p, column) * inverse.at(p, column);
    interceptVariance += dot * dot;
    fit.errors.push_back(std::sqrt(variance * own));
  }
  fit.errors[0] = std::sqrt(variance * interceptVariance);
  return true;
}

// Reads known y and x values (arguments 0 and 1) and fits; with `logarithms` ln y is fitted.
bool fitArguments(Evaluator& ev, Arguments a, bool constant, bool logarithms, Fit& fit,
                  Operand& error) {
  Matrix y;
  Matrix x;
  if (!readMatrix(ev, a[0], y, error)) return false;
  // A single y goes with a column of x values as with so many variables.
  const bool single = y.values.size() == 1 && given(a, 1) && Evaluator::columnsOf(a[1]) == 1;
  fit.transposed = y.rows == 1 && (y.columns > 1 || single);
  fit.samples = static_cast<int>(y.values.size());
  fit.constant = constant;
  if (!readVariables(ev, a, 1, fit.samples, fit.transposed, x, error)) return false;
  if (y.rows != 1 && y.columns != 1) {
    // A block of y values goes with a block of x values of the same shape, element by element.
    error = ErrorCode::Ref;
    if (given(a, 1) && (x.rows != y.rows || x.columns != y.columns)) return false;
    x.rows = static_cast<int>(x.values.size());
    x.columns = 1;
  }
  error = ErrorCode::Ref;
  if (x.rows != fit.samples) return false;
  if (logarithms) {
    for (double& value : y.values) {
      if (value <= 0) {
        error = ErrorCode::Num;
        return false;
      }
      value = std::log(value);
    }
  }
  fit.variables = x.columns;
  error = ErrorCode::Num;
  return solve(x, y.values, fit);
}

Operand estimate(Evaluator& ev, Arguments a, bool logarithms) {
  Fit fit;
  Operand error;
  const bool constant = !given(a, 2) || a[2].number != 0;
  if (!fitArguments(ev, a, constant, logarithms, fit, error)) return error;
  const bool statistics = given(a, 3) && a[3].number != 0;
  const int columns = fit.variables + 1;
  Array* out = ev.newArray(statistics ? 5 : 1, columns);
  if (out == nullptr) return ErrorCode::Num;
  // The coefficients are in reverse order, the constant last.
  for (int j = 0; j < columns; ++j) {
    const auto from = static_cast<size_t>(columns - 1 - j);
    out->at(0, j) = logarithms ? std::exp(fit.coefficients[from]) : fit.coefficients[from];
    if (!statistics) continue;
    out->at(1, j) = fit.errors[from];
    for (int row = 2; row < 5; ++row) out->at(row, j) = ErrorCode::NotAvailable;
  }
  if (logarithms && !constant) out->at(0, columns - 1) = 1.0;
  if (!statistics) return Operand(out);
  if (!constant) out->at(1, columns - 1) = ErrorCode::NotAvailable;
  const double total = fit.regression + fit.residual;
  const double freed = fit.samples - fit.degrees - (constant ? 1 : 0);
  out->at(2, 0) = total == 0 ? 1.0 : fit.regression / total;
  out->at(2, 1) = fit.degrees > 0 ? std::sqrt(fit.residual / fit.degrees) : 0.0;
  if (fit.degrees > 0 && fit.residual > 0) {
    out->at(3, 0) = fit.regression / freed / (fit.residual / fit.degrees);
  } else {
    out->at(3, 0) = ErrorCode::Num;
  }
  out->at(3, 1) = fit.degrees;
  out->at(4, 0) = fit.regression;
  out->at(4, 1) = fit.residual;
  return Operand(out);
}

// TREND and GROWTH: the fitted values at new x values, else at the known ones.
Operand predict(Evaluator& ev, Arguments a, bool logarithms) {
  Fit fit;
  Operand error;
  const bool constant = !given(a, 3) || a[3].number != 0;
  if (!fitArguments(ev, a, constant, logarithms, fit, error)) return error;
  const size_t source = given(a, 2) ? 2 : 1;
  Matrix shape;
  Matrix x;
  if (given(a, source)) {
    if (!readMatrix(ev, a[source], shape, error)) return error;
  } else {
    shape = fit.transposed ? Matrix(1, fit.samples) : Matrix(fit.samples, 1);
    for (int i = 0; i < fit.samples; ++i) shape.values[static_cast<size_t>(i)] = i + 1;
  }
  // With one variable every new x gives a value in its place; with several a value per sample.
  Matrix result = fit.variables == 1 ? Matrix(shape.rows, shape.columns)
                  : fit.transposed   ? Matrix(1, shape.columns)
                                     : Matrix(shape.rows, 1);
  if (fit.variables > 1 && (fit.transposed ? shape.rows : shape.columns) != fit.variables)
    return ErrorCode::Ref;
  for (size_t i = 0; i < result.values.size(); ++i) {
    double y = fit.coefficients[0];
    for (int j = 0; j < fit.variables; ++j) {
      const int place = static_cast<int>(i);
      const double value = fit.variables == 1 ? shape.values[i]
                           : fit.transposed   ? shape.at(j, place)
                                              : shape.at(place, j);
      y += fit.coefficients[static_cast<size_t>(j) + 1] * value;
    }
    result.values[i] = logarithms ? std::exp(y) : y;
  }
  return matrixResult(ev, result);
}

constexpr FunctionInfo table[] = {
    {"CORREL", 2, 2, 307, "A",
     [](Evaluator& ev, Arguments a) { return correlation(ev, a, false); }},
    {"PEARSON", 2, 2, 312, "A",
     [](Evaluator& ev, Arguments a) { return correlation(ev, a, false); }},
    {"RSQ", 2, 2, 313, "A", [](Evaluator& ev, Arguments a) { return correlation(ev, a, true); }},
    {"COVAR", 2, 2, 308, "A", [](Evaluator& ev, Arguments a) { return covariance(ev, a, 0); }},
    {"COVARIANCE.P", 2, 2, newer, "A",
     [](Evaluator& ev, Arguments a) { return covariance(ev, a, 0); }},
    {"COVARIANCE.S", 2, 2, newer, "A",
     [](Evaluator& ev, Arguments a) { return covariance(ev, a, 1); }},
    {"SLOPE", 2, 2, 315, "A",
     [](Evaluator& ev, Arguments a) {
       return ofLine(ev, a, [](const Pairs& s) { return Operand(s.xy / s.xx); });
     }},
    {"INTERCEPT", 2, 2, 311, "A",
     [](Evaluator& ev, Arguments a) {
       return ofLine(ev, a,
                     [](const Pairs& s) { return Operand(s.meanY - s.xy / s.xx * s.meanX); });
     }},
    {"STEYX", 2, 2, 314, "A", fnSteyx},
    {"FORECAST", 3, 3, 309, "NAA", fnForecast},
    {"FORECAST.LINEAR", 3, 3, newer, "NAA", fnForecast},
    {"LINEST", 1, 4, 49, "AAbb", [](Evaluator& ev, Arguments a) { return estimate(ev, a, false); }},
    {"LOGEST", 1, 4, 51, "AAbb", [](Evaluator& ev, Arguments a) { return estimate(ev, a, true); }},
    {"TREND", 1, 4, 50, "AAAb", [](Evaluator& ev, Arguments a) { return predict(ev, a, false); }},
    {"GROWTH", 1, 4, 52, "AAAb", [](Evaluator& ev, Arguments a) { return predict(ev, a, true); }},
};

}  // namespace

FunctionList regressionFunctions() {
  return table;
}

}  // namespace lodex::formula
