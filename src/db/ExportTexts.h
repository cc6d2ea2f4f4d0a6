#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"

namespace lodex {

class Connection;

/// The folder of exportDatabase: a text per table, "schema.ini" and "database.sql".
void exportTexts(Connection& connection, const std::vector<std::string>& tables,
                 std::string_view path, Findings& found);

}  // namespace lodex
