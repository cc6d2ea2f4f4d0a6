// What a GridTable draws.
#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>

#include "gui/grid/GridHeader.h"
#include "gui/grid/GridTable.h"

namespace lodex {
namespace {

constexpr int columnsBefore = 12;  // to the left of the view whose texts may flow into it
constexpr int handleSize = 7;
constexpr int thick = 2;  // the frame of the selection

}  // namespace

std::vector<GridSpan> GridTable::visibleColumns() const {
  std::vector<GridSpan> spans;
  int first = std::max(0, columns_->visualIndexAt(0));
  first = std::max(0, first - columnsBefore);
  for (int column = first; column < columns_->count(); ++column) {
    const int at = columns_->sectionViewportPosition(column);
    if (at >= viewport()->width()) break;
    if (!columns_->isSectionHidden(column)) {
      spans.push_back({column + 1, at, columns_->sectionSize(column)});
    }
  }
  return spans;
}

void GridTable::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  const QRect all = viewport()->rect();
  // The area after the last row and column of the sheet.
  painter.fillRect(all, palette().color(QPalette::Window));
  if (editor() == nullptr || rows_->count() == 0) return;
  const int frozen = frozenHeight();
  if (frozen > 0) {
    paintPart(painter, {0, 0, all.width(), frozen}, 0, 0);
    painter.setClipping(false);
  }
  const int first = std::max(0, rows_->visualIndexAt(frozen));
  paintPart(painter, {0, frozen, all.width(), all.height() - frozen}, first, -rows_->offset());
  painter.setClipping(false);
  if (frozen > 0) {
    QColor line = palette().color(QPalette::Text);
    line.setAlpha(130);
    painter.fillRect(0, frozen - 1, all.width(), 1, line);
  }
}

// Draws a part of the viewport with the rows from `firstRow` (from 0) on; `shift` takes a position
// in the sheet to one in the viewport.
void GridTable::paintPart(QPainter& painter, const QRect& part, int firstRow, int shift) {
  painter.setClipRect(part);
  std::vector<GridSpan> rows;
  for (int row = firstRow; row < rows_->count(); ++row) {
    const int at = rows_->sectionPosition(row) + shift;
    if (at > part.bottom()) break;
    if (!rows_->isSectionHidden(row)) rows.push_back({row + 1, at, rows_->sectionSize(row)});
  }
  const GridPaint paint{editor()->sheet(), palette(), pixelsPerPoint(), true};
  paint.cells(painter, rows, visibleColumns());
  paintSelection(painter, part, shift);
}

QRect GridTable::blockRect(const CellBlock& block, int shift) const {
  if (block.row2 > rows_->count() || block.column2 > columns_->count()) return {};
  const int left = columns_->sectionViewportPosition(block.column1 - 1);
  const int right = columns_->sectionViewportPosition(block.column2 - 1) +
                    columns_->sectionSize(block.column2 - 1);
  const int top = rows_->sectionPosition(block.row1 - 1) + shift;
  const int bottom =
      rows_->sectionPosition(block.row2 - 1) + rows_->sectionSize(block.row2 - 1) + shift;
  // Painters count in short numbers; a little more than the view is enough.
  const QRect view = viewport()->rect().adjusted(-10, -10, 10, 10);
  return QRect(QPoint(left - 1, top - 1), QPoint(right - 1, bottom - 1)).intersected(view);
}

void GridTable::paintSelection(QPainter& painter, const QRect&, int shift) {
  const QColor accent = palette().color(QPalette::Highlight);
  const QRect selected = blockRect(cursor_.block(), shift);
  if (!selected.isEmpty()) {
    const CellPlace place = cursor_.active();
    const QRect active = blockRect({place.row, place.column, place.row, place.column}, shift);
    if (!cursor_.block().single()) {
      QColor veil = accent;
      veil.setAlpha(48);
      QRegion region(selected);
      region -= active.adjusted(1, 1, 0, 0);
      for (const QRect& part : region) painter.fillRect(part, veil);
    }
    const QRect inner = selected.adjusted(1, 1, 0, 0);
    QColor frame = accent;
    if (!hasFocus() && !editing()) frame = frame.lighter(120);
    const auto side = [&](int x, int y, int w, int h) { painter.fillRect(x, y, w, h, frame); };
    side(inner.left() - 1, inner.top() - 1, inner.width() + 1, thick);
    side(inner.left() - 1, inner.bottom() - 1, inner.width() + 1, thick);
    side(inner.left() - 1, inner.top() - 1, thick, inner.height() + 1);
    side(inner.right() - 1, inner.top() - 1, thick, inner.height() + 1);
    if (editor()->allows(EditRight::Fill) && drag_ == Drag::None) {
      const QRect handle(inner.right() - handleSize + 3, inner.bottom() - handleSize + 3,
                         handleSize, handleSize);
      painter.fillRect(handle, palette().color(QPalette::Base));
      painter.fillRect(handle.adjusted(1, 1, 0, 0), accent);
    }
  }
  if (copied_ && copiedSheet_ == editor()->sheet().Sheet()) {
    const QRect copied = blockRect(*copied_, shift);
    painter.setPen(QPen(accent, 2, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    if (!copied.isEmpty()) painter.drawRect(copied.adjusted(1, 1, 0, 0));
  }
  if (drag_ == Drag::Fill || drag_ == Drag::Move) {
    const QRect target = blockRect(dragBlock_, shift);
    if (target.isEmpty()) return;
    painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(target.adjusted(1, 1, -1, -1));
  }
}

QRect GridTable::activeRect() const {
  const CellPlace place = cursor_.active();
  return visualRect(model_.index(place.row - 1, place.column - 1));
}

QRect GridTable::fillHandle() const {
  if (editor() == nullptr || !editor()->allows(EditRight::Fill)) return {};
  const CellBlock block = cursor_.block();
  if (block.row2 > rows_->count() || block.column2 > columns_->count()) return {};
  const QRect last = visualRect(model_.index(block.row2 - 1, block.column2 - 1));
  return {last.right() - handleSize + 2, last.bottom() - handleSize + 2, handleSize + 2,
          handleSize + 2};
}

// On the frame of the selection, by which it is dragged to another place.
bool GridTable::onSelectionEdge(const QPoint& pos) const {
  if (editor() == nullptr || !editor()->allows(EditRight::Move)) return false;
  if (cursor_.wholeRows() || cursor_.wholeColumns()) return false;
  const QRect frame = blockRect(cursor_.block(), pos.y() < frozenHeight() ? 0 : -rows_->offset());
  return frame.adjusted(-2, -2, 3, 3).contains(pos) && !frame.adjusted(3, 3, -2, -2).contains(pos);
}

}  // namespace lodex
