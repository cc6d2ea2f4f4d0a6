#include "db/drivers/sqlite/SqliteFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/drivers/sqlite/SqliteDates.h"
#include "db/drivers/sqlite/SqliteValues.h"

namespace lodex {

namespace {

constexpr std::array<const char*, 12> kMonths{"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};

constexpr std::array<const char*, 7> kWeekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                               "Thursday", "Friday", "Saturday"};

// Formats that have names, in any case.
constexpr std::array<std::array<const char*, 2>, 14> kNamedFormats{
    {{"Fixed", "0.00"},
     {"Standard", "#,##0.00"},
     {"Currency", "#,##0.00"},
     {"Percent", "0.00%"},
     {"Scientific", "0.00E+00"},
     {"Yes/No", "\"Yes\";\"Yes\";\"No\""},
     {"True/False", "\"True\";\"True\";\"False\""},
     {"On/Off", "\"On\";\"On\";\"Off\""},
     {"Short Date", "yyyy-mm-dd"},
     {"Medium Date", "dd-mmm-yy"},
     {"Long Date", "dddd, mmmm d, yyyy"},
     {"Short Time", "hh:nn"},
     {"Medium Time", "hh:nn AM/PM"},
     {"Long Time", "hh:nn:ss"}}};

struct Mark {
  char mark;
  bool literal;  // in quotes or after a backslash
};

std::vector<Mark> marksOf(std::string_view pattern) {
  std::vector<Mark> marks;
  bool quoted = false;
  for (size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] == '"') {
      quoted = !quoted;
    } else if (!quoted && pattern[at] == '\\' && at + 1 < pattern.size()) {
      marks.push_back({pattern[++at], true});
    } else {
      marks.push_back({pattern[at], quoted});
    }
  }
  return marks;
}

bool hasAny(const std::vector<Mark>& marks, std::string_view wanted) {
  return std::any_of(marks.begin(), marks.end(), [&](const Mark& one) {
    return !one.literal && wanted.find(one.mark) != std::string_view::npos;
  });
}

std::string lettersOf(const std::vector<Mark>& marks, size_t from, size_t to) {
  std::string text;
  for (size_t at = from; at < to; ++at) text += marks[at].mark;
  return text;
}

// The marks with the literal ones and what they could be taken for out of the way.
std::string openMarks(const std::vector<Mark>& marks) {
  std::string text;
  for (const Mark& one : marks) text += one.literal ? '\x01' : one.mark;
  return text;
}

std::string formatDate(const DateTime& date, std::string_view pattern) {
  const std::vector<Mark> marks = marksOf(pattern);
  std::string lower = openMarks(marks);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  const bool halves = lower.find("am/pm") != std::string::npos;
  const int hour = halves ? (date.hour + 11) % 12 + 1 : date.hour;
  std::string text;
  bool afterHour = false;
  for (size_t at = 0; at < lower.size();) {
    const char c = lower[at];
    if (std::string_view(lower).substr(at).starts_with("am/pm")) {
      const std::string both = lettersOf(marks, at, at + 5);
      text += date.hour < 12 ? both.substr(0, 2) : both.substr(3);
      at += 5;
      continue;
    }
    size_t run = 1;
    while (at + run < lower.size() && lower[at + run] == c) ++run;
    const bool isMinute = c == 'n' || (c == 'm' && afterHour && run < 3);
    const auto two = [&](int value) {
      text += run > 1 ? fmt::format("{:02}", value) : std::to_string(value);
    };
    if (c == 'y' && run == 1) {
      text += std::to_string(dayOfYear(date));
    } else if (c == 'y') {
      text += run > 2 ? fmt::format("{:04}", date.year) : fmt::format("{:02}", date.year % 100);
    } else if (isMinute) {
      two(date.minute);
    } else if (c == 'm') {
      const std::string name = kMonths[date.month - 1];
      if (run > 2) {
        text += run > 3 ? name : name.substr(0, 3);
      } else {
        two(date.month);
      }
    } else if (c == 'd' && run > 2) {
      const std::string name = kWeekdays[weekday(date) - 1];
      text += run > 3 ? name : name.substr(0, 3);
    } else if (c == 'd') {
      two(date.day);
    } else if (c == 'w') {
      text += std::to_string(run > 1 ? weekOfYear(date) : weekday(date));
    } else if (c == 'q') {
      text += std::to_string((date.month + 2) / 3);
    } else if (c == 'h') {
      two(hour);
    } else if (c == 's') {
      two(date.second);
    } else {
      text += lettersOf(marks, at, at + run);
    }
    if (c == 'h') afterHour = true;
    if (c != 'h' && c != ':') afterHour = false;
    at += run;
  }
  return text;
}

