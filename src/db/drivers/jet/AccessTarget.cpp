#include "db/drivers/jet/AccessTarget.h"

#include <sqlite3.h>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {

namespace {

constexpr int kStepsPerReport = 1'000'000;  // of the engine's machine

int reportProgress(void* to) {
  (*static_cast<const AccessProgress*>(to))();
  return 0;
}

}  // namespace

AccessTarget::AccessTarget(const std::string& path, const AccessProgress& progress)
    : progress_(progress) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  check(sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr));
  sqlite3_progress_handler(handle_, kStepsPerReport, reportProgress,
                           const_cast<AccessProgress*>(&progress));
  for (const auto* setting :
       {"journal_mode = MEMORY", "synchronous = OFF", "locking_mode = EXCLUSIVE",
        "cache_size = -65536", "temp_store = MEMORY", "ignore_check_constraints = ON"}) {
    run(std::string("PRAGMA ") + setting);
  }
  run("BEGIN");
}

AccessTarget::~AccessTarget() {
  sqlite3_close_v2(handle_);
}

void AccessTarget::run(const std::string& sql) {
  check(sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr));
}

bool AccessTarget::tryRun(const std::string& sql) {
  return sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool AccessTarget::hasRecords(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  const int prepared = sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr);
  const bool has = prepared == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW;
  sqlite3_finalize(statement);
  return has;
}

void AccessTarget::check(int code) const {
  if (code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW) return;
  throw FileError("the copy cannot be written: " +
                  std::string(handle_ ? sqlite3_errmsg(handle_) : "not enough memory"));
}

AccessInsertion::AccessInsertion(AccessTarget& target, std::string_view table, size_t columns)
    : target_(target) {
  std::string marks;
  for (size_t i = 0; i < columns; ++i) marks += i ? ",?" : "?";
  const std::string sql = "INSERT INTO " + targetQuoted(table) + " VALUES (" + marks + ")";
  target.check(sqlite3_prepare_v2(target.handle(), sql.c_str(), -1, &handle_, nullptr));
}

AccessInsertion::~AccessInsertion() {
  sqlite3_finalize(handle_);
}

bool AccessInsertion::add(const std::vector<AccessValue>& values) {
  sqlite3_reset(handle_);
  for (size_t i = 0; i < values.size(); ++i) {
    target_.check(bind(static_cast<int>(i) + 1, values[i]));
  }
  const int code = sqlite3_step(handle_);
  if ((code & 0xFF) == SQLITE_CONSTRAINT) return false;
  target_.check(code);
  return true;
}

int AccessInsertion::bind(int place, const AccessValue& value) {
  const std::string& bytes = value.bytes;
  switch (value.kind) {
    case AccessValue::Whole:
      return sqlite3_bind_int64(handle_, place, value.whole);
    case AccessValue::Number:
      return sqlite3_bind_double(handle_, place, value.number);
    case AccessValue::Text:
      return sqlite3_bind_text64(handle_, place, bytes.data(), bytes.size(), SQLITE_STATIC,
                                 SQLITE_UTF8);
    case AccessValue::Binary:
      return sqlite3_bind_blob64(handle_, place, bytes.data(), bytes.size(), SQLITE_STATIC);
    case AccessValue::Null:
      break;
  }
  return sqlite3_bind_null(handle_, place);
}

std::string targetQuoted(std::string_view name) {
  return "\"" + replaceAll(name, "\"", "\"\"") + "\"";
}

AccessValue textValue(const std::string& text) {
  AccessValue value;
  value.kind = AccessValue::Text;
  value.bytes = text;
  return value;
}

AccessValue wholeValue(std::int64_t number) {
  AccessValue value;
  value.kind = AccessValue::Whole;
  value.whole = number;
  return value;
}

}  // namespace lodex
