#include "db/drivers/sqlite/SqliteStatement.h"

#include <algorithm>
#include <climits>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/sql/JetTokens.h"

namespace lodex {

namespace {

constexpr size_t kIdleStatements = 16;

// "table.field, table.field" as [field] and [field] of the table [table].
std::string fieldsOfTable(std::string_view list) {
  std::string table;
  std::string fields;
  for (const std::string& piece : split(list, ", ")) {
    const size_t point = piece.find('.');
    if (point == std::string::npos) return std::string(list);
    table = piece.substr(0, point);
    fields += (fields.empty() ? "[" : " and [") + piece.substr(point + 1) + "]";
  }
  return fields + " of table [" + table + "]";
}

// Why the engine refused a record, in words for its user.
std::string refusal(const std::string& reason) {
  const auto after = [&](std::string_view start) {
    return reason.starts_with(start) ? std::string_view(reason).substr(start.size())
                                     : std::string_view();
  };
  if (const auto fields = after("UNIQUE constraint failed: "); !fields.empty()) {
    return "there is a record with the same " + fieldsOfTable(fields) + " already";
  }
  if (const auto field = after("NOT NULL constraint failed: "); !field.empty()) {
    return fieldsOfTable(field) + " is required and cannot be empty";
  }
  // These constraints are named after what they demand.
  if (const auto demand = after("CHECK constraint failed: "); !demand.empty()) {
    return std::string(demand);
  }
  return reason;
}

[[noreturn]] void failWith(const SqliteFile& file, int code, std::string_view sql) {
  const std::string reason = file.handle ? validSqliteText(sqlite3_errmsg(file.handle)) : "";
  const std::string name = "Database " + file.path;
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw Error(name + " is in use", dberror::Unspecified);
    case SQLITE_CORRUPT:
      throw FileError(name + " is damaged: " + reason, dberror::Unspecified);
    case SQLITE_NOTADB:
      throw FileError(name + " is damaged or no database", dberror::Unspecified);
    case SQLITE_READONLY:
      if (code == SQLITE_READONLY_DBMOVED) {
        throw FileError(name + " was moved or replaced meanwhile and must be opened again",
                        dberror::Unspecified);
      }
      throw FileError(name + " is write-protected", dberror::Unspecified);
    case SQLITE_FULL:
      throw FileError(name + " cannot grow: the disk is full", dberror::Unspecified);
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
    case SQLITE_PERM:
      throw FileError(name + " cannot be read or written: " + reason, dberror::Unspecified);
    case SQLITE_CONSTRAINT:
      throw Error("The record was refused: " + refusal(reason), dberror::Unspecified);
    case SQLITE_NOMEM:
      throw Error("Not enough memory for a database statement", dberror::Unspecified);
    default:
      throw Error(sql.empty() ? reason : reason + " in: " + std::string(sql),
                  dberror::BadStatement);
  }
}

std::string hexText(const unsigned char* bytes, int count) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "0x";
  for (int i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

}  // namespace

void checkSqlite(const SqliteFile& file, int code, std::string_view sql) {
  if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) failWith(file, code, sql);
}

std::string validSqliteText(std::string_view text) {
  return isValidUtf8(text) ? std::string(text) : fromWindows1252(text);
}

SqliteFile::~SqliteFile() {
  for (const auto& statement : idle) sqlite3_finalize(statement.second);
  sqlite3_close_v2(handle);
}

SqliteStatement::SqliteStatement(std::shared_ptr<SqliteFile> file, std::string_view sql,
                                 const Row& parameters, std::string_view shown)
    : file_(std::move(file)), sql_(sql), shown_(shownStatement(shown.empty() ? sql : shown)) {
  if (sql.size() > INT_MAX) throw Error("The database statement is too long");
  if (!takeIdle()) compile();
  try {
    bind(parameters);
  } catch (...) {
    sqlite3_finalize(handle_);
    throw;
  }
}

