#include "gui/grid/GridPaint.h"

#include <QFontMetricsF>
#include <QHash>
#include <algorithm>
#include <cmath>
#include <memory>

#include "basic/Text.h"
#include "gui/QtText.h"
#include "worksheet/NumberFormat.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

constexpr double minContrast = 3;  // of text to its background, as accessibility guides count it

QColor colorOf(Color color) {
  return QColor::fromRgb((color >> 16) & 0xFF, (color >> 8) & 0xFF, color & 0xFF);
}

// Relative luminance of sRGB colours, WCAG 2.1.
double luminance(const QColor& color) {
  const auto part = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
  const double x = luminance(a) + 0.05;
  const double y = luminance(b) + 0.05;
  return std::max(x, y) / std::min(x, y);
}

// What a format means on this device; made once per format and painting.
struct Style {
  const CellFormat* format = nullptr;
  QFont font;
  QFontMetricsF metrics{QFont()};
  QColor fill;  // invalid: none
  QColor text;
  bool general = true;
};

Qt::Alignment alignmentOf(const CellFormat& format, bool number, bool centred) {
  Qt::Alignment horizontal = number ? Qt::AlignRight : centred ? Qt::AlignHCenter : Qt::AlignLeft;
  switch (format.horizontal) {
    case HorizontalAlignment::Left:
    case HorizontalAlignment::Fill:
    case HorizontalAlignment::Justify:
      horizontal = Qt::AlignLeft;
      break;
    case HorizontalAlignment::Center:
    case HorizontalAlignment::CenterAcross:
      horizontal = Qt::AlignHCenter;
      break;
    case HorizontalAlignment::Right:
      horizontal = Qt::AlignRight;
      break;
    case HorizontalAlignment::General:
      break;
  }
  switch (format.vertical) {
    case VerticalAlignment::Top:
    case VerticalAlignment::Justify:
      return horizontal | Qt::AlignTop;
    case VerticalAlignment::Center:
      return horizontal | Qt::AlignVCenter;
    case VerticalAlignment::Bottom:
      break;
  }
  return horizontal | Qt::AlignBottom;
}

// One painting of one block of cells.
class Painting {
 public:
  Painting(const GridPaint& paint, QPainter& painter, const std::vector<GridSpan>& rows,
           const std::vector<GridSpan>& columns)
      : paint_(paint),
        sheet_(paint.sheet),
        store_(paint.sheet.cells(paint.sheet.Sheet())),
        painter_(painter),
        rows_(rows),
        columns_(columns),
        base_(paint.palette.color(QPalette::Base)),
        padding_(cellPadding(paint.pixelsPerPoint)) {}

  void run() {
    background();
    fills();
    for (const GridSpan& row : rows_) {
      if (row.size > 0) texts(row);
    }
    borders();
  }

 private:
  QColor lineColor() const {
    const QColor text = paint_.palette.color(QPalette::Text);
    constexpr double part = 0.16;
    return QColor::fromRgbF(static_cast<float>(base_.redF() * (1 - part) + text.redF() * part),
                            static_cast<float>(base_.greenF() * (1 - part) + text.greenF() * part),
                            static_cast<float>(base_.blueF() * (1 - part) + text.blueF() * part));
  }

  static QRect cellRect(const GridSpan& row, const GridSpan& column) {
    return {column.at, row.at, column.size, row.size};
  }

  QRect textArea(const QRect& cell) const {
    const int vertical = qRound(paint_.pixelsPerPoint);
    return cell.adjusted(padding_, vertical, -padding_ - 1, -1 - vertical);
  }

  void background() {
    if (rows_.empty() || columns_.empty()) return;
    const int left = columns_.front().at;
    const int right = columns_.back().at + columns_.back().size;
    const int top = rows_.front().at;
    const int bottom = rows_.back().at + rows_.back().size;
    painter_.fillRect(left, top, right - left, bottom - top, base_);
    if (!paint_.gridLines) return;
    const QColor line = lineColor();
    for (const GridSpan& row : rows_) {
      painter_.fillRect(left, row.at + row.size - 1, right - left, 1, line);
    }
    for (const GridSpan& column : columns_) {
      painter_.fillRect(column.at + column.size - 1, top, 1, bottom - top, line);
    }
  }

