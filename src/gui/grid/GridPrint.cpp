#include "gui/grid/GridPrint.h"

#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <cmath>

#include "form/SheetEditorBlock.h"
#include "gui/QtText.h"
#include "gui/grid/GridPaint.h"
#include "worksheet/A1.h"

namespace lodex {
namespace {

constexpr double defaultWidth = 10;  // characters
constexpr int mostPages = 2000;      // of one print; more are a mistake

// Rows or columns of one page: indexes and sizes.
struct Strip {
  std::vector<GridSpan> spans;
  int length = 0;
};

class Pages {
 public:
  Pages(QPrinter& printer, const Worksheet& sheet)
      : printer_(printer), sheet_(sheet), pixelsPerPoint_(printer.resolution() / 72.0) {
    palette_.setColor(QPalette::Base, Qt::white);
    palette_.setColor(QPalette::Text, Qt::black);
    const QFont font = textFont(false);
    rowHeight_ = neededHeight(CellFormat(), QString(), 0, pixelsPerPoint_) + 1;
    margin_ = rowHeight_ * 2;  // title above, page number below
    headings_ = sheet.permissions().PrintColHeading;
    headingWidth_ =
        headings_ ? QFontMetrics(font, &printer)
                            .horizontalAdvance(QString::number(std::max(sheet.LastRow(), 999))) +
                        4 * cellPadding(pixelsPerPoint_)
                  : 0;
    for (int row = 1; headings_ && row <= std::min(sheet.LastRow(), 200); ++row) {
      const int width = QFontMetrics(font, &printer).horizontalAdvance(toQt(sheet.RowText(row)));
      headingWidth_ = std::max(headingWidth_, width + 4 * cellPadding(pixelsPerPoint_));
    }
  }

  int paint() {
    const int lastRow = std::min(sheet_.LastRow(), sheet_.MaxRow());
    const int lastColumn = std::min(sheet_.LastCol(), sheet_.MaxCol());
    if (lastRow == 0) return 0;
    const QRect page = printer_.pageLayout().paintRectPixels(printer_.resolution());
    const int width = page.width() - headingWidth_ - 1;
    const std::vector<Strip> columns = columnStrips(lastColumn, width);
    const Strip frozen = rowStrip(1, std::min(sheet_.FixedRows(), lastRow));
    const int height = page.height() - 2 * margin_ - (headings_ ? rowHeight_ : 0) - frozen.length;
    const std::vector<Strip> rows = rowStrips(frozen.spans.empty() ? 1 : sheet_.FixedRows() + 1,
                                              lastRow, std::max(height, 4 * rowHeight_));
    const int all = static_cast<int>(rows.size() * columns.size());
    QPainter painter(&printer_);
    int number = 0;
    for (const Strip& across : columns) {
      for (const Strip& down : rows) {
        if (number >= mostPages) return number;
        if (number > 0) printer_.newPage();
        paintPage(painter, page.size(), frozen, down, across, ++number, all);
      }
    }
    return number;
  }

 private:
  QFont textFont(bool bold) const {
    CellFormat format;
    format.bold = bold;
    format.fontSize = 9;
    return cellFont(format, pixelsPerPoint_);
  }

  int columnPixels(int column) const {
    const double own = sheet_.columnWidth(sheet_.Sheet(), column);
    const QFontMetricsF metrics(cellFont(CellFormat(), pixelsPerPoint_));
    const double digit = metrics.horizontalAdvance(QLatin1Char('0'));
    return qRound((own > 0 ? own : defaultWidth) * digit) + 2 * cellPadding(pixelsPerPoint_) + 1;
  }

  // Positions count from 0 within a strip.
  std::vector<Strip> columnStrips(int last, int width) const {
    std::vector<Strip> strips(1);
    for (int column = 1; column <= last; ++column) {
      if (sheet_.columnHidden(sheet_.Sheet(), column)) continue;
      const int size = std::min(columnPixels(column), width);
      if (!strips.back().spans.empty() && strips.back().length + size > width) {
        strips.emplace_back();
      }
      strips.back().spans.push_back({column, strips.back().length, size});
      strips.back().length += size;
    }
    return strips;
  }

  Strip rowStrip(int first, int last) const {
    Strip strip;
    for (int row = first; row <= last; ++row) {
      if (sheet_.rowHidden(sheet_.Sheet(), row)) continue;
      const int size = heightOf(row);
      strip.spans.push_back({row, strip.length, size});
      strip.length += size;
    }
    return strip;
  }

