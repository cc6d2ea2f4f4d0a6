#include "db/drivers/jet/AccessCopy.h"

#include <sqlite3.h>

#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/FieldTypes.h"
#include "db/drivers/jet/AccessQueries.h"
#include "db/drivers/jet/AccessRows.h"

namespace lodex {

namespace {

constexpr std::uint32_t kCatalogPage = 2;
constexpr int kRecordsPerReport = 2000;
constexpr int kStepsPerReport = 1'000'000;  // of the database engine, while it makes an index
// Bits of the flags of a catalogue entry that mark what Access keeps for itself.
constexpr std::uint32_t kSystemFlags = 0x80000002;
enum ObjectType { kTableObject = 1, kOdbcLink = 4, kQueryObject = 5, kLink = 6 };

std::string quoted(std::string_view name) {
  return "\"" + replaceAll(name, "\"", "\"\"") + "\"";
}

// The file that is being made.
class Target {
 public:
  explicit Target(const std::string& path) {
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    check(sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr));
    // The file is thrown away unless all goes well, so nothing needs to survive a crash.
    run("PRAGMA journal_mode = OFF");
    run("PRAGMA synchronous = OFF");
    run("PRAGMA locking_mode = EXCLUSIVE");
    run("PRAGMA cache_size = -65536");
    run("BEGIN");
  }
  ~Target() { sqlite3_close_v2(handle_); }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  sqlite3* handle() const { return handle_; }
  void run(const std::string& sql) { check(tryRun(sql)); }
  int tryRun(const std::string& sql) {
    return sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr);
  }
  void check(int code) const {
    if (code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW) return;
    throw FileError("the copy cannot be written: " +
                    std::string(handle_ ? sqlite3_errmsg(handle_) : "not enough memory"));
  }

 private:
  sqlite3* handle_ = nullptr;
};

class Insertion {
 public:
  Insertion(Target& target, const std::string& table, size_t columns) : target_(target) {
    std::string marks;
    for (size_t i = 0; i < columns; ++i) marks += i ? ",?" : "?";
    const std::string sql = "INSERT INTO " + quoted(table) + " VALUES (" + marks + ")";
    target.check(sqlite3_prepare_v2(target.handle(), sql.c_str(), -1, &handle_, nullptr));
  }
  ~Insertion() { sqlite3_finalize(handle_); }
  Insertion(const Insertion&) = delete;
  Insertion& operator=(const Insertion&) = delete;

  // False when a key refuses the record. The values must live until the next call.
  bool add(const std::vector<AccessValue>& values) {
    sqlite3_reset(handle_);
    for (size_t i = 0; i < values.size(); ++i)
      target_.check(bind(static_cast<int>(i) + 1, values[i]));
    const int code = sqlite3_step(handle_);
    if ((code & 0xFF) == SQLITE_CONSTRAINT) return false;
    target_.check(code);
    return true;
  }

 private:
  int bind(int place, const AccessValue& value) {
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

  Target& target_;
  sqlite3_stmt* handle_ = nullptr;
};

AccessValue textValue(const std::string& text) {
  AccessValue value;
  value.kind = AccessValue::Text;
  value.bytes = text;
  return value;
}

// Named fields of the records of a table of Access's own; numbers are 0 and texts "" where absent.
class SystemTable {
 public:
  SystemTable(const AccessFile& file, std::uint32_t page, const std::string& name)
      : table_(readAccessTable(file, page, name)), rows_(file, table_) {}
  bool next() { return rows_.next(); }
  const AccessTable& table() const { return table_; }
  const std::vector<AccessValue>& values() const { return rows_.values(); }
  std::int64_t number(std::string_view column) const {
    const AccessValue* value = find(column);
    return value && value->kind == AccessValue::Whole ? value->whole : 0;
  }
  std::string text(std::string_view column) const {
    const AccessValue* value = find(column);
    const bool is =
        value && (value->kind == AccessValue::Text || value->kind == AccessValue::Binary);
    return is ? value->bytes : "";
  }

