#pragma once

#include "import/recognise/TableRecognition.h"

namespace lodex {

/// The column that looks like identifiers: by its heading ("SAMPLE", "Lab ID"), by texts that do
/// not repeat; a running number or a date does not win. Columns of results are none. 0 when no
/// column will do.
int findIdentifierColumn(const Worksheet& sheet, const RecognisedTable& table);

}  // namespace lodex
