#pragma once

#include <QList>
#include <QObject>
#include <functional>
#include <initializer_list>

#include "form/SheetEditor.h"
#include "gui/grid/GridClipboard.h"
#include "gui/grid/GridPrint.h"

class QAction;
class QKeySequence;
class QMenu;

namespace lodex {

class GridCursor;
class GridTable;
class WorksheetView;

/// The commands of a WorksheetView as actions: texts, tool tips, short cuts, and whether they can
/// be used at the moment.
class GridActions : public QObject {
  Q_OBJECT
 public:
  explicit GridActions(WorksheetView& view);

  QAction* named(const QString& name) const;
  /// Enables what the sheet permits and checks what the active cell's format has.
  void update();
  void fillContextMenu(QMenu& menu, int row, int column);
  /// Parts of it that are in the menus of a window, too.
  void fillFillMenu(QMenu& menu) const;
  void fillSortMenu(QMenu& menu) const;
  void fillFormatMenu(QMenu& menu) const;
  void fillViewMenu(QMenu& menu) const;
  void fillPrintMenu(QMenu& menu) const;
  void fillTabMenu(QMenu& menu, int sheet);
  void renameSheet(int sheet);

 private:
  QAction* add(const char* name, const QString& text, const QString& tip,
               const QList<QKeySequence>& keys, std::function<void()> command);
  void addAll(QMenu& menu, std::initializer_list<const char*> names) const;
  void addEditing();
  void addLines();
  void addFormats();
  void addViewing();
  void run(const std::function<void()>& command);
  void copy(bool cut);
  void paste(PasteKind kind);
  void insertOrDelete(bool insert);
  void sort(bool descending);
  void chooseSort();
  CellBlock sortBlock() const;
  void chooseFont();
  void chooseColor(bool fill);
  void chooseNumberFormat();
  void chooseColumnWidth();
  void enable(const char* name, bool enabled);
  CellBlock block() const;
  SheetEditor& editor() const;
  GridTable& table() const;
  GridCursor& cursor() const;

  WorksheetView& view_;
  GridClipboard clipboard_;
  PrintSettings printing_;
  QList<QAction*> actions_;
};

}  // namespace lodex
