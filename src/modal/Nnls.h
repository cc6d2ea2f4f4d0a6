#pragma once

/// Non-negative least squares: Lawson, C.L. & Hanson, R.J. (1974, 1995), Solving Least Squares
/// Problems, algorithm NNLS with its Householder and Givens helpers. Matrices are plain arrays that
/// the caller owns, stored column by column; element (i, j), counted from 0, of a matrix with
/// `mda` rows of storage is at a[i + j * mda]. Nothing here allocates.
namespace lodex {

/// x minus y, as a comparison on stored doubles needs it.
double DIFF(double x, double y);

/// Constructs (mode 1) or only applies (mode 2) the Householder transformation that takes the
/// elements l1 .. m-1 of the vector u into its pivot element. Indices count from 0. In mode 1 the
/// pivot of u takes its new value and `up` the rest of the transformation. It is applied to `ncv`
/// vectors in c: elements lie `ice` apart, vectors `icv` apart. Does nothing unless
/// 0 <= lpivot < l1 < m.
void Householder12(int mode, int lpivot, int l1, int m, double* u, double& up, double* c, int ice,
                   int icv, int ncv);

/// The rotation (c, s) that takes (a, b) to (sig, 0).
void GivensCompute(double a, double b, double& c, double& s, double& sig);

/// Applies a rotation to the pair (x, y).
void GivensApply(double c, double s, double& x, double& y);

enum class NnlsMode {
  Solved = 1,
  BadDimensions = 2,   // m or n is not above 0; x is untouched
  IterationLimit = 3,  // more than 3*n inner iterations; x is the last feasible point
};

/// Finds x >= 0 (n values) that minimises |A*x - b| for A of m rows and n columns. Destroys A and
/// b. `rnorm` is the norm of the residual, `w` (n) receives the dual vector; `zz` (m) and `index`
/// (n) are work space.
NnlsMode Nnls(double* a, int mda, int m, int n, double* b, double* x, double& rnorm, double* w,
              double* zz, int* index);

}  // namespace lodex