 private:
  const AccessValue* find(std::string_view column) const {
    const int place = table_.find(column);
    return place < 0 ? nullptr : &rows_.values()[static_cast<size_t>(place)];
  }
  AccessTable table_;
  AccessRows rows_;
};

struct Object {
  std::string name;
  std::int64_t type = 0;
  std::uint32_t id = 0;
  bool isSystem = false;
  std::uint32_t page() const { return id & 0xFFFFFF; }
};

std::vector<Object> readCatalog(const AccessFile& file) {
  SystemTable catalog(file, kCatalogPage, "MSysObjects");
  for (const auto* column : {"Id", "Name", "Type", "Flags"}) {
    if (catalog.table().find(column) < 0) throw FileError("its list of tables is damaged");
  }
  std::vector<Object> objects;
  while (catalog.next()) {
    Object object;
    object.name = catalog.text("Name");
    object.type = catalog.number("Type");
    object.id = static_cast<std::uint32_t>(catalog.number("Id"));
    object.isSystem = (static_cast<std::uint32_t>(catalog.number("Flags")) & kSystemFlags) != 0;
    objects.push_back(std::move(object));
  }
  return objects;
}

std::string declarationOf(const AccessFile& file, const AccessColumn& column, bool exact) {
  const auto of = [](FieldCode code) { return columnDeclaration({code, 0}); };
  switch (column.type) {
    case AccessType::Boolean:
      return of(FieldCode::Boolean) + " DEFAULT 0";
    case AccessType::Byte:
      return of(FieldCode::Byte);
    case AccessType::Integer:
      return of(FieldCode::SmallInt);
    case AccessType::LongInteger:
    case AccessType::Complex:
      return column.counter ? "COUNTER INT" : of(FieldCode::Integer);
    case AccessType::BigInteger:
      return "DECIMAL INT";
    // Without an affinity, texts of many digits stay what they are.
    case AccessType::Currency:
      return exact ? "CURRENCY BLOB" : of(FieldCode::Currency);
    case AccessType::Numeric:
      return exact ? "DECIMAL BLOB" : of(FieldCode::Numeric);
    case AccessType::Single:
      return of(FieldCode::Single);
    case AccessType::Double:
      return of(FieldCode::Double);
    case AccessType::Date:
      return of(FieldCode::Date);
    case AccessType::Memo:
      return of(FieldCode::Memo);
    case AccessType::Guid:
      return columnDeclaration({FieldCode::VarText, 38});
    case AccessType::ExtendedDate:
      return columnDeclaration({FieldCode::VarText, 42});
    case AccessType::Text:
      return columnDeclaration({FieldCode::VarText, file.isJet3() ? column.size : column.size / 2});
    case AccessType::Binary:
    case AccessType::Ole:
      break;
  }
  return of(FieldCode::Binary);
}

const AccessIndex* primaryKey(const AccessTable& table) {
  for (const AccessIndex& index : table.indexes) {
    if (index.primary) return &index;
  }
  return nullptr;
}

std::string columnList(const AccessTable& table, const AccessIndex& index) {
  std::string list;
  for (const auto& column : index.columns) {
    list +=
        (list.empty() ? "" : ", ") + quoted(table.columns[static_cast<size_t>(column.place)].name);
    if (column.descending) list += " DESC";
  }
  return list;
}

// Copies one table. A first attempt takes all for granted; what the records disprove (unique keys,
// numbers that fit a double) is left out of the next one.
class TableCopy {
 public:
  TableCopy(const AccessFile& file, const AccessTable& table, Target& target,
            AccessCopyReport& report)
      : file_(file),
        table_(table),
        target_(target),
        report_(report),
        exact_(table.columns.size()) {}

  void run() {
    while (!attempt()) target_.run("DROP TABLE " + quoted(table_.name));
    createIndexes();
    numberCounters();
    if (damaged_) warn(std::to_string(damaged_) + " damaged records were left out");
    if (strangeNumbers_) {
      warn(std::to_string(strangeNumbers_) + " values that are no numbers were left empty");
    }
    for (const AccessColumn& column : table_.columns) {
      if (column.type == AccessType::Complex) {
        warn("of field " + column.name +
             ", which holds several values, only their number was taken");
      }
    }
  }

