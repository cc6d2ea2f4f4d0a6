#include "db/drivers/sqlite/SqliteWriter.h"

#include "basic/Error.h"
#include "db/Errors.h"
#include "db/drivers/WriteStatements.h"
#include "db/drivers/sqlite/SqliteStatement.h"
#include "db/sql/JetSql.h"

namespace lodex {

namespace {

std::string quoted(std::string_view name) {
  return targetName(name, SqlTarget::Sqlite);
}

class SqliteWriter : public RecordWriter {
 public:
  SqliteWriter(const std::shared_ptr<SqliteFile>& file, const std::string& table,
               const std::vector<Field>& fields)
      : file_(file), table_(table) {
    for (const Field& field : fields) {
      readSql_ += readSql_.empty() ? "SELECT " : ", ";
      readSql_ += field.column.empty() ? "NULL" : quoted(field.column);
    }
    readSql_ += " FROM " + quoted(table) + " WHERE _rowid_ = ?";
  }

  const std::string& table() const override { return table_; }

  FieldValue add(const std::vector<FieldChange>& changes, Row& row) override {
    const auto file = openFile();
    Row values;
    const std::string sql = insertStatement(table_, changes, SqlTarget::Sqlite, values);
    SqliteStatement(file, sql, values).run();
    const FieldValue record = std::int64_t{sqlite3_last_insert_rowid(file->handle)};
    SqliteStatement stored(file, readSql_, {record});
    if (stored.step()) {
      for (size_t i = 0; i < row.size(); ++i) row[i] = stored.value(static_cast<int>(i));
    }
    return record;
  }

  void change(const FieldValue& record, const Row&,
              const std::vector<FieldChange>& changes) override {
    Row values;
    const std::string sql = updateStatement(table_, changes, SqlTarget::Sqlite, values);
    values.push_back(record);
    runOnOne(sql + " WHERE _rowid_ = ?", values);
  }

  void remove(const FieldValue& record, const Row&) override {
    runOnOne("DELETE FROM " + quoted(table_) + " WHERE _rowid_ = ?", {record});
  }

 private:
  std::shared_ptr<SqliteFile> openFile() const {
    auto file = file_.lock();
    if (!file) throw Error("The connection is closed", dberror::ObjectClosed);
    return file;
  }

  void runOnOne(const std::string& sql, const Row& values) const {
    const auto file = openFile();
    SqliteStatement(file, sql, values).run();
    if (sqlite3_changes(file->handle) == 0) {
      throw Error("The record of table [" + table_ + "] is gone", dberror::NoCurrentRecord);
    }
  }

  std::weak_ptr<SqliteFile> file_;
  std::string table_;
  std::string readSql_;
};

}  // namespace

std::unique_ptr<RecordWriter> makeSqliteWriter(const std::shared_ptr<SqliteFile>& file,
                                               const std::string& table,
                                               const std::vector<Field>& fields) {
  return std::make_unique<SqliteWriter>(file, table, fields);
}

}  // namespace lodex
