#include "modal/LinearModels.h"

#include <algorithm>

#include "modal/Nnls.h"
#include "modal/Svd.h"

namespace lodex {
namespace {

constexpr double relativeErrorPercent = 4;
constexpr double leastAssay = 1E-8;  // in place of an assay of 0 in divisions
constexpr double singularThreshold = 1E-6;

}  // namespace

bool LinearModels::isWeighed() const {
  return model_ == EstimationModel::WeighedLeastSquare ||
         model_ == EstimationModel::WeighedNonNegative;
}

bool LinearModels::isNonNegative() const {
  return model_ == EstimationModel::NonNegative || model_ == EstimationModel::WeighedNonNegative;
}

void LinearModels::start(EstimationModel model, int m, int n, const double* a) {
  model_ = model;
  m_ = m;
  n_ = n;
  side_ = std::max(m, n);
  cases_ = 0;
  const auto side = static_cast<size_t>(side_);
  A0_.assign(side * side, 0.0);
  for (int j = 0; j < n; ++j) {
    std::copy(a + static_cast<long>(j) * m, a + static_cast<long>(j + 1) * m,
              A0_.begin() + static_cast<long>(j) * side_);
  }
  A_ = A0_;
  b_.assign(side, 0.0);
  w_.assign(side, 0.0);
  work_.assign(side, 0.0);
  index_.assign(side, 0);
  if (!isNonNegative()) {
    V_.assign(side * side, 0.0);
    rv1_.assign(side, 0.0);
  }
}

std::string_view LinearModels::solve(const double* b, double* x, double* r) {
  ++cases_;
  std::copy(b, b + m_, b_.begin());
  if (isNonNegative()) {
    std::copy(A0_.begin(), A0_.begin() + static_cast<long>(n_) * side_, A_.begin());
  }
  if (isWeighed()) weigh();
  std::fill(x, x + n_, 0.0);
  const std::string_view message = isNonNegative() ? SolveNonNegative(x) : SolveBySvd(x);

  if (r == nullptr) return message;
  std::copy(b, b + m_, r);
  for (int j = 0; j < std::min(m_, n_); ++j) {
    const double* column = A0_.data() + static_cast<long>(j) * side_;
    for (int k = 0; k < m_; ++k) r[k] -= x[j] * column[k];
  }
  return message;
}

void LinearModels::weigh() {
  for (int i = 0; i < m_; ++i) {
    double& bi = b_[static_cast<size_t>(i)];
    if (bi == 0) bi = leastAssay;
    const double error = bi * relativeErrorPercent;
    for (int j = 0; j < n_; ++j) {
      const size_t at = static_cast<size_t>(i) + static_cast<size_t>(j) * side_;
      A_[at] = A0_[at] * 100 / error;
    }
    bi = bi * 100 / error;
  }
}

std::string_view LinearModels::SolveBySvd(double* x) {
  bool converged = true;
  if (cases_ == 1) {
    converged = SvdDecompose(A_.data(), side_, m_, n_, w_.data(), V_.data(), side_, rv1_.data());
    double largest = 0;
    for (int j = 0; j < n_; ++j) largest = std::max(largest, w_[static_cast<size_t>(j)]);
    for (int j = 0; j < n_; ++j) {
      double& wj = w_[static_cast<size_t>(j)];
      if (wj < largest * singularThreshold) wj = 0;
    }
  }
  SvdBackSubstitute(A_.data(), side_, w_.data(), V_.data(), side_, m_, n_, b_.data(), x,
                    work_.data());
  return converged ? "" : " Singular value decomposition has not converged";
}

std::string_view LinearModels::SolveNonNegative(double* x) {
  double rnorm = 0;
  const NnlsMode mode =
      Nnls(A_.data(), side_, m_, n_, b_.data(), x, rnorm, w_.data(), work_.data(), index_.data());
  return mode == NnlsMode::IterationLimit ? " Iteration counts exceeds 3*n" : "";
}

}  // namespace lodex
