#pragma once

#include "import/SystemRows.h"
#include "import/ThesaurusStep.h"
#include "import/recognise/TableRecognition.h"

namespace lodex {

/// Writes what was recognised into the sheet: the HEADER row is the heading row, and rows ELEMENT,
/// METHOD and UNIT are added right above the first sample and filled for the columns of results.
/// Columns whose unit is unknown stay without element. What was found, and what was not understood,
/// goes to the log. Column and row numbers of `table` are those of the sheet as it is.
void applyRecognition(const DescribedSheet& sheet, const RecognisedTable& table, LogLines& log);

/// A unit that the values of a column suggest, for a column without one: "%" or "ppm"; "" when they
/// suggest none.
std::string proposedUnit(const Worksheet& sheet, const RecognisedTable& table, int column);

}  // namespace lodex
