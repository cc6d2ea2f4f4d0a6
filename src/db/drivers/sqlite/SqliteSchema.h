#pragma once

#include <memory>

#include "db/Driver.h"

namespace lodex {

struct SqliteFile;

/// Answers a question about the structure of an embedded database.
std::unique_ptr<RowSource> readSqliteSchema(const std::shared_ptr<SqliteFile>& file,
                                            SchemaKind kind);

}  // namespace lodex
