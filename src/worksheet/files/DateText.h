#pragma once

#include <optional>
#include <string_view>

namespace lodex {

/// The serial number of a date as sheets count them, for "2024-03-09", "2024-03-09T12:30:00" or
/// "T12:30:00"; empty for anything else. `dates1904`: day 0 is 1 January 1904.
std::optional<double> serialOfIsoDate(std::string_view text, bool dates1904);

/// The day number of a calendar date with the leap day that spreadsheets believe 1900 had.
double serialOfDay(int year, int month, int day, bool dates1904);

}  // namespace lodex
