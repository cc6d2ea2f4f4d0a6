#include "db/drivers/sqlite/SqliteDriver.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <utility>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/drivers/sqlite/SqliteFunctions.h"
#include "db/drivers/sqlite/SqliteSchema.h"
#include "db/drivers/sqlite/SqliteStatement.h"
#include "db/drivers/sqlite/SqliteTables.h"
#include "db/drivers/sqlite/SqliteWriter.h"
#include "db/sql/JetSql.h"

namespace lodex {

namespace {

namespace fs = std::filesystem;

constexpr int kBusyTimeoutAtOpen = 3000;

// What a statement's text was turned into, kept because many are run again and again.
struct KnownStatement {
  std::string text;
  JetStatement statement;
};

class SqliteRows : public RowSource {
 public:
  // Of a query whose last column is the record's number, `table` names the table; "" otherwise.
  SqliteRows(std::shared_ptr<SqliteFile> file, std::string_view sql, const Row& parameters,
             std::string_view shown, std::string table)
      : file_(file), table_(std::move(table)), statement_(std::move(file), sql, parameters, shown) {
    hasRecord_ = statement_.step();
    const int count = sqlite3_column_count(statement_.handle()) - (table_.empty() ? 0 : 1);
    recordColumn_ = count;
    for (int column = 0; column < count; ++column) {
      Field field = fieldOf(column);
      if (field.name == kNoFields) continue;
      fields_.push_back(std::move(field));
      columns_.push_back(column);
    }
  }

  const std::vector<Field>& fields() const override { return fields_; }

  bool next(Row& row) override {
    if (!hasRecord_) return false;
    row.clear();
    for (const int column : columns_) row.push_back(statement_.value(column));
    if (!table_.empty()) record_ = statement_.value(recordColumn_);
    hasRecord_ = statement_.step();
    return true;
  }

  FieldValue record() const override { return record_; }

  std::unique_ptr<RecordWriter> writer() override {
    if (table_.empty()) return nullptr;
    return makeSqliteWriter(file_, table_, fields_);
  }

 private:
  Field fieldOf(int column) const {
    sqlite3_stmt* statement = statement_.handle();
    const char* name = sqlite3_column_name(statement, column);
    const char* declared = sqlite3_column_decltype(statement, column);
    const char* origin = sqlite3_column_origin_name(statement, column);
    const char* table = sqlite3_column_table_name(statement, column);
    Field field{validSqliteText(name ? name : ""),
                {},
                declared ? declared : "",
                validSqliteText(origin ? origin : ""),
                validSqliteText(table ? table : "")};
    if (declared) {
      field.type = fieldTypeInFile(declared);
    } else if (hasRecord_) {
      // An expression has no declared type; its first value decides.
      const int kind = sqlite3_column_type(statement, column);
      if (kind == SQLITE_INTEGER) field.type = {FieldCode::Integer, 0};
      if (kind == SQLITE_FLOAT) field.type = {FieldCode::Double, 0};
    }
    return field;
  }

  std::shared_ptr<SqliteFile> file_;
  std::string table_;
  SqliteStatement statement_;
  std::vector<Field> fields_;
  std::vector<int> columns_;
  int recordColumn_ = 0;
  FieldValue record_;
  bool hasRecord_ = false;
};

class SqliteDriver : public Driver {
 public:
  explicit SqliteDriver(std::shared_ptr<SqliteFile> file) : file_(std::move(file)) {}

  std::int64_t execute(std::string_view sql, const Row& parameters) override {
    const JetStatement& statement = read(sql);
    switch (statement.kind) {
      case JetStatement::Action:
        if (!statement.table.empty()) return createView(statement.table, sql);
        [[fallthrough]];
      case JetStatement::Query:
      case JetStatement::Plain:
        return run(statement.sql, parameters, sql);
      case JetStatement::Transform:
        if (statement.table.empty()) return 0;
        // Its columns are those of the values that there are now.
        return run("CREATE VIEW " + targetName(statement.table, SqlTarget::Sqlite) + " AS " +
                       transformedSql(statement, sql),
                   {}, sql);
      default:
        changeTables(JetStatement(statement), parameters, sql);
        return 0;
    }
  }

