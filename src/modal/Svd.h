#pragma once

/// Singular value decomposition by Householder bidiagonalisation and implicitly shifted QR: Golub,
/// G.H. & Reinsch, C. (1970), Numerische Mathematik 14, 403-420, as published in Press, W.H. et al.
/// (1986), Numerical Recipes. Matrices are plain arrays stored column by column; element (i, j),
/// counted from 0, of a matrix with `ld` rows of storage is at a[i + j * ld].
namespace lodex {

/// Most sweeps that are spent on one singular value.
inline constexpr int svdIterationLimit = 30;

/// Replaces A (m rows, n columns, storage for max(m, n) rows) by U, and fills the n singular values
/// `w`, unsorted, and V (n by n), so that A = U * diag(w) * transposed V. `rv1` (n) is work space.
/// False when a singular value has not converged in 30 sweeps; the matrices are then as far as they
/// came.
bool SvdDecompose(double* a, int lda, int m, int n, double* w, double* v, int ldv, double* rv1);

/// Solves A*x = b from the decomposition, leaving out singular values of exactly 0. `b` has m
/// values, `x` n; `tmp` (n) is work space.
void SvdBackSubstitute(const double* u, int ldu, const double* w, const double* v, int ldv, int m,
                       int n, const double* b, double* x, double* tmp);

}  // namespace lodex
