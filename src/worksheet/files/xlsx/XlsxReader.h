#pragma once

#include <cstddef>

namespace lodex {

class Worksheet;
class ZipArchive;

/// True for the zip file of an Office Open XML workbook.
bool looksLikeXlsx(const ZipArchive& archive);

/// Fills a fresh workbook from an Office Open XML workbook (ECMA-376 part 1, chapter 18): sheets
/// with their names, order and visibility, values, formulas with cached values, formats, widths,
/// hidden rows and columns, frozen rows and defined names. `fileBytes` is the size of the
/// file, which limits what it may ask for. Throws FileError when it is damaged; cells of which only
/// a part is lost are Errors in the findings of `into`.
void readXlsx(const ZipArchive& archive, size_t fileBytes, Worksheet& into);

}  // namespace lodex
