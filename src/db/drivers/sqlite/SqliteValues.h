#pragma once

#include <sqlite3.h>

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "db/Dates.h"

namespace lodex {

/// A function as the engine calls it: context, number of values, values.
using SqliteFunction = void (*)(sqlite3_context*, int, sqlite3_value**);

/// A value as text (numbers as users see them, "" for Null) and as a number (0 for Null and for
/// text that holds none).
std::string argumentText(sqlite3_value* value);
double argumentNumber(sqlite3_value* value);
/// The date that a value is: a text of the form in which databases keep dates.
std::optional<DateTime> dateArgument(sqlite3_value* value);
void resultText(sqlite3_context* context, std::string_view text);

void addFunction(sqlite3* database, const char* name, int count, SqliteFunction function);

/// The function with its exceptions turned into errors of the statement.
template <SqliteFunction function>
void guarded(sqlite3_context* context, int count, sqlite3_value** values) {
  try {
    function(context, count, values);
  } catch (const std::exception& failure) {
    sqlite3_result_error(context, failure.what(), -1);
  }
}

/// The same, giving Null when any of the values is Null.
template <SqliteFunction function>
void nullAware(sqlite3_context* context, int count, sqlite3_value** values) {
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(values[i]) == SQLITE_NULL) return;
  }
  guarded<function>(context, count, values);
}

}  // namespace lodex
