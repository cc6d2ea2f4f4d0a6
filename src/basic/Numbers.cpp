#include "basic/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "basic/Text.h"

namespace lodex {
namespace {

std::string withoutTrailingZeros(std::string digits) {
  if (digits.find('.') == std::string::npos) return digits;
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  return digits;
}

// `value` with `digits` significant digits in the notation of numberText.
std::string significantText(double value, int digits) {
  if (value == 0) return "0";
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "Inf" : "-Inf";
  char buffer[64];
  const auto scientific = std::to_chars(buffer, buffer + sizeof buffer, value,
                                        std::chars_format::scientific, digits - 1);
  const std::string_view text(buffer, scientific.ptr - buffer);
  const size_t e = text.find('e');
  int exponent = 0;
  const std::string_view exponentText = text.substr(e + 1);
  const size_t skip = exponentText.front() == '+' ? 1 : 0;
  std::from_chars(exponentText.data() + skip, exponentText.data() + exponentText.size(), exponent);
  if (exponent < -5 || exponent >= digits) {
    std::string out = withoutTrailingZeros(std::string(text.substr(0, e)));
    out += exponent < 0 ? "E-" : "E+";
    const std::string magnitude = std::to_string(std::abs(exponent));
    return out + (magnitude.size() < 2 ? "0" : "") + magnitude;
  }
  const int decimals = digits - 1 - exponent;
  const auto fixed = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                   decimals < 0 ? 0 : decimals);
  return withoutTrailingZeros(std::string(buffer, fixed.ptr));
}

}  // namespace

std::optional<double> parseNumber(std::string_view text) {
  text = trimBlanks(text);
  if (text.empty()) return std::nullopt;
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (text.empty() || text.front() == '-') return std::nullopt;
  }
  // from_chars would also take "inf" and "nan".
  const char first = text.front() == '-' && text.size() > 1 ? text[1] : text.front();
  if (first != '.' && (first < '0' || first > '9')) return std::nullopt;
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ptr != text.data() + text.size()) return std::nullopt;
  if (result.ec == std::errc::result_out_of_range) {
    // Too small counts as 0, too large is not a number; the sign of the exponent decides.
    const size_t e = text.find_first_of("eE");
    const bool tiny = e != std::string_view::npos && e + 1 < text.size() && text[e + 1] == '-';
    return tiny ? std::optional<double>(0.0) : std::nullopt;
  }
  if (result.ec != std::errc()) return std::nullopt;
  return value;
}

bool isNumericText(std::string_view text) {
  return parseNumber(text).has_value();
}

double numberOf(std::string_view text) {
  return parseNumber(text).value_or(0.0);
}

std::optional<int> parseInteger(std::string_view text) {
  const auto value = parseNumber(text);
  if (!value) return std::nullopt;
  const double whole = roundHalfEven(*value);
  if (whole < std::numeric_limits<int>::min() || whole > std::numeric_limits<int>::max()) {
    return std::nullopt;
  }
  return static_cast<int>(whole);
}

std::string numberText(double value) {
  // Small whole numbers are most of what sheets hold.
  if (value == std::trunc(value) && std::abs(value) < 1e15) {
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(value));
    return std::string(buffer, end.ptr);
  }
  return significantText(value, 15);
}

std::string numberText(float value) {
  return significantText(static_cast<double>(value), 7);
}

std::string exactNumberText(double value) {
  if (value == 0) return "0";
  const std::string text = numberText(value);
  if (parseNumber(text) == value) return text;
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
  return toUpper(std::string_view(buffer, end.ptr - buffer));
}

double roundHalfEven(double value) {
  const double down = std::floor(value);
  const double rest = value - down;
  if (rest < 0.5) return down;
  if (rest > 0.5) return down + 1;
  return std::fmod(down, 2.0) == 0 ? down : down + 1;
}

double toSingle(double value) {
  return static_cast<double>(static_cast<float>(value));
}

}  // namespace lodex
