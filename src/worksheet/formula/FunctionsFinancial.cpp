// Annuities, rates of return, depreciation.
#include <algorithm>
#include <cmath>

#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

// pv (1+r)^n + pmt (1 + r type) ((1+r)^n - 1)/r + fv = 0, the equation behind all annuities.
double annuityFactor(double rate, double periods, double type) {
  if (rate == 0) return periods;
  return (1 + rate * type) * std::expm1(periods * std::log1p(rate)) / rate;
}

double growth(double rate, double periods) {
  return std::pow(1 + rate, periods);
}

double futureValue(double rate, double periods, double payment, double present, double type) {
  return -(present * growth(rate, periods) + payment * annuityFactor(rate, periods, type));
}

double payment(double rate, double periods, double present, double future, double type) {
  return -(present * growth(rate, periods) + future) / annuityFactor(rate, periods, type);
}

double typeOf(Arguments a, size_t index) {
  return numberOr(a, index, 0) != 0 ? 1 : 0;
}

Operand fnPv(Evaluator&, Arguments a) {
  const double rate = a[0].number;
  const double future = numberOr(a, 3, 0);
  return -(future + a[2].number * annuityFactor(rate, a[1].number, typeOf(a, 4))) /
         growth(rate, a[1].number);
}

Operand fnNper(Evaluator&, Arguments a) {
  const double rate = a[0].number;
  const double present = a[2].number;
  const double future = numberOr(a, 3, 0);
  const double type = typeOf(a, 4);
  if (rate == 0)
    return a[1].number == 0 ? Operand(ErrorCode::Num) : Operand(-(present + future) / a[1].number);
  const double due = a[1].number * (1 + rate * type) / rate;
  const double ratio = (due - future) / (present + due);
  return ratio > 0 && rate > -1 ? Operand(std::log(ratio) / std::log1p(rate))
                                : Operand(ErrorCode::Num);
}

// The interest part of payment number `period` is that on what is owed before it.
double interestPart(double rate, double period, double periods, double present, double future,
                    double type) {
  const double each = payment(rate, periods, present, future, type);
  if (period == 1) return type == 1 ? 0 : -present * rate;
  const double owed = futureValue(rate, period - 1 - (type == 1 ? 1 : 0), each, present, type);
  return type == 1 ? (owed - each) * rate : owed * rate;
}

Operand paymentPart(Arguments a, bool interest) {
  const double period = a[1].number;
  const double periods = a[2].number;
  if (period < 1 || period >= periods + 1) return ErrorCode::Num;
  const double future = numberOr(a, 4, 0);
  const double type = typeOf(a, 5);
  const double part = interestPart(a[0].number, period, periods, a[3].number, future, type);
  return interest ? part : payment(a[0].number, periods, a[3].number, future, type) - part;
}

// Finds a zero of `f` near a guess: the secant method until a step is within `tolerance`, then
// bisection where signs differ.
template <typename Function>
Operand findRate(Function f, double guess, double second, double tolerance) {
  double x0 = guess;
  double x1 = second;
  double f0 = f(x0);
  double f1 = f(x1);
  for (int step = 0; step < 100; ++step) {
    if (f1 == 0) return x1;
    if (f1 == f0 || !std::isfinite(f1)) break;
    const double next = x1 - f1 * (x1 - x0) / (f1 - f0);
    if (!std::isfinite(next) || next <= -1) break;
    x0 = std::exchange(x1, next);
    f0 = std::exchange(f1, f(next));
    if (std::abs(x1 - x0) <= tolerance * std::max(1.0, std::abs(x1)))
      return std::isfinite(f1) ? Operand(x1) : ErrorCode::Num;
  }
  if (std::isfinite(f1) && std::abs(x1 - x0) < 1e-9 * std::max(1.0, std::abs(x1))) return x1;
  constexpr double points[] = {-0.9999, -0.99, -0.9, -0.7, -0.5, -0.3, -0.1, -0.01, 0.01, 0.05,
                               0.1,     0.2,   0.5,  1,    2,    5,    10,   100,   1000};
  double best = 0;
  bool found = false;
  for (size_t i = 0; i + 1 < std::size(points); ++i) {
    double low = points[i];
    double high = points[i + 1];
    double atLow = f(low);
    if (!(atLow * f(high) <= 0)) continue;
    for (int step = 0; step < 200 && high - low > 1e-16; ++step) {
      const double middle = (low + high) / 2;
      const double atMiddle = f(middle);
      if (atLow * atMiddle <= 0) {
        high = middle;
      } else {
        low = middle;
        atLow = atMiddle;
      }
    }
    const double root = (low + high) / 2;
    if (!found || std::abs(root - guess) < std::abs(best - guess)) best = root;
    found = true;
  }
  return found ? Operand(best) : Operand(ErrorCode::Num);
}

template <typename Function>
Operand findRate(Function f, double guess) {
  return findRate(f, guess, guess == 0 ? 0.01 : guess * 1.1, 1e-15);
}

