#pragma once

#include <QBasicTimer>
#include <QTableView>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "gui/grid/GridCursor.h"
#include "gui/grid/GridPaint.h"
#include "gui/grid/WorksheetModel.h"

namespace lodex {

class GridDelegate;
class GridHeader;

/// The table of a grid: draws the cells, keeps the frozen rows at the top, and turns mouse and keys
/// into moves of the cursor and edits. Rows and columns count from 1.
class GridTable : public QTableView {
  Q_OBJECT
 public:
  GridTable(WorksheetModel& model, GridCursor& cursor, QWidget* parent = nullptr);

  WorksheetModel* model() const { return &model_; }
  GridCursor& cursor() const { return cursor_; }

  /// Takes over sizes, hidden rows and columns and frozen rows from the sheet.
  void readLayout();
  /// Contents or formats of a block have changed.
  void cellsChanged(const CellBlock& block);

  int zoom() const { return zoom_; }
  /// In percent, 50 to 300.
  void setZoom(int percent);
  double pixelsPerPoint() const;
  QFont headingFont() const;

  int frozenHeight() const;
  int rowAtY(int y) const;
  /// The cell at a place of the viewport; the nearest one for a place outside.
  CellPlace cellAt(const QPoint& pos) const;
  void showCell(CellPlace place);
  void showRow(int row);
  void showColumn(int column);

  int widthInPixels(double characters) const;
  double widthInCharacters(int pixels) const;
  /// The width in characters that the texts of a column need.
  double fittingWidth(int column) const;

  /// Opens the active cell for editing, with its content or another text.
  void editActive(std::optional<QString> text = std::nullopt);
  bool editing() const;
  /// Ends editing and takes over what was typed.
  void commitEditor();
  /// While a place is being picked, a click is only reported; the pointer shows it.
  void setPicking(bool picking);
  /// Outlines the cells that were copied; without a block the outline goes.
  void markCopied(std::optional<CellBlock> block);
  void enterAll(const QString& text);
  void stepOn(Direction direction);
  /// Runs an edit; what it refuses is reported by `refused`. Returns whether it was made.
  bool attempt(const std::function<void()>& edit);

  // For the delegate.
  void editorTextChanged(const QString& text);
  void editorClosed();

  QRect visualRect(const QModelIndex& index) const override;
  QModelIndex indexAt(const QPoint& pos) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void selectAll() override;

 signals:
  /// A press of the left button; row or column 0 for a heading.
  void cellPressed(int row, int column);
  void menuRequested(const QPoint& global, int row, int column);
  void zoomRequested(int steps);
  /// The next sheet (1) or the one before (-1) is to be shown.
  void sheetRequested(int step);
  void headingEditRequested(Qt::Orientation orientation, int index);
  void refused(const QString& reason);
  /// What the open editor holds; empty with `open` false when it has closed.
  void editorText(const QString& text, bool open);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool event(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void resizeEvent(QResizeEvent* event) override;

 protected slots:
  void updateGeometries() override;

 private:
  enum class Drag { None, Select, Fill, Move, Point };

  SheetEditor* editor() const { return model_.editor(); }
  void connectHeaders();
  void readWidths();
  void readHeights(int firstRow, int lastRow);
  int headingWidth() const;
  void extendScrollRange();
  void paintPart(QPainter& painter, const QRect& part, int firstRow, int shift);
  void paintSelection(QPainter& painter, const QRect& part, int shift);
  std::vector<GridSpan> visibleColumns() const;
  QRect blockRect(const CellBlock& block, int shift) const;
  QRect activeRect() const;
  QRect fillHandle() const;
  bool onSelectionEdge(const QPoint& pos) const;
  void dragTo(const QPoint& pos);
  CellBlock fillTarget(CellPlace place) const;
  void fillToNeighboursEnd();
  QAction* commandOf(const QKeyEvent& event) const;
  void page(int direction, bool extend, bool columns);
  void setHiddenSections(QHeaderView& header, const std::map<int, bool>& hidden,
                         std::vector<int>& before);
  void fitColumn(int column);
  void columnDragged(int column);
  bool canPoint() const;
  void point(const CellBlock& block);

  WorksheetModel& model_;
  GridCursor& cursor_;
  GridDelegate* delegate_;
  GridHeader* columns_;
  GridHeader* rows_;
  int zoom_ = 100;
  std::vector<int> hiddenRows_, hiddenColumns_, wideColumns_;
  std::set<int> tallRows_;
  Drag drag_ = Drag::None;
  QPoint dragPos_;
  CellPlace dragStart_;
  CellBlock dragBlock_;
  QBasicTimer autoScroll_;
  bool picking_ = false;
  std::optional<CellBlock> copied_;
  int copiedSheet_ = 0;
  int pointStart_ = -1;  // where the reference last pointed at is in the formula being typed
  int pointEnd_ = -1;
};

}  // namespace lodex
