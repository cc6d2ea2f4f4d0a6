#include "worksheet/files/DateText.h"

#include <charconv>
#include <chrono>

#include "basic/Numbers.h"

namespace lodex {
namespace {

// Takes a number of digits off the front, and the separator in front of it where one is given.
std::optional<int> takeDigits(std::string_view& text, size_t digits, char separator) {
  if (separator != '\0') {
    if (text.empty() || text.front() != separator) return std::nullopt;
    text.remove_prefix(1);
  }
  if (text.size() < digits) return std::nullopt;
  int value = 0;
  const auto result = std::from_chars(text.data(), text.data() + digits, value);
  if (result.ec != std::errc() || result.ptr != text.data() + digits || value < 0) {
    return std::nullopt;
  }
  text.remove_prefix(digits);
  return value;
}

}  // namespace

double serialOfDay(int year, int month, int day, bool dates1904) {
  using namespace std::chrono;
  const sys_days date = std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) /
                        std::chrono::day(static_cast<unsigned>(day));
  if (dates1904)
    return static_cast<double>((date - sys_days(std::chrono::year(1904) / 1 / 1)).count());
  const auto serial = (date - sys_days(std::chrono::year(1899) / 12 / 31)).count();
  return static_cast<double>(serial > 59 ? serial + 1 : serial);
}

std::optional<double> serialOfIsoDate(std::string_view text, bool dates1904) {
  double serial = 0;
  if (text.empty()) return std::nullopt;
  if (text.front() != 'T') {
    const auto year = takeDigits(text, 4, '\0');
    const auto month = year ? takeDigits(text, 2, '-') : std::nullopt;
    const auto day = month ? takeDigits(text, 2, '-') : std::nullopt;
    if (!day || *month < 1 || *month > 12 || *day < 1 || *day > 31) return std::nullopt;
    serial = serialOfDay(*year, *month, *day, dates1904);
  }
  if (text.empty()) return serial;
  const auto hours = takeDigits(text, 2, 'T');
  const auto minutes = hours ? takeDigits(text, 2, ':') : std::nullopt;
  if (!minutes) return std::nullopt;
  double seconds = 0;
  if (!text.empty() && text.front() == ':') {
    text.remove_prefix(1);
    if (!text.empty() && text.back() == 'Z') text.remove_suffix(1);
    seconds = numberOf(text);
  }
  return serial + (*hours * 3600 + *minutes * 60 + seconds) / 86400.0;
}

}  // namespace lodex