  std::unique_ptr<RowSource> query(std::string_view sql, const Row& parameters) override {
    const JetStatement& statement = read(sql);
    switch (statement.kind) {
      case JetStatement::Plain:
        return rows(statement.sql, parameters, sql);
      case JetStatement::Query:
        try {
          return records(statement, parameters, sql);
        } catch (const Error& error) {
          if (!lacksField(error)) throw;
        }
        return records(withValueNames(sql), parameters, sql);
      case JetStatement::Transform:
        if (statement.table.empty()) return rows(transformedSql(statement, sql), {}, sql);
        [[fallthrough]];
      default:
        execute(sql, parameters);
        return std::make_unique<StoredRows>(std::vector<Field>{}, std::vector<Row>{});
    }
  }

  std::unique_ptr<RowSource> schema(SchemaKind kind) override {
    return readSqliteSchema(file_, kind);
  }

  // The lock is taken at once: a unit of work then fails at its start and not half-way.
  void begin() override {
    // The engine would begin a unit of work that can only read.
    if (isReadOnly()) {
      throw FileError("Database " + file_->path + " is write-protected", dberror::Unspecified);
    }
    run("BEGIN IMMEDIATE");
    file_->inUnit = true;
  }
  void commit() override {
    run("COMMIT");
    file_->inUnit = false;
  }
  void rollback() override {
    file_->inUnit = false;
    if (!sqlite3_get_autocommit(file_->handle)) run("ROLLBACK");
  }

  std::string file() const override { return file_->path; }

  // A change is written to a journal beside the file first.
  bool isReadOnly() const override {
    const std::string folder = fs::absolute(nativePath(file_->path)).parent_path().string();
    return sqlite3_db_readonly(file_->handle, "main") == 1 ||
           ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0;
  }

  void busyTimeout(int milliseconds) override { sqlite3_busy_timeout(file_->handle, milliseconds); }

 private:
  const JetStatement& read(std::string_view sql) {
    if (known_.text.empty() || known_.text != sql) {
      known_.statement = readJetSql(sql, SqlTarget::Sqlite);
      known_.text = sql;
    }
    return known_.statement;
  }

  std::int64_t run(std::string_view sql, const Row& parameters = {}, std::string_view shown = {}) {
    const auto before = sqlite3_total_changes64(file_->handle);
    SqliteStatement(file_, sql, parameters, shown).run();
    return sqlite3_total_changes64(file_->handle) - before;
  }

  std::unique_ptr<RowSource> rows(std::string_view sql, const Row& parameters,
                                  std::string_view shown) {
    return std::make_unique<SqliteRows>(file_, sql, parameters, shown, "");
  }

  std::unique_ptr<RowSource> records(const JetStatement& statement, const Row& parameters,
                                     std::string_view shown) {
    const std::string table = tableOf(statement);
    return std::make_unique<SqliteRows>(file_, table.empty() ? statement.sql : statement.recordSql,
                                        parameters, shown, table);
  }

  static bool lacksField(const Error& error) {
    return std::string_view(error.what()).find("no such column") != std::string_view::npos;
  }

  // What the engine takes for a field may be the name of another value.
  const JetStatement& withValueNames(std::string_view sql) {
    known_.statement = readJetSql(sql, SqlTarget::Sqlite, ValueNames::Used);
    return known_.statement;
  }

  // The engine looks into a view only when it is used.
  std::int64_t createView(const std::string& name, std::string_view sql) {
    run(read(sql).sql, {}, sql);
    const std::string view = targetName(name, SqlTarget::Sqlite);
    try {
      SqliteStatement(file_, "SELECT 1 FROM " + view, {}, sql);
    } catch (const Error& error) {
      if (!lacksField(error)) return 0;
      run("DROP VIEW " + view);
      run(withValueNames(sql).sql, {}, sql);
    }
    return 0;
  }

  std::string transformedSql(const JetStatement& statement, std::string_view shown) {
    std::vector<FieldValue> values = statement.pivotValues;
    if (!statement.pivotSql.empty()) {
      const auto found = rows(statement.pivotSql, {}, shown);
      Row row;
      while (found->next(row)) values.push_back(row[0]);
    }
    return transformQuery(statement, values, SqlTarget::Sqlite);
  }

