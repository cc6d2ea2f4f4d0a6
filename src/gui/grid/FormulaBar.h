#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace lodex {

/// The line above a grid: the address of the active cell, where another one can be typed to go
/// there, and its content for editing.
class FormulaBar : public QWidget {
  Q_OBJECT
 public:
  explicit FormulaBar(QWidget* parent = nullptr);

  void showCell(const QString& address, const QString& entry, bool editable);
  /// What is being typed in the cell itself.
  void showTyping(const QString& text);

 signals:
  /// An address or a block ("B7", "B7:D9") was typed.
  void goTo(const QString& address);
  void entered(const QString& text, bool moveDown);
  /// Editing ended without a change; the grid takes the keyboard back.
  void left();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void accept(bool moveDown);
  void cancel();

  QLineEdit* address_;
  QLineEdit* entry_;
  QToolButton* accept_;
  QToolButton* cancel_;
  QString shownAddress_;
  QString shownEntry_;
};

}  // namespace lodex
