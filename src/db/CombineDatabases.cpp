#include "db/CombineDatabases.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/Connection.h"
#include "db/OpenDatabase.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

// Rows after which the progress is shown again.
constexpr int kRowsPerStep = 200;

struct SourceDatabase {
  std::string path;
  Connection connection;
  std::vector<std::string> tables;
};

bool samePath(const std::string& a, const std::string& b) {
  std::error_code failed;
  return a == b || std::filesystem::equivalent(nativePath(a), nativePath(b), failed);
}

std::vector<std::string> plainTables(Connection& connection) {
  std::vector<std::string> names;
  const auto tables = connection.OpenSchema(SchemaKind::Tables);
  for (; !tables->Eof(); tables->MoveNext()) {
    if (tables->Text("TABLE_TYPE") == "TABLE") names.push_back(tables->Text("TABLE_NAME"));
  }
  return names;
}

std::string ofTable(const std::string& table) {
  return "[TABLE_NAME] = " + quoteText(table);
}

class Combining {
 public:
  Combining(Session& session, const std::string& destination) : session_(session) {
    openDatabase(session, destination_, destination);
    requireWritable(destination_, destination);
  }

  CombineOutcome run(const std::vector<std::string>& paths, const std::string& destination) {
    for (const std::string& path : paths) {
      if (samePath(path, destination)) continue;
      auto source = std::make_unique<SourceDatabase>();
      source->path = path;
      openDatabase(session_, source->connection, path);
      source->tables = plainTables(source->connection);
      sources_.push_back(std::move(source));
    }
    for (const auto& source : sources_) {
      if (result_.outcome.done()) createTables(*source);
    }
    for (size_t i = 0; i < sources_.size() && result_.outcome.done(); ++i) copyTables(i);
    if (result_.outcome.done()) log("Ready");
    session_.notice(found());
    return result_;
  }

 private:
  void log(const std::string& text) { session_.log.LisaaLog(text, LogKind::Log); }

  Findings& found() { return result_.outcome.found; }

  bool stopped(const std::string& before) {
    if (!job_.aborted(LogKind::Log, "!! Aborted!!")) return false;
    result_.outcome.ended = Ended::Aborted;
    result_.outcome.reason = "before table " + before;
    return true;
  }

  // The reason when the destination refuses a statement, else "".
  std::string execute(const std::string& statement) {
    try {
      destination_.Execute(statement);
      log(" -EXECUTED: " + statement);
      return {};
    } catch (const Error& failure) {
      log("!! ERROR " + std::to_string(failure.number()) + " " + failure.what() +
          "(Command: " + statement + ")");
      return failure.what();
    }
  }

  // What the destination has under that name already serves as well.
  bool destinationHas(SchemaKind kind, const std::string& table, const char* field,
                      const std::string& name) {
    const auto rows = destination_.OpenSchema(kind);
    for (; !rows->Eof(); rows->MoveNext()) {
      if (equalsNoCase(rows->Text("TABLE_NAME"), table) && equalsNoCase(rows->Text(field), name)) {
        return true;
      }
    }
    return false;
  }

  // --- Structure ---

  void createTables(SourceDatabase& source) {
    const auto columns = source.connection.OpenSchema(SchemaKind::Columns);
    const auto indexes = source.connection.OpenSchema(SchemaKind::Indexes);
    session_.progress.bar.setMaximum(static_cast<int>(source.tables.size()));
    int number = 0;
    for (const std::string& table : source.tables) {
      const std::string text = "Creating table  " + table + " ...";
      session_.progress.ShowProgress(text, ++number);
      if (stopped(table)) return;
      log(text);
      execute("CREATE TABLE " + quoteName(table));
      const Place place{.file = shownName(source.path), .sheet = table};
      createFields(*columns, table, place);
      createIndexes(*indexes, table, place);
    }
  }

  void createFields(Recordset& columns, const std::string& table, const Place& place) {
    for (columns.Filter(ofTable(table)); !columns.Eof(); columns.MoveNext()) {
      const auto number = [&](const char* field) {
        return static_cast<int>(fieldNumber(columns.Value(field)));
      };
      const FieldType type{static_cast<FieldCode>(number("DATA_TYPE")),
                           number("CHARACTER_MAXIMUM_LENGTH"), number("NUMERIC_PRECISION"),
                           number("NUMERIC_SCALE")};
      const std::string field = columns.Text("COLUMN_NAME");
      const std::string refused = execute("ALTER TABLE " + quoteName(table) + " ADD COLUMN " +
                                          quoteName(field) + " " + jetTypeName(type));
      if (refused.empty() || destinationHas(SchemaKind::Columns, table, "COLUMN_NAME", field)) {
        continue;
      }
      found().error("Field " + field + " was not made: " + refused, place);
    }
  }

  struct Index {
    std::string name;
    std::string columns;
    bool unique = false;
    bool primary = false;
  };

