#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "db/Driver.h"

namespace lodex {

/// Orders two values: Null before numbers before texts; texts without regard to case.
int compareFields(const FieldValue& a, const FieldValue& b);

/// True when a text fits a pattern without regard to case: "*" and "%" stand for any characters,
/// "?" for one.
bool likeNoCase(std::string_view text, std::string_view pattern);

/// A condition on the records of a recordset, such as
///   [Mineral] = 'O''Brien' AND (Location LIKE 'Out*' OR Density >= 4.5)
/// Operators: = <> < <= > >=, LIKE, NOT LIKE, IS NULL, IS NOT NULL; AND, OR, NOT and brackets
/// combine. Values are texts in single or double quotes, numbers, dates between "#", TRUE, FALSE
/// and NULL. A comparison with a Null field fails, except with NULL itself.
class RowFilter {
 public:
  /// Accepts every record.
  RowFilter();
  /// Throws Error naming the condition when it cannot be read or names an unknown field.
  RowFilter(std::string_view condition, const std::vector<Field>& fields);
  ~RowFilter();
  RowFilter(RowFilter&&) noexcept;
  RowFilter& operator=(RowFilter&&) noexcept;

  bool accepts(const Row& row) const;

  struct Node;

 private:
  std::unique_ptr<Node> root_;
};

}  // namespace lodex
