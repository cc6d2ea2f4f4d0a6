#pragma once

#include <string>
#include <vector>

#include "basic/Findings.h"
#include "session/Session.h"

namespace lodex {

/// The first line of the log.
inline constexpr const char* combiningTitle = "***** Combining databases ******";

struct CombineOutcome {
  /// How it ended, and every table, field, index and record that was not taken over, with its
  /// source. The session has already noticed these findings.
  Outcome outcome;
  /// Records written, and records that were not.
  size_t written = 0;
  size_t errors = 0;
};

/// Merges databases into another one: all tables with their fields and indexes, then all records.
/// What the destination has already stays, and is added to; a source that is the destination is
/// skipped. Refused statements and records are counted and logged, and the rest goes on. The
/// records of a table are committed together. Throws Error when a database cannot be opened or the
/// destination is write-protected.
CombineOutcome combineDatabases(Session& session, const std::vector<std::string>& sources,
                                const std::string& destination);

}  // namespace lodex
