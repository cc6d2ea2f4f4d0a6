#pragma once

#include <sql.h>
#include <sqlext.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/Driver.h"

namespace lodex {

/// An open connection to a server. Running statements share it.
struct OdbcLink {
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC handle = SQL_NULL_HDBC;
  bool connected = false;
  std::string service;
  std::string product;  ///< what the server calls itself, such as "PostgreSQL"
  /// The schemas whose tables need no schema before their name; none where that is not known.
  std::vector<std::string> schemas;
  /// Primary keys that were asked for, by table, until this connection changes the structure:
  /// asking for one takes a server longer than a record.
  std::map<std::string, std::vector<std::string>> keys;

  OdbcLink() = default;
  OdbcLink(const OdbcLink&) = delete;
  OdbcLink& operator=(const OdbcLink&) = delete;
  ~OdbcLink();
};

/// What the driver says about the last failure of a handle.
std::string odbcReason(SQLSMALLINT kind, SQLHANDLE handle);

/// One statement or catalogue question.
class OdbcStatement {
 public:
  explicit OdbcStatement(std::shared_ptr<OdbcLink> link);
  ~OdbcStatement();
  OdbcStatement(const OdbcStatement&) = delete;
  OdbcStatement& operator=(const OdbcStatement&) = delete;

  /// Runs a statement; `shown` is how its user wrote it, for messages.
  void execute(std::string_view sql, const Row& parameters, std::string_view shown);
  /// Number of records that it changed.
  std::int64_t changed();

  void askTables();
  void askColumns();
  void askPrimaryKey(const std::string& schema, const std::string& table);
  void askIndexes(const std::string& schema, const std::string& table);
  /// The keys of other tables that this one refers to.
  void askForeignKeys(const std::string& schema, const std::string& table);

  /// The fields of the result; none if it has no records.
  std::vector<Field> fields();
  /// Moves to the next record; false after the last.
  bool next();
  /// A value of the current record; columns count from 0 and are read in their order.
  FieldValue value(int column, FieldType type);
  std::string text(int column);
  int number(int column);

 private:
  void check(SQLRETURN code, std::string_view shown = {});
  bool isUnsupported() const;
  void bind(const Row& parameters);
  std::u16string wideText(int column, bool& isNull);
  std::string bytes(int column, bool& isNull);

  std::shared_ptr<OdbcLink> link_;
  SQLHSTMT handle_ = SQL_NULL_HSTMT;
  // What parameters point to while the statement runs.
  std::vector<std::u16string> texts_;
  std::vector<std::int64_t> wholes_;
  std::vector<double> numbers_;
  std::vector<SQLLEN> lengths_;
};

/// The field type for a server's type number and name.
FieldType odbcFieldType(int sqlType, std::string_view typeName, SQLULEN size);

}  // namespace lodex
