#pragma once

#include <string_view>

#include "db/Connection.h"
#include "session/Session.h"

namespace lodex {

/// Opens the database of a path for a session: servers are those of its ini files, and what the
/// user should be told of the opening goes to both panes of the log, which is then shown.
void openDatabase(Session& session, Connection& connection, std::string_view path);

}  // namespace lodex
