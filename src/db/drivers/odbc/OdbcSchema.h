#pragma once

#include <memory>
#include <string>
#include <vector>

#include "db/Driver.h"

namespace lodex {

struct OdbcLink;

/// Answers a question about the structure of a server's database.
std::unique_ptr<RowSource> readOdbcSchema(const std::shared_ptr<OdbcLink>& link, SchemaKind kind);

/// The fields of a table's primary key, in their order; none if it has no key.
std::vector<std::string> odbcPrimaryKey(const std::shared_ptr<OdbcLink>& link,
                                        const std::string& table);

}  // namespace lodex