  const Style& styleOf(const Cell& cell) {
    std::unique_ptr<Style>& style = styles_[cell.format];
    if (style) return *style;
    style = std::make_unique<Style>();
    const CellFormat& format = sheet_.formats().at(cell.format);
    style->format = &format;
    style->font = cellFont(format, paint_.pixelsPerPoint);
    style->metrics = QFontMetricsF(style->font);
    if (format.pattern != FillPattern::None && format.patternColor != automaticColor) {
      style->fill = colorOf(format.patternColor);
    }
    const bool white = style->fill.isValid() && style->fill == Qt::white;
    if (white) style->fill = QColor();  // plain paper
    const QColor behind = style->fill.isValid() ? style->fill : base_;
    style->text = format.fontColor == automaticColor ? paint_.palette.color(QPalette::Text)
                                                     : colorOf(format.fontColor);
    style->text = readableOn(behind, style->text);
    style->general = format.numberFormat.empty() || equalsNoCase(format.numberFormat, "General");
    return *style;
  }

  void fills() {
    for (const GridSpan& row : rows_) {
      for (const GridSpan& column : columns_) {
        const Cell& cell = store_.at(row.index, column.index);
        if (cell.format == 0) continue;
        const Style& style = styleOf(cell);
        if (style.fill.isValid()) painter_.fillRect(cellRect(row, column), style.fill);
      }
    }
  }

  void texts(const GridSpan& row) {
    for (size_t i = 0; i < columns_.size(); ++i) {
      const Cell& cell = store_.at(row.index, columns_[i].index);
      if (cell.kind == ValueKind::Empty || columns_[i].size == 0) continue;
      text(row, i, cell);
    }
  }

  void text(const GridSpan& row, size_t place, const Cell& cell) {
    const GridSpan& column = columns_[place];
    const Style& style = styleOf(cell);
    const Value value = CellStore::valueOf(cell);
    QString shown = toQt(sheet_.TextRC(row.index, column.index));
    if (shown.isEmpty()) return;
    const QRect area = textArea(cellRect(row, column));
    if (value.isNumber()) {
      shown = fittedNumber(value.asNumber(), shown, style.general, area.width(), style.metrics);
    }
    const bool wraps = style.format->wrap && !value.isNumber();
    if (!wraps) shown.replace(QLatin1Char('\n'), QLatin1Char(' '));
    // A number that kept its spelling, such as "52.20", is aligned with the other numbers.
    const bool number = value.isNumber() || value.kind() == ValueKind::NumericText;
    const Qt::Alignment alignment =
        alignmentOf(*style.format, number, value.isBoolean() || value.isError());
    painter_.setFont(style.font);
    painter_.setPen(colorFor(style, value));
    if (wraps) {
      painter_.save();
      painter_.setClipRect(area, Qt::IntersectClip);
      painter_.drawText(area, static_cast<int>(alignment) | Qt::TextWordWrap, shown);
      painter_.restore();
      return;
    }
    const double width = style.metrics.horizontalAdvance(shown);
    if (width <= area.width()) {
      painter_.drawText(area, static_cast<int>(alignment) | Qt::TextSingleLine, shown);
      return;
    }
    overflowing(row, place, shown, width, alignment, value.isText());
  }

