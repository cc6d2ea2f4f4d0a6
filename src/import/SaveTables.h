#pragma once

#include <memory>
#include <string>
#include <vector>

#include "db/MapDatabase.h"
#include "db/Recordset.h"
#include "db/SchemaOperations.h"
#include "import/SaveSource.h"

namespace lodex {

/// A field of a table with the columns that feed it: the first one with a value counts.
struct SaveTarget {
  std::string name;
  int field = -1;       // in the records; -1 if the table lacks it
  std::string failure;  // why there is no such field
  std::vector<SaveColumn> columns;
};

struct SaveTable {
  std::string name;
  bool holdsIds = false;  // the ID column names it, so that samples without values count
  std::string failure;    // why there is no such table; "" for a table that takes records
  std::vector<SaveTarget> targets;
  std::unique_ptr<Recordset> records{};
  std::vector<Field> fields{};
  int key = -1;  // of fields
};

/// The tables that a sheet feeds, in the order of its columns, with the fields of each.
std::vector<SaveTable> tablesOf(const SaveSource& source);

/// Reports the fields that are fed by more than one column.
void reportSharedFields(const std::vector<SaveTable>& tables, const std::string& keyField,
                        const SaveSource& source, Findings& found);

/// The key of the tables: field and type of the ID column.
TableKey keyOf(const SaveSource& source, const std::string& type);

/// Makes the tables and fields that are missing, in one transaction. The database is mapped again
/// inside of it, since another program may have made some of them meanwhile. What could not be made
/// is noted in `failure` of table or target. `types` are by column. False on abort; nothing was
/// made then. Throws Error when the database as a whole refuses.
bool makeTables(Session& session, MappedDatabase& destination, std::vector<SaveTable>& tables,
                const TableKey& key, const std::vector<std::string>& types);

/// Opens the tables for new records. Call it again at times: new records stay in memory as long as
/// their recordset is open.
void openTables(Connection& connection, std::vector<SaveTable>& tables, const TableKey& key);

}  // namespace lodex
