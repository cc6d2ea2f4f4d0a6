// Arithmetic, rounding, trigonometry, combinatorics.
#include <array>
#include <numeric>
#include <random>
#include <string>

#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double largestWhole = 9007199254740992.0;

// Spreadsheet programs take pi rounded to 64 bits where they take half turns off an angle. Sines
// and cosines that should be 0 are then the tiny numbers that workbooks hold: SIN(PI()) is
// 1.22514845490862E-16.
double angleLeft(double angle, double halfTurns) {
  constexpr double piRest = 1.2251484549086200e-16;  // pi rounded to 64 bits, less pi to 53 bits
  return std::fma(-halfTurns, pi, angle) - halfTurns * piRest;
}

constexpr double nearZeroAngle = 1e-3;

double sine(double angle) {
  const double turns = std::round(angle / pi);
  const double left = angleLeft(angle, turns);
  if (std::abs(left) > nearZeroAngle) return std::sin(angle);
  return std::fmod(turns, 2) == 0 ? std::sin(left) : -std::sin(left);
}

double cosine(double angle) {
  const double turns = std::floor(angle / pi);
  const double left = angleLeft(angle, turns + 0.5);
  if (std::abs(left) > nearZeroAngle) return std::cos(angle);
  return std::fmod(turns, 2) == 0 ? -std::sin(left) : std::sin(left);
}

// The value of x * 10^digits, moved to a whole or half number when it misses it by rounding only.
double scaled(double value, int digits) {
  const double power = std::pow(10.0, std::abs(digits));
  const double raw = digits >= 0 ? value * power : value / power;
  const double twice = std::round(raw * 2);
  return std::abs(raw * 2 - twice) <= std::abs(twice) * 1e-15 ? twice / 2 : raw;
}

double unscaled(double value, int digits) {
  const double power = std::pow(10.0, std::abs(digits));
  return digits >= 0 ? value / power : value * power;
}

template <typename Whole>
double roundWith(double value, int digits, Whole whole) {
  if (value == 0 || !std::isfinite(value)) return value;
  const double magnitude = std::floor(std::log10(std::abs(value)));
  if (digits + magnitude > 15) return value;  // there are no such digits
  if (digits < -308) return 0;
  return unscaled(whole(scaled(value, digits)), digits);
}

int digitsOf(double number) {
  return static_cast<int>(std::trunc(std::clamp(number, -400.0, 400.0)));
}

// A whole multiple of `step` next to number / step; rounding errors of the quotient do not count.
template <typename Whole>
double toMultiple(double number, double step, Whole whole) {
  const double quotient = number / step;
  const double nearest = std::round(quotient);
  const bool exact = std::abs(quotient - nearest) <= std::abs(nearest) * 1e-15;
  return (exact ? nearest : whole(quotient)) * step;
}

Operand ceilingOrFloor(Arguments a, bool up) {
  const double number = a[0].number;
  const double step = numberOr(a, 1, number < 0 ? -1 : 1);
  if (number == 0) return 0.0;
  if (step == 0) return up ? Operand(0.0) : Operand(ErrorCode::DivisionByZero);
  if (number > 0 && step < 0) return ErrorCode::Num;
  // With a negative step the direction turns round towards or away from zero.
  const auto whole = [up](double x) { return up ? std::ceil(x) : std::floor(x); };
  return toMultiple(number, step, whole);
}

// The forms that take the sign of the step from the number; a third argument turns negative numbers
// the other way.
Operand multipleMath(Arguments a, bool up) {
  const double step = std::abs(numberOr(a, 1, 1));
  if (a[0].number == 0 || step == 0) return 0.0;
  const bool turned = a[0].number < 0 && numberOr(a, 2, 0) != 0;
  const bool towardsMore = up != turned;
  return toMultiple(a[0].number, step,
                    [&](double x) { return towardsMore ? std::ceil(x) : std::floor(x); });
}

Operand fnLog(Evaluator&, Arguments a) {
  const double base = numberOr(a, 1, 10);
  if (a[0].number <= 0 || base <= 0) return ErrorCode::Num;
  if (base == 1) return ErrorCode::DivisionByZero;
  if (base == 10) return std::log10(a[0].number);
  return std::log(a[0].number) / std::log(base);
}

Operand fnMod(Evaluator&, Arguments a) {
  const double n = a[0].number;
  const double d = a[1].number;
  if (d == 0) return ErrorCode::DivisionByZero;
  const double rest = std::fmod(n, d);
  return rest != 0 && (rest < 0) != (d < 0) ? rest + d : rest;
}

