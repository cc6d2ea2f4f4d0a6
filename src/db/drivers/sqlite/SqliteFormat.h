#pragma once

struct sqlite3;

namespace lodex {

/// Format(value [, pattern]) of the Jet dialect, for dates and numbers.
void addJetFormat(sqlite3* database);

}  // namespace lodex
