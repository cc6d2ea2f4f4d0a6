// Order statistics, means and moments.
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

bool sortedNumbers(Evaluator& ev, Arguments a, std::vector<double>& numbers, Operand& error) {
  if (!numbersOf(ev, a, numbers, error)) return false;
  std::sort(numbers.begin(), numbers.end());
  return true;
}

// The value at a fraction of the way through sorted numbers, between two of them by proportion.
double quantile(const std::vector<double>& sorted, double fraction) {
  const double place = fraction * (static_cast<double>(sorted.size()) - 1);
  const auto below = static_cast<size_t>(std::floor(place));
  if (below + 1 >= sorted.size()) return sorted.back();
  return sorted[below] + (place - std::floor(place)) * (sorted[below + 1] - sorted[below]);
}

Operand percentile(Evaluator& ev, Arguments a, double fraction) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error)) return error;
  if (numbers.empty() || !(fraction >= 0 && fraction <= 1)) return ErrorCode::Num;
  return quantile(numbers, fraction);
}

// The kind that leaves out both ends: places 1/(n+1) to n/(n+1).
Operand percentileExclusive(Evaluator& ev, Arguments a, double fraction) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error)) return error;
  const auto n = static_cast<double>(numbers.size());
  const double place = fraction * (n + 1) - 1;
  if (numbers.empty() || !(fraction > 0 && fraction < 1) || place < 0 || place > n - 1)
    return ErrorCode::Num;
  return n == 1 ? numbers[0] : quantile(numbers, place / (n - 1));
}

Operand quartile(Evaluator& ev, Arguments a, bool exclusive) {
  int part = 0;
  if (!wholeBetween(a[1].number, 0, 4, part)) return ErrorCode::Num;
  return exclusive ? percentileExclusive(ev, a, part / 4.0) : percentile(ev, a, part / 4.0);
}

Operand nth(Evaluator& ev, Arguments a, bool largest) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error)) return error;
  const double k = std::ceil(a[1].number);
  if (!(a[1].number >= 1 && k <= static_cast<double>(numbers.size()))) return ErrorCode::Num;
  const auto place = static_cast<size_t>(k);
  return largest ? numbers[numbers.size() - place] : numbers[place - 1];
}

Operand fnMedian(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a, numbers, error)) return error;
  return numbers.empty() ? Operand(ErrorCode::Num) : Operand(quantile(numbers, 0.5));
}

// The most frequent number; of several the one that comes first.
Operand fnMode(Evaluator& ev, Arguments a) {
  // Unlike in sums, text that reads as a number is none here.
  const auto isText = [](const Operand& x) { return x.isText() || x.tag == Tag::NumericText; };
  if (std::any_of(a.begin(), a.end(), isText)) return ErrorCode::Value;
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a, numbers, error)) return error;
  std::map<double, int> counts;
  int most = 1;
  for (const double number : numbers) most = std::max(most, ++counts[number]);
  if (most < 2) return ErrorCode::NotAvailable;
  return *std::find_if(numbers.begin(), numbers.end(),
                       [&](double number) { return counts[number] == most; });
}

Operand rank(Evaluator& ev, Arguments a, bool average) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a.subspan(1, 1), numbers, error)) return error;
  const bool ascending = given(a, 2) && a[2].number != 0;
  double before = 0;
  double equal = 0;
  for (const double number : numbers) {
    if (number == a[0].number)
      ++equal;
    else if ((number < a[0].number) == ascending)
      ++before;
  }
  if (equal == 0) return ErrorCode::NotAvailable;
  return average ? before + (equal + 1) / 2 : before + 1;
}

Operand percentRank(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error)) return error;
  const double x = a[1].number;
  const double digits = std::floor(numberOr(a, 2, 3));
  if (numbers.empty() || digits < 1 || digits > 15) return ErrorCode::Num;
  if (x < numbers.front() || x > numbers.back()) return ErrorCode::NotAvailable;
  double place = 0;
  if (numbers.size() > 1) {
    const auto at = std::lower_bound(numbers.begin(), numbers.end(), x);
    place = static_cast<double>(at - numbers.begin());
    if (*at != x) place += (x - *at) / (*at - *(at - 1));
    place /= static_cast<double>(numbers.size()) - 1;
  } else {
    place = 1;
  }
  return roundDecimalDown(place, static_cast<int>(digits));
}

Operand fnAveDev(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a, numbers, error)) return error;
  if (numbers.empty()) return ErrorCode::Num;
  const double mean = meanOf(numbers);
  double sum = 0;
  for (const double number : numbers) sum += std::abs(number - mean);
  return sum / static_cast<double>(numbers.size());
}

Operand fnDevSq(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a, numbers, error)) return error;
  return numbers.empty() ? Operand(ErrorCode::Num) : Operand(squaredDeviations(numbers));
}

Operand fnGeoMean(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a, numbers, error)) return error;
  double logs = 0;
  for (const double number : numbers) {
    if (number <= 0) return ErrorCode::Num;
    logs += std::log(number);
  }
  return numbers.empty() ? Operand(ErrorCode::Num)
                         : Operand(std::exp(logs / static_cast<double>(numbers.size())));
}

Operand fnHarMean(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!numbersOf(ev, a, numbers, error)) return error;
  double sum = 0;
  for (const double number : numbers) {
    if (number <= 0) return ErrorCode::Num;
    sum += 1 / number;
  }
  return numbers.empty() ? Operand(ErrorCode::Num)
                         : Operand(static_cast<double>(numbers.size()) / sum);
}

