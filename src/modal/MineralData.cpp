#include "modal/MineralData.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"
#include "chem/Letters.h"

namespace lodex {

namespace {

constexpr int kMostDecimals = 22;

// After a one-letter symbol only the anion of an oxide, an amount or a unit may follow.
bool endsSymbol(char c) {
  return c == 'O' || (c >= '0' && c <= '9') || c == ' ' || c == '%';
}

// The symbol at the head of a trimmed text; "" if it has none.
std::string_view symbolAtHead(std::string_view text) {
  if (text.empty() || text[0] < 'A' || text[0] > 'Z') return {};
  if (text.size() == 1) return text;
  if (!isSmall(text[1])) return endsSymbol(text[1]) ? text.substr(0, 1) : std::string_view();
  if (text.size() == 2) return text;
  const bool capital = text[2] > 'A' && text[2] < 'Z';
  return capital || endsSymbol(text[2]) ? text.substr(0, 2) : std::string_view();
}

// `value` in plain decimals, also where the usual text would take an exponent.
std::string plainText(double value, int digits) {
  const std::string text = numberText(value);
  if (text.find('E') == std::string::npos) return text;
  char buffer[400];
  const int length = std::snprintf(buffer, sizeof buffer, "%.*f", std::max(0, digits), value);
  return std::string(buffer, static_cast<size_t>(length));
}

}  // namespace

void ParseMineralID(std::string_view text, std::string& kind, std::string& symbol,
                    std::string& id) {
  const size_t first = text.find('/');
  const size_t last = text.rfind('/');
  const bool hasSlash = first != std::string_view::npos;
  const auto number = parseInteger(hasSlash ? text.substr(last + 1) : text);
  if (!number) return;
  const std::string_view head = text.substr(0, hasSlash ? first : 0);
  if (head == "M" || head == "P") {
    const size_t second = text.find('/', first + 1);
    kind = head;
    symbol = last > first ? text.substr(first + 1, second - first - 1) : std::string_view();
  } else {
    kind = "M";
    symbol = head;
  }
  id = std::to_string(*number);
}

int MineralIndex(const ModalLists& lists, std::string_view id) {
  const auto wanted = parseNumber(id);
  if (!wanted) return 0;
  for (size_t i = 0; i < lists.MinIDs.size(); ++i) {
    if (parseNumber(lists.MinIDs[i]) == wanted) return static_cast<int>(i) + 1;
  }
  return 0;
}

int MineralColumn(std::string_view identifier, const Worksheet& sheet) {
  std::string kind;
  std::string symbol;
  std::string id;
  ParseMineralID(identifier, kind, symbol, id);
  const std::string wanted = (symbol.empty() ? std::string(identifier) : symbol) + " %";
  for (int column = 2; column <= sheet.MaxCol(); ++column) {
    const std::string heading = sheet.ColText(column);
    if (heading.empty()) return 0;
    if (heading.starts_with(wanted)) return column;
  }
  return 0;
}

std::string FormatRounded(double value, int digits) {
  digits = std::min(digits, kMostDecimals);
  const auto zeros = [](int count) {
    return std::string(static_cast<size_t>(std::max(count, 0)), '0');
  };
  const float single = static_cast<float>(value);
  if (single == 0) return "0." + zeros(digits);
  const float scaled = std::abs(single) * static_cast<float>(std::pow(10.0, digits));
  if (!std::isfinite(scaled)) return numberText(single);
  const double rounded = std::floor(scaled + 0.5) * std::pow(10.0, -digits);
  std::string text = plainText(std::copysign(rounded, single), digits);
  if (text == "0") return "0." + zeros(digits);
  if (digits <= 0) return text;
  if (text.find('.') == std::string::npos) text += '.';
  const int decimals = static_cast<int>(text.size() - text.find('.')) - 1;
  return text + zeros(digits - decimals);
}

int AtomicNumberOf(std::string_view text) {
  const std::string_view symbol = symbolAtHead(trimBlanks(text));
  if (symbol.empty()) return 0;
  const auto& symbols = ElementSymbols();
  const auto found = std::find(symbols.begin() + 1, symbols.end(), symbol);
  return found == symbols.end() ? 0 : static_cast<int>(found - symbols.begin());
}

int ElementAndFactor(std::string_view text, bool& isElement, double& factor) {
  const int number = AtomicNumberOf(text);
  isElement = number != 0;
  const auto names = [&](std::string_view unit) {
    return findNoCase(text, unit) != std::string_view::npos;
  };
  factor = 0;
  if (names("%")) factor = 1;
  if (names("PPM") || names("G/T")) factor = 10000;
  if (names("PPB")) factor = 10000000;
  return number;
}

float AverageDensity(const std::vector<float>& weights, const std::vector<float>& densities) {
  if (weights.size() != densities.size()) return -1;
  if (std::find(densities.begin(), densities.end(), 0.0f) != densities.end()) return -1;
  float sum = 0;
  for (size_t i = 0; i < weights.size(); ++i) sum += weights[i] / densities[i];
  return sum == 0 ? 0 : 100 / sum;
}

}  // namespace lodex
