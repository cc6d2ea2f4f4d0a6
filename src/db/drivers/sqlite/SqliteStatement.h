#pragma once

#include <sqlite3.h>

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "db/Driver.h"

namespace lodex {

/// An open file. Running queries share it, so that it closes after the last of them.
struct SqliteFile {
  sqlite3* handle = nullptr;
  std::string path;
  /// A unit of work was begun. The engine gives one up by itself, when the disk is full for one;
  /// until the unit is ended, no statement runs then.
  bool inUnit = false;
  /// Statements that ran lately, ready to run again: compiling one takes longer than running it.
  std::list<std::pair<std::string, sqlite3_stmt*>> idle;

  SqliteFile() = default;
  SqliteFile(const SqliteFile&) = delete;
  SqliteFile& operator=(const SqliteFile&) = delete;
  ~SqliteFile();
};

/// Throws the error of a result code, if it is one; `sql` is shown with faults of a statement.
void checkSqlite(const SqliteFile& file, int code, std::string_view sql = {});

/// The text as UTF-8, whatever another program may have written.
std::string validSqliteText(std::string_view text);

/// One statement with its parameters.
class SqliteStatement {
 public:
  /// `shown` is the statement as its user wrote it, for messages; "" for `sql` itself.
  SqliteStatement(std::shared_ptr<SqliteFile> file, std::string_view sql, const Row& parameters,
                  std::string_view shown = {});
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  /// True while there is a record.
  bool step();
  /// Makes it ready to run with other parameters.
  void reset(const Row& parameters);
  /// Runs it to its end.
  void run();
  /// A value of the current record; columns count from 0.
  FieldValue value(int column) const;

  sqlite3_stmt* handle() const { return handle_; }

 private:
  bool takeIdle();
  void compile();
  void refuseFurtherStatement(const char* rest) const;
  void bind(const Row& parameters);
  void bindOne(int place, const FieldValue& value);

  std::shared_ptr<SqliteFile> file_;
  std::string sql_;
  std::string shown_;
  sqlite3_stmt* handle_ = nullptr;
};

}  // namespace lodex
