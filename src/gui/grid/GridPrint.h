#pragma once

#include <QPageLayout>
#include <optional>

class QPrinter;
class QWidget;

namespace lodex {

class Worksheet;

/// How the user wants pages to be.
struct PrintSettings {
  std::optional<QPageLayout> layout;  // empty: as the printer has it
  bool fitWidth = false;              // all columns side by side, made smaller where needed
};

/// Asks for paper, margins and orientation.
void setUpPage(QWidget& parent, PrintSettings& settings);

/// Asks for a printer and prints the used part of the current sheet.
void printSheet(QWidget& parent, const Worksheet& sheet, const PrintSettings& settings);

/// Shows the pages first.
void previewSheet(QWidget& parent, const Worksheet& sheet, const PrintSettings& settings);

/// Draws the pages: title and page number on each, headings of rows and columns where the sheet
/// permits them, frozen rows on top of every page. Of a printer with a page range only that is
/// drawn. Returns the number of pages drawn.
int paintPages(QPrinter& printer, const Worksheet& sheet, bool fitWidth = false);

}  // namespace lodex
