#include "worksheet/formula/Dates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <string>
#include <vector>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex::formula {
namespace {

constexpr long days1900 = -25569;  // day 0 of the 1900 system from 1 March 1900 on
constexpr long days1904 = -24107;

constexpr std::array<std::string_view, 12> monthNames{
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

struct Piece {
  bool isNumber = false;
  int number = 0;
  size_t digits = 0;
  std::string word;
};

// Digits and words of a date, with the separators between them left out.
bool cutPieces(std::string_view text, std::vector<Piece>& pieces, std::string& separators) {
  for (size_t i = 0; i < text.size();) {
    Piece piece;
    const size_t start = i;
    if (isDigit(text[i])) {
      piece.isNumber = true;
      while (i < text.size() && isDigit(text[i])) ++i;
      piece.digits = i - start;
      if (piece.digits > 4) return false;
      piece.number = std::stoi(std::string(text.substr(start, piece.digits)));
      pieces.push_back(piece);
    } else if (isLetter(text[i])) {
      while (i < text.size() && isLetter(text[i])) ++i;
      piece.word = toLower(text.substr(start, i - start));
      pieces.push_back(piece);
    } else {
      if (std::string_view(" -/,.").find(text[i]) == std::string_view::npos) return false;
      if (text[i] != ' ' && text[i] != ',') separators += text[i];
      ++i;
    }
  }
  return true;
}

int monthOfWord(std::string_view word) {
  if (word.size() < 3) return 0;
  for (size_t i = 0; i < monthNames.size(); ++i) {
    if (monthNames[i].starts_with(word)) return static_cast<int>(i) + 1;
  }
  return 0;
}

int fullYear(const Piece& piece) {
  if (piece.digits > 2) return piece.number;
  return piece.number < 30 ? 2000 + piece.number : 1900 + piece.number;
}

int currentYear() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_year + 1900;
}

std::optional<double> checkedDate(int year, int month, int day, bool from1904) {
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  const bool phantom = year == 1900 && month == 2 && day == 29 && !from1904;
  if (!phantom && day > daysInMonth(year, month)) return std::nullopt;
  return serialOfDate(year, month, day, from1904);
}

std::optional<double> dateOfText(std::string_view text, bool from1904) {
  std::vector<Piece> pieces;
  std::string separators;
  if (!cutPieces(text, pieces, separators) || pieces.size() < 2 || pieces.size() > 3) {
    return std::nullopt;
  }
  const bool three = pieces.size() == 3;
  const auto word = std::find_if(pieces.begin(), pieces.end(), [](auto& p) { return !p.isNumber; });
  if (word != pieces.end()) {
    const int month = monthOfWord(word->word);
    const auto place = word - pieces.begin();
    if (month == 0 || place == 2) return std::nullopt;
    const Piece& other = pieces[place == 0 ? 1 : 0];
    if (!other.isNumber || (three && !pieces[2].isNumber)) return std::nullopt;
    if (three) return checkedDate(fullYear(pieces[2]), month, other.number, from1904);
    // "Mar 2004" is its first day, "1 Mar" lies in the current year.
    if (other.digits > 2) return checkedDate(other.number, month, 1, from1904);
    return checkedDate(currentYear(), month, other.number, from1904);
  }
  if (separators.empty() || separators.find('.') != std::string::npos) return std::nullopt;
  if (!three) {
    if (separators.size() != 1) return std::nullopt;
    if (pieces[1].digits > 2) return checkedDate(pieces[1].number, pieces[0].number, 1, from1904);
    return checkedDate(currentYear(), pieces[0].number, pieces[1].number, from1904);
  }
  if (separators.size() != 2 || separators[0] != separators[1]) return std::nullopt;
  if (pieces[0].digits > 2) {
    return checkedDate(pieces[0].number, pieces[1].number, pieces[2].number, from1904);
  }
  return checkedDate(fullYear(pieces[2]), pieces[0].number, pieces[1].number, from1904);
}

// "14:30", "14:30:05.5", "2 PM", "2:30 pm".
std::optional<double> timeOfText(std::string_view text) {
  text = trimBlanks(text);
  double half = -1;
  for (const auto& [ending, value] :
       {std::pair<std::string_view, double>{"am", 0.0}, {"pm", 0.5}, {"a", 0.0}, {"p", 0.5}}) {
    if (text.size() <= ending.size()) continue;
    if (!equalsNoCase(text.substr(text.size() - ending.size()), ending)) continue;
    half = value;
    text = trimBlanks(text.substr(0, text.size() - ending.size()));
    break;
  }
  const std::vector<std::string> parts = split(text, ":");
  if (parts.size() > 3 || (parts.size() < 2 && half < 0)) return std::nullopt;
  double factor = 1.0 / 24;
  double time = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    const std::string& part = parts[i];
    if (part.empty() || !isDigit(part[0]) || part.size() > 8) return std::nullopt;
    const auto number = parseNumber(part);
    if (!number || (i < 2 && *number != std::floor(*number))) return std::nullopt;
    if (i > 0 && *number >= 60) return std::nullopt;
    if (i == 0 && half >= 0) {
      if (*number > 12) return std::nullopt;
      time = (*number == 12 ? 0 : *number) / 24 + half;
    } else {
      time += *number * factor;
    }
    factor /= 60;
  }
  return time;
}

}  // namespace