  // A text wider than its cell flows over empty neighbours, to the right or, aligned right or
  // centred, to the left, too.
  void overflowing(const GridSpan& row, size_t place, const QString& shown, double width,
                   Qt::Alignment alignment, bool flows) {
    const QRect cell = cellRect(row, columns_[place]);
    int left = cell.left();
    int right = cell.left() + cell.width();
    const double missing = width - (cell.width() - 2 * padding_);
    const bool toLeft = flows && (alignment & (Qt::AlignRight | Qt::AlignHCenter)) != 0;
    const bool toRight = flows && (alignment & Qt::AlignRight) == 0;
    const double share = (alignment & Qt::AlignHCenter) != 0 ? missing / 2 : missing;
    for (size_t i = place; toRight && right - cell.right() <= share && i + 1 < columns_.size();
         ++i) {
      if (store_.at(row.index, columns_[i + 1].index).kind != ValueKind::Empty) break;
      eraseLine(row, right - 1);
      right += columns_[i + 1].size;
    }
    for (size_t i = place; toLeft && cell.left() - left <= share && i > 0; --i) {
      if (store_.at(row.index, columns_[i - 1].index).kind != ValueKind::Empty) break;
      eraseLine(row, left - 1);
      left -= columns_[i - 1].size;
    }
    const QRect visible(left + padding_, row.at, right - left - 2 * padding_ - 1, row.size - 1);
    // The text is placed as if its cell had no end.
    const int extra = static_cast<int>(std::ceil(share)) + padding_;
    QRect area = textArea(cell);
    if ((alignment & Qt::AlignRight) == 0) area.setRight(area.right() + extra);
    if ((alignment & (Qt::AlignRight | Qt::AlignHCenter)) != 0) area.setLeft(area.left() - extra);
    painter_.save();
    painter_.setClipRect(visible, Qt::IntersectClip);
    painter_.drawText(area, static_cast<int>(alignment) | Qt::TextSingleLine, shown);
    painter_.restore();
  }

  void eraseLine(const GridSpan& row, int x) {
    if (paint_.gridLines) painter_.fillRect(x, row.at, 1, row.size - 1, base_);
  }

  QColor colorFor(const Style& style, const Value& value) const {
    if (!value.isNumber() || style.general) return style.text;
    const auto color = formattedColor(value, style.format->numberFormat);
    if (!color) return style.text;
    return readableOn(style.fill.isValid() ? style.fill : base_, colorOf(*color));
  }

  void borders() {
    for (const GridSpan& row : rows_) {
      for (const GridSpan& column : columns_) {
        const Cell& cell = store_.at(row.index, column.index);
        if (cell.format == 0) continue;
        const CellFormat& format = *styleOf(cell).format;
        if (format.borderLeft + format.borderRight + format.borderTop + format.borderBottom == 0) {
          continue;
        }
        border(cellRect(row, column).adjusted(-1, -1, 0, 0), format);
      }
    }
  }

  void border(const QRect& cell, const CellFormat& format) {
    const QColor color = paint_.palette.color(QPalette::Text);
    const auto thickness = [](int style) { return style == 2 ? 2 : style == 5 ? 3 : 1; };
    const auto fill = [&](int style, int x, int y, int w, int h, bool vertical) {
      if (style == 0) return;
      const int t = thickness(style);
      painter_.fillRect(x, y, vertical ? t : w, vertical ? h : t, color);
    };
    fill(format.borderLeft, cell.left(), cell.top(), 0, cell.height(), true);
    fill(format.borderRight, cell.right(), cell.top(), 0, cell.height(), true);
    fill(format.borderTop, cell.left(), cell.top(), cell.width(), 0, false);
    fill(format.borderBottom, cell.left(), cell.bottom(), cell.width(), 0, false);
  }

  const GridPaint& paint_;
  const Worksheet& sheet_;
  const CellStore& store_;
  QPainter& painter_;
  const std::vector<GridSpan>& rows_;
  const std::vector<GridSpan>& columns_;
  QColor base_;
  int padding_;
  std::unordered_map<std::uint32_t, std::unique_ptr<Style>> styles_;
};

}  // namespace

void GridPaint::cells(QPainter& painter, const std::vector<GridSpan>& rows,
                      const std::vector<GridSpan>& columns) const {
  Painting(*this, painter, rows, columns).run();
}