 private:
  void warn(const std::string& text) { report_.warning("Table " + table_.name + ": " + text); }

  bool isRowNumber(size_t place) const {
    const AccessIndex* key = primaryKey(table_);
    return keyed_ && key && key->columns.size() == 1 &&
           key->columns[0].place == static_cast<int>(place) && table_.columns[place].counter;
  }

  void create() {
    std::string lines;
    const AccessIndex* key = keyed_ ? primaryKey(table_) : nullptr;
    bool keyStands = false;
    for (size_t i = 0; i < table_.columns.size(); ++i) {
      const AccessColumn& column = table_.columns[i];
      lines += (i ? ", " : "") + quoted(column.name) + " ";
      if (isRowNumber(i)) {
        lines += "INTEGER PRIMARY KEY";
        keyStands = true;
        continue;
      }
      lines += declarationOf(file_, column, exact_[i]);
      if (!key) continue;
      for (const auto& part : key->columns) {
        if (part.place == static_cast<int>(i)) lines += " NOT NULL";
      }
    }
    if (key && !keyStands) lines += ", PRIMARY KEY (" + columnList(table_, *key) + ")";
    target_.run("CREATE TABLE " + quoted(table_.name) + " (" + lines + ")");
  }

  // False when it must be done again with other declarations.
  bool attempt() {
    create();
    Insertion insertion(target_, table_.name, table_.columns.size());
    AccessRows rows(file_, table_);
    bool again = false;
    strangeNumbers_ = 0;
    for (int count = 0; rows.next(); ++count) {
      if (count % kRecordsPerReport == 0) report_.progress();
      for (size_t i = 0; i < exact_.size(); ++i) {
        const AccessValue& value = rows.values()[i];
        if (value.exact && !exact_[i]) exact_[i] = again = true;
        if (value.kind == AccessValue::Number && std::isnan(value.number)) ++strangeNumbers_;
      }
      if (again) continue;
      if (!insertion.add(rows.values())) {
        if (!keyed_) throw FileError("a record of table " + table_.name + " cannot be stored");
        warn("its primary key is not unique, it was brought in without it");
        keyed_ = false;
        return false;
      }
    }
    damaged_ = rows.damaged();
    return !again;
  }

  void createIndexes() {
    std::set<std::string> made;
    for (const AccessIndex& index : table_.indexes) {
      report_.progress();
      if (keyed_ && &index == primaryKey(table_)) continue;
      const std::string list = columnList(table_, index);
      if (!made.insert(toUpper(list) + (index.unique ? "!" : "")).second) continue;
      const std::string rest = "INDEX " + quoted(table_.name + "|" + index.name) + " ON " +
                               quoted(table_.name) + " (" + list + ")";
      if (index.unique && target_.tryRun("CREATE UNIQUE " + rest) == SQLITE_OK) continue;
      if (index.unique) warn("index " + index.name + " holds equal values, it is not unique here");
      if (target_.tryRun("CREATE " + rest) != SQLITE_OK) {
        warn("index " + index.name + " could not be made");
      }
    }
  }

  // Counters that are not the key by themselves take the next free number.
  void numberCounters() {
    for (size_t i = 0; i < table_.columns.size(); ++i) {
      if (!table_.columns[i].counter || isRowNumber(i)) continue;
      const std::string table = quoted(table_.name);
      const std::string field = quoted(table_.columns[i].name);
      target_.run("CREATE TRIGGER " +
                  quoted(table_.name + "|" + table_.columns[i].name + "|counter") +
                  " AFTER INSERT ON " + table + " WHEN NEW." + field + " IS NULL BEGIN UPDATE " +
                  table + " SET " + field + " = (SELECT coalesce(max(" + field + "), 0) + 1 FROM " +
                  table + ") WHERE _rowid_ = NEW._rowid_; END");
    }
  }

