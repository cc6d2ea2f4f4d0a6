#include "db/drivers/sqlite/SqliteDriver.h"

#include <sqlite3.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <utility>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/drivers/sqlite/SqliteSchema.h"

namespace lodex {

namespace {

namespace fs = std::filesystem;

constexpr int kBusyTimeoutAtOpen = 3000;

// The open file. Running queries share it, so that it closes after the last of them.
struct Database {
  sqlite3* handle = nullptr;
  std::string path;

  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close_v2(handle); }
};

// Other programs may have written texts in their own encoding, and damaged files hold anything.
std::string validText(std::string_view text) {
  return isValidUtf8(text) ? std::string(text) : fromWindows1252(text);
}

[[noreturn]] void failWith(const Database& database, int code, std::string_view sql) {
  const std::string reason = database.handle ? validText(sqlite3_errmsg(database.handle)) : "";
  const std::string name = "Database " + database.path;
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw Error(name + " is in use", dberror::Unspecified);
    case SQLITE_CORRUPT:
      throw FileError(name + " is damaged: " + reason, dberror::Unspecified);
    case SQLITE_NOTADB:
      throw FileError(name + " is damaged or no database", dberror::Unspecified);
    case SQLITE_READONLY:
      throw Error(name + " is write-protected", dberror::Unspecified);
    case SQLITE_FULL:
      throw Error(name + " cannot grow: the disk is full", dberror::Unspecified);
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
    case SQLITE_PERM:
      throw FileError(name + " cannot be read or written: " + reason, dberror::Unspecified);
    case SQLITE_CONSTRAINT:
      throw Error("The record was refused: " + reason, dberror::Unspecified);
    case SQLITE_NOMEM:
      throw Error("Not enough memory for a database statement", dberror::Unspecified);
    default:
      throw Error(sql.empty() ? reason : reason + " in: " + std::string(sql),
                  dberror::BadStatement);
  }
}

void check(const Database& database, int code, std::string_view sql = {}) {
  if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) {
    failWith(database, code, sql);
  }
}

class Statement {
 public:
  Statement(std::shared_ptr<Database> database, std::string_view sql, const Row& parameters)
      : database_(std::move(database)), sql_(sql) {
    if (sql.size() > INT_MAX) throw Error("The database statement is too long");
    const char* rest = nullptr;
    check(*database_,
          sqlite3_prepare_v2(database_->handle, sql_.data(), static_cast<int>(sql_.size()),
                             &handle_, &rest),
          sql_);
    if (!handle_) throw Error("The database statement is empty", dberror::BadStatement);
    try {
      refuseFurtherStatement(rest);
      bind(parameters);
    } catch (...) {
      sqlite3_finalize(handle_);
      throw;
    }
  }
  ~Statement() { sqlite3_finalize(handle_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // True while there is a record.
  bool step() {
    const int code = sqlite3_step(handle_);
    check(*database_, code, sql_);
    return code == SQLITE_ROW;
  }

  sqlite3_stmt* handle() const { return handle_; }

 private:
  void refuseFurtherStatement(const char* rest) const {
    const char* const end = sql_.data() + sql_.size();
    sqlite3_stmt* further = nullptr;
    const int code = sqlite3_prepare_v2(database_->handle, rest, static_cast<int>(end - rest),
                                        &further, nullptr);
    sqlite3_finalize(further);
    if (code != SQLITE_OK || further) {
      throw Error("There is more text behind the end of the statement: " + sql_,
                  dberror::BadStatement);
    }
  }

  void bind(const Row& parameters) {
    const int expected = sqlite3_bind_parameter_count(handle_);
    if (expected != static_cast<int>(parameters.size())) {
      throw Error("The statement takes " + std::to_string(expected) + " parameters, not " +
                      std::to_string(parameters.size()) + ": " + sql_,
                  dberror::BadArgument);
    }
    for (int i = 0; i < expected; ++i) bindOne(i + 1, parameters[i]);
  }

  void bindOne(int place, const FieldValue& value) {
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
    check(*database_, code, sql_);
  }

  std::shared_ptr<Database> database_;
  std::string sql_;
  sqlite3_stmt* handle_ = nullptr;
};

std::string hexText(const unsigned char* bytes, int count) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "0x";
  for (int i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

FieldValue columnValue(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, column);
    case SQLITE_TEXT: {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
      return validText(std::string_view(bytes ? bytes : "", bytes ? size : 0));
    }
    case SQLITE_BLOB:
      return hexText(static_cast<const unsigned char*>(sqlite3_column_blob(statement, column)),
                     sqlite3_column_bytes(statement, column));
    default:
      return {};
  }
}

class SqliteRows : public RowSource {
 public:
  SqliteRows(std::shared_ptr<Database> database, std::string_view sql, const Row& parameters)
      : statement_(std::move(database), sql, parameters) {
    hasRecord_ = statement_.step();
    const int count = sqlite3_column_count(statement_.handle());
    for (int column = 0; column < count; ++column) fields_.push_back(fieldOf(column));
  }

