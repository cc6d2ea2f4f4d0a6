#include "db/drivers/sqlite/SqliteSums.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "db/Dates.h"
#include "db/drivers/sqlite/SqliteValues.h"

namespace lodex {

namespace {

using Term = std::variant<std::int64_t, double, std::string>;

Term termOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    default:
      return argumentText(value);
  }
}

struct Amount {
  double number;
  bool isDate;
};

std::optional<Amount> amountOf(const Term& term) {
  if (const auto* whole = std::get_if<std::int64_t>(&term)) {
    return Amount{static_cast<double>(*whole), false};
  }
  if (const auto* number = std::get_if<double>(&term)) return Amount{*number, false};
  const auto& text = std::get<std::string>(term);
  if (const auto date = parseStoredDate(text)) return Amount{momentNumber(*date), true};
  const auto number = parseNumber(text);
  return number ? std::optional(Amount{*number, false}) : std::nullopt;
}

// Days between two moments, without what the parts of a day lack in exactness.
Term daysBetween(double from, double to) {
  const std::int64_t seconds = std::llround((to - from) * 86400);
  if (seconds % 86400 == 0) return seconds / 86400;
  return static_cast<double>(seconds) / 86400;
}

std::optional<Term> combined(const Term& left, char sign, const Term& right) {
  const auto* a = std::get_if<std::int64_t>(&left);
  const auto* b = std::get_if<std::int64_t>(&right);
  std::int64_t whole = 0;
  if (a && b &&
      !(sign == '+' ? __builtin_add_overflow(*a, *b, &whole)
                    : __builtin_sub_overflow(*a, *b, &whole))) {
    return whole;
  }
  const auto x = amountOf(left);
  const auto y = amountOf(right);
  const auto* text = std::get_if<std::string>(&left);
  const auto* added = std::get_if<std::string>(&right);
  const bool areDates = x && y && x->isDate && y->isDate;
  if (sign == '+' && text && added && !areDates) return *text + *added;
  if (!x || !y) return std::nullopt;
  if (areDates && sign == '-') return daysBetween(y->number, x->number);
  const double sum = sign == '+' ? x->number + y->number : x->number - y->number;
  if (!x->isDate && !y->isDate) return std::isfinite(sum) ? std::optional<Term>(sum) : std::nullopt;
  const auto date = dateOfMoment(sum);
  return date ? std::optional<Term>(dateText(*date)) : std::nullopt;
}

void sum(sqlite3_context* context, int count, sqlite3_value** values) {
  if (count < 2) throw Error("A sum has no terms");
  const std::string signs = argumentText(values[0]);
  if (signs.size() + 2 != static_cast<size_t>(count)) throw Error("A sum lacks terms");
  std::optional<Term> result = termOf(values[1]);
  for (int i = 2; result && i < count; ++i) {
    result = combined(*result, signs[static_cast<size_t>(i) - 2], termOf(values[i]));
  }
  if (!result) return;
  if (const auto* whole = std::get_if<std::int64_t>(&*result)) {
    return sqlite3_result_int64(context, *whole);
  }
  if (const auto* number = std::get_if<double>(&*result)) {
    return sqlite3_result_double(context, *number);
  }
  resultText(context, std::get<std::string>(*result));
}

}  // namespace

void addJetSums(sqlite3* database) {
  addFunction(database, "JetSum", -1, nullAware<sum>);
}

}  // namespace lodex
