// Mouse and keys of a GridTable.
#include <QAction>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>

#include "basic/A1.h"
#include "gui/grid/GridDelegate.h"
#include "gui/grid/GridHeader.h"
#include "gui/grid/GridTable.h"

namespace lodex {

// --- Mouse ---

void GridTable::mousePressEvent(QMouseEvent* event) {
  if (editor() == nullptr || indexAt(event->pos()).row() < 0) return;
  const CellPlace place = cellAt(event->pos());
  const bool extend = (event->modifiers() & Qt::ShiftModifier) != 0;
  if (event->button() == Qt::RightButton) {
    if (!cursor_.block().contains(place.row, place.column)) cursor_.moveTo(place);
    return;
  }
  if (event->button() != Qt::LeftButton) return;
  dragPos_ = event->pos();
  dragStart_ = place;
  constexpr int scrollInterval = 50;  // milliseconds
  autoScroll_.start(scrollInterval, this);
  if (canPoint()) {
    drag_ = Drag::Point;
    return point({place.row, place.column, place.row, place.column});
  }
  if (editing()) {
    commitEditor();
    setFocus();
  }
  dragBlock_ = cursor_.block();
  if (!picking_ && fillHandle().contains(event->pos())) {
    drag_ = Drag::Fill;
  } else if (!picking_ && !extend && onSelectionEdge(event->pos())) {
    drag_ = Drag::Move;
  } else {
    drag_ = Drag::Select;
    if (extend) {
      cursor_.extendTo(place);
    } else {
      cursor_.moveTo(place);
    }
    emit cellPressed(place.row, place.column);
  }
}

// True where the formula being typed can take a reference: after an operator, or in the place of
// the reference that was pointed at last.
bool GridTable::canPoint() const {
  const QLineEdit* line = delegate_->editor();
  if (line == nullptr || !line->text().startsWith(QLatin1Char('='))) return false;
  const int at = line->cursorPosition();
  if (at == 0) return false;
  if (at == pointEnd_) return true;
  return QStringLiteral("=+-*/^&(,;:<>%").contains(line->text().at(at - 1));
}

void GridTable::point(const CellBlock& block) {
  QLineEdit* line = delegate_->editor();
  if (line == nullptr) return;
  QString reference = QString::fromStdString(cellAddress(block.row1, block.column1));
  if (!block.single()) {
    reference += QLatin1Char(':') + QString::fromStdString(cellAddress(block.row2, block.column2));
  }
  QString text = line->text();
  const int at = line->cursorPosition();
  const int start = at == pointEnd_ ? pointStart_ : at;
  text.replace(start, at - start, reference);
  pointStart_ = start;
  pointEnd_ = start + static_cast<int>(reference.size());
  line->setText(text);
  line->setCursorPosition(pointEnd_);
}

void GridTable::mouseMoveEvent(QMouseEvent* event) {
  if (drag_ != Drag::None) return dragTo(event->pos());
  if (picking_) return;
  if (fillHandle().contains(event->pos())) {
    viewport()->setCursor(Qt::CrossCursor);
  } else if (onSelectionEdge(event->pos())) {
    viewport()->setCursor(Qt::SizeAllCursor);
  } else {
    viewport()->unsetCursor();
  }
}

void GridTable::dragTo(const QPoint& pos) {
  dragPos_ = pos;
  const CellPlace place = cellAt(pos);
  switch (drag_) {
    case Drag::Select:
      if (!(place == cursor_.lead())) cursor_.extendTo(place);
      break;
    case Drag::Fill:
      dragBlock_ = fillTarget(place);
      viewport()->update();
      break;
    case Drag::Move: {
      const CellBlock block = cursor_.block();
      const CellBlock sheet = editor()->wholeSheet();
      const int down =
          std::clamp(place.row - dragStart_.row, 1 - block.row1, sheet.row2 - block.row2);
      const int right = std::clamp(place.column - dragStart_.column, 1 - block.column1,
                                   sheet.column2 - block.column2);
      dragBlock_ = {block.row1 + down, block.column1 + right, block.row2 + down,
                    block.column2 + right};
      viewport()->update();
      break;
    }
    case Drag::Point:
      point(CellBlock::between(dragStart_.row, dragStart_.column, place.row, place.column));
      break;
    case Drag::None:
      break;
  }
}

// The block filled when the handle is dragged to a cell: the selection made longer in the direction
// in which the cell lies further away.
CellBlock GridTable::fillTarget(CellPlace place) const {
  CellBlock block = cursor_.block();
  const int down = std::max({0, place.row - block.row2, block.row1 - place.row});
  const int across = std::max({0, place.column - block.column2, block.column1 - place.column});
  if (down >= across) {
    block.row1 = std::min(block.row1, place.row);
    block.row2 = std::max(block.row2, place.row);
  } else {
    block.column1 = std::min(block.column1, place.column);
    block.column2 = std::max(block.column2, place.column);
  }
  return block;
}

void GridTable::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  autoScroll_.stop();
  const Drag drag = std::exchange(drag_, Drag::None);
  const CellBlock block = cursor_.block();
  if (drag == Drag::Fill && !(dragBlock_ == block)) {
    const bool turned = (event->modifiers() & Qt::ControlModifier) != 0;
    attempt([&] { editor()->fillSeries(block, dragBlock_, turned); });
  }
  if (drag == Drag::Move && !(dragBlock_ == block)) {
    const bool moved =
        attempt([&] { editor()->moveRange(block, dragBlock_.row1, dragBlock_.column1); });
    if (moved) cursor_.select(dragBlock_, {dragBlock_.row1, dragBlock_.column1});
  }
  viewport()->update();
}

