#include "gui/shell/DoorActions.h"

#include <QMenuBar>
#include <QToolBar>

#include "gui/Binder.h"
#include "gui/GuiFixture.h"

namespace lodex {
namespace {

QStringList names(const QWidget& bar) {
  QStringList all;
  for (const QAction* action : bar.actions()) all << action->objectName();
  return all;
}

TEST_F(GuiTest, DoorsBecomeMenuEntriesAndToolsAtTheirPlaces) {
  QMainWindow window;
  auto* menu = window.menuBar()->addMenu(QStringLiteral("Window"));
  menu->setObjectName(QStringLiteral("menuWindow"));
  auto* bar = window.addToolBar(QStringLiteral("Tools"));
  bar->setObjectName(QStringLiteral("tbMain"));
  for (const char* name : {"mnuLog", "mnuResult"}) {
    menu->addAction(QString::fromLatin1(name))->setObjectName(QString::fromLatin1(name));
  }
  Form shell("MDIMain");
  Doors doors(shell, session);
  int runs = 0;
  const auto run = [&] { ++runs; };
  doors.addCommand({"mnuResult", "In the file", "", Menu::Window}, run);
  doors.addCommand({"mnuLast", "Last", "", Menu::Window, "", "mnuResult"}, run);
  doors.addCommand({"tbReport", "&Report", "See", Menu::Window, "Ctrl+R", "mnuLog", true}, run);
  addDoorActions(window, doors);
  bindForm(shell, window);
  EXPECT_EQ(names(*menu), (QStringList{"mnuLog", "tbReport", "mnuResult", "mnuLast"}));
  EXPECT_EQ(names(*bar), (QStringList{"tbReport"}));
  auto* action = child<QAction>(window, "tbReport");
  EXPECT_EQ(action->text(), QStringLiteral("&Report"));
  EXPECT_EQ(action->shortcut(), QKeySequence(QStringLiteral("Ctrl+R")));
  EXPECT_EQ(action->toolTip(), QStringLiteral("See"));
  EXPECT_FALSE(action->icon().isNull()) << ":/icons/tbReport.svg";
  action->trigger();
  EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace lodex
