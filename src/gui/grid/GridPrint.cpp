#include "gui/grid/GridPrint.h"

#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <cmath>

#include "basic/A1.h"
#include "form/SheetEditorBlock.h"
#include "gui/QtText.h"
#include "gui/grid/GridPaint.h"

namespace lodex {
namespace {

constexpr int previewPages = 300;  // nobody leafs through more

constexpr double smallestScale = 0.4;  // of columns fitted to the page
constexpr int mostPages = 2000;        // of one print; more are a mistake

// Rows or columns of one page: indexes and sizes.
struct Strip {
  std::vector<GridSpan> spans;
  int length = 0;
};

class Pages {
 public:
  Pages(QPrinter& printer, const Worksheet& sheet, bool fitWidth)
      : printer_(printer), sheet_(sheet), pixelsPerPoint_(printer.resolution() / 72.0) {
    measure();
    if (!fitWidth) return;
    // Headings and columns shrink together.
    const int page = pageRect().width();
    const int needed = headingWidth_ + 1 + allColumns();
    if (needed <= page) return;
    pixelsPerPoint_ *= std::max(smallestScale, 0.99 * page / needed);
    measure();
  }

  /// The number of pages of the whole sheet, whatever the printer's page range.
  int count() {
    layOut();
    return static_cast<int>(rows_.size() * columns_.size());
  }

  int paint() {
    const int all = count();
    if (all == 0) return 0;
    const int first = std::max(1, printer_.fromPage());
    const int last = printer_.toPage() > 0 ? std::min(all, printer_.toPage()) : all;
    const QSize page = pageRect().size();
    QPainter painter(&printer_);
    int number = 0;
    int painted = 0;
    for (const Strip& across : columns_) {
      for (const Strip& down : rows_) {
        if (++number < first || number > last) continue;
        if (painted++ > 0) printer_.newPage();
        paintPage(painter, page, down, across, number, all);
      }
    }
    return painted;
  }

 private:
  QRect pageRect() const { return printer_.pageLayout().paintRectPixels(printer_.resolution()); }

  void layOut() {
    const int lastRow = std::min(sheet_.LastRow(), sheet_.MaxRow());
    const int lastColumn = std::min(sheet_.LastCol(), sheet_.MaxCol());
    if (lastRow == 0) return;
    columns_ = columnStrips(lastColumn, pageRect().width() - headingWidth_ - 1);
    frozen_ = rowStrip(1, std::min(sheet_.FixedRows(), lastRow));
    const int height =
        pageRect().height() - 2 * margin_ - (headings_ ? rowHeight_ : 0) - frozen_.length;
    rows_ = rowStrips(frozen_.spans.empty() ? 1 : sheet_.FixedRows() + 1, lastRow,
                      std::max(height, 4 * rowHeight_));
  }

  void measure() {
    palette_.setColor(QPalette::Base, Qt::white);
    palette_.setColor(QPalette::Text, Qt::black);
    const QFont font = textFont(false);
    rowHeight_ = neededHeight(CellFormat(), QString(), 0, pixelsPerPoint_) + 1;
    margin_ = rowHeight_ * 2;  // title above, page number below
    headings_ = sheet_.permissions().PrintColHeading;
    headingWidth_ =
        headings_ ? QFontMetrics(font, &printer_)
                            .horizontalAdvance(QString::number(std::max(sheet_.LastRow(), 999))) +
                        4 * cellPadding(pixelsPerPoint_)
                  : 0;
    for (int row = 1; headings_ && row <= std::min(sheet_.LastRow(), 200); ++row) {
      const int width = QFontMetrics(font, &printer_).horizontalAdvance(toQt(sheet_.RowText(row)));
      headingWidth_ = std::max(headingWidth_, width + 4 * cellPadding(pixelsPerPoint_));
    }
  }

  int allColumns() const {
    int width = 0;
    for (int column = 1; column <= std::min(sheet_.LastCol(), sheet_.MaxCol()); ++column) {
      if (!sheet_.columnHidden(sheet_.Sheet(), column)) width += columnPixels(column);
    }
    return width;
  }

  QFont textFont(bool bold) const {
    CellFormat format;
    format.bold = bold;
    format.fontSize = 9;
    return cellFont(format, pixelsPerPoint_);
  }

  int columnPixels(int column) const { return shownColumnWidth(sheet_, column, pixelsPerPoint_); }

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

  void paintPage(QPainter& painter, const QSize& page, const Strip& down, const Strip& across,
                 int number, int all) {
    const int left = headingWidth_ + 1;
    const int top = margin_ + (headings_ ? rowHeight_ : 0);
    std::vector<GridSpan> rows = moved(frozen_.spans, top);
    for (const GridSpan& span : moved(down.spans, top + frozen_.length)) rows.push_back(span);
    const std::vector<GridSpan> columns = moved(across.spans, left);
    painter.setClipRect(left, top, across.length, frozen_.length + down.length);
    GridPaint{sheet_, palette_, pixelsPerPoint_, true}.cells(painter, rows, columns);
    painter.setClipping(false);
    painter.setPen(Qt::gray);
    painter.drawRect(left - 1, top - 1, across.length, frozen_.length + down.length);
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
  std::vector<Strip> columns_;
  std::vector<Strip> rows_;
  Strip frozen_;
};

}  // namespace

int paintPages(QPrinter& printer, const Worksheet& sheet, bool fitWidth) {
  return Pages(printer, sheet, fitWidth).paint();
}

void setUpPage(QWidget& parent, PrintSettings& settings) {
  QPrinter printer(QPrinter::HighResolution);
  if (settings.layout) printer.setPageLayout(*settings.layout);
  QPageSetupDialog dialog(&printer, &parent);
  if (dialog.exec() == QDialog::Accepted) settings.layout = printer.pageLayout();
}

void printSheet(QWidget& parent, const Worksheet& sheet, const PrintSettings& settings) {
  QPrinter printer(QPrinter::HighResolution);
  if (settings.layout) printer.setPageLayout(*settings.layout);
  printer.setDocName(toQt(sheet.Title().empty() ? sheet.SheetName(sheet.Sheet()) : sheet.Title()));
  QPrintDialog dialog(&printer, &parent);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange);
  if (dialog.exec() == QDialog::Accepted) paintPages(printer, sheet, settings.fitWidth);
}

void previewSheet(QWidget& parent, const Worksheet& sheet, const PrintSettings& settings) {
  QPrinter printer(QPrinter::HighResolution);
  if (settings.layout) printer.setPageLayout(*settings.layout);
  QPrintPreviewDialog dialog(&printer, &parent);
  dialog.setObjectName(QStringLiteral("printPreview"));
  dialog.resize(900, 700);
  const int pages = Pages(printer, sheet, settings.fitWidth).count();
  if (pages > previewPages) {
    dialog.setWindowTitle(QObject::tr("The first %1 of %2 pages").arg(previewPages).arg(pages));
  }
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [&](QPrinter* target) {
    target->setFromTo(1, previewPages);
    paintPages(*target, sheet, settings.fitWidth);
    target->setFromTo(0, 0);
  });
  dialog.exec();
}

}  // namespace lodex
