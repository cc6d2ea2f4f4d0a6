#pragma once

#include <QWidget>

#include "form/SheetEditor.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace lodex {

/// The line below a grid for finding and replacing texts.
class FindBar : public QWidget {
  Q_OBJECT
 public:
  explicit FindBar(QWidget* parent = nullptr);

  /// Shows the bar, with or without its part for replacing.
  void open(bool replacing, const QString& text);
  QString text() const;
  QString replacement() const;
  SearchOptions options() const;
  void showResult(const QString& result);

 signals:
  void find(bool backwards);
  void replaceOne();
  void replaceAll();
  void closed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QLineEdit* text_;
  QLineEdit* with_;
  QPushButton* replace_;
  QPushButton* replaceAll_;
  QCheckBox* matchCase_;
  QCheckBox* wholeCell_;
  QCheckBox* inFormulas_;
  QLabel* result_;
};

}  // namespace lodex
