#pragma once

#include <cstddef>
#include <string_view>

namespace lodex {

class Worksheet;
class ZipArchive;

/// True for the zip file of an OpenDocument spreadsheet.
bool looksLikeOds(const ZipArchive& archive);

/// Fills a fresh workbook from an OpenDocument spreadsheet (OASIS OpenDocument 1.3): sheets with
/// names, order and visibility, values, formulas with cached values, number formats, the plain
/// properties of cell styles, hidden rows and columns, and defined names. `fileBytes` is the
/// size of the file, which limits what it may ask for. Throws FileError when it is damaged.
void readOds(const ZipArchive& archive, size_t fileBytes, Worksheet& into);

/// The same from the document content.xml alone.
void readOdsContent(std::string_view document, Worksheet& into);

}  // namespace lodex
