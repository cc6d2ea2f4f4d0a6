#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// Splits a column heading such as "Au_FA ppb" into element, method and unit. With `strict` a
/// heading without a known element gives no element and leaves the method as it was.
void SplitHeading(std::string_view heading, std::string& element, std::string& method,
                  std::string& unit, bool strict);

/// The text of an ELEMENT cell without "TOT" at its end, in any case, and without blanks around it.
std::string_view withoutTotal(std::string_view text);

/// For a heading of a method workbook: whether it names an oxide, and the factor from its unit to
/// per cent (1, 10000 for ppm and g/t, 10000000 for ppb, 0 for no unit).
void HeadingFactor(std::string_view heading, bool& isOxide, double& unitFactor);

/// The factor of a data sheet's unit row, which differs from HeadingFactor: "%" 1, "PPM" 10000,
/// and "PPB", "G/T" and "MG/L" 10000000. 0 for an unknown unit.
double DataUnitFactor(std::string_view unit);

/// Replaces what a database name cannot hold by "_"; "/" only if asked. True if anything changed.
bool SafeFieldName(std::string_view text, std::string& clean, bool replaceSlash);

/// Pieces between separators: none for an empty text, the whole for an empty separator.
std::vector<std::string> SplitText(std::string_view text, std::string_view separator);

/// Reads an item reference such as "M12/3/5": kind "M" or "P" ("M" when absent), item number and
/// up to two numbers after it. False if it is none.
bool ParseItemRef(std::string_view text, std::string& kind, std::int32_t& item,
                  std::vector<std::int32_t>& rest);

/// Single precision rounding with the half added and the floor taken; -999 on any error.
double RoundTo(double value, int digits);

/// A normal deviate by the polar method of Marsaglia.
double RandomGauss(double mean, double sigma);

/// Starts the calling thread's sequence of RandomGauss anew, so that a run can be repeated.
void SeedRandom(std::uint32_t seed);

}  // namespace lodex
