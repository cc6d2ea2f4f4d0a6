// Dates and times.
#include <algorithm>
#include <cmath>
#include <set>

#include "worksheet/formula/Dates.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

Operand serialOr(const std::optional<double>& serial, ErrorCode otherwise) {
  return serial ? Operand(*serial) : Operand(otherwise);
}

// Years below 1900 count from 1900.
Operand fnDate(Evaluator& ev, Arguments a) {
  double year = std::floor(a[0].number);
  if (year < 0 || year > 9999) return ErrorCode::Num;
  if (year < (ev.dates1904() ? 1904 : 1900)) year += 1900;
  return serialOr(serialOfDate(year, a[1].number, a[2].number, ev.dates1904()), ErrorCode::Num);
}

Operand fnTime(Evaluator&, Arguments a) {
  const double hours = std::trunc(a[0].number);
  const double minutes = std::trunc(a[1].number);
  const double seconds = std::trunc(a[2].number);
  const double total = hours * 3600 + minutes * 60 + seconds;
  if (total < 0 || std::abs(total) > 1e9) return ErrorCode::Num;
  return std::fmod(total, 86400) / 86400;
}

template <typename Part>
Operand datePart(Evaluator& ev, Arguments a, Part part) {
  const auto date = dateOfSerial(a[0].number, ev.dates1904());
  return date ? Operand(static_cast<double>(part(*date))) : Operand(ErrorCode::Num);
}

Operand timePart(Arguments a, int unit, int modulus) {
  if (a[0].number < 0) return ErrorCode::Num;
  return static_cast<double>(secondsOfSerial(a[0].number) / unit % modulus);
}

double serialNow(Evaluator& ev) {
  return ev.localTime() / 86400 + 25569 - (ev.dates1904() ? 1462 : 0);
}

Operand fnWeekday(Evaluator& ev, Arguments a) {
  int type = 1;
  if (given(a, 1) && !wholeBetween(a[1].number, 1, 17, type)) return ErrorCode::Num;
  if (a[0].number < 0 || a[0].number > lastSerial) return ErrorCode::Num;
  const int day = weekdayOfSerial(a[0].number, ev.dates1904());  // Sunday 0
  if (type == 1) return day + 1.0;
  if (type == 2) return (day + 6) % 7 + 1.0;
  if (type == 3) return (day + 6) % 7 + 0.0;
  if (type < 11) return ErrorCode::Num;
  return (day + 7 - (type - 10) % 7) % 7 + 1.0;  // 11 Monday first ... 17 Sunday first
}

Operand isoWeek(Evaluator& ev, double serial) {
  // The week's Thursday decides to which year it belongs.
  const double day = std::floor(serial);
  const double thursday = day - (weekdayOfSerial(day, ev.dates1904()) + 6) % 7 + 3;
  const auto date = dateOfSerial(std::max(0.0, thursday), ev.dates1904());
  if (!date) return ErrorCode::Num;
  const auto newYear = serialOfDate(date->year, 1, 1, ev.dates1904());
  return newYear ? Operand(std::floor((thursday - *newYear) / 7) + 1) : Operand(ErrorCode::Num);
}

Operand fnWeeknum(Evaluator& ev, Arguments a) {
  int type = 1;
  if (given(a, 1) && !wholeBetween(a[1].number, 1, 21, type)) return ErrorCode::Num;
  if (type == 21) return isoWeek(ev, a[0].number);
  if (type > 2 && (type < 11 || type > 17)) return ErrorCode::Num;
  const auto date = dateOfSerial(a[0].number, ev.dates1904());
  if (!date) return ErrorCode::Num;
  const double newYear = serialOfDate(date->year, 1, 1, ev.dates1904()).value_or(0);
  const int firstDay = type == 1 ? 0 : type == 2 ? 1 : (type - 10) % 7;
  const int offset = (weekdayOfSerial(newYear, ev.dates1904()) - firstDay + 7) % 7;
  return std::floor((std::floor(a[0].number) - newYear + offset) / 7) + 1;
}

// Moves a date by whole months; the day is cut to the new month's length.
Operand addMonths(Evaluator& ev, Arguments a, bool toEnd) {
  const auto date = dateOfSerial(a[0].number, ev.dates1904());
  if (!date || std::abs(a[1].number) > 1e5) return ErrorCode::Num;
  const long months =
      date->year * 12L + date->month - 1 + static_cast<long>(std::trunc(a[1].number));
  const int year = static_cast<int>(months / 12);
  const int month = static_cast<int>(months % 12) + 1;
  if (months < 0 || year < 1900 || year > 9999) return ErrorCode::Num;
  const int length = daysInMonth(year, month);
  return serialOr(
      serialOfDate(year, month, toEnd ? length : std::min(date->day, length), ev.dates1904()),
      ErrorCode::Num);
}