void GridTable::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || editor() == nullptr) return;
  drag_ = Drag::None;
  autoScroll_.stop();
  if (fillHandle().contains(event->pos())) return fillToNeighboursEnd();
  if (indexAt(event->pos()).isValid()) editActive();
}

// Fills down as far as the column beside the selection has no gap.
void GridTable::fillToNeighboursEnd() {
  const CellBlock block = cursor_.block();
  const Worksheet& sheet = editor()->sheet();
  for (const int column : {block.column1 - 1, block.column2 + 1}) {
    if (column < 1 || column > sheet.MaxCol()) continue;
    int last = block.row2;
    while (last < std::min(sheet.LastRow(), sheet.MaxRow()) && sheet.HasContent(last + 1, column)) {
      ++last;
    }
    if (last == block.row2) continue;
    attempt([&] { editor()->fillSeries(block, {block.row1, block.column1, last, block.column2}); });
    return;
  }
}

// Dragging beyond the view scrolls it.
void GridTable::timerEvent(QTimerEvent* event) {
  if (event->timerId() != autoScroll_.timerId()) return QTableView::timerEvent(event);
  const int frozen = dragStart_.row > editor()->sheet().FixedRows() ? frozenHeight() : 0;
  const int below = dragPos_.y() - viewport()->height();
  const int above = frozen - dragPos_.y();
  const int right = dragPos_.x() - viewport()->width();
  const int left = -dragPos_.x();
  const auto scroll = [](QScrollBar* bar, int forward, int back) {
    if (forward > 0) bar->setValue(bar->value() + std::max(forward, bar->singleStep() / 2));
    if (back > 0) bar->setValue(bar->value() - std::max(back, bar->singleStep() / 2));
  };
  if (std::max({below, above, right, left}) <= 0) return;
  scroll(verticalScrollBar(), below, above);
  scroll(horizontalScrollBar(), right, left);
  dragTo(dragPos_);
}

void GridTable::contextMenuEvent(QContextMenuEvent* event) {
  if (editor() == nullptr) return;
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const CellPlace place = byKey ? cursor_.active() : cellAt(event->pos());
  const QPoint at = byKey ? viewport()->mapToGlobal(activeRect().center()) : event->globalPos();
  emit menuRequested(at, place.row, place.column);
}

void GridTable::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) != 0) {
    const int steps = event->angleDelta().y();
    if (steps != 0) emit zoomRequested(steps > 0 ? 1 : -1);
    event->accept();
    return;
  }
  QTableView::wheelEvent(event);
}

// --- Keys ---

// The grid's command with that short cut; null for none.
QAction* GridTable::commandOf(const QKeyEvent& event) const {
  if (parentWidget() == nullptr) return nullptr;
  const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
  const QKeySequence pressed(QKeyCombination(modifiers, static_cast<Qt::Key>(event.key())));
  for (QAction* action : parentWidget()->actions()) {
    if (action->shortcuts().contains(pressed)) return action;
  }
  return nullptr;
}

// In the cells a short cut is the grid's, even where the window has the same one.
bool GridTable::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && editor() != nullptr &&
      commandOf(*static_cast<QKeyEvent*>(event)) != nullptr) {
    event->accept();
    return true;
  }
  return QTableView::event(event);
}

