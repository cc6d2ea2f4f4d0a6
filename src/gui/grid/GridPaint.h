#pragma once

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <vector>

#include "worksheet/Worksheet.h"

namespace lodex {

/// A row or column of cells where it is drawn: its number from 1, its position and size in pixels.
struct GridSpan {
  int index = 1;
  int at = 0;
  int size = 0;
};

/// Draws cells as their formats say, on the screen and on paper.
struct GridPaint {
  const Worksheet& sheet;
  const QPalette& palette;
  double pixelsPerPoint = 1;  // size of fonts
  bool gridLines = true;

  /// Draws the cells where rows and columns cross, the spans in ascending order. Texts flow over
  /// empty neighbours; those that begin left of the drawn area are seen when a few columns to its
  /// left are given, too.
  void cells(QPainter& painter, const std::vector<GridSpan>& rows,
             const std::vector<GridSpan>& columns) const;
};

/// The font of a cell.
QFont cellFont(const CellFormat& format, double pixelsPerPoint);

/// The height in pixels that a cell's text needs in a column of that width.
int neededHeight(const CellFormat& format, const QString& text, int width, double pixelsPerPoint);

/// Blanks at both sides of a cell's text, in pixels.
int cellPadding(double pixelsPerPoint);

/// A width in characters of the default font, blanks at both sides included, in pixels.
int widthInPixels(double characters, double pixelsPerPoint);

/// The width of a column in pixels. Where the sheet gives none it is the usual one, or what the
/// short texts among the column's first cells need.
int shownColumnWidth(const Worksheet& sheet, int column, double pixelsPerPoint);

/// The usual width of a column in characters.
inline constexpr double usualColumnWidth = 10;

/// A colour close to `color` that can be read on `background`.
QColor readableOn(const QColor& background, const QColor& color);

/// The text of a number in a space of `width` pixels: fewer decimals where its format leaves the
/// choice, "####" where it does not fit at all.
QString fittedNumber(double number, const QString& shown, bool general, int width,
                     const QFontMetricsF& metrics);

}  // namespace lodex
