#include "gui/widgets/PeriodicTable.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "chem/Elements.h"
#include "gui/QtText.h"

namespace lodex {
namespace {

constexpr int groups = 18;
constexpr int rows = 9;                   // seven periods and two rows of the f block
constexpr int firstBlockRow = 7;          // the f block is below a gap
constexpr double gapBelowPeriods = 0.35;  // of a cell's height
const QColor accent(0xd9, 0x8a, 0x1f);

// The last element of each period.
constexpr std::array<int, 7> periodEnds = {2, 10, 18, 36, 54, 86, 118};

// The place of an element: x is its group, y its row, both from 0.
QPoint placeOf(int atomicNumber) {
  int period = 0;
  while (atomicNumber > periodEnds[static_cast<size_t>(period)]) ++period;
  const int end = periodEnds[static_cast<size_t>(period)];
  const int first = period == 0 ? 1 : periodEnds[static_cast<size_t>(period) - 1] + 1;
  const int fromStart = atomicNumber - first;
  const int fromEnd = end - atomicNumber;
  const bool longPeriod = period >= 5;
  if (period == 0) return {fromStart == 0 ? 0 : groups - 1, 0};
  if (fromStart < (longPeriod ? 3 : 2)) return {fromStart, period};
  if (longPeriod && fromStart < 17) return {fromStart, firstBlockRow + period - 5};
  return {groups - 1 - fromEnd, period};
}

// Symbols that were given before the elements had names of their own come after Lr.
int atomicNumberOf(const std::string& symbol) {
  const int number = AtomicNumberOfSymbol(symbol);
  if (number > 0) return number;
  constexpr std::array later = {"Unq", "Unp", "Unh", "Bh", "Hs", "Mt", "Ds", "Rg"};
  const auto found = std::find(later.begin(), later.end(), symbol);
  return found == later.end() ? 0 : 104 + static_cast<int>(found - later.begin());
}

}  // namespace

/// A cell of the table. Its check mark is the list's, so a click does not change it.
class ElementCell : public QAbstractButton {
 public:
  ElementCell(const QString& symbol, int atomicNumber, QPoint place, QWidget* parent)
      : QAbstractButton(parent), place_(place), atomicNumber_(atomicNumber) {
    setText(symbol);
    setObjectName(QStringLiteral("element") + symbol);
    setAccessibleName(symbol);
    setCheckable(true);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
  }

  QPoint place() const { return place_; }
  void setCurrent(bool current) {
    if (current == current_) return;
    current_ = current;
    update();
  }

 protected:
  void nextCheckState() override {}

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const bool focused = current_ && parentWidget()->hasFocus();
    const QRectF frame = QRectF(rect()).adjusted(1, 1, -1, -1);
    QPainterPath shape;
    shape.addRoundedRect(frame, 3, 3);
    painter.fillPath(shape, current_ ? colours.highlight() : background());
    painter.setPen(QPen(focused ? colours.text().color() : colours.mid().color(), focused ? 2 : 1));
    painter.drawPath(shape);

    QColor ink = current_ ? colours.highlightedText().color() : colours.buttonText().color();
    if (!isEnabled()) ink = colours.color(QPalette::Disabled, QPalette::ButtonText);
    if (!current_ && !isChecked()) ink.setAlphaF(0.75F);
    painter.setPen(ink);
    paintTexts(painter, frame);
    if (!isChecked()) return;
    painter.setClipPath(shape);
    painter.fillRect(QRectF(frame.left(), frame.bottom() - 4, frame.width(), 4), accent);
  }

 private:
  QBrush background() const {
    QColor fill = palette().button().color();
    if (isChecked()) {
      const auto mix = [](int base, int tint) { return (base * 3 + tint) / 4; };
      fill = QColor(mix(fill.red(), accent.red()), mix(fill.green(), accent.green()),
                    mix(fill.blue(), accent.blue()));
    }
    return underMouse() ? fill.lighter(112) : fill;
  }

  void paintTexts(QPainter& painter, const QRectF& frame) const {
    QFont letters = font();
    letters.setPixelSize(std::max(8, static_cast<int>(std::min(height() * 0.42, width() * 0.36))));
    letters.setBold(isChecked());
    painter.setFont(letters);
    painter.drawText(frame.adjusted(0, height() * 0.18, 0, 0), Qt::AlignCenter, text());
    if (atomicNumber_ == 0 || height() < 26) return;
    QFont digits = font();
    digits.setPixelSize(std::max(6, static_cast<int>(height() * 0.22)));
    painter.setFont(digits);
    painter.drawText(frame.adjusted(4, 2, 0, 0), Qt::AlignLeft | Qt::AlignTop,
                     QString::number(atomicNumber_));
  }

  QPoint place_;
  int atomicNumber_;
  bool current_ = false;
};

PeriodicTable::PeriodicTable(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(tr("Periodic table"));
}

void PeriodicTable::bind(ListBox& list) {
  list_ = &list;
  refresh();
}

void PeriodicTable::clear() {
  list_ = nullptr;
  for (ElementCell* cell : cells_) delete cell;
  cells_.clear();
}

int PeriodicTable::current() const {
  return list_ == nullptr ? -1 : list_->current();
}

QWidget* PeriodicTable::cell(int index) const {
  if (index < 0 || index >= static_cast<int>(cells_.size())) return nullptr;
  return cells_[static_cast<size_t>(index)];
}