Operand fnPower(Evaluator&, Arguments a) {
  if (a[0].number == 0 && a[1].number == 0) return ErrorCode::Num;
  if (a[0].number == 0 && a[1].number < 0) return ErrorCode::DivisionByZero;
  return std::pow(a[0].number, a[1].number);
}

Operand fnMround(Evaluator&, Arguments a) {
  const double number = a[0].number;
  const double step = a[1].number;
  if (number == 0 || step == 0) return 0.0;
  if ((number < 0) != (step < 0)) return ErrorCode::Num;
  const double quotient = number / step;
  return std::floor(quotient + 0.5 + quotient * 1e-15) * step;
}

Operand fnEven(Evaluator&, Arguments a) {
  const double half = std::ceil(std::abs(a[0].number) / 2) * 2;
  return std::copysign(half, a[0].number) + 0.0;
}

Operand fnOdd(Evaluator&, Arguments a) {
  const double odd = std::max(1.0, std::ceil((std::abs(a[0].number) - 1) / 2) * 2 + 1);
  return std::copysign(odd, a[0].number == 0 ? 1 : a[0].number);
}

double factorial(double n) {
  double product = 1;
  for (double i = 2; i <= n; ++i) product *= i;
  return product;
}

Operand fnFact(Evaluator&, Arguments a) {
  const double n = std::floor(a[0].number);
  if (n < 0 || n > 170) return ErrorCode::Num;
  return factorial(n);
}

Operand fnFactDouble(Evaluator&, Arguments a) {
  const double n = std::floor(a[0].number);
  if (n < -1 || n > 300) return ErrorCode::Num;
  double product = 1;
  for (double i = n; i > 1; i -= 2) product *= i;
  return product;
}

// n over k without intermediate overflow, exact as long as a double can be.
double combinations(double n, double k) {
  k = std::min(k, n - k);
  double result = 1;
  for (double i = 1; i <= k; ++i) {
    result = result * (n - k + i) / i;
    if (std::isinf(result)) break;
  }
  return result < largestWhole ? std::round(result) : result;
}

Operand fnCombin(Evaluator&, Arguments a) {
  const double n = std::floor(a[0].number);
  const double k = std::floor(a[1].number);
  if (n < 0 || k < 0 || k > n || std::min(k, n - k) > 1e6) return ErrorCode::Num;
  return combinations(n, k);
}

Operand fnPermut(Evaluator&, Arguments a) {
  const double n = std::floor(a[0].number);
  const double k = std::floor(a[1].number);
  if (n < 0 || k < 0 || k > n || k > 1e6) return ErrorCode::Num;
  double product = 1;
  for (double i = 0; i < k && std::isfinite(product); ++i) product *= n - i;
  return product;
}

// Folds the whole parts of all numbers, which must not be negative.
template <typename Fold>
Operand foldWhole(Evaluator& ev, Arguments a, double start, Fold fold) {
  double result = start;
  Operand error;
  bool fine = true;
  if (!visitNumbers(ev, a, error, [&](double number) {
        number = std::floor(number);
        if (number < 0 || number > largestWhole)
          fine = false;
        else
          result = fold(result, number);
      })) {
    return error;
  }
  return fine && result <= largestWhole ? Operand(result) : Operand(ErrorCode::Num);
}

double gcd(double a, double b) {
  while (b != 0) a = std::exchange(b, std::fmod(a, b));
  return a;
}

Operand fnGcd(Evaluator& ev, Arguments a) {
  return foldWhole(ev, a, 0, gcd);
}
Operand fnLcm(Evaluator& ev, Arguments a) {
  return foldWhole(ev, a, 1, [](double x, double y) { return y == 0 ? 0 : x / gcd(x, y) * y; });
}

Operand fnMultinomial(Evaluator& ev, Arguments a) {
  double sum = 0;
  double result = 1;
  Operand error;
  bool fine = true;
  if (!visitNumbers(ev, a, error, [&](double number) {
        number = std::floor(number);
        fine = fine && number >= 0 && number <= 1e6;
        if (!fine) return;
        sum += number;
        result *= combinations(sum, number);
      })) {
    return error;
  }
  return fine ? Operand(result) : Operand(ErrorCode::Num);
}

std::mt19937_64& randomSource() {
  static std::mt19937_64 source{std::random_device{}()};
  return source;
}

Operand fnRand(Evaluator&, Arguments) {
  return std::uniform_real_distribution<double>(0, 1)(randomSource());
}

