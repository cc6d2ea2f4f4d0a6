#pragma once

#include <string_view>
#include <vector>

namespace lodex {

/// How a round estimates its amounts; the numbers are those that set-ups store.
enum class EstimationModel {
  LeastSquare = 0,
  WeighedLeastSquare = 1,
  NonNegative = 2,
  WeighedNonNegative = 3,
};

/// Solves A*x = b for one coefficient matrix and any number of right-hand sides, the cases. The
/// weighed models divide each equation by its own relative error of 4 per cent. The decomposition
/// of the two least square models is made with the first case and serves the later ones, so that
/// only the first case of a weighed least square is truly weighed; start anew for each case to
/// weigh them all. Work space is kept between matrices, and solving a case allocates nothing.
class LinearModels {
 public:
  /// Takes over A: m equations (rows) by n unknowns, stored column by column. The next case is the
  /// first. Sizes must not be negative.
  void start(EstimationModel model, int m, int n, const double* a);

  /// Solves the next case: `b` has m values, `x` receives n, and `r`, unless null, the m residuals
  /// b - A*x. When there are more unknowns than equations only the first m unknowns enter the
  /// residuals. Returns what a note has to say about the case, empty on success.
  std::string_view solve(const double* b, double* x, double* r);

  /// The singular values of the matrix in use, those below 1E-6 of the largest set to 0; filled by
  /// the first case of a least square model.
  const std::vector<double>& singularValues() const { return w_; }

 private:
  bool isWeighed() const;
  bool isNonNegative() const;
  void weigh();
  std::string_view SolveBySvd(double* x);
  std::string_view SolveNonNegative(double* x);

  EstimationModel model_ = EstimationModel::LeastSquare;
  int m_ = 0, n_ = 0;
  int side_ = 0;  // rows and columns of A_ and A0_: the larger of m and n
  int cases_ = 0;
  std::vector<double> A_, A0_, b_, w_, V_, rv1_, work_;
  std::vector<int> index_;
};

}  // namespace lodex
