#include "db/Dates.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "basic/Text.h"

namespace lodex {

namespace {

namespace chrono = std::chrono;

constexpr chrono::sys_days kDayZero = chrono::year(1899) / 12 / 30;

// Takes a run of digits off the front; -1 if there is none or it is longer than four.
int takeNumber(std::string_view& text) {
  size_t count = 0;
  int value = 0;
  while (count < text.size() && text[count] >= '0' && text[count] <= '9') {
    if (count == 4) return -1;
    value = value * 10 + (text[count++] - '0');
  }
  text.remove_prefix(count);
  return count ? value : -1;
}

bool takeMark(std::string_view& text, char mark) {
  if (text.empty() || text.front() != mark) return false;
  text.remove_prefix(1);
  return true;
}

// Reads "<a>:<b>[:<c>] [AM|PM]", all of the text.
bool readTime(std::string_view text, DateTime& date) {
  date.hour = takeNumber(text);
  if (date.hour < 0 || !takeMark(text, ':')) return false;
  date.minute = takeNumber(text);
  date.second = takeMark(text, ':') ? takeNumber(text) : 0;
  // Fractions of a second are not kept.
  if (takeMark(text, '.')) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0) return false;
    text.remove_prefix(digits);
  }
  text = trimWhite(text);
  const bool afternoon = equalsNoCase(text, "PM");
  if (afternoon || equalsNoCase(text, "AM")) {
    if (date.hour < 1 || date.hour > 12) return false;
    date.hour = date.hour % 12 + (afternoon ? 12 : 0);
  } else if (!text.empty()) {
    return false;
  }
  return date.hour <= 23 && date.minute >= 0 && date.minute <= 59 && date.second >= 0 &&
         date.second <= 59;
}

bool isDay(const DateTime& date) {
  return date.year >= 1 && date.year <= 9999 && date.month >= 1 && date.day >= 1 &&
         chrono::year_month_day(chrono::year(date.year),
                                chrono::month(static_cast<unsigned>(date.month)),
                                chrono::day(static_cast<unsigned>(date.day)))
             .ok();
}

}  // namespace

std::optional<DateTime> parseDate(std::string_view whole) {
  std::string_view text = trimWhite(whole);
  DateTime date;
  if (readTime(text, date)) return date;
  date = {};
  const int first = takeNumber(text);
  if (first < 0 || text.empty()) return std::nullopt;
  const char mark = text.front();
  if (mark != '-' && mark != '/' && mark != '.') return std::nullopt;
  takeMark(text, mark);
  const int second = takeNumber(text);
  if (second < 0 || !takeMark(text, mark)) return std::nullopt;
  const int third = takeNumber(text);
  if (third < 0) return std::nullopt;
  const bool yearIsLast = third > 31 && first <= 31;
  if (first > 31 || (mark == '-' && !yearIsLast)) {
    date.year = first, date.month = second, date.day = third;
  } else if (mark != '.' && first <= 12) {
    date.month = first, date.day = second, date.year = third;
  } else {
    date.day = first, date.month = second, date.year = third;
  }
  // Two digits mean the years 1930 to 2029, four the first century.
  const bool isWholeYear = mark == '-' && trimWhite(whole).starts_with("00");
  if (date.year < 100 && !isWholeYear) date.year += date.year < 30 ? 2000 : 1900;
  if (!isDay(date)) return std::nullopt;
  if (text.empty()) return date;
  if (text.front() != ' ' && text.front() != 'T') return std::nullopt;
  if (!readTime(trimWhite(text.substr(1)), date)) return std::nullopt;
  return date;
}

std::string dateText(const DateTime& date) {
  std::string text = fmt::format("{:04}-{:02}-{:02}", date.year, date.month, date.day);
  if (date.hour || date.minute || date.second) {
    text += fmt::format(" {:02}:{:02}:{:02}", date.hour, date.minute, date.second);
  }
  return text;
}

std::int64_t dayNumber(const DateTime& date) {
  const chrono::sys_days day = chrono::year_month_day(
      chrono::year(date.year), chrono::month(static_cast<unsigned>(date.month)),
      chrono::day(static_cast<unsigned>(date.day)));
  return (day - kDayZero).count();
}

DateTime dateOfDay(std::int64_t number) {
  const chrono::year_month_day day(kDayZero + chrono::days(number));
  DateTime date;
  date.year = static_cast<int>(day.year());
  date.month = static_cast<int>(static_cast<unsigned>(day.month()));
  date.day = static_cast<int>(static_cast<unsigned>(day.day()));
  return date;
}

double momentNumber(const DateTime& date) {
  const int seconds = date.hour * 3600 + date.minute * 60 + date.second;
  return static_cast<double>(dayNumber(date)) + seconds / 86400.0;
}

std::optional<DateTime> dateOfMoment(double number) {
  constexpr double kFirst = -657434;  // 0100-01-01
  constexpr double kEnd = 2958466;    // 10000-01-01
  if (!(number >= kFirst && number < kEnd)) return std::nullopt;
  const std::int64_t seconds =
      std::min(std::llround(number * 86400), static_cast<long long>(kEnd) * 86400 - 1);
  const std::int64_t day = (seconds - (seconds < 0 ? 86399 : 0)) / 86400;
  const int rest = static_cast<int>(seconds - day * 86400);
  DateTime date = dateOfDay(day);
  date.hour = rest / 3600;
  date.minute = rest / 60 % 60;
  date.second = rest % 60;
  return date;
}

std::optional<DateTime> parseStoredDate(std::string_view text) {
  const auto hasShape = [&](std::string_view shape) {
    if (text.size() < shape.size()) return false;
    for (size_t i = 0; i < shape.size(); ++i) {
      const bool isDigit = text[i] >= '0' && text[i] <= '9';
      if (shape[i] == '0' ? !isDigit : text[i] != shape[i]) return false;
    }
    return true;
  };
  const bool isDay = hasShape("0000-00-00") && (text.size() == 10 || hasShape("0000-00-00 00:00"));
  const bool isTime = hasShape("00:00:00") && text.size() == 8;
  return isDay || isTime ? parseDate(text) : std::nullopt;
}

int weekday(const DateTime& date) {
  const chrono::sys_days day = kDayZero + chrono::days(dayNumber(date));
  return static_cast<int>(chrono::weekday(day).c_encoding()) + 1;
}

}  // namespace lodex
