#pragma once

#include <string>
#include <string_view>

#include "db/Connection.h"
#include "db/DatabaseMap.h"
#include "session/Session.h"

namespace lodex {

/// The SQL type of a field type code of a database, such as "SINGLE" for "4"; "TEXT (255)" for a
/// unknown code. What is not a number is a type already and comes back unchanged.
std::string sqlTypeOf(std::string_view codeOrType);

/// Takes the markers "(I,U)", "(U,I)", "(I)" and "(U)" out of a type such as "LONG(U,I)". True when
/// there was any.
bool stripTypeMarkers(std::string& type);

/// Throws Error unless the text is a field type: a known word, perhaps more, and a size in
/// brackets. Types come from cells and must not bring other SQL with them.
void requireFieldType(std::string_view type);

/// What AddField makes.
struct NewField {
  std::string table;
  std::string field;
  std::string type;  // a type code or a SQL type
  bool unique = false;
  bool indexed = false;
  bool primary = false;
};

/// Adds a field to a table, and its index. With `ask` the user is shown the command first and may
/// refuse. Commands go to the log where `log` is set. False when refused or failed; a failure is in
/// the log in any case.
bool AddField(Session& session, Connection& connection, const NewField& field, bool ask, bool log);

/// The key of tables that have to be made: the field's name and its type, perhaps with markers.
struct TableKey {
  std::string KeyFieldName = "SampleNo";
  std::string KeyFieldType = "TEXT (50)";
};

/// Makes sure that a destination has a table with a field, and keeps its map in step. Tables are
/// made with the key of `key`; a type with markers sets `isKey`, which asks for a unique index.
/// Nothing is done for the names "TABLE" and "*" of columns that were not identified. True when the
/// field is there after the call; what was done and what failed is in the log, and `reason` (null
/// for none) gets why it failed. Throws FileError when the database as a whole cannot be written.
bool CheckAndAddField(Session& session, Connection& connection, DatabaseMap& map,
                      const TableKey& key, const std::string& table, const std::string& field,
                      std::string type, bool& isKey, std::string* reason = nullptr);

/// Makes the tables for a user's own calculations and groups: "UserGroups" and, if asked,
/// "UserCalc", each with the key field SampleNo. An empty `keyType` is a text of 50 characters;
/// type codes are taken too. Throws Error when the database refuses.
void MakeUserTables(std::string_view databasePath, bool createCalc, std::string_view keyType);

}  // namespace lodex
