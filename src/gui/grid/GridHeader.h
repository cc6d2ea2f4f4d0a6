#pragma once

#include <QHeaderView>

namespace lodex {

class GridTable;

/// Row or column headings of a grid: they show the sheet's own heading texts, mark what is selected
/// and select whole rows or columns. Column widths are dragged at the edges.
class GridHeader : public QHeaderView {
  Q_OBJECT
 public:
  GridHeader(Qt::Orientation orientation, GridTable& table);

 signals:
  /// Numbers count from 1.
  void pressed(int index, Qt::KeyboardModifiers modifiers);
  void draggedOver(int index);
  void doubleClicked(int index);
  void widthDragged(int index);
  void fitRequested(int index);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  enum class Drag { None, Select, Resize };
  int along(const QPoint& pos) const;
  int indexAtPos(const QPoint& pos) const;
  int draggedIndex(const QPoint& pos) const;
  /// The column whose right edge is at the position, 0 for none.
  int edgeAt(const QPoint& pos) const;
  void paintSections(QPainter& painter, int first, int shift, int end);

  GridTable& table_;
  Drag drag_ = Drag::None;
  int dragged_ = 0;
};

}  // namespace lodex
