#include <algorithm>
#include <charconv>
#include <cmath>
#include <tuple>
#include <utility>

#include "basic/Numbers.h"
#include "worksheet/NumberFormatParts.h"

namespace lodex::numberformat {
namespace {

// A number that is not negative, by its 15 significant digits: 0.d1d2d3... times 10 to the
// `exponent`. Rounding is done on the digits that a person would see.
struct Decimal {
  std::string digits;  // without zeros at the end; empty for 0
  int exponent = 0;

  explicit Decimal(double number) {
    if (number == 0 || !std::isfinite(number)) return;
    char buffer[40];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific, 14);
    const std::string_view text(buffer, end.ptr - buffer);
    const size_t e = text.find('e');
    digits = text.substr(0, 1);
    digits += text.substr(2, e - 2);
    const size_t sign = text[e + 1] == '+' ? 2 : 1;
    std::from_chars(text.data() + e + sign, text.data() + text.size(), exponent);
    ++exponent;
    trim();
  }

  void trim() { digits.erase(digits.find_last_not_of('0') + 1); }

  // Half away from zero at `decimals` digits after the point.
  void round(int decimals) {
    const int keep = exponent + decimals;
    if (keep >= static_cast<int>(digits.size())) return;
    if (keep < 0) {
      digits.clear();
      return;
    }
    const bool up = digits[static_cast<size_t>(keep)] >= '5';
    digits.resize(static_cast<size_t>(keep));
    if (up) increment();
    trim();
  }

  void increment() {
    for (size_t i = digits.size(); i > 0; --i) {
      if (digits[i - 1] != '9') {
        ++digits[i - 1];
        return;
      }
      digits[i - 1] = '0';
    }
    digits.insert(digits.begin(), '1');
    ++exponent;
  }

  // The digits before the point, none for numbers below 1.
  std::string whole() const {
    if (digits.empty() || exponent <= 0) return {};
    std::string text = digits.substr(0, static_cast<size_t>(exponent));
    text.resize(static_cast<size_t>(exponent), '0');
    return text;
  }

