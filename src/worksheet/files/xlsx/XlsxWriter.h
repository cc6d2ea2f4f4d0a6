#pragma once

#include <filesystem>

namespace lodex {

class Worksheet;

/// Writes the workbook as .xlsx: values, formulas with their cached values, formats, widths, hidden
/// rows and columns, frozen rows, defined names and the visibility of sheets. Texts that are plain
/// decimals, such as "12.50", become numbers that show the same decimals. Dates of a workbook that
/// counts from 1904 are written as counted from 1900. Throws FileError when the file cannot be
/// written or the workbook holds what the format cannot.
void writeXlsx(const Worksheet& book, const std::filesystem::path& path);

}  // namespace lodex