// Digits before the point: "0" is always shown, "," groups thousands.
std::string formatWhole(std::string whole, std::string_view before) {
  const size_t least = static_cast<size_t>(std::count(before.begin(), before.end(), '0'));
  if (least == 0 && whole == "0") whole.clear();
  if (whole.size() < least) whole.insert(0, least - whole.size(), '0');
  if (before.find(',') != std::string_view::npos) {
    for (size_t i = whole.size(); i > 3; i -= 3) whole.insert(i - 3, ",");
  }
  return whole;
}

// Digits "0" are always shown and "#" only when needed; "%" multiplies, "E+00" gives an exponent.
std::string formatNumber(double value, std::string_view pattern) {
  const std::vector<Mark> marks = marksOf(pattern);
  const std::string open = openMarks(marks);
  const size_t first = open.find_first_of("0#.");
  if (first == std::string::npos) return lettersOf(marks, 0, marks.size());
  size_t end = std::min(open.find_first_not_of("0#.,", first), open.size());
  const std::string_view digits = std::string_view(open).substr(first, end - first);
  const size_t point = digits.find('.');
  const std::string_view before = digits.substr(0, point);
  const std::string_view after =
      point == std::string_view::npos ? std::string_view() : digits.substr(point + 1);
  const std::string_view rest = std::string_view(open).substr(end);
  const bool hasExponent = startsWithNoCase(rest, "E+0") || startsWithNoCase(rest, "E-0");
  if (open.find('%') != std::string::npos) value *= 100;
  if (std::abs(value) > 1e15 && !hasExponent) return numberText(value);
  const int decimals = static_cast<int>(std::min<size_t>(after.size(), 15));
  std::string text = hasExponent ? fmt::format("{:.{}e}", std::abs(value), decimals)
                                 : fmt::format("{:.{}f}", std::abs(value), decimals);
  std::string exponent;
  if (hasExponent) {
    const size_t mark = text.find('e');
    exponent = "E" + text.substr(mark + 1);
    if (rest[1] == '-' && exponent[1] == '+') exponent.erase(1, 1);
    text.resize(mark);
    end = std::min(open.find_first_not_of("0#", end + 2), open.size());
  }
  const size_t needed = static_cast<size_t>(std::count(after.begin(), after.end(), '0'));
  size_t dot = text.find('.');
  if (dot == std::string::npos) dot = text.size();
  while (dot < text.size() && text.back() == '0' && text.size() - dot - 1 > needed) text.pop_back();
  if (!text.empty() && text.back() == '.') text.pop_back();
  const std::string fraction = dot < text.size() ? text.substr(dot) : "";
  const bool isZero = text.find_first_not_of("0.") == std::string::npos;
  return std::string(value < 0 && !isZero ? "-" : "") + lettersOf(marks, 0, first) +
         formatWhole(text.substr(0, dot), before) + fraction + exponent +
         lettersOf(marks, end, marks.size());
}

// Patterns of positive numbers, negative ones and zero follow each other with ";" between.
std::vector<std::string> sectionsOf(std::string_view pattern) {
  std::vector<std::string> sections{""};
  bool quoted = false;
  for (size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] == '"') quoted = !quoted;
    if (pattern[at] == ';' && !quoted) {
      sections.emplace_back();
      continue;
    }
    sections.back() += pattern[at];
    if (pattern[at] == '\\' && at + 1 < pattern.size()) sections.back() += pattern[++at];
  }
  return sections;
}

std::string formatSections(double value, std::string_view pattern) {
  const std::vector<std::string> sections = sectionsOf(pattern);
  const size_t wanted = value < 0 ? 1 : value == 0 ? 2 : 0;
  if (wanted >= sections.size() || sections[wanted].empty()) {
    return formatNumber(value, sections[0]);
  }
  return formatNumber(std::abs(value), sections[wanted]);
}

void format(sqlite3_context* context, int count, sqlite3_value** values) {
  const std::string text = argumentText(values[0]);
  if (count == 1) return resultText(context, text);
  std::string pattern = argumentText(values[1]);
  for (const auto& named : kNamedFormats) {
    if (equalsNoCase(pattern, named[0])) pattern = named[1];
  }
  if (startsWithNoCase(pattern, "General ")) return resultText(context, text);
  if (pattern == ">") return resultText(context, toUpper(text));
  if (pattern == "<") return resultText(context, toLower(text));
  const bool isNumber =
      sqlite3_value_type(values[0]) != SQLITE_TEXT || parseNumber(text).has_value();
  const std::vector<Mark> marks = marksOf(pattern);
  if (hasAny(marks, "ymdhnswqYMDHNSWQ") && (!isNumber || !hasAny(marks, "0#"))) {
    return resultText(context, formatDate(requireDate(values[0]), pattern));
  }
  resultText(context, isNumber ? formatSections(argumentNumber(values[0]), pattern) : text);
}

}  // namespace

void addJetFormat(sqlite3* database) {
  addFunction(database, "Format", 1, nullAware<format>);
  addFunction(database, "Format", 2, nullAware<format>);
}

}  // namespace lodex
