#include "db/drivers/odbc/OdbcDriver.h"

#include <algorithm>
#include <array>
#include <utility>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/Servers.h"
#include "db/drivers/WriteStatements.h"
#include "db/drivers/odbc/OdbcSchema.h"
#include "db/drivers/odbc/OdbcStatement.h"
#include "db/sql/JetSql.h"

namespace lodex {

namespace {

using Link = std::shared_ptr<OdbcLink>;

std::string quoted(std::string_view name) {
  return targetName(name, SqlTarget::Server);
}

bool isOracle(const OdbcLink& link) {
  return findNoCase(link.product, "Oracle") != std::string::npos;
}

bool isPostgres(const OdbcLink& link) {
  return findNoCase(link.product, "PostgreSQL") != std::string::npos;
}

// A field's type in the words of the server.
std::string serverType(FieldType type, const OdbcLink& link) {
  const bool oracle = isOracle(link);
  switch (type.code) {
    case FieldCode::SmallInt:
    case FieldCode::Byte:
      return "SMALLINT";
    case FieldCode::Integer:
      return "INTEGER";
    case FieldCode::Boolean:
      return oracle ? "NUMBER(1)" : "BOOLEAN";
    case FieldCode::Single:
      return "REAL";
    case FieldCode::Double:
      return "DOUBLE PRECISION";
    case FieldCode::Numeric:
      if (type.precision > 0) {
        return "NUMERIC(" + std::to_string(type.precision) + ", " + std::to_string(type.scale) +
               ")";
      }
      return "NUMERIC(19, 4)";
    case FieldCode::Currency:
      return "NUMERIC(19, 4)";
    case FieldCode::Date:
      return "TIMESTAMP";
    case FieldCode::Memo:
      return oracle ? "CLOB" : "TEXT";
    case FieldCode::Binary:
      return oracle ? "BLOB" : "BYTEA";
    case FieldCode::Text:
    case FieldCode::VarText:
      break;
  }
  return (oracle ? "VARCHAR2(" : "VARCHAR(") + std::to_string(type.size > 0 ? type.size : 255) +
         ")";
}

// Records of a table with a primary key, told apart by it.
class OdbcWriter : public RecordWriter {
 public:
  // `places` are those of the key among `fields`, in the order of the key.
  OdbcWriter(Link link, std::string table, std::vector<Field> fields, std::vector<int> places)
      : link_(std::move(link)),
        table_(std::move(table)),
        fields_(std::move(fields)),
        places_(std::move(places)) {}

  const std::string& table() const override { return table_; }

  FieldValue add(const std::vector<FieldChange>& changes, Row& row) override {
    Row values;
    const std::string sql = insertStatement(table_, changes, SqlTarget::Server, values);
    if (isPostgres(*link_)) {
      read(sql + " RETURNING " + fieldList(), values, row);
      return {};
    }
    run(sql, values);
    readByKey(changes, row);
    return {};
  }

  void change(const FieldValue&, const Row& former,
              const std::vector<FieldChange>& changes) override {
    Row values;
    const std::string sql = updateStatement(table_, changes, SqlTarget::Server, values);
    runOnOne(sql, values, former);
  }

  void remove(const FieldValue&, const Row& former) override {
    Row values;
    runOnOne("DELETE FROM " + quoted(table_), values, former);
  }

 private:
  std::int64_t run(const std::string& sql, const Row& values) const {
    OdbcStatement statement(link_);
    statement.execute(sql, values, "");
    return statement.changed();
  }

  std::string fieldList() const {
    std::string list;
    for (const Field& field : fields_) {
      list += (list.empty() ? "" : ", ") + (field.column.empty() ? "NULL" : quoted(field.column));
    }
    return list;
  }

  void read(const std::string& sql, const Row& values, Row& row) const {
    OdbcStatement statement(link_);
    statement.execute(sql, values, "");
    if (!statement.next()) return;
    for (size_t i = 0; i < row.size(); ++i) {
      row[i] = statement.value(static_cast<int>(i), fields_[i].type);
    }
  }

