#include "gui/grid/GridDelegate.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolTip>

#include "gui/grid/GridPaint.h"
#include "gui/grid/GridTable.h"

namespace lodex {

QString typedText(const QKeyEvent& key) {
  const bool pad = (key.modifiers() & Qt::KeypadModifier) != 0;
  return pad && key.text() == QLatin1String(",") ? QStringLiteral(".") : key.text();
}

GridDelegate::GridDelegate(GridTable& table) : QStyledItemDelegate(&table), table_(table) {}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                    const QModelIndex& index) const {
  auto* line = new QLineEdit(parent);
  line->setObjectName(QStringLiteral("cellEditor"));
  line->setAccessibleName(tr("Cell content"));
  line->setFrame(false);
  line->setTextMargins(1, 0, 1, 0);
  line->setFont(cellFont(table_.model()->editor()->formatAt(index.row() + 1, index.column() + 1),
                         table_.pixelsPerPoint()));
  editor_ = line;
  started_ = false;
  typed_ = start_.has_value();
  connect(line, &QLineEdit::textChanged, &table_, &GridTable::editorTextChanged);
  return line;
}

void GridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* line = static_cast<QLineEdit*>(editor);
  // A change of the cell does not overwrite what is being typed in an open editor.
  if (std::exchange(started_, true)) return;
  line->setText(start_ ? *start_ : index.data(Qt::EditRole).toString());
}

void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                const QModelIndex& index) const {
  model->setData(index, static_cast<QLineEdit*>(editor)->text(), Qt::EditRole);
}

// The editor is as wide as its text needs, up to the edge of the view.
void GridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex&) const {
  auto* line = static_cast<QLineEdit*>(editor);
  const int text = line->fontMetrics().horizontalAdvance(line->text()) + 12;
  const int room = std::max(option.rect.width(), table_.viewport()->width() - option.rect.x());
  QRect area = option.rect;
  area.setWidth(std::clamp(text, area.width(), room));
  editor->setGeometry(area.adjusted(0, 0, -1, -1));
}

// Why a formula has no value, else the whole text where the cell does not show it.
bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip || !index.isValid()) return false;
  QString text = index.data(Qt::ToolTipRole).toString();
  if (text.isEmpty()) {
    const QString shown = index.data().toString();
    const QFontMetricsF metrics(
        cellFont(table_.model()->editor()->formatAt(index.row() + 1, index.column() + 1),
                 table_.pixelsPerPoint()));
    if (metrics.horizontalAdvance(shown) > option.rect.width() - 4) text = shown;
  }
  QToolTip::showText(event->globalPos(), text, view);
  return !text.isEmpty();
}

void GridDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
  if (editor == editor_) editor_ = nullptr;
  QStyledItemDelegate::destroyEditor(editor, index);
  table_.editorClosed();
}

bool GridDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* line = qobject_cast<QLineEdit*>(object);
  if (line != nullptr && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (endingKey(line, key->key(), key->modifiers())) return true;
    if (typedText(*key) != key->text()) {
      line->insert(typedText(*key));
      return true;
    }
  }
  return QStyledItemDelegate::eventFilter(object, event);
}

bool GridDelegate::endingKey(QLineEdit* line, int key, Qt::KeyboardModifiers modifiers) {
  const bool shift = (modifiers & Qt::ShiftModifier) != 0;
  const auto end = [&](Direction direction) {
    emit commitData(line);
    emit closeEditor(line, NoHint);
    table_.stepOn(direction);
    return true;
  };
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if ((modifiers & Qt::ControlModifier) != 0) {
        const QString text = line->text();
        emit closeEditor(line, RevertModelCache);
        table_.enterAll(text);
        return true;
      }
      return end(shift ? Direction::Up : Direction::Down);
    case Qt::Key_Tab:
      return end(Direction::Right);
    case Qt::Key_Backtab:
      return end(Direction::Left);
    case Qt::Key_Escape:
      emit closeEditor(line, RevertModelCache);
      return true;
    case Qt::Key_F2:
      typed_ = false;
      return true;
    default:
      break;
  }
  if (!typed_ || (modifiers & ~Qt::KeypadModifier) != Qt::NoModifier ||
      line->text().startsWith(QLatin1Char('='))) {
    return false;
  }
  switch (key) {
    case Qt::Key_Up:
      return end(Direction::Up);
    case Qt::Key_Down:
      return end(Direction::Down);
    case Qt::Key_Left:
      return end(Direction::Left);
    case Qt::Key_Right:
      return end(Direction::Right);
    default:
      return false;
  }
}

}  // namespace lodex
