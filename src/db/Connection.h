#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "db/DatabaseKinds.h"
#include "db/FieldTypes.h"
#include "db/Schema.h"

namespace lodex {

class Driver;
class Recordset;

/// The text that Connection::Open takes for a database of any kind (see kindOf).
std::string ConnectionString(std::string_view path, std::string_view user,
                             std::string_view password);

/// The value of a key such as "Provider" or "Data Source" in a connection text, "" if absent. The
/// data source of a file database runs to the end of the text, so that a path may hold a ";".
std::string connectionItem(std::string_view connectionString, std::string_view key);

/// A name or a text as it is written in SQL. Throws Error for a text with a character of code 0.
std::string quoteName(std::string_view name);
std::string quoteText(std::string_view text);

/// How a recordset holds its records. Client: all of them in memory, to be filtered, sorted and
/// walked in any order. ForwardOnly: one at a time, for a single pass over many.
enum class CursorKind { ForwardOnly, Client };

/// A database connection. Errors are Error with a number of db/Errors.h; a file that is missing,
/// damaged or of another kind gives FileError. Recordsets must be gone before their connection
/// closes, except for those with a client cursor, which stay readable.
class Connection {
 public:
  Connection();
  ~Connection();
  Connection(Connection&&) noexcept;
  Connection& operator=(Connection&&) noexcept;

  /// Opens the database of a text from ConnectionString; `servers` describes the services. A file
  /// is never created by opening it; an empty file is an empty database.
  void Open(std::string_view connectionString, const ServerIni& servers = {});
  void Close();
  bool IsOpen() const { return driver_ != nullptr; }

  /// The file that holds the records, which for an Access file is its copy; "" for a server.
  std::string File() const;
  /// True when no change can be written: the file is write-protected, or its folder.
  bool IsReadOnly() const;

  /// What the user should know of the last Open: that an Access file was copied and where changes
  /// go, and what the copy leaves out.
  const Findings& Noticed() const { return noticed_; }

  /// Runs one statement of the Jet dialect and returns the number of records that it changed. `?`
  /// marks in the text take the parameters in their order.
  std::int64_t Execute(std::string_view sql, const std::vector<FieldValue>& parameters = {});
  std::unique_ptr<Recordset> OpenRecordset(std::string_view sql,
                                           CursorKind cursor = CursorKind::Client,
                                           const std::vector<FieldValue>& parameters = {});

  /// The structure of the database, as a recordset with a client cursor.
  std::unique_ptr<Recordset> OpenSchema(SchemaKind kind);

  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();

  /// How long a statement waits for another user of the database before it fails with
  /// "... is in use"; 3,000 milliseconds by default.
  void BusyTimeout(int milliseconds);

 private:
  Driver& driver() const;
  std::unique_ptr<Driver> driver_;
  Findings noticed_;
};

/// A unit of work: undone at the end of the scope unless it was committed.
class Transaction {
 public:
  explicit Transaction(Connection& connection) : connection_(&connection) {
    connection_->BeginTrans();
  }
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();

 private:
  Connection* connection_;
};

}  // namespace lodex
