// Matrices.
#include <cmath>

#include "worksheet/formula/FunctionHelp.h"
#include "worksheet/formula/Matrix.h"

namespace lodex::formula {

bool readMatrix(Evaluator& ev, const Operand& operand, Matrix& matrix, Operand& error) {
  if (operand.isError()) {
    error = operand;
    return false;
  }
  error = ErrorCode::Value;
  const int rows = Evaluator::rowsOf(operand);
  const int columns = Evaluator::columnsOf(operand);
  // Whole columns cannot be matrices, since their empty end holds no numbers.
  if (operand.tag == Tag::Areas || static_cast<double>(rows) * columns > 4e6) return false;
  matrix = Matrix(rows, columns);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const Operand value = ev.element(operand, row, column);
      if (value.isError()) error = value;
      if (!value.isNumber()) return false;
      matrix.at(row, column) = value.number;
    }
  }
  return true;
}

Operand matrixResult(Evaluator& ev, const Matrix& matrix) {
  Array* out = ev.newArray(matrix.rows, matrix.columns);
  if (out == nullptr) return ErrorCode::Num;
  for (size_t i = 0; i < matrix.values.size(); ++i) {
    out->values[i] =
        std::isfinite(matrix.values[i]) ? Operand(matrix.values[i]) : Operand(ErrorCode::Num);
  }
  return Operand(out);
}

double eliminate(Matrix& a, Matrix& b) {
  double determinant = 1;
  const int n = a.rows;
  for (int step = 0; step < n; ++step) {
    int pivot = step;
    for (int row = step + 1; row < n; ++row) {
      if (std::abs(a.at(row, step)) > std::abs(a.at(pivot, step))) pivot = row;
    }
    if (a.at(pivot, step) == 0) return 0;
    if (pivot != step) {
      determinant = -determinant;
      for (int column = 0; column < n; ++column) std::swap(a.at(pivot, column), a.at(step, column));
      for (int column = 0; column < b.columns; ++column)
        std::swap(b.at(pivot, column), b.at(step, column));
    }
    determinant *= a.at(step, step);
    for (int row = step + 1; row < n; ++row) {
      const double factor = a.at(row, step) / a.at(step, step);
      if (factor == 0) continue;
      for (int column = step; column < n; ++column)
        a.at(row, column) -= factor * a.at(step, column);
      for (int column = 0; column < b.columns; ++column)
        b.at(row, column) -= factor * b.at(step, column);
    }
  }
  return determinant;
}

namespace {

Operand fnMmult(Evaluator& ev, Arguments a) {
  Matrix x;
  Matrix y;
  Operand error;
  if (!readMatrix(ev, a[0], x, error) || !readMatrix(ev, a[1], y, error)) return error;
  if (x.columns != y.rows) return ErrorCode::Value;
  if (static_cast<double>(x.rows) * y.columns * x.columns > 2e9) return ErrorCode::Num;
  Matrix product(x.rows, y.columns);
  for (int row = 0; row < x.rows; ++row) {
    for (int k = 0; k < x.columns; ++k) {
      const double factor = x.at(row, k);
      for (int column = 0; column < y.columns; ++column)
        product.at(row, column) += factor * y.at(k, column);
    }
  }
  return matrixResult(ev, product);
}

Operand fnMdeterm(Evaluator& ev, Arguments a) {
  Matrix x;
  Operand error;
  if (!readMatrix(ev, a[0], x, error)) return error;
  if (x.rows != x.columns || x.rows > 1000) return ErrorCode::Value;
  Matrix none(x.rows, 0);
  return eliminate(x, none);
}

Operand fnMinverse(Evaluator& ev, Arguments a) {
  Matrix x;
  Operand error;
  if (!readMatrix(ev, a[0], x, error)) return error;
  if (x.rows != x.columns || x.rows > 1000) return ErrorCode::Value;
  const int n = x.rows;
  Matrix inverse(n, n);
  for (int i = 0; i < n; ++i) inverse.at(i, i) = 1;
  double size = 0;
  for (const double value : x.values) size = std::max(size, std::abs(value));
  if (eliminate(x, inverse) == 0) return ErrorCode::Num;
  for (int step = n - 1; step >= 0; --step) {
    // A pivot of nothing but rounding errors means a singular matrix.
    if (std::abs(x.at(step, step)) < size * n * 1e-16) return ErrorCode::Num;
    for (int column = 0; column < n; ++column) {
      double sum = inverse.at(step, column);
      for (int k = step + 1; k < n; ++k) sum -= x.at(step, k) * inverse.at(k, column);
      inverse.at(step, column) = sum / x.at(step, step);
    }
  }
  return matrixResult(ev, inverse);
}

constexpr FunctionInfo table[] = {
    {"MMULT", 2, 2, 165, "A", fnMmult},
    {"MDETERM", 1, 1, 163, "A", fnMdeterm},
    {"MINVERSE", 1, 1, 164, "A", fnMinverse},
};

}  // namespace

FunctionList matrixFunctions() {
  return table;
}

}  // namespace lodex::formula
