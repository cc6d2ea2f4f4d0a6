#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lodex {

/// A moment of the calendar, without a time zone.
struct DateTime {
  int year = 1899;
  int month = 12;  ///< from 1
  int day = 30;    ///< from 1
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// Reads 2020-01-31, 1/31/2020 and 1-31-2020 (the month first, unless it can only be the day),
/// 31.1.2020, each with or without a time such as
/// 9:30, 09:30:15 or 9:30 PM after it, or a time alone, which falls on 1899-12-30. Empty when the
/// text is not a date of the years 100 to 9999.
std::optional<DateTime> parseDate(std::string_view text);

/// The form in which databases keep dates: 2020-01-31, with the time after it unless it is
/// midnight. These texts sort like the dates.
std::string dateText(const DateTime& date);

/// Days since 1899-12-30, and the date of such a number.
std::int64_t dayNumber(const DateTime& date);
DateTime dateOfDay(std::int64_t day);

/// A moment as a number: days since 1899-12-30 with the part of the day after the point. The way
/// back, to whole seconds, is empty beyond the years 100 to 9999.
double momentNumber(const DateTime& date);
std::optional<DateTime> dateOfMoment(double number);

/// Reads a text only if it has the form of dateText, or is a time alone such as 09:30:00.
std::optional<DateTime> parseStoredDate(std::string_view text);

/// Day of the week, 1 for Sunday.
int weekday(const DateTime& date);

}  // namespace lodex
