#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/FieldTypes.h"
#include "db/Schema.h"

namespace lodex {

/// The values of one record, in the order of the fields.
using Row = std::vector<FieldValue>;

struct FieldChange {
  std::string column;  ///< as the table names it
  FieldValue value;
};

/// Writes records of one table. A record is named by the number that RowSource::record gave for it
/// and by its former values; each driver uses what tells its records apart.
class RecordWriter {
 public:
  virtual ~RecordWriter() = default;
  virtual const std::string& table() const = 0;
  /// Adds a record and returns its number; `row` takes the values that the database gave it.
  virtual FieldValue add(const std::vector<FieldChange>& changes, Row& row) = 0;
  virtual void change(const FieldValue& record, const Row& former,
                      const std::vector<FieldChange>& changes) = 0;
  virtual void remove(const FieldValue& record, const Row& former) = 0;
};

/// The result of a query, delivered record by record. It must not outlive its driver.
class RowSource {
 public:
  virtual ~RowSource() = default;
  virtual const std::vector<Field>& fields() const = 0;
  /// Puts the next record into `row`; false after the last one.
  virtual bool next(Row& row) = 0;
  /// The number of the record delivered last; Null if there is none.
  virtual FieldValue record() const { return {}; }
  /// What writes to these records; nullptr if they come from more than one table, are grouped or
  /// cannot be told apart.
  virtual std::unique_ptr<RecordWriter> writer() { return nullptr; }
};

/// Records that are in memory already.
class StoredRows : public RowSource {
 public:
  StoredRows(std::vector<Field> fields, std::vector<Row> rows)
      : fields_(std::move(fields)), rows_(std::move(rows)) {}
  const std::vector<Field>& fields() const override { return fields_; }
  bool next(Row& row) override {
    if (at_ == rows_.size()) return false;
    row = std::move(rows_[at_++]);
    return true;
  }

 private:
  std::vector<Field> fields_;
  std::vector<Row> rows_;
  size_t at_ = 0;
};

/// An open database of one kind. Every function throws Error with a number of db/Errors.h and a
/// text that a user can act on.
class Driver {
 public:
  virtual ~Driver() = default;

  /// Runs one statement of the Jet dialect, with `?` marks for the parameters, and returns
  /// the number of records that it changed.
  virtual std::int64_t execute(std::string_view sql, const Row& parameters) = 0;
  virtual std::unique_ptr<RowSource> query(std::string_view sql, const Row& parameters) = 0;

  virtual std::unique_ptr<RowSource> schema(SchemaKind kind) = 0;

  virtual void begin() = 0;
  virtual void commit() = 0;
  virtual void rollback() = 0;

  /// The file that holds the records; "" for a server.
  virtual std::string file() const { return {}; }
  /// True when no change can be written, whatever it is.
  virtual bool isReadOnly() const { return false; }

  /// How long a statement waits for another user of the database before it fails.
  virtual void busyTimeout(int milliseconds) = 0;
};

}  // namespace lodex
