#include "modal/Nnls.h"

#include <algorithm>
#include <cmath>

namespace lodex {
namespace {

// How much of a column must be independent of the columns already chosen for it to count as
// independent of them.
constexpr double independenceFactor = 0.01;

// The state of one solve. The first `chosen` places of `index` are the columns in the solution, in
// the order of their rows in the triangle; the rest are free columns, held at 0.
struct Problem {
  double* a;
  int mda, m, n;
  double* b;
  double* x;
  double* w;
  double* zz;
  int* index;
  int chosen = 0;

  double& at(int row, int column) { return a[row + static_cast<long>(column) * mda]; }
  double* column(int j) { return a + static_cast<long>(j) * mda; }

  void computeDuals();
  int bestFreePlace() const;
  bool enter(int place);
  void solveTriangle();
  bool moveTowards(int& blocking);
  void leave(int place);
  int firstNotPositive() const;
};

void Problem::computeDuals() {
  for (int place = chosen; place < n; ++place) {
    const double* aj = column(index[place]);
    double sum = 0;
    for (int row = chosen; row < m; ++row) sum += aj[row] * b[row];
    w[index[place]] = sum;
  }
}

int Problem::bestFreePlace() const {
  double best = 0;
  int bestPlace = -1;
  for (int place = chosen; place < n; ++place) {
    if (w[index[place]] > best) {
      best = w[index[place]];
      bestPlace = place;
    }
  }
  return bestPlace;
}

// Takes a free column into the solution if it is independent and would get a positive value.
bool Problem::enter(int place) {
  const int pivot = chosen;
  const int j = index[place];
  double* aj = column(j);
  const double saved = aj[pivot];
  double up = 0;
  Householder12(1, pivot, pivot + 1, m, aj, up, nullptr, 1, 1, 0);
  double norm = 0;
  for (int row = 0; row < pivot; ++row) norm += aj[row] * aj[row];
  norm = std::sqrt(norm);
  if (!(DIFF(norm + std::abs(aj[pivot]) * independenceFactor, norm) > 0)) {
    aj[pivot] = saved;
    return false;
  }
  std::copy(b, b + m, zz);
  Householder12(2, pivot, pivot + 1, m, aj, up, zz, 1, 1, 1);
  if (!(zz[pivot] / aj[pivot] > 0)) {
    aj[pivot] = saved;
    return false;
  }

  std::copy(zz, zz + m, b);
  index[place] = index[chosen];
  index[chosen] = j;
  ++chosen;
  for (int p = chosen; p < n; ++p) {
    Householder12(2, pivot, pivot + 1, m, aj, up, column(index[p]), 1, mda, 1);
  }
  for (int row = chosen; row < m; ++row) aj[row] = 0;
  w[j] = 0;
  return true;
}

// Back substitution from b into zz.
void Problem::solveTriangle() {
  std::copy(b, b + m, zz);
  for (int place = chosen - 1; place >= 0; --place) {
    const double* aj = column(index[place]);
    zz[place] /= aj[place];
    for (int row = 0; row < place; ++row) zz[row] -= aj[row] * zz[place];
  }
}

// Moves x towards zz as far as it stays feasible. True when all of zz was taken; else `blocking`
// is the place that stopped it.
bool Problem::moveTowards(int& blocking) {
  double alpha = 2;
  for (int place = 0; place < chosen; ++place) {
    if (zz[place] > 0) continue;
    const double xl = x[index[place]];
    const double t = -xl / (zz[place] - xl);
    if (alpha > t) {
      alpha = t;
      blocking = place;
    }
  }
  if (alpha == 2) {
    for (int place = 0; place < chosen; ++place) x[index[place]] = zz[place];
    return true;
  }
  for (int place = 0; place < chosen; ++place) {
    double& xl = x[index[place]];
    xl += alpha * (zz[place] - xl);
  }
  return false;
}

// Sends a column of the solution back to the free ones and makes the triangle whole again.
void Problem::leave(int place) {
  const int out = index[place];
  x[out] = 0;
  for (int p = place + 1; p < chosen; ++p) {
    const int j = index[p];
    index[p - 1] = j;
    double c, s, sig;
    GivensCompute(at(p - 1, j), at(p, j), c, s, sig);
    at(p - 1, j) = sig;
    at(p, j) = 0;
    for (int l = 0; l < n; ++l) {
      if (l != j) GivensApply(c, s, at(p - 1, l), at(p, l));
    }
    GivensApply(c, s, b[p - 1], b[p]);
  }
  --chosen;
  index[chosen] = out;
}

int Problem::firstNotPositive() const {
  for (int place = 0; place < chosen; ++place) {
    if (x[index[place]] <= 0) return place;
  }
  return -1;
}

}  // namespace

double DIFF(double x, double y) {
  return x - y;
}

void Householder12(int mode, int lpivot, int l1, int m, double* u, double& up, double* c, int ice,
                   int icv, int ncv) {
  if (lpivot < 0 || lpivot >= l1 || l1 >= m) return;
  if (mode == 1) {
    double largest = std::abs(u[lpivot]);
    for (int i = l1; i < m; ++i) largest = std::max(largest, std::abs(u[i]));
    if (!(largest > 0)) return;
    double sum = (u[lpivot] / largest) * (u[lpivot] / largest);
    for (int i = l1; i < m; ++i) sum += (u[i] / largest) * (u[i] / largest);
    double length = largest * std::sqrt(sum);
    if (u[lpivot] > 0) length = -length;
    up = u[lpivot] - length;
    u[lpivot] = length;
  }
  if (ncv <= 0) return;
  double scale = up * u[lpivot];
  if (scale >= 0) return;
  scale = 1 / scale;
  for (int vector = 0; vector < ncv; ++vector) {
    double* cv = c + static_cast<long>(vector) * icv;
    double sum = cv[lpivot * ice] * up;
    for (int i = l1; i < m; ++i) sum += cv[i * ice] * u[i];
    if (sum == 0) continue;
    sum *= scale;
    cv[lpivot * ice] += sum * up;
    for (int i = l1; i < m; ++i) cv[i * ice] += sum * u[i];
  }
}

void GivensCompute(double a, double b, double& c, double& s, double& sig) {
  if (std::abs(a) > std::abs(b)) {
    const double ratio = b / a;
    const double root = std::sqrt(1 + ratio * ratio);
    c = std::copysign(1 / root, a);
    s = c * ratio;
    sig = std::abs(a) * root;
  } else if (b != 0) {
    const double ratio = a / b;
    const double root = std::sqrt(1 + ratio * ratio);
    s = std::copysign(1 / root, b);
    c = s * ratio;
    sig = std::abs(b) * root;
  } else {
    c = 0;
    s = 1;
    sig = 0;
  }
}

void GivensApply(double c, double s, double& x, double& y) {
  const double rotated = c * x + s * y;
  y = -s * x + c * y;
  x = rotated;
}

NnlsMode Nnls(double* a, int mda, int m, int n, double* b, double* x, double& rnorm, double* w,
              double* zz, int* index) {
  rnorm = 0;
  if (m <= 0 || n <= 0) return NnlsMode::BadDimensions;
  Problem p{a, mda, m, n, b, x, w, zz, index};
  for (int j = 0; j < n; ++j) {
    index[j] = j;
    x[j] = 0;
  }

  NnlsMode mode = NnlsMode::Solved;
  const int iterationLimit = 3 * n;
  int iterations = 0;
  while (mode == NnlsMode::Solved && p.chosen < n && p.chosen < m) {
    p.computeDuals();
    int place = p.bestFreePlace();
    while (place >= 0 && !p.enter(place)) {
      w[index[place]] = 0;
      place = p.bestFreePlace();
    }
    if (place < 0) break;
    for (;;) {
      if (++iterations > iterationLimit) {
        mode = NnlsMode::IterationLimit;
        break;
      }
      p.solveTriangle();
      int blocking = -1;
      if (p.moveTowards(blocking)) break;
      for (; blocking >= 0; blocking = p.firstNotPositive()) p.leave(blocking);
    }
  }

  double sum = 0;
  for (int row = p.chosen; row < m; ++row) sum += b[row] * b[row];
  rnorm = std::sqrt(sum);
  if (p.chosen >= m) std::fill(w, w + n, 0.0);
  return mode;
}

}  // namespace lodex
