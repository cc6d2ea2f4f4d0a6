#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "form/SheetEditor.h"

class QAction;
class QMenu;
class QTabBar;

namespace lodex {

class FindBar;
class FormulaBar;
class GridActions;
class GridCursor;
class GridTable;
class WorksheetModel;

/// Shows and edits a worksheet: formula bar, cells with frozen rows, sheet tabs, find bar and all
/// commands of a grid with their short cuts. Selection and active cell are written to the worksheet
/// at every move and read from it by `refresh`. Permissions, limits, headings, hidden rows and
/// columns of the worksheet are obeyed as they are at the moment.
class WorksheetView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(bool showFormulaBar READ showFormulaBar WRITE setShowFormulaBar)
  Q_PROPERTY(bool showSheetTabs READ showSheetTabs WRITE setShowSheetTabs)
  Q_PROPERTY(bool showHeaders READ showHeaders WRITE setShowHeaders)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
  Q_PROPERTY(int zoom READ zoom WRITE setZoom)
 public:
  explicit WorksheetView(QWidget* parent = nullptr);
  ~WorksheetView() override;

  /// Shows a worksheet, with a history of its own. It must outlive the view or be taken away with
  /// `clear`. For the worksheet that is already shown this is `refresh`.
  void setSheet(Worksheet& sheet);
  void clear();
  bool hasSheet() const { return shown_ != nullptr; }
  /// The worksheet was changed without the view.
  void refresh();

  /// The editor and history of the worksheet on show; they live until another one is set. Without a
  /// worksheet they belong to an empty one that cannot be edited.
  SheetEditor& editor() { return *editor_; }
  EditHistory& history() { return *history_; }
  GridTable& table() { return *table_; }

  /// A command by its object name, such as "actCopy"; null for an unknown one.
  QAction* gridAction(const QString& name) const;
  /// The commands, which act on this view; they also fill menus of a window.
  const GridActions& actions() const { return *actions_; }

  bool showFormulaBar() const { return showFormulaBar_; }
  void setShowFormulaBar(bool show);
  /// Tabs are shown for workbooks with several sheets.
  bool showSheetTabs() const { return showSheetTabs_; }
  void setShowSheetTabs(bool show);
  bool showHeaders() const { return showHeaders_; }
  void setShowHeaders(bool show);
  bool readOnly() const { return readOnly_; }
  void setReadOnly(bool readOnly);
  int zoom() const;
  void setZoom(int percent);

  /// While the next click picks a row or column for the owner, the pointer shows it and cells are
  /// not dragged.
  void setPicking(bool picking);

  /// Ends typing in a cell and takes over what was typed. Call it before reading the worksheet in a
  /// command.
  void finishEditing();
  /// Selects a block and brings it into view.
  void select(const CellBlock& block);
  /// Shows the sheet with that number.
  void showSheet(int sheet);
  /// Opens the find bar, finds the next hit, replaces.
  void openFind(bool replacing);
  void findNext(bool backwards);

 signals:
  /// A cell was clicked; row or column 0 for a click on a heading.
  void cellClicked(int row, int column);
  /// The worksheet was changed by its user, or by undo and redo.
  void edited();
  /// Count, sum and average of the selection for a status bar.
  void statusText(const QString& text);
  /// Why an edit was refused.
  void refused(const QString& reason);
  void sheetShown(int sheet);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void connectTable();
  void connectBars();
  void buildLayout();
  void attach(Worksheet& sheet);
  void afterEdit(const CellBlock* block);
  void showTabs();
  void showFormula();
  void tellSelection();
  void showMenu(const QPoint& global, int row, int column);
  void enterFromBar(const QString& text, bool moveDown);
  void goTo(const QString& address);
  void replaceOne();
  void replaceAllHits();
  void editHeading(Qt::Orientation orientation, int index);
  void showTabMenu(const QPoint& pos);

  Worksheet none_;  // shown while there is no worksheet
  Worksheet* shown_ = nullptr;
  std::unique_ptr<EditHistory> history_;
  std::unique_ptr<SheetEditor> editor_;
  WorksheetModel* model_;
  GridCursor* cursor_;
  GridTable* table_;
  FormulaBar* formulaBar_;
  FindBar* findBar_;
  QTabBar* tabs_;
  GridActions* actions_;
  QTimer selectionTimer_;
  bool showFormulaBar_ = true;
  bool showSheetTabs_ = true;
  bool showHeaders_ = true;
  bool readOnly_ = false;
  bool fillingTabs_ = false;
};

}  // namespace lodex
