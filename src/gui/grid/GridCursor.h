#pragma once

#include <QObject>

#include "form/SheetEditorMoves.h"

class QItemSelectionModel;

namespace lodex {

/// The active cell and the selected block of a grid. Every change is written to the worksheet,
/// whose commands read it there, and to the selection model of the table.
class GridCursor : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  void setEditor(SheetEditor* editor) { editor_ = editor; }
  void setSelectionModel(QItemSelectionModel* selection) { selection_ = selection; }

  /// The cell that is edited; it stays when the selection is extended.
  CellPlace active() const { return active_; }
  /// The corner that moves when the selection is extended.
  CellPlace lead() const { return lead_; }
  CellBlock block() const { return block_; }
  bool wholeRows() const;
  bool wholeColumns() const;

  void moveTo(CellPlace place);
  void extendTo(CellPlace place);
  void select(const CellBlock& block, CellPlace active);
  void selectRows(int from, int to);
  void selectColumns(int from, int to);
  void selectAll();
  /// The next cell within a selection of several cells, else the neighbour.
  void step(Direction direction);
  void go(Direction direction, bool extend, bool toEdge);

  /// Takes over what the worksheet says.
  void readSheet();

 signals:
  void changed();

 private:
  CellPlace inside(CellPlace place) const;
  void apply(const CellBlock& block, CellPlace active, CellPlace lead);
  void showInModel();

  SheetEditor* editor_ = nullptr;
  QItemSelectionModel* selection_ = nullptr;
  CellPlace active_{1, 1};
  CellPlace lead_{1, 1};
  CellBlock block_;
};

}  // namespace lodex