  bool holds(std::string_view sql, const Row& parameters) {
    return SqliteStatement(file_, sql, parameters).step();
  }

  // The table whose records a query gives one by one; "" for a view.
  std::string tableOf(const JetStatement& statement) {
    if (statement.recordSql.empty()) return {};
    const bool isTable = holds(
        "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE "
        "AND sql NOT LIKE '%WITHOUT ROWID%' AND sql LIKE 'CREATE TABLE%'",
        {statement.table});
    return isTable ? statement.table : std::string();
  }

  // All of it or nothing.
  void changeTables(const JetStatement& statement, const Row& parameters, std::string_view shown) {
    run("SAVEPOINT [change of tables]");
    try {
      changeTable(statement, parameters, shown);
      run("RELEASE [change of tables]");
    } catch (...) {
      SqliteStatement(file_, "ROLLBACK TO [change of tables]", {}).run();
      SqliteStatement(file_, "RELEASE [change of tables]", {}).run();
      throw;
    }
  }

  void changeTable(const JetStatement& statement, const Row& parameters, std::string_view shown) {
    const std::string table = targetName(statement.table, SqlTarget::Sqlite);
    const auto runAll = [&](const std::vector<std::string>& list) {
      for (const auto& sql : list) run(sql, {}, shown);
    };
    switch (statement.kind) {
      case JetStatement::CreateTable:
        return runAll(createTableSql(statement));
      case JetStatement::AddColumns:
        for (const auto& column : statement.columns) addColumn(statement.table, column, shown);
        return;
      case JetStatement::DropColumn:
        return dropColumn(table, targetName(statement.name, SqlTarget::Sqlite), shown);
      case JetStatement::CreateIndex:
        refuseSecondKey(statement);
        return runAll(createIndexSql(
            statement,
            holds("SELECT 1 FROM sqlite_master WHERE type = 'trigger' AND name = ?",
                  {statement.table + "|" + statement.indexColumns[0].name + "|counter"})));
      case JetStatement::DropIndex:
        return dropIndex(statement);
      case JetStatement::SelectInto:
        return selectInto(statement, parameters, shown);
      default:
        return;
    }
  }

  void addColumn(const std::string& name, const JetColumn& column, std::string_view shown) {
    const std::string table = targetName(name, SqlTarget::Sqlite);
    const bool isFirst =
        holds("SELECT 1 FROM pragma_table_info(?) WHERE name = ?", {name, std::string(kNoFields)});
    if (isFirst) {
      run("DROP TABLE " + table, {}, shown);
      JetStatement statement;
      statement.table = name;
      statement.columns.push_back(column);
      for (const auto& sql : createTableSql(statement)) run(sql, {}, shown);
      return;
    }
    const AddedColumn added = addedColumn(name, column);
    run("ALTER TABLE " + table + " ADD COLUMN " + added.definition, {}, shown);
    for (const auto& sql : added.after) run(sql, {}, shown);
  }

  // The engine changes no table while any view cannot be resolved, so the views are taken away
  // first.
  void dropColumn(const std::string& table, const std::string& column, std::string_view shown) {
    std::vector<std::string> views;
    std::vector<std::string> drops;
    {
      SqliteStatement stored(file_, "SELECT sql, name FROM sqlite_master WHERE type = 'view'", {});
      while (stored.step()) {
        views.push_back(fieldText(stored.value(0)));
        drops.push_back("DROP VIEW " + targetName(fieldText(stored.value(1)), SqlTarget::Sqlite));
      }
    }
    for (const auto& sql : drops) run(sql);
    run("ALTER TABLE " + table + " DROP COLUMN " + column, {}, shown);
    for (const auto& sql : views) run(sql);
  }

  void refuseSecondKey(const JetStatement& statement) {
    if (!statement.primary) return;
    const bool hasKey =
        holds("SELECT 1 FROM pragma_table_info(?) WHERE pk > 0", {statement.table}) ||
        holds(
            "SELECT 1 FROM sqlite_master WHERE type = 'index' AND tbl_name = ? COLLATE NOCASE "
            "AND substr(name, -8) = '|primary'",
            {statement.table});
    if (hasKey) {
      throw Error("Table [" + statement.table + "] has a primary key already",
                  dberror::Unspecified);
    }
  }

