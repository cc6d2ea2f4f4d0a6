#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "basic/Error.h"
#include "form/Controls.h"
#include "form/Dialogs.h"
#include "form/Form.h"
#include "form/WorksheetDialogs.h"

namespace lodex {
namespace {

class TestForm : public Form {
 public:
  TestForm() : Form("frmTest", "Test") {}
  TextBox txtName{*this, "txtName"};
  ListBox lstItems{*this, "lstItems"};
  OptionButtons optKind{*this, "optKind", {"one", "two"}};
  Button cmdOK{*this, "cmdOK", "OK"};
};

TEST(Controls, AreFoundByNameAndTellChangesOnce) {
  TestForm form;
  int changes = 0;
  keep(form.txtName.onChange([&] { ++changes; }));
  form.txtName.setText("12");
  form.txtName.setText("12");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(form.txtName.number(), 12);
  EXPECT_EQ(form.control("TXTNAME"), &form.txtName);
  EXPECT_EQ(form.control("txtNone"), nullptr);
  form.optKind.select(7);
  EXPECT_EQ(form.optKind.selected(), 0);
}

// The sanitizer run sees an observer that is moved while it runs.
TEST(Controls, AnObserverMayAddObservers) {
  TestForm form;
  int calls = 0;
  const std::string text(100, 'x');
  keep(form.txtName.onChange([&form, &calls, text] {
    for (int i = 0; i < 100; ++i) keep(form.txtName.onChange([&calls] { ++calls; }));
    calls += static_cast<int>(text.size());
  }));
  form.txtName.setText("new");
  EXPECT_EQ(calls, 200) << "the added observers hear of the same change";
}

TEST(Observers, EndWithTheirSubscription) {
  TestForm form;
  int calls = 0;
  {
    const Subscription observing = form.txtName.onChange([&] { ++calls; });
    form.txtName.setText("a");
  }
  form.txtName.setText("b");
  EXPECT_EQ(calls, 1);
  Subscription first = form.txtName.onChange([&] { calls += 10; });
  first = form.txtName.onChange([&] { calls += 100; });
  form.txtName.setText("c");
  EXPECT_EQ(calls, 101) << "the one that was replaced has ended";
}

TEST(Observers, MayEndThemselvesAndOthersWhileTheyAreCalled) {
  TestForm form;
  std::string calls;
  Subscription self, other;
  self = form.onChange([&, owned = std::string(100, 'x')] {
    self.end();
    other.end();
    calls += "self" + std::to_string(owned.size());
  });
  other = form.onChange([&] { calls += " other"; });
  keep(form.onChange([&] { calls += " last"; }));
  form.show();
  form.show();
  EXPECT_EQ(calls, "self100 last last");
}

TEST(Observers, MayOutliveOrEndWhatTheyObserve) {
  auto form = std::make_unique<TestForm>();
  int calls = 0;
  Subscription ends = form->txtName.onChange([&] { form.reset(); });
  Subscription after = form->txtName.onChange([&] { ++calls; });
  form->txtName.setText("a");
  EXPECT_EQ(form, nullptr);
  EXPECT_EQ(calls, 0);
  EXPECT_FALSE(after.active());
  after.end();
}

#ifndef NDEBUG
TEST(ControlsDeathTest, ACommandIsNotOverwritten) {
  TestForm form;
  form.cmdOK.setCommand([] {});
  EXPECT_DEATH(form.cmdOK.setCommand([] {}), "has a command already");
}
#endif

TEST(Controls, ListKeepsItsCurrentItemThroughChanges) {
  TestForm form;
  for (const char* text : {"a", "b", "c"}) form.lstItems.add(text);
  form.lstItems.setCurrent(2);
  form.lstItems.remove(0);
  EXPECT_EQ(form.lstItems.item(form.lstItems.current()), "c");
  form.lstItems.insert(0, "new");
  EXPECT_EQ(form.lstItems.item(form.lstItems.current()), "c");
  form.lstItems.setSelected(1, true);
  EXPECT_EQ(form.lstItems.selectedItems(), std::vector<int>{1});
  EXPECT_THROW(form.lstItems.item(3), Error);
}

TEST(Grid, EditsAreRecordedOnceAndNotified) {
  TestForm form;
  Worksheet sheet;
  Grid grid(form, "F1", sheet);
  int edits = 0;
  std::vector<std::string> steps;
  keep(grid.onEdit([&] { ++edits; }));
  const auto write = [&] { sheet.TextRC(1, 1, "x"); };
  grid.edit("alone", write);
  EXPECT_EQ(edits, 1) << "without a view";

  grid.setRecorder({[&](std::string_view name, const std::function<void()>& change) {
                      steps.emplace_back(name);
                      change();
                    },
                    [&] { steps.emplace_back("forgotten"); }});
  grid.edit("outer", [&] { grid.edit("inner", write); });
  EXPECT_EQ(edits, 2);
  const auto revision = grid.revision();
  EXPECT_THROW(grid.edit("fails", [&] { throw Error("half-way"); }), Error);
  EXPECT_EQ(edits, 3) << "what it did until then stays";
  EXPECT_NE(grid.revision(), revision);
  grid.replace([&] { grid.edit("within", write); });
  EXPECT_EQ(edits, 3);
  EXPECT_EQ(steps, (std::vector<std::string>{"outer", "fails", "forgotten"}));
}

TEST(Controls, DisabledButtonDoesNothing) {
  TestForm form;
  int clicks = 0;
  form.cmdOK.setCommand([&] { ++clicks; });
  form.cmdOK.setEnabled(false);
  form.cmdOK.click();
  EXPECT_EQ(clicks, 0);
}

TEST(ConsoleDialogs, TakesAnswersInOrderAndThenTheSafeOne) {
  std::ostringstream messages;
  ConsoleDialogs dialogs(messages, {"yes", "typed"});
  EXPECT_EQ(dialogs.messageBox("Go?", MessageButtons::YesNo, MessageIcon::None, ""), Answer::Yes);
  EXPECT_EQ(dialogs.inputBox("Name", "", "proposal"), "typed");
  EXPECT_EQ(dialogs.inputBox("Name", "", "proposal"), "proposal");
  EXPECT_EQ(dialogs.messageBox("Go?", MessageButtons::YesNo, MessageIcon::None, ""), Answer::No);
  EXPECT_EQ(dialogs.messageBox("Go?", MessageButtons::YesNoCancel, MessageIcon::None, ""),
            Answer::Cancel);
  EXPECT_TRUE(dialogs.openFiles({}).empty());
  EXPECT_NE(messages.str().find("Go?\n"), std::string::npos);
}

TEST(ScriptedDialogs, FailsOnAQuestionNobodyExpected) {
  ScriptedDialogs dialogs;
  dialogs.expectMessage("Known");
  EXPECT_EQ(dialogs.messageBox("Known", MessageButtons::Ok, MessageIcon::None, ""), Answer::Ok);
  EXPECT_THROW(dialogs.messageBox("Unknown", MessageButtons::Ok, MessageIcon::None, ""),
               std::logic_error);
  dialogs.expectForm("frmTest", [](Form& form) {
    dynamic_cast<TextBox&>(*form.control("txtName")).setText("set by the user");
  });
  TestForm form;
  dialogs.showModal(form);
  EXPECT_EQ(form.txtName.text(), "set by the user");
}

TEST(WorksheetDialogs, EndingOfTheNameSettlesTheKind) {
  ScriptedDialogs dialogs;
  std::string path;
  FileType type = FileType::Excel;
  dialogs.expectSave("a.TXT");
  EXPECT_TRUE(SaveFileDlg(dialogs, "Save", path, type));
  EXPECT_EQ(type, FileType::Text);
  dialogs.expectSave("b.unknown");
  EXPECT_TRUE(SaveFileDlg(dialogs, "Save", path, type));
  EXPECT_EQ(type, FileType::Text);
  dialogs.expectSave(std::nullopt);
  EXPECT_FALSE(SaveFileDlg(dialogs, "Save", path, type));
  EXPECT_EQ(path, "b.unknown");
}

}  // namespace
}  // namespace lodex
