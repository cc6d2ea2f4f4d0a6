#include "db/drivers/sqlite/SqliteDates.h"

#include <algorithm>
#include <chrono>
#include <string>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/drivers/sqlite/SqliteValues.h"

namespace lodex {

DateTime requireDate(sqlite3_value* value) {
  if (sqlite3_value_type(value) != SQLITE_TEXT) {
    const double number = sqlite3_value_double(value);
    const auto date = dateOfMoment(number);
    if (!date) throw Error("A number is beyond all dates");
    return *date;
  }
  const std::string text = argumentText(value);
  const auto date = parseDate(text);
  if (!date) throw Error("\"" + text + "\" is no date");
  return *date;
}

int dayOfYear(const DateTime& date) {
  DateTime first = date;
  first.month = first.day = 1;
  return static_cast<int>(dayNumber(date) - dayNumber(first)) + 1;
}

int weekOfYear(const DateTime& date) {
  DateTime first = date;
  first.month = first.day = 1;
  return (dayOfYear(date) + weekday(first) - 2) / 7 + 1;
}

namespace {

int wholeArgument(sqlite3_value* value) {
  const auto number = parseInteger(argumentText(value));
  if (!number) throw Error("A whole number is expected in a date function");
  return *number;
}

std::int64_t secondOfDay(const DateTime& date) {
  return date.hour * 3600 + date.minute * 60 + date.second;
}

template <int DateTime::*part>
void partOf(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int(context, requireDate(values[0]).*part);
}

void weekdayOf(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int(context, weekday(requireDate(values[0])));
}

void datePart(sqlite3_context* context, int, sqlite3_value** values) {
  const std::string part = toLower(argumentText(values[0]));
  const DateTime date = requireDate(values[1]);
  const struct {
    std::string_view name;
    int value;
  } parts[] = {{"yyyy", date.year},      {"q", (date.month + 2) / 3},
               {"m", date.month},        {"y", dayOfYear(date)},
               {"d", date.day},          {"w", weekday(date)},
               {"ww", weekOfYear(date)}, {"h", date.hour},
               {"n", date.minute},       {"s", date.second}};
  for (const auto& known : parts) {
    if (part == known.name) return sqlite3_result_int(context, known.value);
  }
  throw Error("\"" + part + "\" is no part of a date");
}

// The date of a year, a month and a day; months and days beyond the calendar carry over.
DateTime serialDate(std::int64_t year, std::int64_t month, std::int64_t day) {
  std::int64_t months = year * 12 + month - 1;
  const std::int64_t realYear = months >= 0 ? months / 12 : (months - 11) / 12;
  if (realYear < 100 || realYear > 9999) throw Error("A date is beyond the years 100 to 9999");
  DateTime date{
      static_cast<int>(realYear), static_cast<int>(months - realYear * 12) + 1, 1, 0, 0, 0};
  date = dateOfDay(dayNumber(date) + day - 1);
  if (date.year < 100 || date.year > 9999) throw Error("A date is beyond the years 100 to 9999");
  return date;
}

void dateSerial(sqlite3_context* context, int, sqlite3_value** values) {
  int year = wholeArgument(values[0]);
  if (year >= 0 && year < 100) year += year < 30 ? 2000 : 1900;
  resultText(context,
             dateText(serialDate(year, wholeArgument(values[1]), wholeArgument(values[2]))));
}

void dateValue(sqlite3_context* context, int, sqlite3_value** values) {
  DateTime date = requireDate(values[0]);
  date.hour = date.minute = date.second = 0;
  resultText(context, dateText(date));
}

void toDate(sqlite3_context* context, int, sqlite3_value** values) {
  resultText(context, dateText(requireDate(values[0])));
}

void isDate(sqlite3_context* context, int, sqlite3_value** values) {
  const bool is = sqlite3_value_type(values[0]) == SQLITE_TEXT &&
                  parseDate(argumentText(values[0])).has_value();
  sqlite3_result_int(context, is ? -1 : 0);
}

int lastDayOfMonth(const DateTime& date) {
  using namespace std::chrono;
  const year_month_day_last last(year(date.year),
                                 month_day_last(month(static_cast<unsigned>(date.month))));
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

void dateAdd(sqlite3_context* context, int, sqlite3_value** values) {
  const std::string part = toLower(argumentText(values[0]));
  const std::int64_t count = wholeArgument(values[1]);
  const DateTime date = requireDate(values[2]);
  const std::int64_t months = part == "yyyy" ? 12 : part == "q" ? 3 : part == "m" ? 1 : 0;
  DateTime result;
  std::int64_t seconds = secondOfDay(date);
  if (months) {
    result = serialDate(date.year, date.month + months * count, 1);
    result.day = std::min(date.day, lastDayOfMonth(result));
  } else {
    const std::int64_t step = part == "h"                                 ? 3600
                              : part == "n"                               ? 60
                              : part == "s"                               ? 1
                              : part == "ww"                              ? 7 * 86400
                              : part == "d" || part == "w" || part == "y" ? 86400
                                                                          : 0;
    if (!step) throw Error("\"" + part + "\" is no part of a date");
    seconds += step * count;
    std::int64_t days = seconds / 86400;
    if (seconds % 86400 < 0) --days;
    seconds -= days * 86400;
    result = serialDate(date.year, date.month, date.day + days);
  }
  result.hour = static_cast<int>(seconds / 3600);
  result.minute = static_cast<int>(seconds / 60 % 60);
  result.second = static_cast<int>(seconds % 60);
  resultText(context, dateText(result));
}

// Counts the borders between two dates: of years, of months ...
void dateDiff(sqlite3_context* context, int, sqlite3_value** values) {
  const std::string part = toLower(argumentText(values[0]));
  const DateTime from = requireDate(values[1]);
  const DateTime to = requireDate(values[2]);
  const std::int64_t days = dayNumber(to) - dayNumber(from);
  const std::int64_t hours = days * 24 + to.hour - from.hour;
  const std::int64_t minutes = hours * 60 + to.minute - from.minute;
  const std::int64_t months = (to.year - from.year) * 12 + to.month - from.month;
  const std::int64_t quarters =
      (to.year - from.year) * 4 + (to.month - 1) / 3 - (from.month - 1) / 3;
  const std::int64_t sundays = (days + weekday(from) - weekday(to)) / 7;
  const struct {
    std::string_view name;
    std::int64_t value;
  } parts[] = {{"yyyy", to.year - from.year},
               {"q", quarters},
               {"m", months},
               {"d", days},
               {"y", days},
               {"w", days / 7},
               {"ww", sundays},
               {"h", hours},
               {"n", minutes},
               {"s", minutes * 60 + to.second - from.second}};
  for (const auto& known : parts) {
    if (part == known.name) return sqlite3_result_int64(context, known.value);
  }
  throw Error("\"" + part + "\" is no part of a date");
}

}  // namespace

void addJetDateFunctions(sqlite3* database) {
  addFunction(database, "Year", 1, nullAware<partOf<&DateTime::year>>);
  addFunction(database, "Month", 1, nullAware<partOf<&DateTime::month>>);
  addFunction(database, "Day", 1, nullAware<partOf<&DateTime::day>>);
  addFunction(database, "Hour", 1, nullAware<partOf<&DateTime::hour>>);
  addFunction(database, "Minute", 1, nullAware<partOf<&DateTime::minute>>);
  addFunction(database, "Second", 1, nullAware<partOf<&DateTime::second>>);
  addFunction(database, "Weekday", 1, nullAware<weekdayOf>);
  addFunction(database, "DatePart", 2, nullAware<datePart>);
  addFunction(database, "DateSerial", 3, nullAware<dateSerial>);
  addFunction(database, "DateValue", 1, nullAware<dateValue>);
  addFunction(database, "CDate", 1, nullAware<toDate>);
  addFunction(database, "DateAdd", 3, nullAware<dateAdd>);
  addFunction(database, "DateDiff", 3, nullAware<dateDiff>);
  addFunction(database, "IsDate", 1, guarded<isDate>);
}

}  // namespace lodex
