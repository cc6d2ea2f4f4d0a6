#include "db/drivers/sqlite/SqliteValues.h"

#include "basic/Numbers.h"

namespace lodex {

std::string argumentText(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_FLOAT) return numberText(sqlite3_value_double(value));
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (!bytes) return {};
  return std::string(bytes, static_cast<size_t>(sqlite3_value_bytes(value)));
}

double argumentNumber(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_TEXT) return numberOf(argumentText(value));
  return sqlite3_value_double(value);
}

std::optional<DateTime> dateArgument(sqlite3_value* value) {
  if (sqlite3_value_type(value) != SQLITE_TEXT) return std::nullopt;
  return parseStoredDate(argumentText(value));
}

void resultText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void addFunction(sqlite3* database, const char* name, int count, SqliteFunction function) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_function_v2(database, name, count, kFlags, nullptr, function, nullptr, nullptr,
                             nullptr);
}

}  // namespace lodex
