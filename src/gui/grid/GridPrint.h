#pragma once

class QPrinter;
class QWidget;

namespace lodex {

class Worksheet;

/// Asks for a printer and prints the used part of the current sheet.
void printSheet(QWidget& parent, const Worksheet& sheet);

/// Shows the pages first.
void previewSheet(QWidget& parent, const Worksheet& sheet);

/// Draws the pages: title and page number on each, headings of rows and columns where the sheet
/// permits them, frozen rows on top of every page. Returns the number of pages.
int paintPages(QPrinter& printer, const Worksheet& sheet);

}  // namespace lodex