  // What the server filled in, as far as the new record can be found again: by a key that was
  // given.
  void readByKey(const std::vector<FieldChange>& changes, Row& row) const {
    if (changes.size() == fields_.size()) return;
    for (const int place : places_) {
      if (isNull(row[place])) return;
    }
    Row values;
    const std::string where = ofRecord(row, values);
    read("SELECT " + fieldList() + " FROM " + quoted(table_) + where, values, row);
  }

  // The condition for a record, and the values of its marks.
  std::string ofRecord(const Row& former, Row& values) const {
    std::string where;
    for (const int place : places_) {
      where += (where.empty() ? " WHERE " : " AND ") + quoted(fields_[place].column) + " = ?";
      values.push_back(former[place]);
    }
    return where;
  }

  void runOnOne(std::string sql, Row& values, const Row& former) const {
    sql += ofRecord(former, values);
    if (run(sql, values) == 0) {
      throw Error("The record of table [" + table_ + "] is gone", dberror::NoCurrentRecord);
    }
  }

  Link link_;
  std::string table_;
  std::vector<Field> fields_;
  std::vector<int> places_;
};

class OdbcRows : public RowSource {
 public:
  OdbcRows(Link link, std::string_view sql, const Row& parameters, std::string_view shown,
           std::string table)
      : link_(link), table_(std::move(table)), statement_(std::move(link)) {
    statement_.execute(sql, parameters, shown);
    fields_ = statement_.fields();
  }

  const std::vector<Field>& fields() const override { return fields_; }

  bool next(Row& row) override {
    if (fields_.empty() || !statement_.next()) return false;
    row.clear();
    for (size_t i = 0; i < fields_.size(); ++i) {
      row.push_back(statement_.value(static_cast<int>(i), fields_[i].type));
    }
    return true;
  }

  std::unique_ptr<RecordWriter> writer() override {
    if (table_.empty()) return nullptr;
    std::vector<int> places;
    for (const std::string& column : odbcPrimaryKey(link_, table_)) {
      const auto found = std::find_if(fields_.begin(), fields_.end(),
                                      [&](const Field& field) { return field.column == column; });
      if (found == fields_.end()) return nullptr;
      places.push_back(static_cast<int>(found - fields_.begin()));
    }
    if (places.empty()) return nullptr;
    return std::make_unique<OdbcWriter>(link_, table_, fields_, std::move(places));
  }

 private:
  Link link_;
  std::string table_;
  OdbcStatement statement_;
  std::vector<Field> fields_;
};

class OdbcDriver : public Driver {
 public:
  explicit OdbcDriver(Link link) : link_(std::move(link)) {}

  std::int64_t execute(std::string_view sql, const Row& parameters) override {
    const JetStatement statement = readJetSql(sql, SqlTarget::Server);
    switch (statement.kind) {
      case JetStatement::Query:
      case JetStatement::Action:
        return run(statement.sql, parameters, sql);
      case JetStatement::Plain:
        link_->keys.clear();
        return run(statement.sql, parameters, sql);
      case JetStatement::Transform:
        return 0;
      case JetStatement::SelectInto:
        return run("CREATE TABLE " + quoted(statement.table) + " AS " + statement.sql, parameters,
                   sql);
      default:
        link_->keys.clear();
        for (const auto& change : tableChanges(statement)) run(change, {}, sql);
        return 0;
    }
  }

  std::unique_ptr<RowSource> query(std::string_view sql, const Row& parameters) override {
    const JetStatement statement = readJetSql(sql, SqlTarget::Server);
    switch (statement.kind) {
      case JetStatement::Query:
      case JetStatement::Plain:
        return std::make_unique<OdbcRows>(link_, statement.sql, parameters, sql, statement.table);
      case JetStatement::Transform: {
        std::vector<FieldValue> values = statement.pivotValues;
        if (!statement.pivotSql.empty()) {
          OdbcRows found(link_, statement.pivotSql, {}, sql, "");
          Row row;
          while (found.next(row)) values.push_back(row[0]);
        }
        return std::make_unique<OdbcRows>(
            link_, transformQuery(statement, values, SqlTarget::Server), Row{}, sql, "");
      }
      default:
        execute(sql, parameters);
        return std::make_unique<StoredRows>(std::vector<Field>{}, std::vector<Row>{});
    }
  }

