#include "db/MapDatabase.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <vector>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/MapFile.h"
#include "db/OpenDatabase.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

constexpr std::string_view kFilterMark = "f_";

void showStatus(Session& session, std::string_view text) {
  session.progress.txtInfo.setCaption(text);
  session.pumpEvents();
}

struct NamedTable {
  std::string name;
  std::string type;
};

std::vector<NamedTable> tablesOf(Connection& connection) {
  std::vector<NamedTable> tables;
  const auto schema = connection.OpenSchema(SchemaKind::Tables);
  for (; !schema->Eof(); schema->MoveNext()) {
    tables.push_back({schema->Text("TABLE_NAME"), schema->Text("TABLE_TYPE")});
  }
  return tables;
}

// The columns of each table in their order.
using ColumnsByTable = std::unordered_map<std::string, std::vector<std::string>>;

ColumnsByTable columnsOf(Connection& connection) {
  ColumnsByTable columns;
  const auto schema = connection.OpenSchema(SchemaKind::Columns);
  const int table = schema->FieldIndex("TABLE_NAME");
  const int name = schema->FieldIndex("COLUMN_NAME");
  for (; !schema->Eof(); schema->MoveNext()) {
    columns[schema->Text(table)].push_back(schema->Text(name));
  }
  return columns;
}

std::unique_ptr<Recordset> openWithoutRecords(Connection& connection, const std::string& table) {
  return connection.OpenRecordset("SELECT * FROM " + quoteName(table) + " WHERE 1 = 0",
                                  CursorKind::ForwardOnly);
}

// The columns of all tables at once; without such a schema each table is opened, and one that
// cannot be opened has no fields.
ColumnsByTable fieldsOf(Connection& connection, const std::vector<NamedTable>& tables,
                        Findings& found) {
  try {
    return columnsOf(connection);
  } catch (const Error& failure) {
    if (failure.number() != dberror::NotSupported) throw;
  }
  ColumnsByTable columns;
  for (const NamedTable& table : tables) {
    if (table.type != "TABLE") continue;
    try {
      columns[table.name] = TableFields(connection, table.name);
    } catch (const Error& failure) {
      found.error("The fields of the table are not known: " + std::string(failure.what()),
                  {.sheet = table.name});
    }
  }
  return columns;
}

// Adds a table to the map, or a filter.
void mapTable(const NamedTable& table, const ColumnsByTable& columns, DatabaseMap& map) {
  if (table.type == "VIEW" && table.name.starts_with(kFilterMark)) {
    map.FilterList.push_back(table.name.substr(kFilterMark.size()));
  }
  if (table.type != "TABLE") return;
  const int row = map.addTable(table.name);
  const auto found = columns.find(table.name);
  if (found == columns.end()) return;
  int column = 1;
  for (const std::string& field : found->second) map.F1Key2.TextRC(row, ++column, field);
}

bool mapTableRows(Session& session, MappedDatabase& database, MapRole role, Findings& found) {
  JobScope job(session);
  const std::vector<NamedTable> tables = tablesOf(database.connection);
  const int count = static_cast<int>(tables.size());
  session.progress.bar.setMaximum(role == MapRole::Source ? count : 2 * count + 1);
  showStatus(session, "Mapping Tables and Views (ADO) ...");
  const ColumnsByTable columns = fieldsOf(database.connection, tables, found);
  const std::string text = "Mapping " + shownName(database.path) + " tables and fields...";
  int number = 0;
  for (const NamedTable& table : tables) {
    mapTable(table, columns, database.map);
    ++number;
    session.progress.ShowProgress(text, role == MapRole::Source ? number : 2 * number + 1);
    if (job.aborted()) return false;
  }
  return true;
}

void addKeys(Connection& connection, DatabaseMap& map) {
  const auto schema = connection.OpenSchema(SchemaKind::Indexes);
  for (; !schema->Eof(); schema->MoveNext()) {
    if (fieldNumber(schema->Value("PRIMARY_KEY")) == 0) continue;
    map.addKey(schema->Text("TABLE_NAME"), schema->Text("COLUMN_NAME"));
  }
}

void takeFirstFieldsAsKeys(Session& session, DatabaseMap& map) {
  session.dialogs().messageBox(
      "Database indexes could not be mapped. First field of each table is taken as index field");
  const int count = map.tableCount();
  for (int row = 1; row <= count; ++row) {
    map.addKey(map.table(row), map.F1Key2.TextRC(row, 2));
  }
}

