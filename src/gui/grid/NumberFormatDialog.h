#pragma once

#include <QDialog>
#include <string>

#include "worksheet/Value.h"

class QLabel;
class QLineEdit;
class QTreeWidget;

namespace lodex {

/// Chooses a number format from the usual ones or as typed, with the cell's value as a sample.
class NumberFormatDialog : public QDialog {
  Q_OBJECT
 public:
  NumberFormatDialog(const Value& sample, const std::string& format, QWidget* parent = nullptr);
  std::string format() const;

 private:
  void showSample();

  Value sample_;
  QTreeWidget* known_;
  QLineEdit* format_;
  QLabel* shown_;
};

}  // namespace lodex