  std::vector<Strip> rowStrips(int first, int last, int height) const {
    std::vector<Strip> strips(1);
    for (int row = first; row <= last; ++row) {
      if (sheet_.rowHidden(sheet_.Sheet(), row)) continue;
      const int size = std::min(heightOf(row), height);
      if (!strips.back().spans.empty() && strips.back().length + size > height) {
        strips.emplace_back();
      }
      strips.back().spans.push_back({row, strips.back().length, size});
      strips.back().length += size;
    }
    return strips;
  }

  int heightOf(int row) const {
    int height = rowHeight_;
    sheet_.cells(sheet_.Sheet())
        .visit(row, 1, row, sheet_.LastCol(), [&](int, int column, const Cell& cell) {
          const CellFormat& format = sheet_.formats().at(cell.format);
          if (format.wrap || format.fontSize > 10) {
            height = std::max(height, neededHeight(format, toQt(sheet_.TextRC(row, column)),
                                                   columnPixels(column), pixelsPerPoint_));
          }
          return true;
        });
    return height;
  }

  static std::vector<GridSpan> moved(const std::vector<GridSpan>& spans, int by) {
    std::vector<GridSpan> result = spans;
    for (GridSpan& span : result) span.at += by;
    return result;
  }

  void paintPage(QPainter& painter, const QSize& page, const Strip& frozen, const Strip& down,
                 const Strip& across, int number, int all) {
    const int left = headingWidth_ + 1;
    const int top = margin_ + (headings_ ? rowHeight_ : 0);
    std::vector<GridSpan> rows = moved(frozen.spans, top);
    for (const GridSpan& span : moved(down.spans, top + frozen.length)) rows.push_back(span);
    const std::vector<GridSpan> columns = moved(across.spans, left);
    painter.setClipRect(left, top, across.length, frozen.length + down.length);
    GridPaint{sheet_, palette_, pixelsPerPoint_, true}.cells(painter, rows, columns);
    painter.setClipping(false);
    painter.setPen(Qt::gray);
    painter.drawRect(left - 1, top - 1, across.length, frozen.length + down.length);
    painter.setPen(Qt::black);
    painter.setFont(textFont(true));
    const QString title =
        toQt(sheet_.Title().empty() ? sheet_.SheetName(sheet_.Sheet()) : sheet_.Title());
    painter.drawText(QRect(0, 0, page.width(), margin_ - rowHeight_ / 2),
                     Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(textFont(false));
    painter.drawText(
        QRect(0, page.height() - margin_ + rowHeight_ / 2, page.width(), margin_ - rowHeight_ / 2),
        Qt::AlignRight | Qt::AlignVCenter, QObject::tr("Page %1 of %2").arg(number).arg(all));
    if (headings_) paintHeadings(painter, rows, columns);
  }

  void paintHeadings(QPainter& painter, const std::vector<GridSpan>& rows,
                     const std::vector<GridSpan>& columns) {
    painter.setFont(textFont(true));
    for (const GridSpan& column : columns) {
      std::string text = sheet_.ColText(column.index);
      if (text.empty()) text = columnLetters(column.index);
      painter.drawText(QRect(column.at, margin_, column.size, rowHeight_), Qt::AlignCenter,
                       toQt(text));
    }
    for (const GridSpan& row : rows) {
      std::string text = sheet_.RowText(row.index);
      if (text.empty()) text = std::to_string(row.index);
      painter.drawText(QRect(0, row.at, headingWidth_ - 2 * cellPadding(pixelsPerPoint_), row.size),
                       Qt::AlignRight | Qt::AlignVCenter, toQt(text));
    }
  }

  QPrinter& printer_;
  const Worksheet& sheet_;
  double pixelsPerPoint_;
  QPalette palette_;
  int rowHeight_ = 0;
  int margin_ = 0;
  int headingWidth_ = 0;
  bool headings_ = true;
};

}  // namespace

int paintPages(QPrinter& printer, const Worksheet& sheet) {
  return Pages(printer, sheet).paint();
}

void printSheet(QWidget& parent, const Worksheet& sheet) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(toQt(sheet.Title().empty() ? sheet.SheetName(sheet.Sheet()) : sheet.Title()));
  QPrintDialog dialog(&printer, &parent);
  if (dialog.exec() == QDialog::Accepted) paintPages(printer, sheet);
}

void previewSheet(QWidget& parent, const Worksheet& sheet) {
  QPrinter printer(QPrinter::HighResolution);
  QPrintPreviewDialog dialog(&printer, &parent);
  dialog.setObjectName(QStringLiteral("printPreview"));
  dialog.resize(900, 700);
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                   [&sheet](QPrinter* target) { paintPages(*target, sheet); });
  dialog.exec();
}

}  // namespace lodex