void mapIndexes(Session& session, MappedDatabase& database) {
  showStatus(session, "Mapping " + shownName(database.path) + " indexes...");
  try {
    addKeys(database.connection, database.map);
  } catch (const Error& failure) {
    if (failure.number() != dberror::NotSupported) throw;
    takeFirstFieldsAsKeys(session, database.map);
  }
}

// False on abort.
bool mapStructure(Session& session, MappedDatabase& database, bool doLinks, MapRole role,
                  Findings& found) {
  database.map.clear();
  if (!mapTableRows(session, database, role, found)) return false;
  mapIndexes(session, database);
  if (!doLinks) return true;
  showStatus(session, "Mapping " + shownName(database.path) + " links...");
  database.map.MakeLinks();
  return true;
}

using FileTime = std::filesystem::file_time_type;

FileTime changeTime(std::string_view path) {
  std::error_code none;
  const auto time = std::filesystem::last_write_time(nativePath(path), none);
  return none ? FileTime::min() : time;
}

// A map file has no look at its database, so a user should know when it may be out of date. Records
// change a database as well as tables do.
void compareTimes(const MappedDatabase& database, Findings& found) {
  const std::string file = mapFilePath(database.path);
  const FileTime mapped = changeTime(file);
  if (mapped < changeTime(database.path) || mapped < changeTime(database.connection.File())) {
    found.warn(
        "The stored map is older than the database and may miss what is new; map the database "
        "again",
        {.file = file});
  }
}

bool readStoredMap(MappedDatabase& database, Findings& found) {
  try {
    readMapFile(mapFilePath(database.path), database.map);
    CollectFilters(database.connection, database.map);
  } catch (const FileError&) {
    return false;
  }
  compareTimes(database, found);
  return true;
}

// A folder that takes no files must not keep a database from being used.
void storeMap(const MappedDatabase& database, Findings& found) {
  const std::string file = mapFilePath(database.path);
  if (file.empty()) return;
  try {
    writeMapFile(file, database.map);
  } catch (const Error& failure) {
    found.warn("The map of the database was not saved: " + std::string(failure.what()));
  }
}

Outcome connectAndMap(Session& session, MappedDatabase& database, const MapRequest& request,
                      MapRole role, Findings& found) {
  JobScope job(session);
  const Outcome stopped{Ended::Aborted, "while mapping " + shownName(database.path), {}};
  showStatus(session, "Connecting " + shownName(database.path));
  database.connection = Connection();
  openDatabase(session, database.connection, database.path);
  if (job.aborted()) return stopped;
  bool store = request.saveMapFile;
  if (!request.readMapFile || !readStoredMap(database, found)) {
    store = store || request.readMapFile;
    if (!mapStructure(session, database, request.doLinks, role, found)) return stopped;
  }
  if (store && role == MapRole::Source) storeMap(database, found);
  showStatus(session, "Mapping " + shownName(database.path) + " mapped...");
  return {};
}

// The table and field behind the first field that belongs to a primary key; without such a field
// the table behind the first field. False where the database does not tell what stands behind
// fields.
bool baseOfFields(const DatabaseMap& map, const std::vector<Field>& fields, std::string& table,
                  std::string& key) {
  bool isKnown = false;
  for (const Field& field : fields) {
    if (map.tableRow(field.table) == 0) continue;
    if (!isKnown) table = field.table;
    isKnown = true;
    if (!map.isKeyField(field.table, field.column)) continue;
    table = field.table;
    key = field.column;
    return true;
  }
  return isKnown;
}

// Of the tables whose key field is shown, the one that most fields are shown of.
void baseByNames(const DatabaseMap& map, const std::vector<Field>& fields, std::string& table,
                 std::string& keyField) {
  const auto shows = [&](const std::string& name) {
    return std::any_of(fields.begin(), fields.end(),
                       [&](const Field& field) { return equalsNoCase(field.name, name); });
  };
  std::ptrdiff_t most = 0;
  const int count = map.tableCount();
  for (int row = 1; row <= count; ++row) {
    const std::string key = map.PrimaryKeyField(map.table(row));
    if (key.empty() || !shows(key)) continue;
    const auto names = map.fields(row);
    const auto common = std::count_if(names.begin(), names.end(), shows);
    if (common <= most) continue;
    most = common;
    table = map.table(row);
    keyField = key;
  }
}

}  // namespace

