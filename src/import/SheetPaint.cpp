#include "import/SheetPaint.h"

#include <algorithm>
#include <vector>

namespace lodex {
namespace {

constexpr int black = 0;
constexpr int blue = 1;
constexpr int lightGrey = 7;
constexpr int lightRed = 12;
constexpr int white = 15;

bool isPlain(const CellFormat& format) {
  return format.pattern == FillPattern::None && !format.bold && format.fontColor == automaticColor;
}

void makePlain(CellFormat& format) {
  format.pattern = FillPattern::None;
  format.patternColor = automaticColor;
  format.backgroundColor = automaticColor;
  format.bold = false;
  format.fontColor = automaticColor;
}

// Only cells that exist need repainting: what has never been touched shows plain anyway, and the
// used block of a sheet with one cell far out is huge.
void clearPaint(Worksheet& sheet) {
  struct Painted {
    int row, column;
    CellFormat format;
  };
  std::vector<Painted> painted;
  sheet.cells(sheet.Sheet()).forEach([&](int row, int column, const Cell& cell) {
    if (cell.format == 0 || row > sheet.MaxRow() || column > sheet.MaxCol()) return;
    const CellFormat& format = sheet.formats().at(cell.format);
    if (!isPlain(format)) painted.push_back({row, column, format});
  });
  for (Painted& cell : painted) {
    makePlain(cell.format);
    sheet.setFormat(sheet.Sheet(), cell.row, cell.column, cell.format);
  }
}

// Headings that say something of the structure begin with "-". Without a text of their own a column
// shows its letter and a row its number.
void takeBackHeadings(Worksheet& sheet) {
  constexpr int headingsBeyond = 256;  // rows and columns may have gone since they were labelled
  for (int column = 1; column <= std::min(maxColumns, sheet.LastCol() + headingsBeyond); ++column) {
    if (sheet.ColText(column).starts_with('-')) sheet.ColText(column, "");
  }
  for (int row = 1; row <= std::min(maxRows, sheet.LastRow() + headingsBeyond); ++row) {
    if (sheet.RowText(row).starts_with('-')) sheet.RowText(row, "");
  }
}

void paintRow(Worksheet& sheet, int row, const std::function<void(CellFormat&)>& change) {
  if (row > sheet.MaxRow() || sheet.LastCol() == 0) return;
  sheet.changeFormat(row, 1, row, std::min(sheet.LastCol(), sheet.MaxCol()), change);
}

void paintSystemRow(CellFormat& format) {
  format.pattern = FillPattern::Solid;
  format.patternColor = paletteColor(lightGrey);
  format.backgroundColor = paletteColor(white);
  format.bold = true;
  format.fontColor = paletteColor(blue);
}

void paintIdColumn(Worksheet& sheet, const SheetStructure& structure) {
  const int column = structure.idColumn;
  if (column < 1 || column > sheet.MaxCol()) return;
  sheet.ColText(column, idColumnLabel);
  const int first = structure.firstDataRow;
  const int last = std::min(first == 0 ? 1 : sheet.LastRow(), sheet.MaxRow());
  if (std::max(first, 1) > last) return;
  sheet.changeFormat(std::max(first, 1), column, last, column, [](CellFormat& format) {
    format.bold = true;
    format.fontColor = paletteColor(lightRed);
  });
}

void paintSheet(Worksheet& sheet, SheetStructure& structure, bool showRows, bool resetLimits) {
  takeBackHeadings(sheet);
  clearPaint(sheet);
  int highest = 0;
  for (int i = 0; showRows && i < systemRowCount; ++i) {
    const int row = structure.row(i);
    if (row < 1) continue;
    sheet.RowText(row, systemRowTexts[static_cast<size_t>(i)].label);
    paintRow(sheet, row, paintSystemRow);
    highest = std::max(highest, row);
  }
  if (structure.firstDataRow == 0) structure.firstDataRow = highest + 1;
  paintRow(sheet, structure.firstDataRow, [](CellFormat& format) {
    format.bold = true;
    format.fontColor = paletteColor(black);
  });
  sheet.RowText(structure.firstDataRow, firstDataRowLabel);
  structure.firstDataRow = std::max(structure.firstDataRow, highest + 1);
  paintIdColumn(sheet, structure);
  if (resetLimits) {
    sheet.MaxCol(std::max(1, sheet.LastCol()));
    sheet.MaxRow(std::max(1, sheet.LastRow()));
  }
  sheet.FixedRows(std::min(highest, sheet.MaxRow()));
  sheet.SetSelection(1, 1, 1, 1);
}

}  // namespace

void paintStructure(Worksheet& cells, SheetStructure& structure, bool showRows, bool resetLimits) {
  const int current = cells.Sheet();
  for (int sheet = 1; sheet <= cells.NumSheets(); ++sheet) {
    cells.Sheet(sheet);
    paintSheet(cells, structure, showRows, resetLimits);
  }
  cells.Sheet(current);
}

void hideSystemRows(const DescribedSheet& sheet, bool hide) {
  Worksheet& cells = sheet.cells;
  const int current = cells.Sheet();
  for (int row = 1; row <= std::min(cells.LastRow(), cells.MaxRow()); ++row) {
    const CellFormat& format = cells.formatOf(current, row, 1);
    const bool systemRow = format.pattern == FillPattern::Solid &&
                           format.patternColor == paletteColor(lightGrey) &&
                           format.backgroundColor == paletteColor(white);
    if (systemRow && row != sheet.structure.row(sysrow::Header)) {
      cells.rowHidden(current, row, hide);
    }
  }
}

}  // namespace lodex
