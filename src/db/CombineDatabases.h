#pragma once

#include <string>
#include <vector>

#include "session/Session.h"

namespace lodex {

/// The first line of the log.
inline constexpr const char* combiningTitle = "***** Combining databases ******";

struct CombineOutcome {
  /// Records written and records that were refused.
  int written = 0;
  int errors = 0;
  bool aborted = false;
};

/// Merges databases into another one: all tables with their fields and indexes, then all records.
/// What the destination has already stays, and is added to; a source that is the destination is
/// skipped. Refused statements and records are counted and logged, and the rest goes on. Records of
/// a table become lasting together. Throws Error when a database cannot be opened.
CombineOutcome combineDatabases(Session& session, const std::vector<std::string>& sources,
                                const std::string& destination);

}  // namespace lodex
