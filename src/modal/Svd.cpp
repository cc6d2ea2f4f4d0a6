#include "modal/Svd.h"

#include <algorithm>
#include <cmath>

namespace lodex {
namespace {

double signOf(double value) {
  return value != 0 ? value / std::abs(value) : 1;
}

// |sqrt(s)| with the sign against that of f.
double againstSign(double s, double f) {
  return -std::abs(std::pow(s, 0.5)) * signOf(f);
}

double hypotenuse(double a, double b) {
  return std::sqrt(a * a + b * b);
}

// Too small to change `scale` when added to it.
bool negligible(double value, double scale) {
  return std::abs(value) + scale == scale;
}

struct Matrix {
  double* data;
  int ld;
  double& operator()(int i, int j) const { return data[i + static_cast<long>(j) * ld]; }

  // Replaces columns j and k by their combinations c*j + s*k and c*k - s*j in the first rows.
  void rotateColumns(int rows, int j, int k, double c, double s) const {
    for (int i = 0; i < rows; ++i) {
      const double x = (*this)(i, j);
      const double z = (*this)(i, k);
      (*this)(i, j) = x * c + z * s;
      (*this)(i, k) = z * c - x * s;
    }
  }
};

struct Decomposition {
  Matrix a;
  Matrix v;
  double* w;
  double* rv1;  // the superdiagonal; rv1[0] is 0
  int m, n;
  double norm = 0;

