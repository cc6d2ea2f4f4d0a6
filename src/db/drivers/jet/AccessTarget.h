#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/jet/AccessRows.h"

struct sqlite3;
struct sqlite3_stmt;

namespace lodex {

/// The SQLite file that a copy of an Access file is written to, in one transaction. It is thrown
/// away unless all goes well, so nothing in it needs to survive a crash; a statement that fails is
/// undone all the same. Conditions of tables are not checked while it fills.
class AccessTarget {
 public:
  /// Calls `progress`, which must outlive it, also while it makes an index of millions of records.
  /// Throws FileError.
  AccessTarget(const std::string& path, const AccessProgress& progress);
  ~AccessTarget();
  AccessTarget(const AccessTarget&) = delete;
  AccessTarget& operator=(const AccessTarget&) = delete;

  sqlite3* handle() const { return handle_; }
  void progress() const { progress_(); }
  /// Throws FileError when the engine refuses the statement.
  void run(const std::string& sql);
  /// The same; false when it refuses.
  bool tryRun(const std::string& sql);
  /// True when the query gives at least one record; false also where it cannot run.
  bool hasRecords(const std::string& sql);
  /// Throws FileError for an answer of the engine other than success.
  void check(int code) const;

 private:
  const AccessProgress& progress_;
  sqlite3* handle_ = nullptr;
};

/// Adds records to a table of the target.
class AccessInsertion {
 public:
  AccessInsertion(AccessTarget& target, std::string_view table, size_t columns);
  ~AccessInsertion();
  AccessInsertion(const AccessInsertion&) = delete;
  AccessInsertion& operator=(const AccessInsertion&) = delete;

  /// False when a key refuses the record. The values must live until the next call.
  bool add(const std::vector<AccessValue>& values);

 private:
  int bind(int place, const AccessValue& value);

  AccessTarget& target_;
  sqlite3_stmt* handle_ = nullptr;
};

/// A name between double quotes.
std::string targetQuoted(std::string_view name);

AccessValue textValue(const std::string& text);
AccessValue wholeValue(std::int64_t number);

}  // namespace lodex