void GridTable::keyPressEvent(QKeyEvent* event) {
  if (editor() == nullptr) return QTableView::keyPressEvent(event);
  if (QAction* command = commandOf(*event)) return command->trigger();
  const bool shift = (event->modifiers() & Qt::ShiftModifier) != 0;
  const bool control = (event->modifiers() & Qt::ControlModifier) != 0;
  const bool alt = (event->modifiers() & Qt::AltModifier) != 0;
  const Worksheet& sheet = editor()->sheet();
  const CellPlace from = shift ? cursor_.lead() : cursor_.active();
  const auto go = [&](Direction direction) {
    cursor_.go(direction, shift, control);
    showCell(shift ? cursor_.lead() : cursor_.active());
  };
  const auto to = [&](CellPlace place) {
    if (shift) {
      cursor_.extendTo(place);
    } else {
      cursor_.moveTo(place);
    }
    showCell(place);
  };
  switch (event->key()) {
    case Qt::Key_Up:
      return go(Direction::Up);
    case Qt::Key_Down:
      return go(Direction::Down);
    case Qt::Key_Left:
      return go(Direction::Left);
    case Qt::Key_Right:
      return go(Direction::Right);
    case Qt::Key_Home:
      return to({control ? std::min(sheet.FixedRows() + 1, sheet.MaxRow()) : from.row, 1});
    case Qt::Key_End: {
      const CellPlace last = lastUsedCell(sheet);
      return to({control ? last.row : from.row, last.column});
    }
    case Qt::Key_PageUp:
      if (control) return emit sheetRequested(-1);
      return page(-1, shift, alt);
    case Qt::Key_PageDown:
      if (control) return emit sheetRequested(1);
      return page(1, shift, alt);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // Where nothing can be typed, Enter does what a click on the cell does.
      if (editor()->readOnly()) return emit cellPressed(from.row, from.column);
      return stepOn(shift ? Direction::Up : Direction::Down);
    case Qt::Key_Tab:
      return stepOn(shift ? Direction::Left : Direction::Right);
    case Qt::Key_Backtab:
      return stepOn(Direction::Left);
    case Qt::Key_F2:
      return editActive();
    case Qt::Key_Backspace:
      return editActive(QString());
    case Qt::Key_Delete:
      attempt([this] { editor()->clearContents(cursor_.block()); });
      return;
    case Qt::Key_Escape:
      drag_ = Drag::None;
      markCopied(std::nullopt);
      autoScroll_.stop();
      viewport()->update();
      event->ignore();
      return;
    case Qt::Key_Space: {
      const CellBlock block = cursor_.block();
      if (control && shift) return cursor_.selectAll();
      if (control) return cursor_.selectColumns(block.column1, block.column2);
      if (shift) return cursor_.selectRows(block.row1, block.row2);
      break;
    }
    default:
      break;
  }
  const QString text = typedText(*event);
  const bool printable = !text.isEmpty() && text.front().isPrint() && !(control && !alt);
  if (!printable) {
    event->ignore();
    return;
  }
  editActive(text);
}

// Composed characters and those of input methods start editing, too.
void GridTable::inputMethodEvent(QInputMethodEvent* event) {
  const bool composing = !event->preeditString().isEmpty();
  if (editor() == nullptr || editing() || (!composing && event->commitString().isEmpty())) {
    return QTableView::inputMethodEvent(event);
  }
  editActive(event->commitString());
  if (composing && delegate_->editor() != nullptr) {
    QCoreApplication::sendEvent(delegate_->editor(), event);
  }
}

void GridTable::page(int direction, bool extend, bool columns) {
  QScrollBar* bar = columns ? horizontalScrollBar() : verticalScrollBar();
  const QHeaderView& header = columns ? *static_cast<QHeaderView*>(columns_) : *rows_;
  const int size = columns ? viewport()->width() : viewport()->height() - frozenHeight();
  const int step = std::max(header.defaultSectionSize(), size - header.defaultSectionSize());
  const CellPlace from = extend ? cursor_.lead() : cursor_.active();
  CellPlace place = from;
  int& index = columns ? place.column : place.row;
  const int at = std::clamp(header.sectionPosition(index - 1) + direction * step, 0,
                            std::max(0, header.length() - 1));
  const int section = header.logicalIndexAt(at - header.offset());
  index = section < 0 ? header.count() : section + 1;
  const int value = std::max(0, bar->value() + direction * step);
  bar->setMaximum(std::max(bar->maximum(), std::min(value, header.length() - size)));
  bar->setValue(value);
  if (extend) {
    cursor_.extendTo(place);
  } else {
    cursor_.moveTo(place);
  }
  showCell(place);
}

}  // namespace lodex
