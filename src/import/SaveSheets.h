#pragma once

#include <string>
#include <vector>

#include "db/MapDatabase.h"
#include "import/SystemRows.h"

namespace lodex {

/// A described table to be saved. All sheets of the workbook share the structure.
struct SheetToSave {
  std::string name;
  const Worksheet* cells = nullptr;
  SheetStructure structure;
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
  int SaveErrors = 0;
  /// Records that were made or changed.
  int records = 0;
  /// False when the user stopped before the end.
  bool finished = true;
};

/// Writes described tables into a database as their system rows say, a record per sample and table.
/// Missing tables and fields are made. Records that cannot be written are counted and logged, and
/// the rest goes on; throws Error when the database as a whole refuses (it is in use, say). Records
/// become lasting in groups of whole rows; what was written before an abort stays.
SaveOutcome saveSheets(Session& session, MappedDatabase& destination, const SaveRequest& request);

}  // namespace lodex
