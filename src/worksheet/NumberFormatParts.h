#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Number formats taken apart, and the rendering of one section of them.
namespace lodex::numberformat {

enum class TokenKind {
  Literal,  // text, shown as it is
  Digit,    // one placeholder: '0', '#' or '?' in `letter`
  Point,
  Percent,
  Exponent,     // "E+" or "E-", the sign in `letter`, "E" or "e" in `text`
  Slash,        // of a fraction
  Denominator,  // the fixed denominator of a fraction, in `count`
  General,
  Text,  // "@"
  Year,
  Month,
  Day,
  Hour,
  Minute,
  Second,     // `count` letters
  SubSecond,  // `count` decimals of a second
  AmPm,       // `letter` 'A' for "A/P", 'a' for "a/p", 'M' for "AM/PM"
  ElapsedHours,
  ElapsedMinutes,
  ElapsedSeconds,
};

struct Token {
  TokenKind kind;
  std::string text;  // of a Literal or Exponent
  char letter = '\0';
  int count = 0;
};

/// "[>=100]" in front of a section.
struct Condition {
  std::string comparison;
  double value = 0;
  bool admits(double number) const;
  /// True when every number that it admits is negative, or zero at most.
  bool onlyNegative() const;
};

struct Section {
  std::vector<Token> tokens;
  std::optional<Condition> condition;
  bool isDate = false;
  bool isText = false;      // holds "@"
  bool grouped = false;     // digits in groups of three
  int thousands = 0;        // how often the number is divided by 1000
  int percents = 0;         // how often it is multiplied by 100
  std::int32_t color = -1;  // 0xRRGGBB of "[Red]" and the like; -1 for none
};

/// The sections of a format; empty when the format cannot be understood.
std::vector<Section> parseFormat(std::string_view format);

/// A number that is not negative under a section of digits, a fraction or an exponent.
std::string digitsText(double number, const Section& section);

/// A date or time under a section; nothing for numbers outside of 1900 (or 1904) to 9999.
std::optional<std::string> dateText(double serial, const Section& section, bool dates1904);

}  // namespace lodex::numberformat
