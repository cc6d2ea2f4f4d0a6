#pragma once

#include <QAbstractTableModel>

#include "form/SheetEditor.h"

namespace lodex {

/// The current sheet of a worksheet as a table: reads and writes the worksheet itself and keeps no
/// copy. Indexes count from 0, as in every model; the worksheet's rows and columns count from 1.
class WorksheetModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Null for nothing to show. The editor must outlive its use here.
  void setEditor(SheetEditor* editor);
  SheetEditor* editor() const { return editor_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  /// Tells views that cells have changed, or that the sheet may have another size, too.
  void cellsChanged(const CellBlock& block);
  void sheetChanged();

 signals:
  /// An edit was refused, and why.
  void refused(const QString& reason);

 private:
  SheetEditor* editor_ = nullptr;
  int rows_ = 0;
  int columns_ = 0;
};

}  // namespace lodex
