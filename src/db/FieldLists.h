#pragma once

#include <string>
#include <string_view>

#include "db/Connection.h"
#include "db/DatabaseMap.h"
#include "form/Controls.h"

namespace lodex {

class frmAddField;

/// Shows the tables of a map, and the fields of the table that is current in a list of tables.
void showTables(const DatabaseMap& map, ListBox& tables);
void showFields(const DatabaseMap& map, const ListBox& tables, ListBox& fields);

/// Takes a field that was added to a table into the map.
void takeField(DatabaseMap& map, std::string_view table, const frmAddField& added);

/// The text of the current item; "" for none.
std::string currentText(const ListBox& list);

/// What a database says of a field, a line "NAME :value" for each property; "" for an unknown one.
std::string fieldProperties(Connection& connection, std::string_view table, std::string_view field);

}  // namespace lodex
