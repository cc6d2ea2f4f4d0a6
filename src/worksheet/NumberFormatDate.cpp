#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "worksheet/NumberFormatParts.h"

namespace lodex::numberformat {
namespace {

constexpr std::array<std::string_view, 12> months{"January",   "February", "March",    "April",
                                                  "May",       "June",     "July",     "August",
                                                  "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> weekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};

struct Calendar {
  int year = 1900, month = 1, day = 0;
  int weekday = 6;  // 0 is Sunday
};

// The day of a serial number. Spreadsheets that count from 1900 have a day 0 of January and a
// 29 February in that year.
Calendar calendarDay(long serial, bool dates1904) {
  using namespace std::chrono;
  if (!dates1904 && serial == 0) return {};
  if (!dates1904 && serial == 60) return {1900, 2, 29, 3};
  const auto start = dates1904     ? sys_days(year(1904) / 1 / 1)
                     : serial < 60 ? sys_days(year(1899) / 12 / 31)
                                   : sys_days(year(1899) / 12 / 30);
  const sys_days date = start + days(serial);
  const year_month_day parts(date);
  // The sheets' own weekdays are one off before their extra day.
  const long sheetWeekday =
      dates1904 ? static_cast<long>(weekday(date).c_encoding()) : (serial + 6) % 7;
  return {static_cast<int>(parts.year()), static_cast<int>(static_cast<unsigned>(parts.month())),
          static_cast<int>(static_cast<unsigned>(parts.day())), static_cast<int>(sheetWeekday)};
}

std::string padded(long number, int width) {
  std::string text = std::to_string(number);
  if (static_cast<int>(text.size()) < width)
    text.insert(0, static_cast<size_t>(width) - text.size(), '0');
  return text;
}

std::string name(std::string_view whole, int letters) {
  return std::string(letters == 3 ? whole.substr(0, 3) : letters == 5 ? whole.substr(0, 1) : whole);
}

}  // namespace

std::optional<std::string> dateText(double serial, const Section& section, bool dates1904) {
  constexpr double firstDayBeyond = 2958466;  // 1 January 10000
  if (!(serial >= 0) || serial >= firstDayBeyond) return std::nullopt;
  int decimals = 0;
  bool halfDays = false;
  bool allHours = false;
  bool allSeconds = false;
  for (const Token& token : section.tokens) {
    allHours = allHours || token.kind == TokenKind::ElapsedHours;
    allSeconds = allSeconds || token.kind == TokenKind::ElapsedSeconds;
    if (token.kind == TokenKind::SubSecond) decimals = std::min(token.count, 6);
    halfDays = halfDays || token.kind == TokenKind::AmPm;
  }
  // Rounded to the smallest part on show, so that 12:29:59.9999 is 12:30.
  const double scale = std::pow(10, decimals);
  const double ticks = std::round(serial * 86400 * scale);
  const double seconds = std::floor(ticks / scale);
  const long parts = std::lround(ticks - seconds * scale);
  const long day = static_cast<long>(std::floor(seconds / 86400));
  const long inDay = std::lround(seconds - static_cast<double>(day) * 86400);
  const long hour = inDay / 3600;
  const Calendar date = calendarDay(day, dates1904);

  std::string out;
  for (const Token& token : section.tokens) {
    const int width = token.count > 1 ? 2 : 1;
    switch (token.kind) {
      case TokenKind::Year:
        out += token.count > 2 ? padded(date.year, 4) : padded(date.year % 100, 2);
        break;
      case TokenKind::Month:
        out += token.count > 2 ? name(months[static_cast<size_t>(date.month) - 1], token.count)
                               : padded(date.month, width);
        break;
      case TokenKind::Day:
        out += token.count > 2 ? name(weekdays[static_cast<size_t>(date.weekday)], token.count)
                               : padded(date.day, width);
        break;
      case TokenKind::Hour:
        // After "[h]" further hours count the whole time, too; so do seconds after "[s]".
        out += padded(allHours   ? static_cast<long>(seconds / 3600)
                      : halfDays ? (hour + 11) % 12 + 1
                                 : hour,
                      width);
        break;
      case TokenKind::Minute:
        out += padded(inDay / 60 % 60, width);
        break;
      case TokenKind::Second:
        out += padded(allSeconds ? static_cast<long>(seconds) : inDay % 60, width);
        break;
      case TokenKind::SubSecond:
        out += "." + padded(parts, decimals) +
               std::string(static_cast<size_t>(token.count - decimals), '0');
        break;
      case TokenKind::AmPm:
        out += token.letter == 'a' ? (hour < 12 ? "a" : "p") : (hour < 12 ? "A" : "P");
        if (token.letter == 'M') out += "M";
        break;
      case TokenKind::ElapsedHours:
        out += padded(static_cast<long>(seconds / 3600), token.count);
        break;
      case TokenKind::ElapsedMinutes:
        out += padded(static_cast<long>(seconds / 60), token.count);
        break;
      case TokenKind::ElapsedSeconds:
        out += padded(static_cast<long>(seconds), token.count);
        break;
      case TokenKind::Point:
        out += ".";
        break;
      case TokenKind::Slash:
        out += "/";
        break;
      case TokenKind::Literal:
        out += token.text;
        break;
      default:
        break;
    }
  }
  return out;
}

}  // namespace lodex::numberformat