  // The first `count` digits after the point.
  std::string fraction(int count) const {
    std::string text;
    for (int i = 0; i < count; ++i) {
      const int place = exponent + i;
      const bool known = place >= 0 && place < static_cast<int>(digits.size());
      text += known ? digits[static_cast<size_t>(place)] : '0';
    }
    return text;
  }
};

using Tokens = std::vector<Token>;

int countDigits(const Tokens& tokens, size_t from, size_t to) {
  return static_cast<int>(std::count_if(tokens.begin() + static_cast<long>(from),
                                        tokens.begin() + static_cast<long>(to),
                                        [](const Token& t) { return t.kind == TokenKind::Digit; }));
}

size_t placeOf(const Tokens& tokens, TokenKind kind) {
  const auto hit = std::find_if(tokens.begin(), tokens.end(),
                                [&](const Token& token) { return token.kind == kind; });
  return static_cast<size_t>(hit - tokens.begin());
}

std::string padding(char placeholder) {
  return placeholder == '0' ? "0" : placeholder == '?' ? " " : "";
}

std::string literalText(const Token& token) {
  if (token.kind == TokenKind::Literal) return token.text;
  return token.kind == TokenKind::Percent ? "%" : token.kind == TokenKind::Point ? "." : "";
}

// Whole digits laid into the placeholders of [from, to) from the right; digits without a
// placeholder go before the first one.
std::string wholeText(const Tokens& tokens, size_t from, size_t to, const std::string& digits,
                      bool grouped) {
  std::string reversed;
  size_t used = 0;
  int shown = 0;
  const auto put = [&](const std::string& digit) {
    if (grouped && shown > 0 && shown % 3 == 0 && !digit.empty()) {
      reversed += digit == " " ? ' ' : ',';
    }
    reversed += digit;
    if (!digit.empty()) ++shown;
  };
  int left = countDigits(tokens, from, to);
  for (size_t i = to; i > from; --i) {
    const Token& token = tokens[i - 1];
    if (token.kind != TokenKind::Digit) {
      const std::string text = literalText(token);
      reversed.append(text.rbegin(), text.rend());
      continue;
    }
    put(used < digits.size() ? std::string(1, digits[digits.size() - 1 - used])
                             : padding(token.letter));
    ++used;
    if (--left > 0) continue;
    for (; used < digits.size(); ++used) put(std::string(1, digits[digits.size() - 1 - used]));
  }
  std::reverse(reversed.begin(), reversed.end());
  return reversed;
}

// Digits after the point, filled in from the left; zeros at the end give way to "#" and "?".
std::string fractionText(const Tokens& tokens, size_t from, size_t to, const std::string& digits) {
  const size_t significant = digits.find_last_not_of('0') + 1;
  std::string out;
  size_t used = 0;
  for (size_t i = from; i < to; ++i) {
    if (tokens[i].kind != TokenKind::Digit) {
      out += literalText(tokens[i]);
      continue;
    }
    out += used < significant ? std::string(1, digits[used]) : padding(tokens[i].letter);
    ++used;
  }
  return out;
}

// Everything from `from` to `to`: digits, a point, digits.
std::string decimalText(Decimal number, const Section& section, size_t from, size_t to) {
  const Tokens& tokens = section.tokens;
  const size_t point = std::min(placeOf(tokens, TokenKind::Point), to);
  const int decimals = point < to ? countDigits(tokens, point, to) : 0;
  number.round(decimals);
  std::string out = countDigits(tokens, from, point) == 0 && !number.whole().empty()
                        ? number.whole() + wholeText(tokens, from, point, {}, false)
                        : wholeText(tokens, from, point, number.whole(), section.grouped);
  if (point < to) out += "." + fractionText(tokens, point + 1, to, number.fraction(decimals));
  return out;
}

std::string scientificText(Decimal number, const Section& section) {
  const Tokens& tokens = section.tokens;
  const size_t mark = placeOf(tokens, TokenKind::Exponent);
  const size_t point = std::min(placeOf(tokens, TokenKind::Point), mark);
  const int wholeDigits = std::max(1, countDigits(tokens, 0, point));
  const int decimals = countDigits(tokens, point, mark);
  int power = 0;
  if (!number.digits.empty()) {
    // With several digits before the point the power is a multiple of their number.
    const auto powerFor = [&](int exponent) {
      const int first = exponent - 1;
      return (first >= 0 ? first / wholeDigits : -((wholeDigits - 1 - first) / wholeDigits)) *
             wholeDigits;
    };
    power = powerFor(number.exponent);
    Decimal rounded = number;
    rounded.exponent -= power;
    rounded.round(decimals);
    // Rounding may have carried into one digit more than fits.
    if (rounded.exponent > wholeDigits) power += wholeDigits;
    number.exponent -= power;
  }
  const std::string mantissa = decimalText(number, section, 0, mark);
  const char plus = tokens[mark].letter;
  const std::string sign = power < 0 ? "-" : plus == '+' ? "+" : "";
  return mantissa + tokens[mark].text + sign +
         wholeText(tokens, mark + 1, tokens.size(), std::to_string(std::abs(power)), false);
}

// The last convergent of the continued fraction of a number from 0 to 1 whose denominator is not
// above `largest`: what spreadsheet programs show, though a nearer fraction may exist.
std::pair<long, long> shownFraction(double number, long largest) {
  long numerator = 0, denominator = 1;
  long beforeNumerator = 1, beforeDenominator = 0;
  double rest = number;
  while (rest > 1e-10) {
    const double inverse = 1 / rest;
    const double term = std::floor(inverse + 1e-9);
    if (term > static_cast<double>(largest)) break;
    const long step = static_cast<long>(term);
    const long nextDenominator = step * denominator + beforeDenominator;
    if (nextDenominator > largest) break;
    const long nextNumerator = step * numerator + beforeNumerator;
    beforeNumerator = std::exchange(numerator, nextNumerator);
    beforeDenominator = std::exchange(denominator, nextDenominator);
    rest = inverse - term;
  }
  // Too small for any term, or nearer to one than to what was found.
  if (denominator == 1 && number >= 0.5) return {1, 1};
  return {numerator, denominator};
}

std::string fractionFormText(double number, const Section& section) {
  const Tokens& tokens = section.tokens;
  const size_t slash = placeOf(tokens, TokenKind::Slash);
  size_t numeratorStart = slash;
  while (numeratorStart > 0 && tokens[numeratorStart - 1].kind == TokenKind::Digit) {
    --numeratorStart;
  }
  const bool fixed = slash + 1 < tokens.size() && tokens[slash + 1].kind == TokenKind::Denominator;
  size_t end = slash + 1;
  while (!fixed && end < tokens.size() && tokens[end].kind == TokenKind::Digit) ++end;
  if (fixed) ++end;
  const bool mixed = countDigits(tokens, 0, numeratorStart) > 0;

  double whole = mixed ? std::floor(number) : 0;
  long numerator = 0;
  long denominator = 1;
  if (fixed) {
    denominator = tokens[slash + 1].count;
    numerator = std::lround((number - whole) * static_cast<double>(denominator));
  } else {
    const int digits = std::clamp(static_cast<int>(end - slash) - 1, 1, 4);
    const double rest = number - whole - (mixed ? 0 : std::floor(number));
    std::tie(numerator, denominator) = shownFraction(rest, std::lround(std::pow(10, digits)) - 1);
    if (!mixed) numerator += std::lround(std::floor(number)) * denominator;
  }
  if (mixed && numerator == denominator) {
    ++whole;
    numerator = 0;
  }
  const bool blank = mixed && numerator == 0;
  std::string wholeDigits = whole == 0 ? (blank ? "0" : "") : numberText(whole);
  std::string out = wholeText(tokens, 0, numeratorStart, wholeDigits, section.grouped);
  std::string above = wholeText(tokens, numeratorStart, slash, std::to_string(numerator), false);
  std::string below = std::to_string(denominator);
  if (!fixed) {
    for (size_t place = slash + 1 + below.size(); place < end; ++place) {
      below += tokens[place].letter == '#' ? "" : " ";
    }
  }
  const std::string part = above + "/" + below;
  out += blank ? std::string(part.size(), ' ') : part;
  for (size_t i = end; i < tokens.size(); ++i) out += literalText(tokens[i]);
  return out;
}

}  // namespace

std::string digitsText(double number, const Section& section) {
  const Tokens& tokens = section.tokens;
  if (placeOf(tokens, TokenKind::Slash) < tokens.size() && number < 1e9) {
    return fractionFormText(number, section);
  }
  Decimal decimal(number);
  decimal.exponent += 2 * section.percents - 3 * section.thousands;
  if (placeOf(tokens, TokenKind::Exponent) < tokens.size()) {
    return scientificText(std::move(decimal), section);
  }
  const size_t general = placeOf(tokens, TokenKind::General);
  if (general < tokens.size() || countDigits(tokens, 0, tokens.size()) == 0) {
    std::string out;
    for (const Token& token : tokens) {
      out += token.kind == TokenKind::General || token.kind == TokenKind::Text ? numberText(number)
                                                                               : literalText(token);
    }
    return out;
  }
  return decimalText(std::move(decimal), section, 0, tokens.size());
}

}  // namespace lodex::numberformat
