#include "cli/StoredSamples.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/MapDatabase.h"
#include "modal/StoredAssays.h"

namespace lodex {
namespace {

// All tables that know the samples by the same field.
std::vector<std::string> tablesOfSamples(MappedDatabase& database) {
  const DatabaseMap& map = database.map;
  const std::string key = map.PrimaryKeyField(sampleMasterTable(database));
  std::vector<std::string> tables = map.tables();
  std::erase_if(tables, [&](const std::string& table) {
    return !equalsNoCase(map.PrimaryKeyField(table), key);
  });
  return tables;
}

// Tables of other programs often have no key, but name their samples all the same.
std::string keyFieldOf(const DatabaseMap& map, int row) {
  constexpr std::string_view usualKeyField = "SampleNo";
  const std::string key = map.PrimaryKeyField(map.table(row));
  if (!key.empty() || map.fieldColumn(row, usualKeyField) == 0) return key;
  return std::string(usualKeyField);
}

// The condition that picks the samples of a stored filter.
std::string conditionOf(MappedDatabase& database, const std::string& filter,
                        const std::string& keyField) {
  if (filter.empty()) return {};
  const auto& known = database.map.FilterList;
  const bool found = std::any_of(known.begin(), known.end(), [&](const std::string& name) {
    return equalsNoCase(name, filter);
  });
  if (!found) {
    throw Error("The database has no filter " + filter + "; it has: " + join(known, ", "));
  }
  const std::string view = "f_" + filter;
  std::string baseTable;
  std::string key;
  ViewBaseTable(database, view, baseTable, key);
  return quoteName(keyField) + " IN (SELECT " + quoteName(key) + " FROM " + quoteName(view) + ")";
}

}  // namespace

void loadStoredSamples(ImportConsole& console, const StoredSamplesChoice& choice,
                       DatabaseTables& tables) {
  Session& session = console.session();
  MappedDatabase database;
  database.path = choice.database;
  const Outcome outcome = MapDatabase(session, database, {true, false, false});
  console.printLines(session.log.txtErr.text(), "lodex: ");
  session.log.clear();
  if (!outcome.done()) throw Error("Error in opening database " + shownName(choice.database));
  const DatabaseMap& map = database.map;
  const std::vector<std::string> names =
      choice.tables.empty() ? tablesOfSamples(database) : choice.tables;
  for (const std::string& name : names) {
    const int row = map.tableRow(name);
    if (row == 0) {
      throw Error("The database has no table " + name + "; it has: " + join(map.tables(), ", "));
    }
    const std::string key = keyFieldOf(map, row);
    if (key.empty()) throw Error("Table " + name + " has no key that names its samples");
    tables.add(database.connection, map.table(row), row, key, console.context().converter,
               conditionOf(database, choice.filter, key));
  }
}

}  // namespace lodex
