#include "worksheet/formula/Compare.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "basic/Text.h"
#include "worksheet/formula/Dates.h"

namespace lodex::formula {
namespace {

size_t characterLength(std::string_view text, size_t pos) {
  size_t length = 1;
  while (pos + length < text.size() &&
         (static_cast<unsigned char>(text[pos + length]) & 0xC0) == 0x80) {
    ++length;
  }
  return length;
}

struct Fit {
  bool fits = false;
  size_t length = 0;
};

// Fits a pattern at the start of a text, both in lower case; `whole` demands the whole text.
// Falls back to the last "*" only, which is enough since "*" takes anything.
Fit fitPattern(std::string_view text, std::string_view pattern, bool whole) {
  size_t t = 0;
  size_t p = 0;
  size_t starPattern = std::string_view::npos;
  size_t starText = 0;
  for (;;) {
    if (p == pattern.size() && (!whole || t == text.size())) return {true, t};
    bool advanced = false;
    if (p < pattern.size()) {
      const char c = pattern[p];
      if (c == '*') {
        starPattern = ++p;
        starText = t;
        continue;
      }
      if (t < text.size() && c == '?') {
        t += characterLength(text, t);
        ++p;
        advanced = true;
      } else {
        const bool escaped =
            c == '~' && p + 1 < pattern.size() &&
            (pattern[p + 1] == '*' || pattern[p + 1] == '?' || pattern[p + 1] == '~');
        const size_t literal = p + (escaped ? 1 : 0);
        if (t < text.size() && text[t] == pattern[literal]) {
          ++t;
          p = literal + 1;
          advanced = true;
        }
      }
    }
    if (advanced) continue;
    if (starPattern == std::string_view::npos || starText >= text.size()) return {};
    starText += characterLength(text, starText);
    t = starText;
    p = starPattern;
  }
}

int sign(double a, double b) {
  return nearlyEqual(a, b) ? 0 : a < b ? -1 : 1;
}

int rankOf(const Operand& value) {
  switch (value.tag) {
    case Tag::Text:
      return 1;
    case Tag::Boolean:
      return 2;
    default:
      return 0;
  }
}

}  // namespace

bool nearlyEqual(double a, double b) {
  if (a == b) return true;
  const double difference = std::abs(a - b);
  if (!(difference <= 1e-14 * std::abs(a))) return false;
  char textA[40];
  char textB[40];
  const auto endA =
      std::to_chars(textA, textA + sizeof textA, a, std::chars_format::scientific, 14);
  const auto endB =
      std::to_chars(textB, textB + sizeof textB, b, std::chars_format::scientific, 14);
  return std::string_view(textA, endA.ptr - textA) == std::string_view(textB, endB.ptr - textB);
}

double differenceOrZero(double a, double b) {
  const double result = a - b;
  if (std::abs(result) > 1e-14 * std::abs(a) || result == 0) return result;
  return nearlyEqual(a, b) ? 0 : result;
}

int compareValues(const Operand& a, const Operand& b) {
  const bool emptyA = a.isEmpty() || a.isMissing();
  const bool emptyB = b.isEmpty() || b.isMissing();
  const int rankA = emptyA ? rankOf(b) : rankOf(a);
  const int rankB = emptyB ? rankOf(a) : rankOf(b);
  if (emptyA && emptyB) return 0;
  if (rankA != rankB) return rankA < rankB ? -1 : 1;
  if (rankA == 1) {
    return compareNoCase(emptyA ? std::string_view() : a.view(),
                         emptyB ? std::string_view() : b.view());
  }
  return sign(emptyA ? 0 : a.number, emptyB ? 0 : b.number);
}

bool hasWildcards(std::string_view pattern) {
  return pattern.find_first_of("*?~") != std::string_view::npos;
}

bool matchesPattern(std::string_view text, std::string_view pattern) {
  return fitPattern(toLower(text), toLower(pattern), true).fits;
}

size_t findPattern(std::string_view text, std::string_view pattern, size_t from) {
  const std::string lower = toLower(text);
  const std::string wanted = toLower(pattern);
  // Every "*" lets a fit run through the rest of the text, so a first star needs only one try.
  for (size_t pos = from; pos <= lower.size();) {
    if (fitPattern(std::string_view(lower).substr(pos), wanted, false).fits) return pos;
    if (pos == lower.size()) break;
    pos += characterLength(lower, pos);
  }
  return std::string_view::npos;
}

Criterion::Criterion(const Operand& condition, bool dates1904) : dates1904_(dates1904) {
  switch (condition.tag) {
    case Tag::Number:
    case Tag::NumericText:
      kind_ = Kind::Number;
      number_ = condition.number;
      return;
    case Tag::Boolean:
      kind_ = Kind::Boolean;
      number_ = condition.number;
      return;
    case Tag::Error:
      kind_ = Kind::Error;
      error_ = condition.code;
      return;
    case Tag::Text:
      break;
    default:
      kind_ = Kind::Number;  // an empty cell asks for 0
      return;
  }
  std::string_view rest = condition.view();
  for (const std::string_view op : {"<=", ">=", "<>", "=", "<", ">"}) {
    if (!rest.starts_with(op)) continue;
    operator_ = op;
    explicitOperator_ = true;
    rest.remove_prefix(op.size());
    break;
  }
  ErrorCode code{};
  if (rest.empty()) {
    kind_ = Kind::Blank;
  } else if (const auto number = numberOfText(rest, dates1904)) {
    kind_ = Kind::Number;
    number_ = *number;
  } else if (equalsNoCase(rest, "TRUE") || equalsNoCase(rest, "FALSE")) {
    kind_ = Kind::Boolean;
    number_ = equalsNoCase(rest, "TRUE") ? 1 : 0;
  } else if (errorFromText(rest, code)) {
    kind_ = Kind::Error;
    error_ = code;
  } else {
    text_ = toLower(rest);
    wildcards_ = hasWildcards(rest);
  }
}

bool Criterion::compares(int order) const {
  if (operator_ == "=") return order == 0;
  if (operator_ == "<>") return order != 0;
  if (operator_ == "<") return order < 0;
  if (operator_ == "<=") return order <= 0;
  if (operator_ == ">") return order > 0;
  return order >= 0;
}

bool Criterion::matches(const Operand& value) const {
  const bool negated = operator_ == "<>";
  switch (kind_) {
    case Kind::Number: {
      double number = value.number;
      bool comparable = value.isNumber();
      // Text that reads as the number fits an equality, as it does when typed as a criterion; it
      // fits the opposite as well, being text.
      if (value.isText() && operator_ == "=") {
        if (const auto read = numberOfText(value.view(), dates1904_)) {
          number = *read;
          comparable = true;
        }
      }
      return comparable ? compares(sign(number, number_)) : negated;
    }
    case Kind::Boolean:
      if (!value.isBoolean()) return negated;
      return compares(static_cast<int>(value.number) - static_cast<int>(number_));
    case Kind::Error:
      if (!value.isError()) return negated;
      return negated != (value.code == error_);
    case Kind::Blank:
      if (negated) return !value.isEmpty();
      if (operator_ != "=") return false;
      // "=" asks for cells without content, "" also for empty text.
      return value.isEmpty() || (!explicitOperator_ && value.isText() && value.view().empty());
    case Kind::Text:
      break;
  }
  const bool isText = value.isText() || value.tag == Tag::NumericText;
  if (!isText) return negated;
  if (operator_ == "=" || negated) {
    const bool fits = wildcards_ ? fitPattern(toLower(value.view()), text_, true).fits
                                 : equalsNoCase(value.view(), text_);
    return fits != negated;
  }
  return compares(compareNoCase(value.view(), text_));
}

}  // namespace lodex::formula
