#include "gui/shell/DoorActions.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QToolBar>

#include "gui/QtText.h"

namespace lodex {
namespace {

QString menuName(Menu menu) {
  switch (menu) {
    case Menu::File:
      return QStringLiteral("menuFile");
    case Menu::Calculation:
      return QStringLiteral("menuCalculation");
    case Menu::Database:
      return QStringLiteral("menuDatabase");
    case Menu::Window:
      return QStringLiteral("menuWindow");
    case Menu::Help:
      break;
  }
  return QStringLiteral("menuHelp");
}

// The action that follows the one of that name; null puts a new one at the end.
QAction* behind(const QWidget& bar, std::string_view name) {
  const QList<QAction*> actions = bar.actions();
  for (qsizetype i = 0; i + 1 < actions.size(); ++i) {
    if (fromQt(actions[i]->objectName()) == name) return actions[i + 1];
  }
  return nullptr;
}

}  // namespace

void addDoorActions(QMainWindow& window, const Doors& doors) {
  for (const Doors::Offer& offer : doors.offers()) {
    const MenuEntry& entry = offer.entry;
    const QString name = toQt(entry.name);
    if (window.findChild<QAction*>(name)) continue;
    auto* action = new QAction(&window);
    action->setObjectName(name);
    const QString icon = QStringLiteral(":/icons/%1.svg").arg(name);
    if (QFile::exists(icon)) action->setIcon(QIcon(icon));
    action->setShortcut(QKeySequence(toQt(entry.keys)));
    auto* menu = window.findChild<QMenu*>(menuName(entry.menu));
    menu->insertAction(behind(*menu, entry.after), action);
    auto* bar = window.findChild<QToolBar*>(QStringLiteral("tbMain"));
    if (entry.tool) bar->insertAction(behind(*bar, entry.after), action);
  }
}

}  // namespace lodex
