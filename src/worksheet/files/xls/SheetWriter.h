#pragma once

#include <string>

#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/FormulaEncoder.h"
#include "worksheet/files/xls/StyleWriter.h"
#include "worksheet/files/xls/TextTable.h"

namespace lodex::biff {

/// What the sheets of a file to be written share.
struct WriteContext {
  const Worksheet& worksheet;
  LinkWriter links;
  StyleWriter styles;
  TextTable texts;
};

/// The records of one sheet, from its BOF to its EOF. Throws FileError when it has more rows or
/// columns than the format.
std::string sheetRecords(WriteContext& file, int sheet);

/// Writes a BOF record of the given type.
void writeBof(RecordWriter& out, unsigned type);

}  // namespace lodex::biff
