#pragma once

#include <cmath>
#include <vector>

#include "worksheet/formula/Evaluator.h"

/// What routines of several classes share.
namespace lodex::formula {

/// True when argument `index` was written.
inline bool given(Arguments a, size_t index) {
  return index < a.size() && !a[index].isMissing();
}

inline double numberOr(Arguments a, size_t index, double otherwise) {
  return given(a, index) ? a[index].number : otherwise;
}

/// Visits the numbers of arguments as SUM does: in areas and arrays only numbers count, a value
/// written as an argument is converted. Returns false with `error` set at the first error.
template <typename Visit>
bool visitNumbers(Evaluator& ev, const Operand& argument, Operand& error, Visit visit) {
  return ev.visitValues(argument, [&](const Operand& value, bool fromCells) {
    if (value.isNumber()) {
      visit(value.number);
      return true;
    }
    if (value.isError()) {
      error = value;
      return false;
    }
    if (fromCells) return true;
    double number = 0;
    if (!ev.toNumber(value, number, error)) return false;
    visit(number);
    return true;
  });
}

template <typename Visit>
bool visitNumbers(Evaluator& ev, Arguments arguments, Operand& error, Visit visit) {
  for (const Operand& argument : arguments) {
    if (!visitNumbers(ev, argument, error, visit)) return false;
  }
  return true;
}

/// The numbers of arguments, with the rules of visitNumbers.
bool numbersOf(Evaluator& ev, Arguments arguments, std::vector<double>& numbers, Operand& error);

/// The numbers of two areas of equal size, of the places where both hold one. #N/A when the sizes
/// differ.
bool pairsOf(Evaluator& ev, const Operand& a, const Operand& b, std::vector<double>& first,
             std::vector<double>& second, Operand& error);

/// A number cut to a whole one; false when it lies outside of low .. high.
inline bool wholeBetween(double number, double low, double high, int& whole) {
  if (!(number >= low && number < high + 1)) return false;
  whole = static_cast<int>(std::floor(number));
  return true;
}

/// Rounding with halves away from zero, at `digits` decimals (negative ones left of the point), in
/// decimal terms: 1.005 at 2 decimals is 1.01 although its double lies a little below.
double roundDecimal(double value, int digits);
double roundDecimalDown(double value, int digits);
double roundDecimalUp(double value, int digits);

/// What the mean, deviation and similar functions are made of.
double meanOf(const std::vector<double>& numbers);
/// Sum of squared distances from the mean.
double squaredDeviations(const std::vector<double>& numbers);

}  // namespace lodex::formula