Operand fnRate(Evaluator&, Arguments a) {
  const double periods = a[0].number;
  const double type = typeOf(a, 4);
  const double future = numberOr(a, 3, 0);
  if (periods <= 0) return ErrorCode::Num;
  return findRate(
      [&](double rate) {
        return a[2].number * growth(rate, periods) +
               a[1].number * annuityFactor(rate, periods, type) + future;
      },
      numberOr(a, 5, 0.1));
}

double presentValue(const std::vector<double>& flows, double rate) {
  double sum = 0;
  for (size_t i = flows.size(); i-- > 0;) sum = sum / (1 + rate) + flows[i];
  return sum;
}

Operand fnNpv(Evaluator& ev, Arguments a) {
  std::vector<double> flows;
  Operand error;
  if (!numbersOf(ev, a.subspan(1), flows, error)) return error;
  if (a[0].number == -1) return ErrorCode::DivisionByZero;
  return presentValue(flows, a[0].number) / (1 + a[0].number);
}

bool changesSign(const std::vector<double>& flows) {
  return std::any_of(flows.begin(), flows.end(), [](double x) { return x > 0; }) &&
         std::any_of(flows.begin(), flows.end(), [](double x) { return x < 0; });
}

Operand fnIrr(Evaluator& ev, Arguments a) {
  std::vector<double> flows;
  Operand error;
  if (!numbersOf(ev, a.first(1), flows, error)) return error;
  if (!changesSign(flows)) return ErrorCode::Num;
  // These steps end where those of other spreadsheet programs do, so that the present value at the
  // rate found, which should be 0, has the same small rest.
  const double guess = numberOr(a, 1, 0.1);
  return findRate([&](double rate) { return presentValue(flows, rate); }, guess, guess - 0.001,
                  1e-7);
}

Operand fnMirr(Evaluator& ev, Arguments a) {
  std::vector<double> flows;
  Operand error;
  if (!numbersOf(ev, a.first(1), flows, error)) return error;
  // Without earnings the rate is -1.
  if (std::none_of(flows.begin(), flows.end(), [](double x) { return x < 0; })) {
    return ErrorCode::DivisionByZero;
  }
  const double financing = a[1].number;
  const double investing = a[2].number;
  const auto n = static_cast<double>(flows.size());
  double spent = 0;
  double earned = 0;
  for (size_t i = 0; i < flows.size(); ++i) {
    const auto period = static_cast<double>(i);
    if (flows[i] < 0)
      spent += flows[i] / growth(financing, period);
    else
      earned += flows[i] * growth(investing, n - 1 - period);
  }
  return std::pow(earned / -spent, 1 / (n - 1)) - 1;
}

// Flows at dates, which may be texts: discounted by days over a year of 365.
bool readDated(Evaluator& ev, const Operand& values, const Operand& dates,
               std::vector<double>& flows, std::vector<double>& years, Operand& error) {
  const auto readInto = [&](std::vector<double>& list) {
    return [&](const Operand& value, bool) {
      if (value.isEmpty()) return true;
      list.push_back(0);
      return ev.toNumber(value, list.back(), error);
    };
  };
  if (!ev.visitValues(values, readInto(flows)) || !ev.visitValues(dates, readInto(years)))
    return false;
  error = ErrorCode::Num;
  if (flows.empty() || flows.size() != years.size()) return false;
  const double start = std::floor(years[0]);
  for (double& year : years) {
    year = (std::floor(year) - start) / 365;
    if (year < 0) return false;
  }
  return true;
}

double datedValue(const std::vector<double>& flows, const std::vector<double>& years, double rate) {
  double sum = 0;
  for (size_t i = 0; i < flows.size(); ++i) sum += flows[i] / std::pow(1 + rate, years[i]);
  return sum;
}

Operand fnXnpv(Evaluator& ev, Arguments a) {
  std::vector<double> flows;
  std::vector<double> years;
  Operand error;
  if (!readDated(ev, a[1], a[2], flows, years, error)) return error;
  return datedValue(flows, years, a[0].number);
}

Operand fnXirr(Evaluator& ev, Arguments a) {
  std::vector<double> flows;
  std::vector<double> years;
  Operand error;
  if (!readDated(ev, a[0], a[1], flows, years, error)) return error;
  if (!changesSign(flows)) return ErrorCode::Num;
  return findRate([&](double rate) { return datedValue(flows, years, rate); }, numberOr(a, 2, 0.1));
}

// Interest or principal of the payments from one period to another.
Operand cumulative(Arguments a, bool interest) {
  const double rate = a[0].number;
  const double periods = a[1].number;
  const double first = std::ceil(a[3].number);
  const double last = std::floor(a[4].number);
  const double type = a[5].number;
  if (rate <= 0 || periods <= 0 || a[2].number <= 0 || first < 1 || last < first ||
      last > periods || last - first > 1e6 || (type != 0 && type != 1)) {
    return ErrorCode::Num;
  }
  const double each = payment(rate, periods, a[2].number, 0, type);
  double sum = 0;
  for (double period = first; period <= last; ++period) {
    const double part = interestPart(rate, period, periods, a[2].number, 0, type);
    sum += interest ? part : each - part;
  }
  return sum;
}

