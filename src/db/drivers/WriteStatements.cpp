#include "db/drivers/WriteStatements.h"

namespace lodex {

std::string insertStatement(std::string_view table, const std::vector<FieldChange>& changes,
                            SqlTarget target, Row& values) {
  std::string columns;
  std::string marks;
  for (const FieldChange& change : changes) {
    columns += (columns.empty() ? "" : ", ") + targetName(change.column, target);
    marks += marks.empty() ? "?" : ", ?";
    values.push_back(change.value);
  }
  return "INSERT INTO " + targetName(table, target) +
         (changes.empty() ? " DEFAULT VALUES" : " (" + columns + ") VALUES (" + marks + ")");
}

std::string updateStatement(std::string_view table, const std::vector<FieldChange>& changes,
                            SqlTarget target, Row& values) {
  std::string assignments;
  for (const FieldChange& change : changes) {
    assignments += (assignments.empty() ? "" : ", ") + targetName(change.column, target) + " = ?";
    values.push_back(change.value);
  }
  return "UPDATE " + targetName(table, target) + " SET " + assignments;
}

}  // namespace lodex
