#pragma once

#include <map>
#include <string>

#include "basic/Findings.h"
#include "db/drivers/jet/AccessProperties.h"
#include "db/drivers/jet/AccessTable.h"
#include "db/drivers/jet/AccessTarget.h"

namespace lodex {

/// The statement that makes the table of what Access knows of fields (kFieldsTable).
std::string fieldsTableSql();

/// Copies one table with its records, keys, indexes, and what its properties demand (by field, as
/// readAccessProperties gives them). Records come before demands: a key, index, required field or
/// rule that they do not obey is left out and reported. Throws FileError when the table cannot be
/// read or the target not written.
void copyAccessTable(const AccessFile& file, const AccessTable& table,
                     const std::map<std::string, AccessProperties>& properties,
                     AccessTarget& target, Findings& found);

}  // namespace lodex
