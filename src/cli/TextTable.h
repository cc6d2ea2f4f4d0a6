#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace lodex {

using TableRow = std::vector<std::string>;

/// How the columns after the first one are aligned.
enum class TableAlignment { Left, Right };

/// Prints rows as columns two blanks apart, the first row being the headings. Control characters,
/// on which a terminal would act, show as blanks. Rows have the length of the first one.
void printTable(std::ostream& out, const std::vector<TableRow>& rows, TableAlignment alignment);

}  // namespace lodex
