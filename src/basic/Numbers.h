#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The run-time semantics of numbers that the whole system relies on. Nothing here looks at the
/// locale: the decimal separator is always a point.
namespace lodex {

/// The value of a numeric text: optional blanks, sign, digits with at most one point, exponent
/// ("e" or "E"), optional blanks. A decimal comma, "inf", "nan", hexadecimal forms and an empty
/// text are no numbers; neither is one too large for a double.
std::optional<double> parseNumber(std::string_view text);
bool isNumericText(std::string_view text);

/// The value of a numeric text, 0 for everything else.
double numberOf(std::string_view text);

/// A whole number in the range of a 32-bit integer; a numeric text with decimals is rounded with
/// halves to even. Empty when the text is no number or out of range.
std::optional<int> parseInteger(std::string_view text);

/// The number as a user sees it: up to 15 significant digits, no trailing zeros, "E" notation such
/// as "1E+20" outside 1E-5 .. 1E+15. Negative zero reads "0".
std::string numberText(double value);

/// The same with the 7 significant digits of a single precision value, and "E" notation from 1E+07.
std::string numberText(float value);

/// The shortest text that reads back as the same double.
std::string exactNumberText(double value);

/// Rounding to a whole number with halves to even.
double roundHalfEven(double value);

/// Rounded to single precision and widened again.
double toSingle(double value);

}  // namespace lodex
