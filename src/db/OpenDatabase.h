#pragma once

#include <string_view>

#include "db/Connection.h"
#include "session/Session.h"

namespace lodex {

/// A file that is opened as a database and not as a sheet: one that is called .mdb, and any other
/// that is an Access or SQLite file by its content.
bool isDatabaseFile(std::string_view path);

/// Opens the database of a path for a session: servers are those of its ini files, and what the
/// user should be told of the opening goes to both panes of the log, which is then shown.
void openDatabase(Session& session, Connection& connection, std::string_view path);

}  // namespace lodex
