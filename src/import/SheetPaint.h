#pragma once

#include "import/SystemRows.h"

/// How a data sheet shows its structure: row and column headings, colours, frozen and hidden rows.
namespace lodex {

/// Repaints every sheet of the workbook and returns to the current one. `showRows` is false while
/// the sheet waits to be transposed. A first data row that is 0 or lies above a system row is set
/// below the highest one. With `resetLimits` the sheets are narrowed to their used size.
void paintStructure(Worksheet& cells, SheetStructure& structure, bool showRows, bool resetLimits);

/// Hides or shows the rows painted as system rows, all but the HEADER row.
void hideSystemRows(const DescribedSheet& sheet, bool hide);

}  // namespace lodex
