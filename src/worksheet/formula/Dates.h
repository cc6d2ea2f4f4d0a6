#pragma once

#include <optional>
#include <string_view>

/// Dates as spreadsheet serial numbers: days, with the time of day as the fraction. In the 1900
/// system day 1 is 1900-01-01, and day 60 is a 29 February 1900 that never was, kept because files
/// count on it. In the 1904 system day 0 is 1904-01-01.
namespace lodex::formula {

struct Civil {
  int year = 1900, month = 1, day = 1;
};

inline constexpr double lastSerial = 2958465;  // 9999-12-31 in the 1900 system

/// Days of a date by the proleptic Gregorian calendar, 0 on 1970-01-01, and back.
long daysOfCivil(int year, int month, int day);
Civil civilOfDays(long days);
int daysInMonth(int year, int month);
bool isLeapYear(int year);

/// The serial of a date; month and day may run over (month 13 is January of the next year). Empty
/// outside of the years 1900 to 9999.
std::optional<double> serialOfDate(double year, double month, double day, bool dates1904);

/// The date of a serial's whole part. Empty for a negative serial or one after 9999-12-31.
std::optional<Civil> dateOfSerial(double serial, bool dates1904);

/// 0 for Sunday to 6 for Saturday, by the spreadsheet's calendar.
int weekdayOfSerial(double serial, bool dates1904);

/// Seconds of the day, 0 to 86399, rounded to a whole second.
int secondsOfSerial(double serial);

/// The number that a text means where a number is needed: numbers with thousands separators,
/// currency sign, percent sign or parentheses, dates ("2004-03-01", "3/1/2004", "1-Mar-2004") and
/// times ("14:30:05", "2:30 PM"). Empty for other texts.
std::optional<double> numberOfText(std::string_view text, bool dates1904);

/// The serial of a text that is a date, a time or both; nothing else.
std::optional<double> serialOfText(std::string_view text, bool dates1904);

}  // namespace lodex::formula