  void dropIndex(const JetStatement& statement) {
    SqliteStatement indexes(file_, "SELECT name, tbl_name FROM sqlite_master WHERE type = 'index'",
                            {});
    std::string stored;
    while (stored.empty() && indexes.step()) {
      const std::string name = fieldText(indexes.value(0));
      const std::string table = fieldText(indexes.value(1));
      const bool fits = statement.table.empty() || equalsNoCase(statement.table, table);
      if (fits && equalsNoCase(readIndexName(table, name).name, statement.name)) stored = name;
    }
    if (stored.empty()) {
      throw Error("There is no index [" + statement.name + "]", dberror::BadStatement);
    }
    indexes.reset({});
    run("DROP INDEX " + targetName(stored, SqlTarget::Sqlite));
    for (const auto& trigger : primaryKeyTriggers(stored)) {
      run("DROP TRIGGER IF EXISTS " + targetName(trigger, SqlTarget::Sqlite));
    }
  }

  // The new table takes the types of the fields, which the engine's own way would lose.
  void selectInto(const JetStatement& statement, const Row& parameters, std::string_view shown) {
    JetStatement create;
    create.table = statement.table;
    {
      const auto source = rows(statement.sql, parameters, shown);
      for (const Field& field : source->fields()) {
        create.columns.push_back(JetColumn{field.name, field.type});
      }
    }
    for (const auto& sql : createTableSql(create)) run(sql, {}, shown);
    run("INSERT INTO " + targetName(statement.table, SqlTarget::Sqlite) + " " + statement.sql,
        parameters, shown);
  }

  std::shared_ptr<SqliteFile> file_;
  KnownStatement known_;
};

std::shared_ptr<SqliteFile> openFile(const fs::path& native, std::string_view path, int flags) {
  auto file = std::make_shared<SqliteFile>();
  file->path = path;
  const int code = sqlite3_open_v2(native.c_str(), &file->handle, flags, nullptr);
  checkSqlite(*file, code);
  sqlite3_extended_result_codes(file->handle, 1);
  sqlite3_busy_timeout(file->handle, kBusyTimeoutAtOpen);
  addJetFunctions(file->handle);
  // A unit of work that outgrows its memory is written page by page, each waited for.
  SqliteStatement(file, "PRAGMA cache_size = -65536", {}).run();
  return file;
}

}  // namespace

bool isSqliteFile(std::string_view path) {
  constexpr std::string_view mark("SQLite format 3\0", 16);
  const fs::path native = nativePath(path);
  std::error_code failed;
  // Reading a pipe would take its text away.
  if (!fs::is_regular_file(native, failed)) return false;
  std::array<char, mark.size()> start{};
  std::ifstream(native, std::ios::binary).read(start.data(), start.size());
  return std::string_view(start.data(), start.size()) == mark;
}

std::unique_ptr<Driver> openSqliteFile(std::string_view path) {
  const fs::path native = nativePath(path);
  const auto refuse = [&](const char* reason) {
    throw FileError("Database " + std::string(path) + reason, dberror::Unspecified);
  };
  std::error_code failed;
  if (!fs::exists(native, failed)) refuse(" does not exist");
  if (fs::is_directory(native, failed)) refuse(" is a folder");
  if (!std::ifstream(native)) refuse(" cannot be read");
  // The making of an empty file may have been cut short.
  const bool isEmpty = fs::is_regular_file(native, failed) && fs::is_empty(native, failed);
  if (!isEmpty && !isSqliteFile(path)) refuse(" is not a database");
  auto file = openFile(native, path, SQLITE_OPEN_READWRITE);
  // Only a first query reads the file; what is wrong with it should come to light here.
  SqliteStatement(file, "SELECT COUNT(*) FROM sqlite_master", {}).step();
  return std::make_unique<SqliteDriver>(std::move(file));
}

void createSqliteFile(std::string_view path) {
  const fs::path native = nativePath(path);
  std::error_code failed;
  if (fs::exists(native, failed)) {
    throw FileError("Database " + std::string(path) + " exists already", dberror::Unspecified);
  }
  auto file = openFile(native, path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  // Without a first page the file would stay empty.
  SqliteStatement(file, "VACUUM", {}).step();
}

}  // namespace lodex
