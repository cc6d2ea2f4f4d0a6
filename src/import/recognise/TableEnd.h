#pragma once

#include "import/recognise/TableRecognition.h"

namespace lodex {

/// Finds the last sample below the first one, and what follows it: quality control, a second table,
/// averages, notes. Fills lastDataRow, samples, controlRows and sections.
void findTableEnd(const Worksheet& sheet, RecognisedTable& table);

}  // namespace lodex
