#pragma once

#include <memory>

#include "db/Driver.h"

namespace lodex {

/// Answers a question about the structure of an embedded database.
std::unique_ptr<RowSource> readSqliteSchema(Driver& driver, SchemaKind kind);

}  // namespace lodex