SqliteStatement::~SqliteStatement() {
  const bool runsOften =
      sql_.starts_with("SELECT") || sql_.starts_with("INSERT") || sql_.starts_with("UPDATE");
  if (!runsOften || !file_) {
    sqlite3_finalize(handle_);
    return;
  }
  sqlite3_reset(handle_);
  sqlite3_clear_bindings(handle_);
  auto& idle = file_->idle;
  idle.emplace_front(std::move(sql_), handle_);
  if (idle.size() <= kIdleStatements) return;
  sqlite3_finalize(idle.back().second);
  idle.pop_back();
}

bool SqliteStatement::takeIdle() {
  auto& idle = file_->idle;
  const auto known = std::find_if(idle.begin(), idle.end(),
                                  [&](const auto& entry) { return entry.first == sql_; });
  if (known == idle.end()) return false;
  handle_ = known->second;
  idle.erase(known);
  return true;
}

void SqliteStatement::compile() {
  const char* rest = nullptr;
  checkSqlite(*file_,
              sqlite3_prepare_v2(file_->handle, sql_.data(), static_cast<int>(sql_.size()),
                                 &handle_, &rest),
              shown_);
  if (!handle_) throw Error("The database statement is empty", dberror::BadStatement);
  try {
    refuseFurtherStatement(rest);
  } catch (...) {
    sqlite3_finalize(handle_);
    throw;
  }
}

bool SqliteStatement::step() {
  if (file_->inUnit && sqlite3_get_autocommit(file_->handle)) {
    throw Error("Database " + file_->path +
                    ": what was written together with a record that failed was given up",
                dberror::Unspecified);
  }
  const int code = sqlite3_step(handle_);
  checkSqlite(*file_, code, shown_);
  return code == SQLITE_ROW;
}

void SqliteStatement::reset(const Row& parameters) {
  sqlite3_reset(handle_);
  bind(parameters);
}

void SqliteStatement::run() {
  while (step()) {
  }
}

FieldValue SqliteStatement::value(int column) const {
  switch (sqlite3_column_type(handle_, column)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(handle_, column));
    case SQLITE_FLOAT:
      return sqlite3_column_double(handle_, column);
    case SQLITE_TEXT: {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
      const auto size = static_cast<size_t>(sqlite3_column_bytes(handle_, column));
      return validSqliteText(std::string_view(bytes ? bytes : "", bytes ? size : 0));
    }
    case SQLITE_BLOB:
      return hexText(static_cast<const unsigned char*>(sqlite3_column_blob(handle_, column)),
                     sqlite3_column_bytes(handle_, column));
    default:
      return {};
  }
}

void SqliteStatement::refuseFurtherStatement(const char* rest) const {
  const char* const end = sql_.data() + sql_.size();
  sqlite3_stmt* further = nullptr;
  const int code =
      sqlite3_prepare_v2(file_->handle, rest, static_cast<int>(end - rest), &further, nullptr);
  sqlite3_finalize(further);
  if (code != SQLITE_OK || further) {
    throw Error("There is more text behind the end of the statement: " + shown_,
                dberror::BadStatement);
  }
}

void SqliteStatement::bind(const Row& parameters) {
  const int expected = sqlite3_bind_parameter_count(handle_);
  if (expected != static_cast<int>(parameters.size())) {
    throw Error("The statement takes " + std::to_string(expected) + " parameters, not " +
                    std::to_string(parameters.size()) + ": " + shown_,
                dberror::BadArgument);
  }
  for (int i = 0; i < expected; ++i) bindOne(i + 1, parameters[i]);
}

void SqliteStatement::bindOne(int place, const FieldValue& value) {
  int code = SQLITE_OK;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    code = sqlite3_bind_int64(handle_, place, *whole);
  } else if (const auto* number = std::get_if<double>(&value)) {
    code = sqlite3_bind_double(handle_, place, *number);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    code = sqlite3_bind_text64(handle_, place, text->data(), text->size(), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
  } else {
    code = sqlite3_bind_null(handle_, place);
  }
  checkSqlite(*file_, code, shown_);
}

}  // namespace lodex
