#pragma once

#include <memory>
#include <string>
#include <vector>

#include "db/Driver.h"

namespace lodex {

struct SqliteFile;

/// Writes the records of a table. Records are named by their row numbers. The writer outlives the
/// connection, but then refuses to write.
std::unique_ptr<RecordWriter> makeSqliteWriter(const std::shared_ptr<SqliteFile>& file,
                                               const std::string& table,
                                               const std::vector<Field>& fields);

}  // namespace lodex