Operand fnRandBetween(Evaluator&, Arguments a) {
  const double low = std::ceil(a[0].number);
  const double high = std::floor(a[1].number);
  if (low > high) return ErrorCode::Num;
  return low +
         std::floor(std::uniform_real_distribution<double>(0, high - low + 1)(randomSource()));
}

Operand fnRoman(Evaluator& ev, Arguments a) {
  int number = 0;
  int form = 0;
  if (given(a, 1) && a[1].isBoolean()) {
    form = a[1].number != 0 ? 0 : 4;
  } else if (given(a, 1)) {
    double asked = 0;
    Operand error;
    if (!ev.toNumber(ev.single(a[1]), asked, error)) return error;
    if (!wholeBetween(asked, 0, 4, form)) return ErrorCode::Value;
  }
  if (!wholeBetween(a[0].number, 0, 3999, number)) return ErrorCode::Value;
  // Each form allows subtracting from signs further away: first IV, then also VL, IL, VD, ID.
  constexpr std::array<int, 7> values{1000, 500, 100, 50, 10, 5, 1};
  constexpr std::string_view signs = "MDCLXVI";
  std::string out;
  for (int i = 0; i < 7; i += 2) {
    int digit = number / values[i];
    number %= values[i];
    if (digit % 5 < 4) {
      if (digit > 4) out += signs[i - 1];
      out.append(static_cast<size_t>(digit % 5), signs[i]);
      continue;
    }
    const int larger = digit > 4 ? i - 2 : i - 1;
    int smaller = i;
    for (int step = 0; step < form && smaller < 6; ++step) {
      if (values[larger] - values[smaller + 1] > digit * values[i] + number) break;
      ++smaller;
    }
    out += signs[smaller];
    out += signs[larger];
    if (smaller > i) number += digit * values[i] - (values[larger] - values[smaller]);
  }
  return ev.text(out);
}

