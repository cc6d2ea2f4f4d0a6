#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"

namespace lodex {

/// Splits a line at every occurrence of the separator: n occurrences give n + 1 fields, so that
/// consecutive ones give empty fields and a line that ends with one gets an empty field more. A
/// line without the separator, or an empty separator, gives one field.
std::vector<std::string> SplitRivi(std::string_view line, std::string_view separator);

/// How the lines of a text file are cut into fields.
struct TextSplit {
  std::string separator;
  /// Runs of the separator count as one, and blanks at the ends of a line do not count: columns
  /// that were aligned with blanks.
  bool collapseRuns = false;
  /// A field in double quotes loses them and may hold the separator and line ends.
  bool quotes = false;

  bool operator==(const TextSplit&) const = default;
};

/// The split under which the first lines of a text fall into columns most evenly: tab, ";", ",",
/// "|", columns with two or more blanks between, or with any blanks between. An empty separator
/// when none gives columns.
TextSplit proposedSplit(const std::vector<std::string_view>& lines);

/// Whether most lines fall into the same number of columns, three or more of them, so that nobody
/// needs to be asked.
bool splitsEvenly(const std::vector<std::string_view>& lines, const TextSplit& split);

std::vector<std::string> splitLine(std::string_view line, const TextSplit& split);

/// Calls field(row, column, text) for every field of a text, row by row, counted from 1. The text
/// of a field lives only during the call. Columns aligned with blanks are cut where all lines have
/// a blank, so that a missing value leaves its cell empty, if that gives one column a heading;
/// otherwise each line is cut by itself.
void forEachField(std::string_view text, const TextSplit& split,
                  const std::function<void(int row, int column, std::string_view text)>& field);

/// Warnings of the lines that have another number of fields than the first, in places with their
/// row. Empty lines do not count.
Findings unevenLines(std::string_view text, const TextSplit& split);

/// The name of the window for a file: without its folder and without anything from its first "."
/// on. A name that would be empty stays whole.
std::string windowNameOf(std::string_view path);

}  // namespace lodex
