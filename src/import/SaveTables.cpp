#include "import/SaveTables.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {

namespace {

SaveTable& tableNamed(std::vector<SaveTable>& tables, const std::string& name) {
  const auto known = std::find_if(tables.begin(), tables.end(), [&](const SaveTable& table) {
    return equalsNoCase(table.name, name);
  });
  if (known != tables.end()) return *known;
  return tables.emplace_back(SaveTable{name, false, {}, {}});
}

SaveTarget& targetNamed(SaveTable& table, const std::string& name) {
  const auto known =
      std::find_if(table.targets.begin(), table.targets.end(),
                   [&](const SaveTarget& target) { return equalsNoCase(target.name, name); });
  if (known != table.targets.end()) return *known;
  return table.targets.emplace_back(SaveTarget{name, -1, {}, {}});
}

bool isMapped(const DatabaseMap& map, const std::vector<SaveTable>& tables, const TableKey& key) {
  const auto has = [&](const SaveTable& table, const std::string& field) {
    const int row = map.tableRow(table.name);
    return row > 0 && map.fieldColumn(row, field) > 0;
  };
  return std::all_of(tables.begin(), tables.end(), [&](const SaveTable& table) {
    return has(table, key.KeyFieldName) &&
           std::all_of(table.targets.begin(), table.targets.end(),
                       [&](const SaveTarget& target) { return has(table, target.name); });
  });
}

// One round of making tables and fields.
class TableMaker {
 public:
  TableMaker(Session& session, MappedDatabase& destination, const TableKey& key)
      : session_(session), destination_(destination), key_(key) {}

  // False when something is missing still.
  bool make(std::vector<SaveTable>& tables, const std::vector<std::string>& types) {
    bool complete = true;
    for (SaveTable& table : tables) {
      table.failure = ensure(table.name, key_.KeyFieldName, key_.KeyFieldType, true);
      complete = complete && table.failure.empty();
      if (!table.failure.empty()) continue;
      for (SaveTarget& target : table.targets) {
        const int column = target.columns.front().column;
        target.failure = ensure(table.name, target.name, types[static_cast<size_t>(column)], false);
        complete = complete && target.failure.empty();
      }
      const bool takesNothing =
          std::all_of(table.targets.begin(), table.targets.end(),
                      [](const SaveTarget& target) { return !target.failure.empty(); });
      if (takesNothing && !table.holdsIds) table.failure = table.targets.front().failure;
    }
    return complete;
  }

 private:
  // Why the field is not there; "" when it is.
  std::string ensure(const std::string& table, const std::string& field, const std::string& type,
                     bool isKey) {
    std::string reason;
    CheckAndAddField(session_, destination_.connection, destination_.map, key_, table, field, type,
                     isKey, &reason);
    return reason;
  }

  Session& session_;
  MappedDatabase& destination_;
  const TableKey& key_;
};

}  // namespace

std::vector<SaveTable> tablesOf(const SaveSource& source) {
  std::vector<SaveTable> tables;
  const std::string idTable = source.table(source.idColumn());
  if (!idTable.empty() && idTable != noTable) tableNamed(tables, idTable).holdsIds = true;
  for (SaveColumn& column : source.columns()) {
    SaveTarget& target = targetNamed(tableNamed(tables, column.table), column.field);
    target.columns.push_back(std::move(column));
  }
  return tables;
}

void reportSharedFields(const std::vector<SaveTable>& tables, const std::string& keyField,
                        const SaveSource& source, Findings& found) {
  for (const SaveTable& table : tables) {
    for (const SaveTarget& target : table.targets) {
      std::string headings;
      if (equalsNoCase(target.name, keyField)) headings = "the identifiers";
      for (const SaveColumn& column : target.columns) {
        headings += (headings.empty() ? "\"" : " and \"") + column.heading + "\"";
      }
      if (target.columns.size() == 1 && !equalsNoCase(target.name, keyField)) continue;
      found.warn("Several columns feed field [" + target.name + "] of table [" + table.name +
                     "]: " + headings + "; the first value of each record is taken",
                 source.place(0, target.columns.back().column));
    }
  }
}

TableKey keyOf(const SaveSource& source, const std::string& type) {
  std::string plain = type;
  stripTypeMarkers(plain);
  if (plain.empty() || plain == systemRowCaption(sysrow::Type)) plain = "TEXT (50)";
  return {source.field(source.idColumn()), plain};
}

bool makeTables(Session& session, MappedDatabase& destination, std::vector<SaveTable>& tables,
                const TableKey& key, const std::vector<std::string>& types) {
  if (isMapped(destination.map, tables, key)) return true;
  constexpr int rounds = 2;  // on a server, others may make a table between mapping and making it
  for (int round = 1; round <= rounds; ++round) {
    Transaction work(destination.connection);
    if (!mapTables(session, destination, true, MapRole::Destination)) return false;
    const bool complete = TableMaker(session, destination, key).make(tables, types);
    if (!complete && round < rounds && namesServer(destination.path)) continue;
    work.commit();
    break;
  }
  return true;
}

void openTables(Connection& connection, std::vector<SaveTable>& tables, const TableKey& key) {
  for (SaveTable& table : tables) {
    if (!table.failure.empty()) continue;
    const bool isFirst = table.fields.empty();
    table.records =
        connection.OpenRecordset("SELECT * FROM " + quoteName(table.name) + " WHERE 1 = 0");
    if (!isFirst) continue;
    table.fields = table.records->Fields();
    table.key = table.records->FieldIndex(key.KeyFieldName);
    for (SaveTarget& target : table.targets) {
      target.field = table.records->FieldIndex(target.name);
    }
  }
}

}  // namespace lodex