bool isLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
  constexpr std::array<int, 12> lengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : lengths[static_cast<size_t>(month) - 1];
}

// Counts in years that begin on 1 March, so that the leap day comes last.
long daysOfCivil(int year, int month, int day) {
  const long y = month > 2 ? year : year - 1;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const long yearOfEra = y - era * 400;
  const long dayOfYear = (153L * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

Civil civilOfDays(long days) {
  days += 719468;
  const long era = (days >= 0 ? days : days - 146096) / 146097;
  const long dayOfEra = days - era * 146097;
  const long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const long month = (5 * dayOfYear + 2) / 153;
  Civil date;
  date.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
  date.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
  date.year = static_cast<int>(yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0));
  return date;
}

std::optional<double> serialOfDate(double year, double month, double day, bool from1904) {
  if (!(std::abs(year) < 1e5 && std::abs(month) < 1e6 && std::abs(day) < 1e7)) return std::nullopt;
  const double months = std::floor(year) * 12 + std::floor(month) - 1;
  const int y = static_cast<int>(std::floor(months / 12));
  const int m = static_cast<int>(months - 12.0 * y) + 1;
  if (y < 1899 || y > 10000) return std::nullopt;
  // The day is added to the serial, so that the phantom day counts where it lies between.
  double serial = static_cast<double>(daysOfCivil(y, m, 1) - (from1904 ? days1904 : days1900));
  if (!from1904 && serial < 61) serial -= 1;
  serial += std::floor(day) - 1;
  const double last = from1904 ? lastSerial - 1462 : lastSerial;
  if (serial < 0 || serial > last) return std::nullopt;
  return serial;
}

std::optional<Civil> dateOfSerial(double serial, bool from1904) {
  serial = std::floor(serial);
  const double last = from1904 ? lastSerial - 1462 : lastSerial;
  if (!(serial >= 0 && serial <= last)) return std::nullopt;
  const long day = static_cast<long>(serial);
  if (from1904) return civilOfDays(day + days1904);
  if (day == 0) return Civil{1900, 1, 0};
  if (day == 60) return Civil{1900, 2, 29};
  return civilOfDays(day + days1900 + (day < 60 ? 1 : 0));
}

int weekdayOfSerial(double serial, bool from1904) {
  const long day = static_cast<long>(std::floor(serial)) + (from1904 ? 1462 : 0);
  return static_cast<int>((day + 6) % 7);
}

int secondsOfSerial(double serial) {
  const double fraction = serial - std::floor(serial);
  const long seconds = std::lround(fraction * 86400);
  return static_cast<int>(seconds % 86400);
}

std::optional<double> serialOfText(std::string_view text, bool from1904) {
  text = trimWhite(text);
  if (text.empty() || text.size() > 64) return std::nullopt;
  // "2004-03-01T12:30" and "3/1/2004 12:30"; a time alone has no date before it.
  const size_t colon = text.find(':');
  const size_t cut = colon == std::string_view::npos ? text.size() : text.find_last_of(" T", colon);
  if (colon != std::string_view::npos && cut != std::string_view::npos && cut > 0) {
    const auto date = dateOfText(trimBlanks(text.substr(0, cut)), from1904);
    const auto time = timeOfText(text.substr(cut + 1));
    if (date && time) return *date + *time;
  }
  if (const auto time = timeOfText(text)) return time;
  return dateOfText(text, from1904);
}

std::optional<double> numberOfText(std::string_view text, bool from1904) {
  if (const auto plain = parseNumber(text)) return plain;
  text = trimWhite(text);
  if (text.empty() || text.size() > 64) return std::nullopt;
  std::string_view rest = text;
  double factor = 1;
  if (rest.front() == '(' && rest.back() == ')') {
    factor = -1;
    rest = trimBlanks(rest.substr(1, rest.size() - 2));
  } else if (rest.front() == '-' || rest.front() == '+') {
    factor = rest.front() == '-' ? -1 : 1;
    rest = trimBlanks(rest.substr(1));
  }
  if (!rest.empty() && rest.back() == '%') {
    factor /= 100;
    rest = trimBlanks(rest.substr(0, rest.size() - 1));
  }
  for (const std::string_view sign : {"$", "\xE2\x82\xAC", "\xC2\xA3"}) {
    if (rest.starts_with(sign))
      rest = trimBlanks(rest.substr(sign.size()));
    else if (rest.ends_with(sign))
      rest = trimBlanks(rest.substr(0, rest.size() - sign.size()));
  }
  // A thousands comma must have three digits after it.
  std::string digits;
  bool separated = true;
  for (size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] != ',') {
      digits += rest[i];
      continue;
    }
    const size_t next = rest.find_first_not_of("0123456789", i + 1);
    const size_t run = (next == std::string_view::npos ? rest.size() : next) - i - 1;
    if (i == 0 || run != 3 || digits.find('.') != std::string::npos) separated = false;
  }
  if (separated && !digits.empty() && (isDigit(digits[0]) || digits[0] == '.')) {
    if (const auto number = parseNumber(digits)) {
      return factor == -0.01 || factor == 0.01 ? std::copysign(*number / 100, factor)
                                               : *number * factor;
    }
  }
  return serialOfText(text, from1904);
}

}  // namespace lodex::formula