Operand fnSln(Evaluator&, Arguments a) {
  if (a[2].number == 0) return ErrorCode::DivisionByZero;
  return (a[0].number - a[1].number) / a[2].number;
}

Operand fnSyd(Evaluator&, Arguments a) {
  const double life = a[2].number;
  const double period = a[3].number;
  if (life <= 0 || period < 1 || period > life) return ErrorCode::Num;
  return (a[0].number - a[1].number) * (life - period + 1) * 2 / (life * (life + 1));
}

// Declining balance with a rate rounded to three decimals; the first year may be short.
Operand fnDb(Evaluator&, Arguments a) {
  const double cost = a[0].number;
  const double salvage = a[1].number;
  const double life = a[2].number;
  const double period = std::floor(a[3].number);
  const double months = numberOr(a, 4, 12);
  if (cost < 0 || salvage < 0 || life <= 0 || life > 1e5 || period < 1 || months < 1 ||
      months > 12) {
    return ErrorCode::Num;
  }
  if (period > life + (months < 12 ? 1 : 0)) return ErrorCode::Num;
  if (cost == 0) return 0.0;
  const double rate = roundDecimal(1 - std::pow(salvage / cost, 1 / life), 3);
  double written = 0;
  double now = cost * rate * months / 12;
  for (double year = 2; year <= period; ++year) {
    written += now;
    const bool rest = year > life;
    now = (cost - written) * rate * (rest ? (12 - months) / 12 : 1);
  }
  return now;
}

Operand fnDdb(Evaluator&, Arguments a) {
  const double cost = a[0].number;
  const double salvage = a[1].number;
  const double life = a[2].number;
  const double period = a[3].number;
  const double factor = numberOr(a, 4, 2);
  if (cost < 0 || salvage < 0 || life <= 0 || period < 1 || period > life || factor <= 0)
    return ErrorCode::Num;
  const double rate = std::min(1.0, factor / life);
  const double before = cost * std::pow(1 - rate, period - 1);
  const double after = cost * std::pow(1 - rate, period);
  return std::max(0.0, std::max(before, salvage) - std::max(after, salvage));
}

constexpr FunctionInfo table[] = {
    {"PV", 3, 5, 56, "NNNnn", fnPv},
    {"FV", 3, 5, 57, "NNNnn",
     [](Evaluator&, Arguments a) {
       return Operand(
           futureValue(a[0].number, a[1].number, a[2].number, numberOr(a, 3, 0), typeOf(a, 4)));
     }},
    {"PMT", 3, 5, 59, "NNNnn",
     [](Evaluator&, Arguments a) {
       if (a[1].number == 0) return Operand(ErrorCode::Num);
       return Operand(
           payment(a[0].number, a[1].number, a[2].number, numberOr(a, 3, 0), typeOf(a, 4)));
     }},
    {"NPER", 3, 5, 58, "NNNnn", fnNper},
    {"RATE", 3, 6, 60, "NNNnnn", fnRate},
    {"IPMT", 4, 6, 167, "NNNNnn", [](Evaluator&, Arguments a) { return paymentPart(a, true); }},
    {"PPMT", 4, 6, 168, "NNNNnn", [](Evaluator&, Arguments a) { return paymentPart(a, false); }},
    {"NPV", 2, anyNumber, 11, "NR", fnNpv},
    {"IRR", 1, 2, 62, "Rn", fnIrr},
    {"MIRR", 3, 3, 61, "RNN", fnMirr},
    {"XNPV", 3, 3, addIn, "NRR", fnXnpv},
    {"XIRR", 2, 3, addIn, "RRn", fnXirr},
    {"CUMIPMT", 6, 6, addIn, "N", [](Evaluator&, Arguments a) { return cumulative(a, true); }},
    {"CUMPRINC", 6, 6, addIn, "N", [](Evaluator&, Arguments a) { return cumulative(a, false); }},
    {"ISPMT", 4, 4, 350, "N",
     [](Evaluator&, Arguments a) {
       return Operand(a[3].number * a[0].number * (a[1].number / a[2].number - 1));
     }},
    {"EFFECT", 2, 2, addIn, "N",
     [](Evaluator&, Arguments a) {
       const double periods = std::trunc(a[1].number);
       if (a[0].number <= 0 || periods < 1) return Operand(ErrorCode::Num);
       return Operand(std::pow(1 + a[0].number / periods, periods) - 1);
     }},
    {"NOMINAL", 2, 2, addIn, "N",
     [](Evaluator&, Arguments a) {
       const double periods = std::trunc(a[1].number);
       if (a[0].number <= 0 || periods < 1) return Operand(ErrorCode::Num);
       return Operand((std::pow(a[0].number + 1, 1 / periods) - 1) * periods);
     }},
    {"SLN", 3, 3, 142, "N", fnSln},
    {"SYD", 4, 4, 143, "N", fnSyd},
    {"DB", 4, 5, 247, "NNNNn", fnDb},
    {"DDB", 4, 5, 144, "NNNNn", fnDdb},
};

}  // namespace

FunctionList financialFunctions() {
  return table;
}

}  // namespace lodex::formula
