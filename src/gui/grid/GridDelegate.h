#pragma once

#include <QStyledItemDelegate>
#include <optional>

class QKeyEvent;
class QLineEdit;

namespace lodex {

class GridTable;

/// The text that a key types. The decimal key of the number pad gives a point on every keyboard,
/// since numbers are written with one.
QString typedText(const QKeyEvent& key);

/// The line in which a cell is edited. Enter, Tab and, while a cell is being filled by typing, the
/// arrow keys end it and move on; Esc cancels.
class GridDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  explicit GridDelegate(GridTable& table);

  /// The text that the next editor starts with instead of the cell's.
  void startWith(std::optional<QString> text) { start_ = std::move(text); }
  /// The open editor, or null.
  QLineEdit* editor() const { return editor_; }

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;
  void destroyEditor(QWidget* editor, const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  bool endingKey(QLineEdit* line, int key, Qt::KeyboardModifiers modifiers);

  GridTable& table_;
  std::optional<QString> start_;
  mutable QLineEdit* editor_ = nullptr;
  mutable bool typed_ = false;    // filled by typing: arrow keys leave it
  mutable bool started_ = false;  // has its first text
};

}  // namespace lodex
