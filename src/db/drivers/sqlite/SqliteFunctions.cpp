#include "db/drivers/sqlite/SqliteFunctions.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/drivers/sqlite/SqliteDates.h"
#include "db/drivers/sqlite/SqliteFormat.h"
#include "db/drivers/sqlite/SqliteSums.h"
#include "db/drivers/sqlite/SqliteValues.h"
#include "db/sql/JetLike.h"

namespace lodex {

namespace {

constexpr std::int64_t kLongestText = 1'000'000;

std::u32string lettersOf(sqlite3_value* value) {
  return decodeUtf8(argumentText(value));
}

void resultLetters(sqlite3_context* context, std::u32string_view letters) {
  resultText(context, encodeUtf8(letters));
}

// --- Texts ---

// A count or a place that a function takes.
size_t sizeArgument(sqlite3_value* value, double least) {
  const double number = std::floor(argumentNumber(value));
  if (!(number >= least)) throw Error("A place or length is too small in a text function");
  return static_cast<size_t>(std::min(number, 1e9));
}

void left(sqlite3_context* context, int, sqlite3_value** values) {
  resultLetters(context,
                std::u32string_view(lettersOf(values[0])).substr(0, sizeArgument(values[1], 0)));
}

void right(sqlite3_context* context, int, sqlite3_value** values) {
  const std::u32string text = lettersOf(values[0]);
  const size_t count = std::min(text.size(), sizeArgument(values[1], 0));
  resultLetters(context, std::u32string_view(text).substr(text.size() - count));
}

void mid(sqlite3_context* context, int count, sqlite3_value** values) {
  const std::u32string text = lettersOf(values[0]);
  const size_t start = sizeArgument(values[1], 1) - 1;
  const size_t length = count > 2 ? sizeArgument(values[2], 0) : text.size();
  if (start >= text.size()) return resultText(context, "");
  resultLetters(context, std::u32string_view(text).substr(start, length));
}

void length(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int64(context, static_cast<std::int64_t>(lettersOf(values[0]).size()));
}

// InStr([start,] text, part): the place of the part from 1, 0 if it is absent; case counts not.
void inStr(sqlite3_context* context, int count, sqlite3_value** values) {
  const size_t start = count > 2 ? sizeArgument(values[0], 1) - 1 : 0;
  const std::u32string text = decodeUtf8(toUpper(argumentText(values[count - 2])));
  const std::u32string part = decodeUtf8(toUpper(argumentText(values[count - 1])));
  const size_t at = start <= text.size() ? text.find(part, start) : std::u32string::npos;
  sqlite3_result_int64(context, at == std::u32string::npos ? 0 : static_cast<std::int64_t>(at + 1));
}

void upperCase(sqlite3_context* context, int, sqlite3_value** values) {
  resultText(context, toUpper(argumentText(values[0])));
}

void reversed(sqlite3_context* context, int, sqlite3_value** values) {
  std::u32string text = lettersOf(values[0]);
  std::reverse(text.begin(), text.end());
  resultLetters(context, text);
}

// InStrRev(text, part): the place where the part begins last, 0 if it is absent.
void inStrFromEnd(sqlite3_context* context, int, sqlite3_value** values) {
  const std::u32string text = decodeUtf8(toUpper(argumentText(values[0])));
  const size_t at = text.rfind(decodeUtf8(toUpper(argumentText(values[1]))));
  sqlite3_result_int64(context, at == std::u32string::npos ? 0 : static_cast<std::int64_t>(at + 1));
}

void lowerCase(sqlite3_context* context, int, sqlite3_value** values) {
  resultText(context, toLower(argumentText(values[0])));
}

void space(sqlite3_context* context, int, sqlite3_value** values) {
  const size_t count = sizeArgument(values[0], 0);
  if (count > kLongestText) throw Error("A text would be too long");
  resultText(context, std::string(count, ' '));
}

void compareTexts(sqlite3_context* context, int, sqlite3_value** values) {
  const int order = compareNoCase(argumentText(values[0]), argumentText(values[1]));
  sqlite3_result_int(context, order < 0 ? -1 : order > 0 ? 1 : 0);
}

// Joins its values; Null counts as an empty text.
void concat(sqlite3_context* context, int count, sqlite3_value** values) {
  std::string text;
  for (int i = 0; i < count; ++i) text += argumentText(values[i]);
  resultText(context, text);
}

void like(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int(context, jetLike(argumentText(values[1]), argumentText(values[0])) ? 1 : 0);
}

// --- Numbers ---

void resultNumber(sqlite3_context* context, double value) {
  if (!std::isfinite(value)) throw Error("The result of a function is no number");
  sqlite3_result_double(context, value);
}

template <double (*function)(double)>
void number(sqlite3_context* context, int, sqlite3_value** values) {
  resultNumber(context, function(argumentNumber(values[0])));
}

// Whole results within the range of integers come as such.
void resultWhole(sqlite3_context* context, double value) {
  if (std::abs(value) < 9e15) {
    sqlite3_result_int64(context, static_cast<std::int64_t>(value));
  } else {
    resultNumber(context, value);
  }
}

// The day of a date is a date.
template <double (*function)(double)>
void whole(sqlite3_context* context, int, sqlite3_value** values) {
  if (const auto date = dateArgument(values[0])) {
    return resultText(context, dateText({date->year, date->month, date->day}));
  }
  resultWhole(context, function(argumentNumber(values[0])));
}

double floorOf(double value) {
  return std::floor(value);
}
double truncated(double value) {
  return std::trunc(value);
}
double signOf(double value) {
  return value > 0 ? 1 : value < 0 ? -1 : 0;
}
double rootOf(double value) {
  return std::sqrt(value);
}
double logOf(double value) {
  return std::log(value);
}
double expOf(double value) {
  return std::exp(value);
}

void power(sqlite3_context* context, int, sqlite3_value** values) {
  resultNumber(context, std::pow(argumentNumber(values[0]), argumentNumber(values[1])));
}

// Halves go to the even neighbour, judged on the decimal digits that a user sees.
void roundNumber(sqlite3_context* context, int count, sqlite3_value** values) {
  const double value = argumentNumber(values[0]);
  const int digits = count > 1 ? static_cast<int>(sizeArgument(values[1], 0)) : 0;
  if (digits == 0) return resultNumber(context, roundHalfEven(value));
  if (digits > 15 || std::abs(value) > 1e15) return resultNumber(context, value);
  const double scale = std::pow(10.0, digits);
  resultNumber(context, roundHalfEven(numberOf(numberText(value * scale))) / scale);
}

// --- Conversions ---

double requireNumber(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_TEXT) {
    const std::string text = argumentText(value);
    const auto parsed = parseNumber(text);
    if (const auto date = dateArgument(value)) return momentNumber(*date);
    if (!parsed) throw Error("\"" + text + "\" is no number");
    return *parsed;
  }
  return argumentNumber(value);
}

template <std::int64_t least, std::int64_t most>
void toInteger(sqlite3_context* context, int, sqlite3_value** values) {
  const double value = roundHalfEven(requireNumber(values[0]));
  if (!(value >= static_cast<double>(least) && value <= static_cast<double>(most))) {
    throw Error(numberText(value) + " is beyond " + std::to_string(least) + " to " +
                std::to_string(most));
  }
  sqlite3_result_int64(context, static_cast<std::int64_t>(value));
}

void toDouble(sqlite3_context* context, int, sqlite3_value** values) {
  resultNumber(context, requireNumber(values[0]));
}

void toSinglePrecision(sqlite3_context* context, int, sqlite3_value** values) {
  resultNumber(context, toSingle(requireNumber(values[0])));
}

void toCurrency(sqlite3_context* context, int, sqlite3_value** values) {
  resultNumber(context, roundHalfEven(requireNumber(values[0]) * 1e4) / 1e4);
}

void toBoolean(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int(context, argumentNumber(values[0]) != 0 ? -1 : 0);
}

void toText(sqlite3_context* context, int, sqlite3_value** values) {
  resultText(context, argumentText(values[0]));
}

// Str keeps a blank for the sign.
void signedText(sqlite3_context* context, int, sqlite3_value** values) {
  const double value = argumentNumber(values[0]);
  resultText(context, (value < 0 ? "" : " ") + numberText(value));
}

// The longest number at the start of a text, blanks left out; 0 if there is none.
void val(sqlite3_context* context, int, sqlite3_value** values) {
  const std::string text = replaceAll(argumentText(values[0]), " ", "");
  size_t end = text.find_first_not_of("0123456789.+-eE");
  if (end == std::string::npos) end = text.size();
  end = std::min<size_t>(end, 400);
  while (end > 0 && !parseNumber(std::string_view(text).substr(0, end))) --end;
  resultNumber(context, numberOf(std::string_view(text).substr(0, end)));
}

void isNumeric(sqlite3_context* context, int, sqlite3_value** values) {
  const int kind = sqlite3_value_type(values[0]);
  const bool is = kind == SQLITE_INTEGER || kind == SQLITE_FLOAT ||
                  (kind == SQLITE_TEXT && isNumericText(argumentText(values[0])));
  sqlite3_result_int(context, is ? -1 : 0);
}

void character(sqlite3_context* context, int, sqlite3_value** values) {
  resultText(context, fromWindows1252(std::string(1, static_cast<char>(std::min<size_t>(
                                                         sizeArgument(values[0], 1), 255)))));
}

void codeOf(sqlite3_context* context, int, sqlite3_value** values) {
  const std::u32string text = lettersOf(values[0]);
  if (text.empty()) throw Error("Asc needs a text that is not empty");
  sqlite3_result_int64(context, static_cast<std::int64_t>(text[0]));
}

// --- Aggregates ---

struct Extreme {
  sqlite3_value* value;
  bool seen;
};

void firstStep(sqlite3_context* context, int, sqlite3_value** values) {
  auto* state = static_cast<Extreme*>(sqlite3_aggregate_context(context, sizeof(Extreme)));
  if (!state || state->seen) return;
  state->seen = true;
  state->value = sqlite3_value_dup(values[0]);
}

void lastStep(sqlite3_context* context, int, sqlite3_value** values) {
  auto* state = static_cast<Extreme*>(sqlite3_aggregate_context(context, sizeof(Extreme)));
  if (!state) return;
  sqlite3_value_free(state->value);
  state->value = sqlite3_value_dup(values[0]);
}

void extremeEnd(sqlite3_context* context) {
  auto* state = static_cast<Extreme*>(sqlite3_aggregate_context(context, 0));
  if (!state || !state->value) return;
  sqlite3_result_value(context, state->value);
  sqlite3_value_free(state->value);
}

// Running mean and sum of squared deviations (Welford 1962).
struct Spread {
  std::int64_t count;
  double mean;
  double squares;
};

void spreadStep(sqlite3_context* context, int, sqlite3_value** values) {
  auto* state = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
  if (!state || sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const double value = sqlite3_value_double(values[0]);
  const double before = value - state->mean;
  state->mean += before / static_cast<double>(++state->count);
  state->squares += before * (value - state->mean);
}

template <bool ofSample, bool root>
void spreadEnd(sqlite3_context* context) {
  const auto* state = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
  const std::int64_t least = ofSample ? 2 : 1;
  if (!state || state->count < least) return;
  const double variance = state->squares / static_cast<double>(state->count - (ofSample ? 1 : 0));
  sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

}  // namespace

void addJetFunctions(sqlite3* database) {
  const auto add = [database](const char* name, int count, const auto function) {
    addFunction(database, name, count, function);
  };
  add("Left", 2, nullAware<left>);
  add("Right", 2, nullAware<right>);
  add("Mid", 2, nullAware<mid>);
  add("Mid", 3, nullAware<mid>);
  add("Len", 1, nullAware<length>);
  add("InStr", 2, nullAware<inStr>);
  add("InStr", 3, nullAware<inStr>);
  add("InStrRev", 2, nullAware<inStrFromEnd>);
  add("StrReverse", 1, nullAware<reversed>);
  add("UCase", 1, nullAware<upperCase>);
  add("LCase", 1, nullAware<lowerCase>);
  add("Space", 1, nullAware<space>);
  add("StrComp", 2, nullAware<compareTexts>);
  add("concat", -1, guarded<concat>);
  add("like", 2, nullAware<like>);
  add("Int", 1, nullAware<whole<floorOf>>);
  add("Fix", 1, nullAware<whole<truncated>>);
  add("Sgn", 1, nullAware<whole<signOf>>);
  add("Sqr", 1, nullAware<number<rootOf>>);
  add("Log", 1, nullAware<number<logOf>>);
  add("Exp", 1, nullAware<number<expOf>>);
  add("power", 2, nullAware<power>);
  add("Round", 1, nullAware<roundNumber>);
  add("Round", 2, nullAware<roundNumber>);
  add("CByte", 1, nullAware<toInteger<0, 255>>);
  add("CInt", 1, nullAware<toInteger<-32768, 32767>>);
  add("CLng", 1, nullAware<toInteger<-2147483648LL, 2147483647>>);
  add("CDbl", 1, nullAware<toDouble>);
  add("CSng", 1, nullAware<toSinglePrecision>);
  add("CCur", 1, nullAware<toCurrency>);
  add("CBool", 1, nullAware<toBoolean>);
  add("CStr", 1, nullAware<toText>);
  add("Str", 1, nullAware<signedText>);
  add("Val", 1, nullAware<val>);
  add("IsNumeric", 1, guarded<isNumeric>);
  add("Chr", 1, nullAware<character>);
  add("Asc", 1, nullAware<codeOf>);
  addJetDateFunctions(database);
  addJetFormat(database);
  addJetSums(database);

  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  const auto aggregate = [database](const char* name, auto step, auto end) {
    sqlite3_create_function_v2(database, name, 1, kFlags, nullptr, nullptr, step, end, nullptr);
  };
  aggregate("First", firstStep, extremeEnd);
  aggregate("Last", lastStep, extremeEnd);
  aggregate("StDev", spreadStep, spreadEnd<true, true>);
  aggregate("StDevP", spreadStep, spreadEnd<false, true>);
  aggregate("Var", spreadStep, spreadEnd<true, false>);
  aggregate("VarP", spreadStep, spreadEnd<false, false>);
}

}  // namespace lodex
