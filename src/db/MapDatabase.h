#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "db/Connection.h"
#include "db/DatabaseMap.h"
#include "session/Session.h"

namespace lodex {

/// How a database is mapped. The map file is beside the database and has its name with the ending
/// ".ake".
struct MapRequest {
  bool doLinks = true;
  bool readMapFile = false;  // take the stored map; without one map afresh and store it
  bool saveMapFile = false;
};

/// An open database and what is known of it.
struct MappedDatabase {
  std::string path;
  Connection connection;
  DatabaseMap map;
};

/// How the progress bar counts while mapping: the tables of a source; of a destination twice the
/// table number plus one.
enum class MapRole { Source, Destination };

/// The path of a database's map file; "" for a server named by a connection text.
std::string mapFilePath(std::string_view databasePath);

/// Connects to `database.path` and maps it. What was mapped until a failure or abort stays. The
/// session has already noticed what the outcome holds, and a failure is in its log.
Outcome MapDatabase(Session& session, MappedDatabase& database, const MapRequest& request,
                    MapRole role = MapRole::Source);

/// Fills the map of an open database from its structure, without a map file. False on abort.
bool mapTables(Session& session, MappedDatabase& database, bool doLinks, MapRole role);

/// Opens the session's SessionDbPath as the sample database and maps it. On failure says so; an
/// abort is silent. Both leave no open database.
Outcome OpenSampleDatabase(Session& session, MappedDatabase& database, const MapRequest& request);

/// The fields of a table or view, in brackets or not, by opening it. Throws Error when it cannot be
/// opened.
std::vector<std::string> TableFields(Connection& connection, std::string_view table);

/// The table behind a view and its key field: those of the first field of the view that belongs to
/// a primary key. Where a server does not tell what stands behind a field, of the tables whose key
/// field the view shows, the one that it shows most fields of. The name may carry square brackets,
/// "," and ";"; a table's name gives itself and its primary key.
void ViewBaseTable(MappedDatabase& database, std::string_view view, std::string& baseTable,
                   std::string& keyField);

/// DatabaseMap::JoinPath for names of which those beginning with "f_" are filters, which stand for
/// the table behind them.
std::vector<TableLink> JoinPath(MappedDatabase& database, std::string_view first,
                                std::string_view second, bool overThird = false);

}  // namespace lodex