  const AccessFile& file_;
  const AccessTable& table_;
  Target& target_;
  AccessCopyReport& report_;
  std::vector<bool> exact_;
  bool keyed_ = true;
  int damaged_ = 0;
  int strangeNumbers_ = 0;
};

void copyTable(const AccessFile& file, const Object& object, Target& target,
               AccessCopyReport& report) {
  try {
    const AccessTable table = readAccessTable(file, object.page(), object.name);
    if (table.columns.empty()) {
      report.warning("Table " + object.name + " has no fields and was left out");
      return;
    }
    TableCopy(file, table, target, report).run();
  } catch (const FileError& error) {
    throw FileError("table " + object.name + ": " + error.what());
  }
}

void copyRelationships(const AccessFile& file, const Object& object, Target& target) {
  SystemTable source(file, object.page(), object.name);
  std::string columns;
  for (const AccessColumn& column : source.table().columns) {
    columns += (columns.empty() ? "" : ", ") + quoted(column.name) + " " +
               declarationOf(file, column, false);
  }
  if (columns.empty()) return;
  target.run("CREATE TABLE " + quoted(kRelationshipsTable) + " (" + columns + ")");
  Insertion insertion(target, std::string(kRelationshipsTable), source.table().columns.size());
  while (source.next()) insertion.add(source.values());
}

void copyQueries(const AccessFile& file, const std::vector<Object>& objects, const Object& table,
                 Target& target) {
  std::map<std::uint32_t, std::vector<AccessQueryPart>> parts;
  SystemTable source(file, table.page(), table.name);
  while (source.next()) {
    AccessQueryPart part;
    part.attribute = static_cast<int>(source.number("Attribute"));
    part.flag = static_cast<int>(source.number("Flag"));
    part.expression = source.text("Expression");
    part.name1 = source.text("Name1");
    part.name2 = source.text("Name2");
    part.order = source.text("Order");
    parts[static_cast<std::uint32_t>(source.number("ObjectId"))].push_back(std::move(part));
  }
  Insertion insertion(target, std::string(kQueriesTable), 3);
  for (const Object& object : objects) {
    if (object.type != kQueryObject || object.name.starts_with("~")) continue;
    const AccessQuery query = buildAccessQuery(object.name, std::move(parts[object.id]));
    insertion.add({textValue(query.name), textValue(query.sql), textValue(query.obstacle)});
  }
}

// Relationships and queries are worth less than the tables: the copy goes on without them.
void copySystemTable(const AccessFile& file, const std::vector<Object>& objects,
                     const Object& table, Target& target, AccessCopyReport& report) {
  try {
    if (table.name == "MSysRelationships") copyRelationships(file, table, target);
    if (table.name == "MSysQueries") copyQueries(file, objects, table, target);
  } catch (const FileError& error) {
    report.warning("The relationships or saved queries cannot be read: " +
                   std::string(error.what()));
  }
}

}  // namespace

void copyAccessFile(const std::string& source, const std::string& target,
                    AccessCopyReport& report) {
  const AccessFile file(source);
  const std::vector<Object> objects = readCatalog(file);
  report.progress();
  if (file.endsWithinPage()) {
    report.warning("The Access file does not end with a whole page: it may have been cut short");
  }
  Target copy(target);
  sqlite3_progress_handler(
      copy.handle(), kStepsPerReport,
      [](void* to) {
        static_cast<AccessCopyReport*>(to)->progress();
        return 0;
      },
      &report);
  copy.run("CREATE TABLE " + quoted(kQueriesTable) + " (name TEXT, sql TEXT, obstacle TEXT)");
  for (const Object& object : objects) {
    if (object.type == kLink || object.type == kOdbcLink) {
      report.warning("Table " + object.name + " lies in another database and was left out");
    }
    if (object.type != kTableObject) continue;
    const bool isUsers = !object.isSystem && !object.name.starts_with("~");
    if (isUsers && !object.name.starts_with("MSys")) {
      copyTable(file, object, copy, report);
    } else {
      copySystemTable(file, objects, object, copy, report);
    }
  }
  copy.run("COMMIT");
}

}  // namespace lodex