std::string mapFilePath(std::string_view databasePath) {
  if (isConnectionText(databasePath)) return {};
  const size_t name = databasePath.find_last_of("\\/");
  const size_t dot = databasePath.rfind('.');
  const bool hasEnding =
      dot != std::string_view::npos && (name == std::string_view::npos || dot > name);
  return std::string(databasePath.substr(0, hasEnding ? dot : databasePath.size())) + ".ake";
}

bool mapTables(Session& session, MappedDatabase& database, bool doLinks, MapRole role) {
  Findings found;
  const bool finished = mapStructure(session, database, doLinks, role, found);
  session.notice(found);
  return finished;
}

Outcome MapDatabase(Session& session, MappedDatabase& database, const MapRequest& request,
                    MapRole role) {
  database.map.clear();
  Findings found;
  Outcome outcome;
  try {
    outcome = connectAndMap(session, database, request, role, found);
  } catch (const Error& failure) {
    session.progress.txtInfo.setCaption("");
    session.log.LisaaLog(failure.what(), LogKind::Both);
    outcome = {Ended::Failed, failure.what(), {}};
  }
  found.nameFile(shownName(database.path));
  session.notice(found);
  outcome.found = database.connection.Noticed();
  outcome.found.append(found);
  return outcome;
}

Outcome OpenSampleDatabase(Session& session, MappedDatabase& database, const MapRequest& request) {
  std::string& path = session.record.SessionDbPath;
  if (path.starts_with('\\') && !path.starts_with("\\\\")) path.insert(0, "\\");
  showStatus(session, "Connecting " + shownName(path));
  session.record.ConnectionKind = "ADO";
  showStatus(session, "Connection is ADO");
  database.path = path;
  const Outcome outcome = MapDatabase(session, database, request);
  if (outcome.done()) {
    session.record.ConnectionKindLast = session.record.ConnectionKind;
    return outcome;
  }
  session.record.ConnectionKindLast.clear();
  database.connection = Connection();
  if (outcome.aborted()) return outcome;
  database.map.clear();
  session.dialogs().messageBox(
      "Database " + shownName(path) + " can not be opened neither by using DAO nor ADO connection",
      MessageButtons::Ok, MessageIcon::Stop);
  return outcome;
}

std::vector<std::string> TableFields(Connection& connection, std::string_view table) {
  std::vector<std::string> names;
  const auto records = openWithoutRecords(connection, plainName(table));
  for (const Field& field : records->Fields()) names.push_back(field.name);
  return names;
}

namespace {

// The marks around a name in a statement go, unless there is a filter of just this name.
std::string nameOfView(const DatabaseMap& map, std::string_view view) {
  std::string name = plainName(view);
  for (const std::string& filter : map.FilterList) {
    if (equalsNoCase(name, std::string(kFilterMark) + filter)) return name;
  }
  name = view;
  for (const char* mark : {"[", "]", ",", ";"}) name = replaceAll(name, mark, "");
  return name;
}

}  // namespace

void ViewBaseTable(MappedDatabase& database, std::string_view view, std::string& baseTable,
                   std::string& keyField) {
  const std::string name = nameOfView(database.map, view);
  baseTable = name;
  keyField.clear();
  if (database.map.tableRow(name) == 0) {
    try {
      const auto records = openWithoutRecords(database.connection, name);
      if (!baseOfFields(database.map, records->Fields(), baseTable, keyField)) {
        baseByNames(database.map, records->Fields(), baseTable, keyField);
      }
    } catch (const Error&) {
      // A view that cannot be opened has no table behind it.
    }
  }
  if (keyField.empty()) keyField = database.map.PrimaryKeyField(baseTable);
}

std::vector<TableLink> JoinPath(MappedDatabase& database, std::string_view first,
                                std::string_view second, bool overThird) {
  const auto tableOf = [&](std::string_view name) {
    std::string table = plainName(name);
    std::string key;
    if (table.starts_with(kFilterMark)) ViewBaseTable(database, table, table, key);
    return table;
  };
  return database.map.JoinPath(tableOf(first), tableOf(second), overThird);
}

}  // namespace lodex