Operand fnTrimMean(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error)) return error;
  const double share = a[1].number;
  if (numbers.empty() || share < 0 || share >= 1) return ErrorCode::Num;
  const auto cut =
      static_cast<std::ptrdiff_t>(std::floor(share * static_cast<double>(numbers.size()) / 2));
  return meanOf({numbers.begin() + cut, numbers.end() - cut});
}

// Sums of (x - mean)^power over the sample deviation to that power.
Operand standardMoment(const std::vector<double>& numbers, int power, double& sum) {
  const auto n = static_cast<double>(numbers.size());
  if (n < power) return ErrorCode::DivisionByZero;
  const double deviation = std::sqrt(squaredDeviations(numbers) / (n - 1));
  if (deviation == 0) return ErrorCode::DivisionByZero;
  const double mean = meanOf(numbers);
  sum = 0;
  for (const double number : numbers) sum += std::pow((number - mean) / deviation, power);
  return n;
}

Operand fnSkew(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  double sum = 0;
  if (!numbersOf(ev, a, numbers, error)) return error;
  const Operand size = standardMoment(numbers, 3, sum);
  if (size.isError()) return size;
  const double n = size.number;
  return n / ((n - 1) * (n - 2)) * sum;
}

Operand fnKurt(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  double sum = 0;
  if (!numbersOf(ev, a, numbers, error)) return error;
  const Operand size = standardMoment(numbers, 4, sum);
  if (size.isError()) return size;
  const double n = size.number;
  return n * (n + 1) / ((n - 1) * (n - 2) * (n - 3)) * sum -
         3 * (n - 1) * (n - 1) / ((n - 2) * (n - 3));
}

// How many numbers lie up to each bound and above the one before; the last element counts the rest.
Operand fnFrequency(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  std::vector<double> bounds;
  Operand error;
  if (!sortedNumbers(ev, a.first(1), numbers, error) ||
      !numbersOf(ev, a.subspan(1, 1), bounds, error)) {
    return error;
  }
  std::vector<size_t> order(bounds.size());
  std::iota(order.begin(), order.end(), size_t(0));
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t x, size_t y) { return bounds[x] < bounds[y]; });
  Array* out = ev.newArray(static_cast<int>(bounds.size()) + 1, 1);
  auto from = numbers.begin();
  for (const size_t i : order) {
    const auto to = std::upper_bound(from, numbers.end(), bounds[i]);
    out->values[i] = static_cast<double>(to - from);
    from = to;
  }
  out->values.back() = static_cast<double>(numbers.end() - from);
  return Operand(out);
}

constexpr FunctionInfo table[] = {
    {"MEDIAN", 1, anyNumber, 227, "R", fnMedian},
    {"MODE", 1, anyNumber, 330, "A", fnMode},
    {"MODE.SNGL", 1, anyNumber, newer, "A", fnMode},
    {"LARGE", 2, 2, 325, "RN", [](Evaluator& ev, Arguments a) { return nth(ev, a, true); }},
    {"SMALL", 2, 2, 326, "RN", [](Evaluator& ev, Arguments a) { return nth(ev, a, false); }},
    {"PERCENTILE", 2, 2, 328, "RN",
     [](Evaluator& ev, Arguments a) { return percentile(ev, a, a[1].number); }},
    {"PERCENTILE.INC", 2, 2, newer, "RN",
     [](Evaluator& ev, Arguments a) { return percentile(ev, a, a[1].number); }},
    {"PERCENTILE.EXC", 2, 2, newer, "RN",
     [](Evaluator& ev, Arguments a) { return percentileExclusive(ev, a, a[1].number); }},
    {"QUARTILE", 2, 2, 327, "RN",
     [](Evaluator& ev, Arguments a) { return quartile(ev, a, false); }},
    {"QUARTILE.INC", 2, 2, newer, "RN",
     [](Evaluator& ev, Arguments a) { return quartile(ev, a, false); }},
    {"QUARTILE.EXC", 2, 2, newer, "RN",
     [](Evaluator& ev, Arguments a) { return quartile(ev, a, true); }},
    {"RANK", 2, 3, 216, "NRn", [](Evaluator& ev, Arguments a) { return rank(ev, a, false); }},
    {"RANK.EQ", 2, 3, newer, "NRn", [](Evaluator& ev, Arguments a) { return rank(ev, a, false); }},
    {"RANK.AVG", 2, 3, newer, "NRn", [](Evaluator& ev, Arguments a) { return rank(ev, a, true); }},
    {"PERCENTRANK", 2, 3, 329, "RNn", percentRank},
    {"PERCENTRANK.INC", 2, 3, newer, "RNn", percentRank},
    {"AVEDEV", 1, anyNumber, 269, "R", fnAveDev},
    {"DEVSQ", 1, anyNumber, 318, "R", fnDevSq},
    {"GEOMEAN", 1, anyNumber, 319, "R", fnGeoMean},
    {"HARMEAN", 1, anyNumber, 320, "R", fnHarMean},
    {"TRIMMEAN", 2, 2, 331, "RN", fnTrimMean},
    {"SKEW", 1, anyNumber, 323, "R", fnSkew},
    {"KURT", 1, anyNumber, 322, "R", fnKurt},
    {"FREQUENCY", 2, 2, 252, "A", fnFrequency},
};

}  // namespace

FunctionList statisticalFunctions() {
  return table;
}

}  // namespace lodex::formula