void PeriodicTable::refresh() {
  if (list_ == nullptr) return;
  const auto sameText = [this](int index) {
    const ElementCell* cell = cells_[static_cast<size_t>(index)];
    return (cell == nullptr ? QString() : cell->text()) == toQt(list_->item(index));
  };
  bool same = static_cast<int>(cells_.size()) == list_->count();
  for (int i = 0; same && i < list_->count(); ++i) same = sameText(i);
  if (!same) makeCells();
  for (int i = 0; i < list_->count(); ++i) {
    ElementCell* cell = cells_[static_cast<size_t>(i)];
    if (cell == nullptr) continue;
    cell->setChecked(list_->checked(i));
    cell->setCurrent(i == list_->current());
    cell->setAccessibleDescription(list_->checked(i) ? tr("marked") : QString());
  }
}

void PeriodicTable::makeCells() {
  ListBox& list = *list_;
  clear();
  list_ = &list;
  QPoint extra(3, 0);  // in the room above the transition metals
  for (int i = 0; i < list.count(); ++i) {
    cells_.push_back(nullptr);
    if (list.item(i).empty()) continue;
    const int number = atomicNumberOf(list.item(i));
    QPoint place = number > 0 ? placeOf(number) : extra;
    if (number == 0) {
      extra = extra.x() < 11 ? extra + QPoint(1, 0) : QPoint(3, std::min(extra.y() + 1, 2));
    }
    auto* cell = new ElementCell(toQt(list.item(i)), number, place, this);
    cell->setToolTip(toolTip());
    connect(cell, &QAbstractButton::clicked, this, [this, i] {
      setFocus(Qt::MouseFocusReason);
      choose(i);
    });
    cells_.back() = cell;
    cell->show();
  }
  placeCells();
}

void PeriodicTable::placeCells() {
  const double width = static_cast<double>(this->width()) / groups;
  const double height = std::min(this->height() / (rows + gapBelowPeriods), width * 1.15);
  for (ElementCell* cell : cells_) {
    if (cell == nullptr) continue;
    const QPoint place = cell->place();
    const double below = place.y() >= firstBlockRow ? gapBelowPeriods : 0;
    const int left = static_cast<int>(place.x() * width);
    const int top = static_cast<int>((place.y() + below) * height);
    const int right = static_cast<int>((place.x() + 1) * width);
    const int bottom = static_cast<int>((place.y() + below + 1) * height);
    cell->setGeometry(left, top, right - left, bottom - top);
  }
}

void PeriodicTable::choose(int index) {
  if (list_ == nullptr || index < 0 || index >= list_->count()) return;
  list_->click(index);
  refresh();
}

int PeriodicTable::neighbour(QPoint direction) const {
  const auto* from = static_cast<const ElementCell*>(cell(current()));
  if (from == nullptr) return firstFrom(0, 1);
  int best = -1;
  int bestDistance = 0;
  for (size_t i = 0; i < cells_.size(); ++i) {
    if (cells_[i] == nullptr) continue;
    const QPoint way = cells_[i]->place() - from->place();
    const int along = way.x() * direction.x() + way.y() * direction.y();
    const int across = std::abs(way.x() * direction.y()) + std::abs(way.y() * direction.x());
    // Rows have no gaps; those in columns are skipped.
    if (along <= 0 || across > (direction.x() != 0 ? 0 : 1)) continue;
    const int distance = along + 4 * across;
    if (best >= 0 && distance >= bestDistance) continue;
    best = static_cast<int>(i);
    bestDistance = distance;
  }
  return best;
}

int PeriodicTable::firstFrom(int index, int step) const {
  while (index >= 0 && index < static_cast<int>(cells_.size())) {
    if (cells_[static_cast<size_t>(index)] != nullptr) return index;
    index += step;
  }
  return -1;
}

int PeriodicTable::nextWithLetter(const QString& letter) const {
  const int count = static_cast<int>(cells_.size());
  for (int step = 1; step <= count; ++step) {
    const int index = (current() + step) % count;
    const ElementCell* cell = cells_[static_cast<size_t>(index)];
    if (cell != nullptr && cell->text().startsWith(letter, Qt::CaseInsensitive)) return index;
  }
  return -1;
}

void PeriodicTable::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
  int next = -1;
  switch (event->key()) {
    case Qt::Key_Left:
      next = neighbour({-1, 0});
      break;
    case Qt::Key_Right:
      next = neighbour({1, 0});
      break;
    case Qt::Key_Up:
      next = neighbour({0, -1});
      break;
    case Qt::Key_Down:
      next = neighbour({0, 1});
      break;
    case Qt::Key_Home:
      next = firstFrom(0, 1);
      break;
    case Qt::Key_End:
      next = firstFrom(static_cast<int>(cells_.size()) - 1, -1);
      break;
    case Qt::Key_Space:
      next = current();
      break;
    default:
      if (event->text().isEmpty() || !event->text().front().isLetter()) return event->ignore();
      next = nextWithLetter(event->text());
  }
  if (!plain) return event->ignore();
  choose(next);
}

void PeriodicTable::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  if (QWidget* focused = cell(current())) focused->update();
}

void PeriodicTable::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  if (QWidget* focused = cell(current())) focused->update();
}

void PeriodicTable::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  placeCells();
}

QSize PeriodicTable::sizeHint() const {
  return {groups * 34, rows * 34};
}

QSize PeriodicTable::minimumSizeHint() const {
  return {groups * 24, rows * 22};
}

}  // namespace lodex