  double reduceColumn(int i);
  double reduceRow(int i);
  void bidiagonalise();
  void accumulateRight();
  void accumulateLeft();
  void cancelSuperdiagonal(int l, int k);
  void sweep(int l, int k);
  bool diagonalise();
};

// Zeroes column i below the diagonal; returns the new diagonal element.
double Decomposition::reduceColumn(int i) {
  if (i >= m) return 0;
  double scale = 0;
  for (int k = i; k < m; ++k) scale += std::abs(a(k, i));
  if (scale == 0) return 0;
  double s = 0;
  for (int k = i; k < m; ++k) {
    a(k, i) /= scale;
    s += a(k, i) * a(k, i);
  }
  const double f = a(i, i);
  const double g = againstSign(s, f);
  const double h = f * g - s;
  a(i, i) = f - g;
  for (int j = i + 1; j < n; ++j) {
    double sum = 0;
    for (int k = i; k < m; ++k) sum += a(k, i) * a(k, j);
    const double factor = sum / h;
    for (int k = i; k < m; ++k) a(k, j) += factor * a(k, i);
  }
  for (int k = i; k < m; ++k) a(k, i) *= scale;
  return scale * g;
}

// Zeroes row i right of the superdiagonal; returns the new superdiagonal element.
double Decomposition::reduceRow(int i) {
  const int l = i + 1;
  if (i >= m || l >= n) return 0;
  double scale = 0;
  for (int k = l; k < n; ++k) scale += std::abs(a(i, k));
  if (scale == 0) return 0;
  double s = 0;
  for (int k = l; k < n; ++k) {
    a(i, k) /= scale;
    s += a(i, k) * a(i, k);
  }
  const double f = a(i, l);
  const double g = againstSign(s, f);
  const double h = f * g - s;
  a(i, l) = f - g;
  for (int k = l; k < n; ++k) rv1[k] = a(i, k) / h;
  for (int j = l; j < m; ++j) {
    double sum = 0;
    for (int k = l; k < n; ++k) sum += a(j, k) * a(i, k);
    for (int k = l; k < n; ++k) a(j, k) += sum * rv1[k];
  }
  for (int k = l; k < n; ++k) a(i, k) *= scale;
  return scale * g;
}

void Decomposition::bidiagonalise() {
  double superdiagonal = 0;
  for (int i = 0; i < n; ++i) {
    rv1[i] = superdiagonal;
    w[i] = reduceColumn(i);
    superdiagonal = reduceRow(i);
    norm = std::max(norm, std::abs(w[i]) + std::abs(rv1[i]));
  }
}

void Decomposition::accumulateRight() {
  for (int i = n - 1; i >= 0; --i) {
    const int l = i + 1;
    if (l < n) {
      const double g = rv1[l];
      if (g != 0) {
        // Two divisions instead of one by the product keep clear of underflow.
        for (int j = l; j < n; ++j) v(j, i) = (a(i, j) / a(i, l)) / g;
        for (int j = l; j < n; ++j) {
          double sum = 0;
          for (int k = l; k < n; ++k) sum += a(i, k) * v(k, j);
          for (int k = l; k < n; ++k) v(k, j) += sum * v(k, i);
        }
      }
      for (int j = l; j < n; ++j) v(i, j) = v(j, i) = 0;
    }
    v(i, i) = 1;
  }
}

void Decomposition::accumulateLeft() {
  for (int i = std::min(m, n) - 1; i >= 0; --i) {
    const int l = i + 1;
    for (int j = l; j < n; ++j) a(i, j) = 0;
    if (w[i] != 0) {
      const double inverse = 1 / w[i];
      for (int j = l; j < n; ++j) {
        double sum = 0;
        for (int k = l; k < m; ++k) sum += a(k, i) * a(k, j);
        const double factor = (sum / a(i, i)) * inverse;
        for (int k = i; k < m; ++k) a(k, j) += factor * a(k, i);
      }
      for (int k = i; k < m; ++k) a(k, i) *= inverse;
    } else {
      for (int k = i; k < m; ++k) a(k, i) = 0;
    }
    a(i, i) += 1;
  }
}

// Rotates rv1[l] away when the diagonal element above it is negligible.
void Decomposition::cancelSuperdiagonal(int l, int k) {
  double c = 0;
  double s = 1;
  for (int i = l; i <= k; ++i) {
    const double f = s * rv1[i];
    rv1[i] = c * rv1[i];
    if (negligible(f, norm)) return;
    const double g = w[i];
    w[i] = hypotenuse(f, g);
    const double inverse = 1 / w[i];
    c = g * inverse;
    s = -(f * inverse);
    a.rotateColumns(m, l - 1, i, c, s);
  }
}

// One implicitly shifted QR sweep over the block l .. k.
void Decomposition::sweep(int l, int k) {
  double x = w[l];
  double y = w[k - 1];
  const double z = w[k];
  double g = rv1[k - 1];
  double h = rv1[k];
  double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
  g = hypotenuse(f, 1);
  f = ((x - z) * (x + z) + h * (y / (f + std::abs(g) * signOf(f)) - h)) / x;
  double c = 1;
  double s = 1;
  for (int j = l; j < k; ++j) {
    const int i = j + 1;
    g = rv1[i];
    y = w[i];
    h = s * g;
    g = c * g;
    double length = hypotenuse(f, h);
    rv1[j] = length;
    c = f / length;
    s = h / length;
    f = x * c + g * s;
    g = g * c - x * s;
    h = y * s;
    y = y * c;
    v.rotateColumns(n, j, i, c, s);
    length = hypotenuse(f, h);
    w[j] = length;
    if (length != 0) {
      const double inverse = 1 / length;
      c = f * inverse;
      s = h * inverse;
    }
    f = c * g + s * y;
    x = c * y - s * g;
    a.rotateColumns(m, j, i, c, s);
  }
  rv1[l] = 0;
  rv1[k] = f;
  w[k] = x;
}

bool Decomposition::diagonalise() {
  for (int k = n - 1; k >= 0; --k) {
    for (int iteration = 1;; ++iteration) {
      // Where the block that ends at k begins. rv1[0] is 0, so l never passes 0.
      int l = k;
      bool cancel = false;
      while (l > 0 && !negligible(rv1[l], norm)) {
        if (negligible(w[l - 1], norm)) {
          cancel = true;
          break;
        }
        --l;
      }
      if (cancel) cancelSuperdiagonal(l, k);
      if (l == k) break;
      if (iteration == svdIterationLimit) return false;
      sweep(l, k);
    }
    if (w[k] < 0) {
      w[k] = -w[k];
      for (int j = 0; j < n; ++j) v(j, k) = -v(j, k);
    }
  }
  return true;
}

}  // namespace

bool SvdDecompose(double* a, int lda, int m, int n, double* w, double* v, int ldv, double* rv1) {
  Decomposition d{{a, lda}, {v, ldv}, w, rv1, m, n};
  d.bidiagonalise();
  d.accumulateRight();
  d.accumulateLeft();
  return d.diagonalise();
}

void SvdBackSubstitute(const double* u, int ldu, const double* w, const double* v, int ldv, int m,
                       int n, const double* b, double* x, double* tmp) {
  for (int j = 0; j < n; ++j) {
    tmp[j] = 0;
    if (w[j] == 0) continue;
    double sum = 0;
    for (int i = 0; i < m; ++i) sum += u[i + static_cast<long>(j) * ldu] * b[i];
    tmp[j] = sum / w[j];
  }
  for (int j = 0; j < n; ++j) {
    double sum = 0;
    for (int k = 0; k < n; ++k) sum += v[j + static_cast<long>(k) * ldv] * tmp[k];
    x[j] = sum;
  }
}

}  // namespace lodex
