#include "gui/shell/GridMenus.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include "gui/grid/GridActions.h"
#include "gui/grid/WorksheetView.h"

namespace lodex {
namespace {

QString translatedTitle(const char* title) {
  return QCoreApplication::translate("GridMenus", title);
}

void addEditing(QMenu& edit, const WorksheetView& grid) {
  QAction* first = edit.actions().isEmpty() ? nullptr : edit.actions().front();
  for (const char* name : {"actUndo", "actRedo", "actCut"}) {
    edit.insertAction(first, grid.gridAction(QLatin1String(name)));
  }
  edit.addSeparator();
  grid.actions().fillFillMenu(
      *edit.addMenu(translatedTitle(QT_TRANSLATE_NOOP("GridMenus", "Fi&ll"))));
  edit.addSeparator();
  for (const char* name : {"actFind", "actReplace", "actFindNext"}) {
    edit.addAction(grid.gridAction(QLatin1String(name)));
  }
}

}  // namespace

void addGridMenus(QMainWindow& window, const WorksheetView& grid) {
  const GridActions& actions = grid.actions();
  if (auto* edit = window.findChild<QMenu*>(QStringLiteral("menuEdit"))) addEditing(*edit, grid);
  if (auto* file = window.findChild<QMenu*>(QStringLiteral("menuFile"))) {
    file->addSeparator();
    actions.fillPrintMenu(*file);
  }
  const auto add = [&](const char* name, const char* title) -> QMenu& {
    QMenu* menu = window.menuBar()->addMenu(translatedTitle(title));
    menu->setObjectName(QString::fromLatin1(name));
    menu->setToolTipsVisible(true);
    return *menu;
  };
  actions.fillFormatMenu(add("menuFormat", QT_TRANSLATE_NOOP("GridMenus", "F&ormat")));
  actions.fillSortMenu(add("menuData", QT_TRANSLATE_NOOP("GridMenus", "&Data")));
  actions.fillViewMenu(add("menuView", QT_TRANSLATE_NOOP("GridMenus", "&View")));
}

}  // namespace lodex
