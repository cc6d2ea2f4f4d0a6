#include "chem/Headings.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"

namespace lodex {
namespace {

bool isAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isSeparator(char c) {
  return c == '/' || c == '_';
}

std::string trimmed(std::string_view text) {
  return std::string(trimBlanks(text));
}

// Where the leading element of a body ends: the first character behind the first one that is no
// digit or letter.
size_t elementEnd(std::string_view body) {
  size_t end = 1;
  while (end < body.size() && isAlphanumeric(body[end])) ++end;
  return std::min(end, body.size());
}

std::string methodOf(std::string_view between) {
  between = trimBlanks(between);
  if (!between.empty() && isSeparator(between.front())) between.remove_prefix(1);
  if (!between.empty() && isSeparator(between.back())) between.remove_suffix(1);
  return trimmed(between);
}

bool parseItemNumber(std::string_view text, std::int32_t& number) {
  text = trimBlanks(text);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return !text.empty() && text.front() != '-' && result.ec == std::errc() &&
         result.ptr == text.data() + text.size();
}

std::mt19937& generator() {
  static thread_local std::mt19937 engine{std::random_device{}()};
  return engine;
}

}  // namespace

void SplitHeading(std::string_view heading, std::string& element, std::string& method,
                  std::string& unit, bool strict) {
  unit.clear();
  std::string_view body;
  const auto take = [&](size_t position, const char* name) {
    if (position == std::string_view::npos) return;
    unit = name;
    body = heading.substr(0, position);
  };
  take(findNoCase(heading, "PPM"), "ppm");
  take(findNoCase(heading, "PPB"), "ppb");
  take(heading.find('%'), "%");

  std::string symbol(body);
  const bool known = ElementNumber(symbol) > 0;
  if (!known && strict) {
    element.clear();
    return;
  }
  body = trimBlanks(body);
  const size_t end = elementEnd(body);
  element = trimmed(body.substr(0, end));
  method = known ? methodOf(body.substr(end)) : trimmed(body.substr(end));
}

std::string_view withoutTotal(std::string_view text) {
  constexpr std::string_view total = "TOT";
  if (text.size() > total.size() && equalsNoCase(text.substr(text.size() - total.size()), total)) {
    text.remove_suffix(total.size());
  }
  return trimBlanks(text);
}

void HeadingFactor(std::string_view heading, bool& isOxide, double& unitFactor) {
  std::string symbol(heading);
  isOxide = heading.find('O', 1) != std::string_view::npos && ElementNumberStrict(symbol) > 0;
  unitFactor = 0;
  const auto has = [&](std::string_view part) {
    return findNoCase(heading, part) != std::string_view::npos;
  };
  if (has("%")) unitFactor = 1;
  if (has("PPM") || has("G/T")) unitFactor = 10000;
  if (has("PPB")) unitFactor = 10000000;
}

double DataUnitFactor(std::string_view unit) {
  const std::string upper = toUpper(trimBlanks(unit));
  if (upper == "%") return 1;
  if (upper == "PPM") return 10000;
  // A g/t column counts as parts per billion here although a method's heading takes it as ppm:
  // stored calculation groups rely on it.
  if (upper == "PPB" || upper == "G/T" || upper == "MG/L") return 10000000;
  return 0;
}

bool SafeFieldName(std::string_view text, std::string& clean, bool replaceSlash) {
  std::string result;
  for (const char32_t c : decodeUtf8(text)) {
    const bool illegal = (c < 47 && c != '%' && c != ' ') || (c >= 58 && c <= 64) ||
                         (c >= 91 && c <= 96) || c > 123 || (replaceSlash && c == '/');
    result += illegal ? '_' : static_cast<char>(c);
  }
  clean = std::move(result);
  return clean != text;
}

std::vector<std::string> SplitText(std::string_view text, std::string_view separator) {
  if (text.empty()) return {};
  if (separator.empty()) return {std::string(text)};
  return split(text, separator);
}

bool ParseItemRef(std::string_view text, std::string& kind, std::int32_t& item,
                  std::vector<std::int32_t>& rest) {
  kind.clear();
  item = 0;
  rest.clear();
  text = trimBlanks(text);
  std::string_view letter = "M";
  if (!text.empty() && (text.front() == 'M' || text.front() == 'P')) {
    letter = text.substr(0, 1);
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '/') text.remove_prefix(1);
  }
  std::vector<std::int32_t> numbers;
  for (const std::string& piece : SplitText(text, "/")) {
    std::int32_t number = 0;
    if (!parseItemNumber(piece, number)) return false;
    numbers.push_back(number);
  }
  if (numbers.empty() || numbers.size() > 3) return false;
  kind = letter;
  item = numbers.front();
  rest.assign(numbers.begin() + 1, numbers.end());
  return true;
}

double RoundTo(double value, int digits) {
  constexpr double failed = -999;
  if (!(std::abs(value) <= std::numeric_limits<float>::max())) return failed;
  const double power = std::pow(10.0, digits);
  const double rounded = std::floor(toSingle(value) * power + 0.5) / power;
  return std::isfinite(rounded) ? rounded : failed;
}

double RandomGauss(double mean, double sigma) {
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (;;) {
    const double a = uniform(generator());
    const double b = uniform(generator());
    const double s = a * a + b * b;
    if (s > 0 && s < 1) return b * std::sqrt(-2 * std::log(s) / s) * sigma + mean;
  }
}

void SeedRandom(std::uint32_t seed) {
  generator().seed(seed);
}

}  // namespace lodex