  const std::vector<Field>& fields() const override { return fields_; }

  bool next(Row& row) override {
    if (!hasRecord_) return false;
    row.clear();
    for (size_t column = 0; column < fields_.size(); ++column) {
      row.push_back(columnValue(statement_.handle(), static_cast<int>(column)));
    }
    hasRecord_ = statement_.step();
    return true;
  }

 private:
  Field fieldOf(int column) const {
    sqlite3_stmt* statement = statement_.handle();
    const char* name = sqlite3_column_name(statement, column);
    const char* declared = sqlite3_column_decltype(statement, column);
    Field field{validText(name ? name : ""), {}, declared ? declared : ""};
    if (declared) {
      field.type = parseFieldType(declared);
    } else if (hasRecord_) {
      // An expression has no declared type; its first value tells.
      const int kind = sqlite3_column_type(statement, column);
      if (kind == SQLITE_INTEGER) field.type = {FieldCode::Integer, 0};
      if (kind == SQLITE_FLOAT) field.type = {FieldCode::Double, 0};
    }
    return field;
  }

  Statement statement_;
  std::vector<Field> fields_;
  bool hasRecord_ = false;
};

class SqliteDriver : public Driver {
 public:
  explicit SqliteDriver(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  std::int64_t execute(std::string_view sql, const Row& parameters) override {
    const auto before = sqlite3_total_changes64(database_->handle);
    Statement statement(database_, sql, parameters);
    while (statement.step()) {
    }
    return sqlite3_total_changes64(database_->handle) - before;
  }

  std::unique_ptr<RowSource> query(std::string_view sql, const Row& parameters) override {
    return std::make_unique<SqliteRows>(database_, sql, parameters);
  }

  std::unique_ptr<RowSource> schema(SchemaKind kind) override {
    return readSqliteSchema(*this, kind);
  }

  // The lock is taken at once: a unit of work then fails at its start and not half-way.
  void begin() override { execute("BEGIN IMMEDIATE", {}); }
  void commit() override { execute("COMMIT", {}); }
  void rollback() override { execute("ROLLBACK", {}); }

  void busyTimeout(int milliseconds) override {
    sqlite3_busy_timeout(database_->handle, milliseconds);
  }

 private:
  std::shared_ptr<Database> database_;
};

enum class FileKind { Sqlite, Access, Other };

FileKind kindOfFile(const fs::path& native, std::string_view path) {
  std::ifstream file(native, std::ios::binary);
  if (!file) throw FileError("Database " + std::string(path) + " cannot be read");
  char header[20] = {};
  file.read(header, sizeof header);
  const std::string_view start(header, static_cast<size_t>(file.gcount()));
  if (start.starts_with(std::string_view("SQLite format 3\0", 16))) return FileKind::Sqlite;
  const std::string_view name = start.size() > 4 ? start.substr(4) : std::string_view();
  if (name.starts_with("Standard Jet DB") || name.starts_with("Standard ACE DB")) {
    return FileKind::Access;
  }
  return FileKind::Other;
}

std::shared_ptr<Database> openFile(const fs::path& native, std::string_view path, int flags) {
  auto database = std::make_shared<Database>();
  database->path = path;
  const int code = sqlite3_open_v2(native.c_str(), &database->handle, flags, nullptr);
  check(*database, code);
  sqlite3_extended_result_codes(database->handle, 1);
  sqlite3_busy_timeout(database->handle, kBusyTimeoutAtOpen);
  return database;
}

}  // namespace

std::unique_ptr<Driver> openSqliteFile(std::string_view path) {
  const fs::path native = nativePath(path);
  const std::string name = "Database " + std::string(path);
  std::error_code failed;
  if (!fs::exists(native, failed)) {
    throw FileError(name + " does not exist", dberror::Unspecified);
  }
  if (fs::is_directory(native, failed)) {
    throw FileError(name + " is a folder", dberror::Unspecified);
  }
  switch (kindOfFile(native, path)) {
    case FileKind::Sqlite:
      break;
    case FileKind::Access:
      throw FileError(name + " is a Microsoft Access file, which this version cannot open",
                      dberror::Unspecified);
    case FileKind::Other:
      throw FileError(name + " is no database", dberror::Unspecified);
  }
  auto database = openFile(native, path, SQLITE_OPEN_READWRITE);
  // Only a first query reads the file; what is wrong with it should come to light here.
  Statement(database, "SELECT COUNT(*) FROM sqlite_master", {}).step();
  return std::make_unique<SqliteDriver>(std::move(database));
}

void createSqliteFile(std::string_view path) {
  const fs::path native = nativePath(path);
  std::error_code failed;
  if (fs::exists(native, failed)) {
    throw FileError("Database " + std::string(path) + " exists already", dberror::Unspecified);
  }
  auto database = openFile(native, path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  // Without a first page the file would stay empty.
  Statement(database, "VACUUM", {}).step();
}

}  // namespace lodex
