#include "shell/Doors.h"

#include <gtest/gtest.h>

#include "basic/Error.h"

namespace lodex {
namespace {

class DoorsTest : public testing::Test {
 protected:
  MenuItem& entry(const char* name) { return dynamic_cast<MenuItem&>(*shell.control(name)); }

  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  Form shell{"MDIMain"};
  Doors doors{shell, session};
};

TEST_F(DoorsTest, EntriesShowTheirWindowsAndToggleTheirDocks) {
  Form window("frmWindow"), dock("frmDock");
  std::vector<std::string> front;
  doors.bringToFront = [&](Form& form) { front.push_back(form.name()); };
  doors.addWindow({"mnuWindow", "&Window", "Look", Menu::Window}, window);
  doors.addWindow({"mnuOwned", "&Owned", "Look", Menu::File}, std::make_unique<Form>("frmOwned"));
  doors.addDock({"mnuDock", "&Dock", "Look", Menu::Window}, dock);
  EXPECT_EQ(entry("mnuWindow").toolTip(), "Look");
  for (const char* name : {"mnuWindow", "mnuWindow", "mnuOwned", "mnuDock"}) entry(name).click();
  EXPECT_EQ(front, (std::vector<std::string>{"frmWindow", "frmWindow", "frmOwned"}));
  ASSERT_EQ(doors.windows().size(), 3u);
  EXPECT_TRUE(doors.windows()[1]->visible());
  EXPECT_TRUE(dock.visible() && entry("mnuDock").checked());
  EXPECT_TRUE(doors.isDock(dock) && !doors.isDock(window));
  entry("mnuDock").click();
  EXPECT_FALSE(dock.visible() || entry("mnuDock").checked());
}

TEST_F(DoorsTest, CommandsAreGuardedAndDisabledWhereThereIsNone) {
  doors.addCommand({"tbNone", "None", "Not yet", Menu::File}, nullptr);
  doors.addCommand({"tbFails", "Fails", "", Menu::File}, [] { throw Error("no", 7); });
  EXPECT_FALSE(entry("tbNone").enabled());
  dialogs.expectMessage("Error 7 no");
  entry("tbFails").click();
  EXPECT_TRUE(dialogs.allAsked());
}

}  // namespace
}  // namespace lodex