  std::unique_ptr<RowSource> schema(SchemaKind kind) override {
    return readOdbcSchema(link_, kind);
  }

  void begin() override { autoCommit(false); }
  void commit() override { end(SQL_COMMIT); }
  void rollback() override { end(SQL_ROLLBACK); }

  // How long a server waits is the server's to say.
  void busyTimeout(int) override {}

 private:
  std::int64_t run(std::string_view sql, const Row& parameters, std::string_view shown) {
    OdbcStatement statement(link_);
    statement.execute(sql, parameters, shown);
    return statement.changed();
  }

  void checkLink(SQLRETURN code) const {
    if (SQL_SUCCEEDED(code)) return;
    throw Error("Server " + link_->service + ": " + odbcReason(SQL_HANDLE_DBC, link_->handle),
                dberror::Unspecified);
  }

  void autoCommit(bool on) {
    const SQLULEN mode = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
    // The value travels in the place of a pointer.
    checkLink(SQLSetConnectAttr(link_->handle, SQL_ATTR_AUTOCOMMIT,
                                reinterpret_cast<SQLPOINTER>(mode), SQL_IS_UINTEGER));
  }

  void end(SQLSMALLINT how) {
    const SQLRETURN code = SQLEndTran(SQL_HANDLE_DBC, link_->handle, how);
    autoCommit(true);
    checkLink(code);
  }

  std::string columnSql(const JetColumn& column) const {
    std::string sql = quoted(column.name) + " " + serverType(column.type, *link_);
    if (column.counter) sql += " GENERATED BY DEFAULT AS IDENTITY";
    if (!column.defaultValue.empty()) sql += " DEFAULT " + column.defaultValue;
    if (column.required) sql += " NOT NULL";
    if (column.unique) sql += " UNIQUE";
    if (column.primary) sql += " PRIMARY KEY";
    return sql;
  }

  static std::string quotedList(const std::vector<std::string>& names) {
    std::string list;
    for (const auto& name : names) list += (list.empty() ? "" : ", ") + quoted(name);
    return list;
  }

  std::string createTable(const JetStatement& statement) const {
    if (statement.columns.empty() && isOracle(*link_)) {
      throw Error("Server " + link_->service + " cannot make table [" + statement.table +
                      "] without fields",
                  dberror::NotSupported);
    }
    std::string lines;
    const auto add = [&lines](const std::string& line) {
      lines += (lines.empty() ? "" : ", ") + line;
    };
    for (const auto& column : statement.columns) add(columnSql(column));
    if (!statement.primaryKey.empty())
      add("PRIMARY KEY (" + quotedList(statement.primaryKey) + ")");
    for (const auto& names : statement.uniqueKeys) add("UNIQUE (" + quotedList(names) + ")");
    for (const auto& foreign : statement.foreignKeys) add(foreign);
    return "CREATE TABLE " + std::string(statement.ifNotExists ? "IF NOT EXISTS " : "") +
           quoted(statement.table) + " (" + lines + ")";
  }

  std::vector<std::string> tableChanges(const JetStatement& statement) const {
    const std::string table = quoted(statement.table);
    // Indexes share one space of names on a server.
    const std::string index = quoted(statement.table + "|" + statement.name);
    std::vector<std::string> list;
    switch (statement.kind) {
      case JetStatement::CreateTable:
        list.push_back(createTable(statement));
        break;
      case JetStatement::AddColumns:
        for (const auto& column : statement.columns) {
          list.push_back("ALTER TABLE " + table + " ADD " + columnSql(column));
        }
        break;
      case JetStatement::DropColumn:
        list.push_back("ALTER TABLE " + table + " DROP COLUMN " + quoted(statement.name));
        break;
      case JetStatement::CreateIndex: {
        std::string columns;
        for (const auto& column : statement.indexColumns) {
          columns += (columns.empty() ? "" : ", ") + quoted(column.name);
          if (column.descending && !statement.primary) columns += " DESC";
        }
        if (statement.primary) {
          list.push_back("ALTER TABLE " + table + " ADD CONSTRAINT " + index + " PRIMARY KEY (" +
                         columns + ")");
        } else {
          list.push_back((statement.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") + index +
                         " ON " + table + " (" + columns + ")");
        }
        break;
      }
      case JetStatement::DropIndex:
        list.push_back("DROP INDEX " + (statement.table.empty() ? quoted(statement.name) : index));
        break;
      default:
        break;
    }
    return list;
  }

  Link link_;
};

void allocate(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, handle))) {
    throw Error("ODBC, which connects to database servers, cannot be used", dberror::Unspecified);
  }
}

