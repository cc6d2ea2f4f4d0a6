#pragma once

#include <string>
#include <vector>

#include "basic/Findings.h"

namespace lodex {

class Worksheet;

/// Reads a workbook or text file; a ".csv" file is split at its own separators, commas or
/// semicolons. Adds what the reader noticed to `found`, with the file's name.
void readAnyFile(const std::string& path, Worksheet& into, Findings& found);

/// Writes the kind that the ending names: txt, tsv, csv, xls, xlsx or vts. Throws Error for any
/// other ending.
void writeByEnding(const std::string& path, const Worksheet& book);

/// Throws Error when `target`, to be written, is one of the files that are read.
void requireOtherFile(const std::string& target, const std::vector<std::string>& sources);

}  // namespace lodex