bool isLastOfFebruary(const Civil& date) {
  return date.month == 2 && date.day == daysInMonth(date.year, 2);
}

double days360(Civil from, Civil to, bool european) {
  if (european) {
    from.day = std::min(from.day, 30);
    to.day = std::min(to.day, 30);
  } else {
    if (isLastOfFebruary(from)) from.day = 30;
    from.day = std::min(from.day, 30);
    if (to.day == 31) {
      if (from.day < 30) {
        to.day = 1;
        if (++to.month > 12) to.month = 1, ++to.year;
      } else {
        to.day = 30;
      }
    }
  }
  return (to.year - from.year) * 360.0 + (to.month - from.month) * 30.0 + to.day - from.day;
}

Operand fnDays360(Evaluator& ev, Arguments a) {
  const auto from = dateOfSerial(a[0].number, ev.dates1904());
  const auto to = dateOfSerial(a[1].number, ev.dates1904());
  if (!from || !to) return ErrorCode::Num;
  return days360(*from, *to, given(a, 2) && a[2].number != 0);
}

// Mean length of the years that a span touches, for the actual/actual basis.
double yearLength(const Civil& from, const Civil& to) {
  const bool withinYear =
      from.year == to.year ||
      (to.year == from.year + 1 &&
       (to.month < from.month || (to.month == from.month && to.day <= from.day)));
  if (!withinYear) {
    double days = 0;
    for (int year = from.year; year <= to.year; ++year) days += isLeapYear(year) ? 366 : 365;
    return days / (to.year - from.year + 1);
  }
  if (from.year == to.year) return isLeapYear(from.year) ? 366 : 365;
  const bool leapBefore = isLeapYear(from.year) && (from.month < 3);
  const bool leapAfter = isLeapYear(to.year) && (to.month > 2 || (to.month == 2 && to.day == 29));
  return leapBefore || leapAfter ? 366 : 365;
}

Operand fnYearFrac(Evaluator& ev, Arguments a) {
  int basis = 0;
  if (given(a, 2) && !wholeBetween(a[2].number, 0, 4, basis)) return ErrorCode::Num;
  const double low = std::floor(std::min(a[0].number, a[1].number));
  const double high = std::floor(std::max(a[0].number, a[1].number));
  const auto from = dateOfSerial(low, ev.dates1904());
  const auto to = dateOfSerial(high, ev.dates1904());
  if (!from || !to) return ErrorCode::Num;
  switch (basis) {
    case 0: {
      Civil end = *to;
      if (isLastOfFebruary(*from) && isLastOfFebruary(end))
        end.day = 30;
      else if (end.day == 31 && from->day < 30 && !isLastOfFebruary(*from))
        return days360(*from, end, false) / 360;
      return days360(*from, end, false) / 360;
    }
    case 1:
      return (high - low) / yearLength(*from, *to);
    case 2:
      return (high - low) / 360;
    case 3:
      return (high - low) / 365;
    default:
      return days360(*from, *to, true) / 360;
  }
}

Operand fnDateDif(Evaluator& ev, Arguments a) {
  const double low = std::floor(a[0].number);
  const double high = std::floor(a[1].number);
  const auto from = dateOfSerial(low, ev.dates1904());
  const auto to = dateOfSerial(high, ev.dates1904());
  if (!from || !to || low > high) return ErrorCode::Num;
  std::string unit(a[2].view());
  for (char& c : unit) c = static_cast<char>(c & ~0x20);
  int months =
      (to->year - from->year) * 12 + to->month - from->month - (to->day < from->day ? 1 : 0);
  if (unit == "D") return high - low;
  if (unit == "M") return static_cast<double>(months);
  if (unit == "Y") return static_cast<double>(months / 12);
  if (unit == "YM") return static_cast<double>(months % 12);
  if (unit == "MD") {
    if (to->day >= from->day) return static_cast<double>(to->day - from->day);
    const int year = to->month == 1 ? to->year - 1 : to->year;
    const int month = to->month == 1 ? 12 : to->month - 1;
    return static_cast<double>(daysInMonth(year, month) - from->day + to->day);
  }
  if (unit == "YD") {
    const bool before =
        to->month < from->month || (to->month == from->month && to->day < from->day);
    const auto start =
        serialOfDate(to->year - (before ? 1 : 0), from->month, from->day, ev.dates1904());
    return start ? Operand(high - *start) : Operand(ErrorCode::Num);
  }
  return ErrorCode::Num;
}

bool readHolidays(Evaluator& ev, Arguments a, size_t index, std::set<double>& days,
                  Operand& error) {
  if (!given(a, index)) return true;
  return ev.visitValues(a[index], [&](const Operand& value, bool) {
    double day = 0;
    // Dates may be texts here, in cells and in arrays.
    if (value.isEmpty()) return true;
    if (!ev.toNumber(value, day, error)) return false;
    days.insert(std::floor(day));
    return true;
  });
}

