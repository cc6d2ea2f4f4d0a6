#pragma once

#include <string>
#include <vector>

#include "calc/DatabaseTables.h"
#include "cli/ImportConsole.h"

namespace lodex {

/// Which samples of a database a command works on.
struct StoredSamplesChoice {
  std::string database;
  std::vector<std::string> tables;  // none: all with the key field of the table of samples
  std::string filter;               // a stored filter; "" for all samples
};

/// Reads the tables of a database for a calculation. Throws Error when the database cannot be
/// opened or has no such table or filter, and for a named table without a key.
void loadStoredSamples(ImportConsole& console, const StoredSamplesChoice& choice,
                       DatabaseTables& tables);

}  // namespace lodex