QFont cellFont(const CellFormat& format, double pixelsPerPoint) {
  QFont font(toQt(format.fontName));
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(std::max(1, qRound(format.fontSize * pixelsPerPoint)));
  font.setBold(format.bold);
  font.setItalic(format.italic);
  font.setUnderline(format.underline);
  font.setStrikeOut(format.strikeout);
  return font;
}

int cellPadding(double pixelsPerPoint) {
  return std::max(2, qRound(2.2 * pixelsPerPoint));
}

int widthInPixels(double characters, double pixelsPerPoint) {
  const QFontMetricsF metrics(cellFont(CellFormat(), pixelsPerPoint));
  const double digit = metrics.horizontalAdvance(QLatin1Char('0'));
  return std::max(2, qRound(characters * digit) + 2 * cellPadding(pixelsPerPoint) + 1);
}

int shownColumnWidth(const Worksheet& sheet, int column, double pixelsPerPoint) {
  const double own = sheet.columnWidth(sheet.Sheet(), column);
  if (own > 0) return widthInPixels(own, pixelsPerPoint);
  // Longer texts are remarks, which may flow over their neighbours.
  constexpr size_t longest = 24;
  constexpr int searched = 100;
  const Cell* widest = nullptr;
  size_t length = 0;
  sheet.cells(sheet.Sheet())
      .visit(1, column, std::min(searched, sheet.MaxRow()), column,
             [&](int, int, const Cell& cell) {
               if (cell.kind != ValueKind::Text && cell.kind != ValueKind::NumericText) return true;
               const size_t size = SharedText::viewOf(cell.text).size();
               if (size <= longest && size > length) {
                 length = size;
                 widest = &cell;
               }
               return true;
             });
  const int usual = widthInPixels(usualColumnWidth, pixelsPerPoint);
  if (widest == nullptr) return usual;
  // Capitals are wider than digits, so the longest text alone is measured.
  const QFontMetricsF metrics(cellFont(sheet.formats().at(widest->format), pixelsPerPoint));
  const double text = metrics.horizontalAdvance(toQt(SharedText::viewOf(widest->text)));
  return std::max(usual, qRound(text) + 3 * cellPadding(pixelsPerPoint) + 2);
}

int neededHeight(const CellFormat& format, const QString& text, int width, double pixelsPerPoint) {
  const QFontMetrics metrics(cellFont(format, pixelsPerPoint));
  const int line = metrics.height() + cellPadding(pixelsPerPoint);
  if (!format.wrap) return line;
  const int inner = std::max(1, width - 2 * cellPadding(pixelsPerPoint) - 1);
  const QRect area = metrics.boundingRect(0, 0, inner, 1000000, Qt::TextWordWrap, text);
  return std::max(line, area.height() + cellPadding(pixelsPerPoint));
}

QColor readableOn(const QColor& background, const QColor& color) {
  if (contrast(background, color) >= minContrast) return color;
  const bool dark = luminance(background) < 0.4;
  if (color.hslSaturation() < 25) return dark ? QColor(0xF0, 0xF0, 0xF0) : QColor(0x10, 0x10, 0x10);
  QColor better = color;
  for (int lightness = color.lightness(); contrast(background, better) < minContrast;) {
    lightness += dark ? 8 : -8;
    if (lightness <= 0 || lightness >= 255) return dark ? Qt::white : Qt::black;
    better.setHsl(color.hslHue(), color.hslSaturation(), lightness);
  }
  return better;
}

QString fittedNumber(double number, const QString& shown, bool general, int width,
                     const QFontMetricsF& metrics) {
  if (metrics.horizontalAdvance(shown) <= width) return shown;
  if (general) {
    for (int digits = 14; digits >= 1; --digits) {
      const QString shorter = QString::number(number, 'g', digits).toUpper();
      // Leading digits of a whole number must not be lost to an exponent unasked.
      if (metrics.horizontalAdvance(shorter) <= width) return shorter;
    }
  }
  const double mark = std::max(1.0, metrics.horizontalAdvance(QLatin1Char('#')));
  return QString(std::max(1, static_cast<int>(width / mark)), QLatin1Char('#'));
}

}  // namespace lodex
