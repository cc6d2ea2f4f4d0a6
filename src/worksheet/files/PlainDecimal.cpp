#include "worksheet/files/PlainDecimal.h"

#include <algorithm>

namespace lodex {

std::string plainDecimalFormat(std::string_view text) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  const size_t point = std::min(text.find('.'), text.size());
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction = point < text.size() ? text.substr(point + 1) : "";
  const bool digitsOnly = std::all_of(whole.begin(), whole.end(), digit) &&
                          std::all_of(fraction.begin(), fraction.end(), digit);
  const bool superfluousZero = whole.size() > 1 && whole.front() == '0';
  const bool endsInPoint = point + 1 == text.size();
  if (!digitsOnly || whole.empty() || superfluousZero || endsInPoint) return {};
  if (whole.size() + fraction.size() > 15) return {};
  return fraction.empty() ? "0" : "0." + std::string(fraction.size(), '0');
}

}  // namespace lodex