  void createIndexes(Recordset& schema, const std::string& table, const Place& place) {
    std::vector<Index> indexes;
    for (schema.Filter(ofTable(table)); !schema.Eof(); schema.MoveNext()) {
      const std::string name = schema.Text("INDEX_NAME");
      if (indexes.empty() || indexes.back().name != name) {
        indexes.push_back({name, "", fieldNumber(schema.Value("UNIQUE")) != 0,
                           fieldNumber(schema.Value("PRIMARY_KEY")) != 0});
      }
      std::string& columns = indexes.back().columns;
      columns += (columns.empty() ? "" : ",") + quoteName(schema.Text("COLUMN_NAME"));
    }
    for (const Index& index : indexes) {
      const std::string refused =
          execute(std::string(index.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                  quoteName(index.name) + " ON " + quoteName(table) + " (" + index.columns + ")" +
                  (index.primary ? " WITH PRIMARY" : ""));
      if (refused.empty() || destinationHas(SchemaKind::Indexes, table, "INDEX_NAME", index.name)) {
        continue;
      }
      found().error("Index " + index.name + " was not made: " + refused, place);
    }
  }

  // --- Records ---

  void copyTables(size_t sourceNumber) {
    SourceDatabase& source = *sources_[sourceNumber];
    const size_t count = source.tables.size();
    session_.progress.bar.setMaximum(static_cast<int>(count));
    for (size_t i = 0; i < count; ++i) {
      session_.progress.ShowProgress("DB " + std::to_string(sourceNumber + 1) + " of " +
                                         std::to_string(sources_.size()) + " ; Table " +
                                         std::to_string(i + 1) + " of " + std::to_string(count),
                                     static_cast<int>(i) + 1);
      if (stopped(source.tables[i] + " of " + shownName(source.path))) return;
      copyRecords(source, source.tables[i], static_cast<int>(i) + 1);
    }
  }

  // The records that a whole table has.
  static size_t recordCount(Connection& source, const std::string& table) {
    try {
      const auto count = source.OpenRecordset("SELECT Count(*) FROM " + quoteName(table));
      return static_cast<size_t>(fieldNumber(count->Value(0)));
    } catch (const Error&) {
      return 1;  // it cannot be read at all
    }
  }

  void copyRecords(SourceDatabase& source, const std::string& table, int progress) {
    const Place place{.file = shownName(source.path), .sheet = table};
    size_t written = 0;
    Findings refused;
    try {
      Transaction work(destination_);
      written = writeRecords(source.connection, place, progress, refused);
      work.commit();
    } catch (const Error& failure) {
      // The table as a whole: it cannot be read, or the destination is in use.
      const size_t all = std::max<size_t>(recordCount(source.connection, table), 1);
      refused.clear();
      refused.add(Severity::Error, "No record was written: " + std::string(failure.what()), place,
                  all);
      written = 0;
      log("!! ERROR " + std::to_string(failure.number()) + " " + failure.what());
    }
    result_.written += written;
    result_.errors += refused.count(Severity::Error);
    found().append(refused);
    log(" -" + std::to_string(written) + " records written in " + table);
  }

  // Writes the records that the destination takes, and returns how many these are.
  size_t writeRecords(Connection& source, const Place& place, int progress, Findings& refused) {
    const std::string& table = place.sheet;
    const auto records =
        source.OpenRecordset("SELECT * FROM " + quoteName(table), CursorKind::ForwardOnly);
    std::string fields;
    std::string marks;
    for (const Field& field : records->Fields()) {
      fields += (fields.empty() ? "" : ", ") + quoteName(field.name);
      marks += marks.empty() ? "?" : ", ?";
    }
    const std::string insert =
        "INSERT INTO " + quoteName(table) + " (" + fields + ") VALUES (" + marks + ")";
    const int fieldCount = static_cast<int>(records->Fields().size());
    std::vector<FieldValue> values(static_cast<size_t>(fieldCount));
    size_t written = 0;
    for (int record = 1; !records->Eof(); records->MoveNext(), ++record) {
      for (int i = 0; i < fieldCount; ++i) values[static_cast<size_t>(i)] = records->Value(i);
      try {
        destination_.Execute(insert, values);
        ++written;
      } catch (const Error& failure) {
        Place at = place;
        at.record = values.empty() ? "" : fieldText(values.front());
        refused.error("A record was not written: " + std::string(failure.what()), at);
      }
      if (record % kRowsPerStep != 0) continue;
      const size_t errors = result_.errors + refused.count(Severity::Error);
      session_.progress.ShowProgress("Writing in Table " + table + " ; Rec " +
                                         std::to_string(record) +
                                         " (Errors:" + std::to_string(errors) + ") ...",
                                     progress);
      session_.pumpEvents();
    }
    return written;
  }

  Session& session_;
  JobScope job_{session_};
  Connection destination_;
  std::vector<std::unique_ptr<SourceDatabase>> sources_;
  CombineOutcome result_;
};

}  // namespace

CombineOutcome combineDatabases(Session& session, const std::vector<std::string>& sources,
                                const std::string& destination) {
  session.log.clear();
  session.log.show();
  session.log.LisaaLog(combiningTitle, LogKind::Log);
  return Combining(session, destination).run(sources, destination);
}

}  // namespace lodex