constexpr FunctionInfo table[] = {
    {"ABS", 1, 1, 24, "N", [](Evaluator&, Arguments a) { return Operand(std::abs(a[0].number)); }},
    {"SIGN", 1, 1, 26, "N",
     [](Evaluator&, Arguments a) {
       return Operand(a[0].number > 0 ? 1.0 : a[0].number < 0 ? -1.0 : 0.0);
     }},
    {"SQRT", 1, 1, 20, "N",
     [](Evaluator&, Arguments a) {
       return a[0].number < 0 ? Operand(ErrorCode::Num) : Operand(std::sqrt(a[0].number));
     }},
    {"SQRTPI", 1, 1, addIn, "N",
     [](Evaluator&, Arguments a) {
       return a[0].number < 0 ? Operand(ErrorCode::Num) : Operand(std::sqrt(a[0].number * pi));
     }},
    {"EXP", 1, 1, 21, "N", [](Evaluator&, Arguments a) { return Operand(std::exp(a[0].number)); }},
    {"LN", 1, 1, 22, "N",
     [](Evaluator&, Arguments a) {
       return a[0].number <= 0 ? Operand(ErrorCode::Num) : Operand(std::log(a[0].number));
     }},
    {"LOG10", 1, 1, 23, "N",
     [](Evaluator&, Arguments a) {
       return a[0].number <= 0 ? Operand(ErrorCode::Num) : Operand(std::log10(a[0].number));
     }},
    {"LOG", 1, 2, 109, "Nn", fnLog},
    {"POWER", 2, 2, 337, "N", fnPower},
    {"PI", 0, 0, 19, "", [](Evaluator&, Arguments) { return Operand(pi); }},
    {"DEGREES", 1, 1, 343, "N",
     [](Evaluator&, Arguments a) { return Operand(a[0].number / pi * 180); }},
    {"RADIANS", 1, 1, 342, "N",
     [](Evaluator&, Arguments a) { return Operand(a[0].number / 180 * pi); }},
    {"SIN", 1, 1, 15, "N", [](Evaluator&, Arguments a) { return Operand(sine(a[0].number)); }},
    {"COS", 1, 1, 16, "N", [](Evaluator&, Arguments a) { return Operand(cosine(a[0].number)); }},
    {"TAN", 1, 1, 17, "N", [](Evaluator&, Arguments a) { return Operand(std::tan(a[0].number)); }},
    {"ASIN", 1, 1, 98, "N",
     [](Evaluator&, Arguments a) { return Operand(std::asin(a[0].number)); }},
    {"ACOS", 1, 1, 99, "N",
     [](Evaluator&, Arguments a) { return Operand(std::acos(a[0].number)); }},
    {"ATAN", 1, 1, 18, "N",
     [](Evaluator&, Arguments a) { return Operand(std::atan(a[0].number)); }},
    {"ATAN2", 2, 2, 97, "N",
     [](Evaluator&, Arguments a) {
       if (a[0].number == 0 && a[1].number == 0) return Operand(ErrorCode::DivisionByZero);
       return Operand(std::atan2(a[1].number, a[0].number));
     }},
    {"SINH", 1, 1, 229, "N",
     [](Evaluator&, Arguments a) { return Operand(std::sinh(a[0].number)); }},
    {"COSH", 1, 1, 230, "N",
     [](Evaluator&, Arguments a) { return Operand(std::cosh(a[0].number)); }},
    {"TANH", 1, 1, 231, "N",
     [](Evaluator&, Arguments a) { return Operand(std::tanh(a[0].number)); }},
    {"ASINH", 1, 1, 232, "N",
     [](Evaluator&, Arguments a) { return Operand(std::asinh(a[0].number)); }},
    {"ACOSH", 1, 1, 233, "N",
     [](Evaluator&, Arguments a) { return Operand(std::acosh(a[0].number)); }},
    {"ATANH", 1, 1, 234, "N",
     [](Evaluator&, Arguments a) { return Operand(std::atanh(a[0].number)); }},
    {"INT", 1, 1, 25, "N",
     [](Evaluator&, Arguments a) { return Operand(std::floor(a[0].number)); }},
    {"TRUNC", 1, 2, 197, "NN",
     [](Evaluator&, Arguments a) {
       return Operand(roundDecimalDown(a[0].number, a.size() > 1 ? digitsOf(a[1].number) : 0));
     }},
    {"ROUND", 2, 2, 27, "N",
     [](Evaluator&, Arguments a) {
       return Operand(roundDecimal(a[0].number, digitsOf(a[1].number)));
     }},
    {"ROUNDUP", 2, 2, 212, "N",
     [](Evaluator&, Arguments a) {
       return Operand(roundDecimalUp(a[0].number, digitsOf(a[1].number)));
     }},
    {"ROUNDDOWN", 2, 2, 213, "N",
     [](Evaluator&, Arguments a) {
       return Operand(roundDecimalDown(a[0].number, digitsOf(a[1].number)));
     }},
    {"MROUND", 2, 2, addIn, "N", fnMround},
    {"CEILING", 1, 2, 288, "Nn", [](Evaluator&, Arguments a) { return ceilingOrFloor(a, true); }},
    {"FLOOR", 1, 2, 285, "Nn", [](Evaluator&, Arguments a) { return ceilingOrFloor(a, false); }},
    {"CEILING.MATH", 1, 3, newer, "Nnn",
     [](Evaluator&, Arguments a) { return multipleMath(a, true); }},
    {"FLOOR.MATH", 1, 3, newer, "Nnn",
     [](Evaluator&, Arguments a) { return multipleMath(a, false); }},
    {"EVEN", 1, 1, 279, "N", fnEven},
    {"ODD", 1, 1, 298, "N", fnOdd},
    {"MOD", 2, 2, 39, "N", fnMod},
    {"QUOTIENT", 2, 2, addIn, "N",
     [](Evaluator&, Arguments a) {
       if (a[1].number == 0) return Operand(ErrorCode::DivisionByZero);
       return Operand(std::trunc(a[0].number / a[1].number));
     }},
    {"FACT", 1, 1, 184, "N", fnFact},
    {"FACTDOUBLE", 1, 1, addIn, "N", fnFactDouble},
    {"COMBIN", 2, 2, 276, "N", fnCombin},
    {"PERMUT", 2, 2, 299, "N", fnPermut},
    {"GCD", 1, anyNumber, addIn, "R", fnGcd},
    {"LCM", 1, anyNumber, addIn, "R", fnLcm},
    {"MULTINOMIAL", 1, anyNumber, addIn, "R", fnMultinomial},
    {"RAND", 0, 0, 63, "", fnRand, true},
    {"RANDBETWEEN", 2, 2, addIn, "N", fnRandBetween, true},
    {"ROMAN", 1, 2, 354, "NR", fnRoman},
};

}  // namespace

FunctionList mathFunctions() {
  return table;
}

double roundDecimal(double value, int digits) {
  return roundWith(value, digits, [](double x) { return std::round(x); });
}
double roundDecimalDown(double value, int digits) {
  return roundWith(value, digits, [](double x) { return std::trunc(x); });
}
double roundDecimalUp(double value, int digits) {
  return roundWith(value, digits, [](double x) { return x < 0 ? std::floor(x) : std::ceil(x); });
}

}  // namespace lodex::formula