// Drivers have been seen to repeat the connection text in their messages.
std::string withoutSecrets(std::string reason, std::string_view connectionText) {
  for (const ConnectionItem& item : connectionItems(connectionText)) {
    if (isSecret(item) && !item.value.empty()) reason = replaceAll(reason, item.value, "...");
  }
  return reason;
}

Link connect(std::string_view service, const std::string& connectionText) {
  auto link = std::make_shared<OdbcLink>();
  link->service = service;
  allocate(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &link->environment);
  SQLSetEnvAttr(link->environment, SQL_ATTR_ODBC_VERSION,
                reinterpret_cast<SQLPOINTER>(SQLULEN{SQL_OV_ODBC3}), 0);
  allocate(SQL_HANDLE_DBC, link->environment, &link->handle);
  constexpr SQLULEN kLoginSeconds = 15;
  SQLSetConnectAttr(link->handle, SQL_ATTR_LOGIN_TIMEOUT,
                    reinterpret_cast<SQLPOINTER>(kLoginSeconds), SQL_IS_UINTEGER);
  std::u16string text = toUtf16(connectionText);
  const SQLRETURN code =
      SQLDriverConnectW(link->handle, nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
                        static_cast<SQLSMALLINT>(std::min<size_t>(text.size(), 32000)), nullptr, 0,
                        nullptr, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(code)) {
    throw Error("Server " + std::string(service) + " cannot be opened: " +
                    withoutSecrets(odbcReason(SQL_HANDLE_DBC, link->handle), connectionText),
                dberror::Unspecified);
  }
  link->connected = true;
  std::array<SQLWCHAR, 128> product{};
  SQLSMALLINT bytes = 0;
  if (SQL_SUCCEEDED(SQLGetInfoW(link->handle, SQL_DBMS_NAME, product.data(),
                                static_cast<SQLSMALLINT>(sizeof product), &bytes))) {
    const std::u16string name(reinterpret_cast<const char16_t*>(product.data()), product.size());
    link->product = fromUtf16(name.substr(0, name.find(u'\0')));
  }
  return link;
}

// PostgreSQL gives up a whole transaction for one refused statement, and what was written before
// would be lost. Its driver can undo the statement alone, and does unless the text or a data source
// says otherwise; "" for a text that says nothing of the kind.
std::string withStatementUndo(std::string_view connectionText) {
  constexpr std::string_view kKey = "Protocol";
  std::string changed;
  bool isNeeded = false;
  for (const ConnectionItem& item : connectionItems(connectionText)) {
    const bool isMode = equalsNoCase(item.key, kKey);
    isNeeded = isNeeded || isMode || equalsNoCase(item.key, "DSN");
    if (!isMode) changed += item.written + ";";
  }
  return isNeeded ? changed + std::string(kKey) + "=7.4-2" : std::string();
}

void askSchemas(const Link& link) {
  const bool postgres = isPostgres(*link);
  if (!postgres && !isOracle(*link)) return;
  OdbcStatement statement(link);
  statement.execute(postgres ? "SELECT unnest(current_schemas(false))::text"
                             : "SELECT SYS_CONTEXT('USERENV', 'CURRENT_SCHEMA') FROM DUAL",
                    {}, "");
  while (statement.next()) link->schemas.push_back(statement.text(0));
}

}  // namespace

std::unique_ptr<Driver> openOdbc(std::string_view service, std::string_view connectionText) {
  Link link = connect(service, std::string(connectionText));
  if (isPostgres(*link)) {
    const std::string safer = withStatementUndo(connectionText);
    if (!safer.empty()) link = connect(service, safer);
  }
  askSchemas(link);
  return std::make_unique<OdbcDriver>(std::move(link));
}

}  // namespace lodex
