#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/Driver.h"
#include "db/sql/JetSql.h"

/// The statements by which drivers write records, with "?" for each value.
namespace lodex {

/// INSERT of the changes into a table, or of nothing but defaults; `values` gets their values.
std::string insertStatement(std::string_view table, const std::vector<FieldChange>& changes,
                            SqlTarget target, Row& values);

/// UPDATE of the changes without a condition, which the driver adds; `values` gets their values.
std::string updateStatement(std::string_view table, const std::vector<FieldChange>& changes,
                            SqlTarget target, Row& values);

}  // namespace lodex
