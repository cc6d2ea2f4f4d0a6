#pragma once

#include <string>
#include <vector>

#include "basic/Findings.h"
#include "db/MapDatabase.h"
#include "import/SystemRows.h"

namespace lodex {

/// A described table to be saved. All sheets of the workbook share the structure.
struct SheetToSave {
  std::string name;
  const Worksheet* cells = nullptr;
  SheetStructure structure;
  int rowsNotLoaded = 0;  // rows of its file that the sheet does not hold
};

struct SaveRequest {
  std::vector<SheetToSave> sheets;
  /// Look each sample up by its key; off: every row becomes a new record.
  bool merge = false;
  /// With merge, values may be replaced; off: only Null fields get a value.
  bool overwrite = false;
  /// The calculation result alone, without the log's opening and closing lines.
  bool resultOnly = false;
};

struct SaveOutcome {
  Outcome outcome;
  /// Records that were made or changed and became lasting.
  int records = 0;
  /// Values, records and rows that were not saved.
  int SaveErrors() const { return static_cast<int>(outcome.found.count(Severity::Error)); }
};

/// Writes described tables into a database as their system rows say, a record per sample and table.
/// Missing tables and fields are made. What cannot be written is reported to the session and in the
/// outcome, and the rest goes on, unless the database as a whole refuses (it is in use or
/// write-protected, say). Records become lasting in groups of whole rows; what was written before
/// an abort or a failure stays.
///
/// Of several columns that feed one field, the first value of each record counts. An identifier is
/// stored as it is written or not at all.
SaveOutcome saveSheets(Session& session, MappedDatabase& destination, const SaveRequest& request);

}  // namespace lodex