bool isWorkday(Evaluator& ev, double day, const std::set<double>& holidays) {
  const int weekday = weekdayOfSerial(day, ev.dates1904());
  return weekday != 0 && weekday != 6 && !holidays.contains(day);
}

Operand fnWorkday(Evaluator& ev, Arguments a) {
  std::set<double> holidays;
  Operand error;
  if (!readHolidays(ev, a, 2, holidays, error)) return error;
  double day = std::floor(a[0].number);
  const double count = std::trunc(a[1].number);
  if (day < 0 || std::abs(count) > 3e6) return ErrorCode::Num;
  const double step = count < 0 ? -1 : 1;
  for (double left = std::abs(count); left > 0;) {
    day += step;
    if (day < 0 || day > lastSerial) return ErrorCode::Num;
    if (isWorkday(ev, day, holidays)) --left;
  }
  return day;
}

Operand fnNetworkdays(Evaluator& ev, Arguments a) {
  std::set<double> holidays;
  Operand error;
  if (!readHolidays(ev, a, 2, holidays, error)) return error;
  const double low = std::floor(std::min(a[0].number, a[1].number));
  const double high = std::floor(std::max(a[0].number, a[1].number));
  if (low < 0 || high > lastSerial) return ErrorCode::Num;
  double count = 0;
  for (double day = low; day <= high; ++day) count += isWorkday(ev, day, holidays) ? 1 : 0;
  return a[0].number <= a[1].number ? count : -count;
}

Operand fnDateValue(Evaluator& ev, Arguments a) {
  const auto serial = serialOfText(a[0].view(), ev.dates1904());
  return serial ? Operand(std::floor(*serial)) : Operand(ErrorCode::Value);
}

Operand fnTimeValue(Evaluator& ev, Arguments a) {
  const auto serial = serialOfText(a[0].view(), ev.dates1904());
  return serial ? Operand(*serial - std::floor(*serial)) : Operand(ErrorCode::Value);
}

constexpr FunctionInfo table[] = {
    {"DATE", 3, 3, 65, "N", fnDate},
    {"TIME", 3, 3, 66, "N", fnTime},
    {"YEAR", 1, 1, 69, "N",
     [](Evaluator& ev, Arguments a) {
       return datePart(ev, a, [](const Civil& d) { return d.year; });
     }},
    {"MONTH", 1, 1, 68, "N",
     [](Evaluator& ev, Arguments a) {
       return datePart(ev, a, [](const Civil& d) { return d.month; });
     }},
    {"DAY", 1, 1, 67, "N",
     [](Evaluator& ev, Arguments a) {
       return datePart(ev, a, [](const Civil& d) { return d.day; });
     }},
    {"HOUR", 1, 1, 71, "N", [](Evaluator&, Arguments a) { return timePart(a, 3600, 24); }},
    {"MINUTE", 1, 1, 72, "N", [](Evaluator&, Arguments a) { return timePart(a, 60, 60); }},
    {"SECOND", 1, 1, 73, "N", [](Evaluator&, Arguments a) { return timePart(a, 1, 60); }},
    {"NOW", 0, 0, 74, "", [](Evaluator& ev, Arguments) { return Operand(serialNow(ev)); }, true},
    {"TODAY", 0, 0, 221, "",
     [](Evaluator& ev, Arguments) { return Operand(std::floor(serialNow(ev))); }, true},
    {"WEEKDAY", 1, 2, 70, "Nn", fnWeekday},
    {"WEEKNUM", 1, 2, addIn, "Nn", fnWeeknum},
    {"ISOWEEKNUM", 1, 1, newer, "N",
     [](Evaluator& ev, Arguments a) { return isoWeek(ev, a[0].number); }},
    {"EDATE", 2, 2, addIn, "N", [](Evaluator& ev, Arguments a) { return addMonths(ev, a, false); }},
    {"EOMONTH", 2, 2, addIn, "N",
     [](Evaluator& ev, Arguments a) { return addMonths(ev, a, true); }},
    {"DAYS", 2, 2, newer, "N",
     [](Evaluator&, Arguments a) {
       return Operand(std::floor(a[0].number) - std::floor(a[1].number));
     }},
    {"DAYS360", 2, 3, 220, "NNb", fnDays360},
    {"YEARFRAC", 2, 3, addIn, "NNn", fnYearFrac},
    {"DATEDIF", 3, 3, 351, "NNT", fnDateDif},
    {"WORKDAY", 2, 3, addIn, "NNR", fnWorkday},
    {"NETWORKDAYS", 2, 3, addIn, "NNR", fnNetworkdays},
    {"DATEVALUE", 1, 1, 140, "T", fnDateValue},
    {"TIMEVALUE", 1, 1, 141, "T", fnTimeValue},
};

}  // namespace

FunctionList dateFunctions() {
  return table;
}

}  // namespace lodex::formula
