#include "gui/grid/GridHeader.h"

#include <QMouseEvent>
#include <QPainter>

#include "gui/grid/GridTable.h"

namespace lodex {
namespace {

constexpr int grip = 4;  // pixels around an edge that take hold of it

QColor mixed(const QColor& a, const QColor& b, double part) {
  const auto mix = [part](int x, int y) { return qRound(x + (y - x) * part); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

}  // namespace

GridHeader::GridHeader(Qt::Orientation orientation, GridTable& table)
    : QHeaderView(orientation, &table), table_(table) {
  setSectionsClickable(false);  // selecting is done here, by blocks
  setHighlightSections(false);
  setMouseTracking(true);
  setMinimumSectionSize(1);
  setSectionResizeMode(orientation == Qt::Horizontal ? QHeaderView::Interactive
                                                     : QHeaderView::Fixed);
}

int GridHeader::along(const QPoint& pos) const {
  return orientation() == Qt::Horizontal ? pos.x() : pos.y();
}

int GridHeader::indexAtPos(const QPoint& pos) const {
  if (orientation() == Qt::Vertical) return table_.rowAtY(pos.y());
  return logicalIndexAt(pos.x()) + 1;
}

int GridHeader::edgeAt(const QPoint& pos) const {
  if (orientation() == Qt::Vertical) return 0;
  const int section = logicalIndexAt(pos.x());
  const auto nearEdge = [&](int index) {
    return index >= 0 &&
           std::abs(sectionViewportPosition(index) + sectionSize(index) - pos.x()) <= grip;
  };
  if (nearEdge(section)) return section + 1;
  int before = (section < 0 ? count() : section) - 1;
  while (before >= 0 && isSectionHidden(before)) --before;
  return nearEdge(before) ? before + 1 : 0;
}

void GridHeader::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  dragged_ = edgeAt(event->pos());
  if (dragged_ > 0) {
    drag_ = Drag::Resize;
    return;
  }
  const int index = indexAtPos(event->pos());
  if (index < 1) return;
  drag_ = Drag::Select;
  dragged_ = index;
  emit pressed(index, event->modifiers());
}

void GridHeader::mouseMoveEvent(QMouseEvent* event) {
  if (drag_ == Drag::Resize) {
    const int start = sectionViewportPosition(dragged_ - 1);
    resizeSection(dragged_ - 1, std::max(2, event->pos().x() - start));
    table_.viewport()->update();
  } else if (drag_ == Drag::Select) {
    const int index = draggedIndex(event->pos());
    if (index >= 1 && index <= count() && index != dragged_) {
      dragged_ = index;
      emit draggedOver(index);
    }
  } else {
    setCursor(edgeAt(event->pos()) > 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
  }
}

// Beyond the edge the next section that cannot be seen yet.
int GridHeader::draggedIndex(const QPoint& pos) const {
  const int end = orientation() == Qt::Horizontal ? viewport()->width() : viewport()->height();
  const int at = std::clamp(along(pos), 0, std::max(0, end - 1));
  const int index = indexAtPos(QPoint(at, at));
  return along(pos) >= end ? index + 1 : along(pos) < 0 ? index - 1 : index;
}

void GridHeader::mouseReleaseEvent(QMouseEvent*) {
  const Drag drag = std::exchange(drag_, Drag::None);
  if (drag == Drag::Resize) emit widthDragged(dragged_);
}

void GridHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  if (const int edge = edgeAt(event->pos()); edge > 0) {
    emit fitRequested(edge);
  } else if (const int index = indexAtPos(event->pos()); index > 0) {
    emit doubleClicked(index);
  }
}

void GridHeader::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), palette().color(QPalette::Window));
  if (model() == nullptr || count() == 0) return;
  if (orientation() == Qt::Horizontal) {
    paintSections(painter, std::max(0, visualIndexAt(0)), 0, viewport()->width());
    return;
  }
  const int frozen = table_.frozenHeight();
  if (frozen > 0) {
    painter.save();
    painter.setClipRect(0, 0, viewport()->width(), frozen);
    paintSections(painter, 0, offset(), frozen);
    painter.restore();
  }
  painter.setClipRect(0, frozen, viewport()->width(), viewport()->height() - frozen);
  paintSections(painter, std::max(0, visualIndexAt(frozen)), 0, viewport()->height());
}

// Draws sections from `first` on up to the pixel `end`; `shift` is added to their positions.
void GridHeader::paintSections(QPainter& painter, int first, int shift, int end) {
  const bool columns = orientation() == Qt::Horizontal;
  const QColor plain = palette().color(QPalette::Window);
  const QColor accent = palette().color(QPalette::Highlight);
  const QColor text = palette().color(QPalette::WindowText);
  const QColor line = mixed(plain, text, 0.22);
  const CellBlock block = table_.cursor().block();
  const QFont usual = table_.headingFont();
  QFont marked = usual;
  marked.setBold(true);
  for (int section = first; section < count(); ++section) {
    const int at = sectionViewportPosition(section) + shift;
    if (at >= end) break;
    if (isSectionHidden(section)) continue;
    const int size = sectionSize(section);
    const QRect area = columns ? QRect(at, 0, size, height()) : QRect(0, at, width(), size);
    const int number = section + 1;
    const bool selected = columns ? number >= block.column1 && number <= block.column2
                                  : number >= block.row1 && number <= block.row2;
    const bool whole = columns ? table_.cursor().wholeColumns() : table_.cursor().wholeRows();
    if (selected) painter.fillRect(area, mixed(plain, accent, whole ? 0.55 : 0.25));
    const QString heading = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    const bool marker = heading.startsWith(QLatin1Char('-'));
    painter.setFont(marker ? marked : usual);
    painter.setPen(marker ? mixed(text, palette().color(QPalette::Link), 0.8) : text);
    painter.drawText(area.adjusted(2, 0, -3, -1), Qt::AlignCenter | Qt::TextSingleLine, heading);
    if (columns) {
      painter.fillRect(area.right(), 0, 1, height(), line);
    } else {
      painter.fillRect(0, area.bottom(), width(), 1, line);
    }
    // The edge towards the cells shows what is selected.
    if (selected && columns) painter.fillRect(area.left(), height() - 2, size, 2, accent);
    if (selected && !columns) painter.fillRect(width() - 2, area.top(), 2, size, accent);
  }
  if (columns) {
    painter.fillRect(0, height() - 1, width(), 1, line);
  } else {
    painter.fillRect(width() - 1, 0, 1, height(), line);
  }
}

}  // namespace lodex
