#pragma once

#include <QDialog>
#include <vector>

#include "form/SheetEditor.h"

class QCheckBox;
class QComboBox;

namespace lodex {

/// Chooses up to three columns by which the rows of a block are sorted.
class SortDialog : public QDialog {
  Q_OBJECT
 public:
  /// Starts with the column given; columns are named by heading, letter and first cell.
  SortDialog(const Worksheet& sheet, const CellBlock& block, int column, QWidget* parent = nullptr);

  std::vector<SortKey> keys() const;
  /// The first row is a heading and stays.
  bool hasHeading() const;

 private:
  struct Key {
    QComboBox* column;
    QCheckBox* descending;
  };
  std::vector<Key> keys_;
  QCheckBox* heading_;
};

}  // namespace lodex
