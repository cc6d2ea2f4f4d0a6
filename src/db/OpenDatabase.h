#pragma once

#include <string_view>

#include "db/Connection.h"
#include "session/Session.h"

namespace lodex {

/// Opens a database for a session: servers are those of its ini files, and what the user should
/// know of the opening is noticed.
void openDatabase(Session& session, Connection& connection, std::string_view name);

/// Throws Error when nothing can be written to an open database, so that one message takes the
/// place of one for every record.
void requireWritable(const Connection& connection, std::string_view name);

}  // namespace lodex
