#pragma once

#include "form/SheetEditor.h"

/// Where the cursor of a grid goes.
namespace lodex {

enum class Direction { Up, Down, Left, Right };

/// The neighbour in a direction; hidden rows and columns are stepped over. At the sheet's end the
/// place stays.
CellPlace neighbour(const Worksheet& sheet, CellPlace from, Direction direction);

/// The far end in a direction: the last cell of a run of cells with content, or the next cell with
/// content after a gap, or the end of the sheet.
CellPlace jump(const Worksheet& sheet, CellPlace from, Direction direction);

/// The last used row and column, 1 and 1 in an empty sheet.
CellPlace lastUsedCell(const Worksheet& sheet);

/// The cell after `from` within a block when Enter (by columns) or Tab (by rows) is pressed there;
/// after the last one comes the first.
CellPlace nextInBlock(const Worksheet& sheet, const CellBlock& block, CellPlace from, bool byRows,
                      bool backwards);

}  // namespace lodex
