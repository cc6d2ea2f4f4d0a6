#pragma once

#include <vector>

#include "worksheet/formula/Evaluator.h"

namespace lodex::formula {

/// Numbers row by row; positions count from 0.
struct Matrix {
  Matrix() = default;
  Matrix(int rowCount, int columnCount)
      : rows(rowCount),
        columns(columnCount),
        values(static_cast<size_t>(rowCount) * static_cast<size_t>(columnCount)) {}
  int rows = 0, columns = 0;
  std::vector<double> values;
  double& at(int row, int column) {
    return values[static_cast<size_t>(row) * static_cast<size_t>(columns) +
                  static_cast<size_t>(column)];
  }
  double at(int row, int column) const { return const_cast<Matrix*>(this)->at(row, column); }
};

/// Reads a matrix in which every element is a number; else false with `error` set.
bool readMatrix(Evaluator& ev, const Operand& operand, Matrix& matrix, Operand& error);

Operand matrixResult(Evaluator& ev, const Matrix& matrix);

/// Gaussian elimination with row exchanges: makes the square `a` upper triangular, does the same to
/// the rows of `b`, and returns the determinant of `a`, 0 when it is singular.
double eliminate(Matrix& a, Matrix& b);

}  // namespace lodex::formula
