#include "calc/CalculationGroup.h"

#include <gmock/gmock.h>

#include "calc/CalcFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MethodNames, EndAtTheFirstDot) {
  EXPECT_EQ(methodNameOf("C:\\groups\\CIPW.norm.xls"), "CIPW");
  EXPECT_EQ(methodNameOf("/groups/REE.xlsx"), "REE");
}

TEST(References, AreToldFromItems) {
  struct Case {
    const char* text;
    bool is;
    const char* method;
    const char* item;
  };
  for (const Case& c :
       {Case{"CIPW.An", true, "CIPW", "An"}, Case{"[CIPW].[An %]", true, "CIPW", "An %"},
        Case{"[My.Norm].[D.I.]", true, "My.Norm", "D.I."}, Case{"SiO2 %", false, "", ""},
        Case{"D.I.", false, "", ""}, Case{".An", false, "", ""}, Case{"CIPW.", false, "", ""}}) {
    std::string method;
    std::string item;
    EXPECT_EQ(splitReference(c.text, method, item), c.is) << c.text;
    EXPECT_EQ(method + "/" + item, std::string(c.method) + "/" + c.item) << c.text;
  }
}

class CalculationGroupTest : public CalcFixture {
 protected:
  void load() { calculations.AlustaCALC(false); }
  CalculationGroup& group = calculations.group;
};

TEST_F(CalculationGroupTest, ListsMethodsByTheirPlaceThenByFileName) {
  writeMethod("Beta.xls", {.list = {"place", "2"}});
  writeMethod("alpha.xlsx", {.list = {"2"}});
  writeMethod("Last.xls", {.list = {"7"}});
  writeMethod("First.more.xls", {.list = {"1"}});
  writeMethod("Unplaced.xls", {});
  write("groups/TEST/~$Beta.xlsx", "owner");
  write("groups/TEST/notes.txt", "not a method");
  load();
  // Unplaced follows Last, which made the list seven long before.
  EXPECT_THAT(calculations.lstCalc.items(),
              ElementsAre("First", "alpha", "Beta", "Last", "Unplaced"));
  EXPECT_THAT(calculations.cmbRoutines.items(),
              ElementsAre("alpha", "Beta", "First", "Last", "Unplaced"));
  EXPECT_EQ(calculations.cmdGroup.caption(), "TEST");
  EXPECT_EQ(group.MethodIndex("BETA"), 2);
  EXPECT_EQ(group.MethodIndex("Gamma"), 0);
}

TEST_F(CalculationGroupTest, ImpossiblePlacesDoNoHarm) {
  writeMethod("Huge.xls", {.list = {"2000000000"}});
  writeMethod("Negative.xls", {.list = {"-3"}});
  load();
  EXPECT_THAT(calculations.lstCalc.items(), ElementsAre("Huge", "Negative"));
}

TEST_F(CalculationGroupTest, ReplacesTheFormerGroup) {
  writeMethod("Old.xls", {});
  load();
  std::filesystem::create_directories(groups / "EMPTY");
  dialogs.expectSelection(0);
  calculations.ChangeGroup();
  EXPECT_EQ(session.record.CurrentCGroup, "EMPTY");
  EXPECT_THAT(calculations.lstCalc.items(), IsEmpty());
  EXPECT_EQ(group.count(), 0);
}

TEST_F(CalculationGroupTest, SaysWhichFoldersAreMissing) {
  session.record.CurrentCGroup = "GONE";
  dialogs.expectMessage("Folders \n" + groups.string() + "\nGONE\n not found!");
  load();
  session.record.CGroupsFolder.clear();
  dialogs.expectMessage("Folder " + folder.string() + "\\C-Groups not found!");
  load();
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(CalculationGroupTest, StopsAtAnUnreadableWorkbookOrSkipsIt) {
  writeMethod("A.xls", {});
  write("groups/TEST/B.xls", "this is no workbook");
  writeMethod("C.xls", {});
  load();
  EXPECT_THAT(calculations.lstCalc.items(), ElementsAre("A"));
  EXPECT_EQ(group.found().all().size(), 1u);
  group.load((groups / "TEST").string(), UnreadableBook::Skip);
  EXPECT_THAT(group.MethodListOrder(), ElementsAre("A", "C"));
}

TEST_F(CalculationGroupTest, TheFirstOfAClashingNameAnswers) {
  writeMethod("norm.old.xls", {.output = {"first||1"}});
  writeMethod("NORM.xls", {.output = {"second||2"}});
  load();
  EXPECT_EQ(group.count(), 2);
  EXPECT_EQ(group.method(group.MethodIndex("Norm")).book.TextSRC(5, 1, 1), "first");
  ASSERT_EQ(group.found().all().size(), 1u);
  EXPECT_THAT(describe(group.found().all()[0]),
              testing::HasSubstr("NORM.xls: The workbook is not used"));
}

TEST_F(CalculationGroupTest, FindsInputAndOutputByNameElseByPlace) {
  Worksheet named;
  named.NumSheets(2);
  named.SheetName(1, "OUTPUT");
  named.SheetName(2, "input");
  named.Write((groups / "TEST" / "Two.xls").string(), FileType::Excel);
  Worksheet().Write((groups / "TEST" / "Bare.xls").string(), FileType::Excel);
  load();
  EXPECT_EQ(group.InputSheetOf("Two"), 2);
  EXPECT_EQ(group.OutputSheetOf("Two"), 1);
  // Its sheets have a role already: none of them is the list or the links.
  EXPECT_EQ(group.method(group.MethodIndex("Two")).linkSheet, 0);
  EXPECT_EQ(group.InputSheetOf("Bare"), 0);
  const MethodBook& bare = group.method(group.MethodIndex("Bare"));
  EXPECT_EQ(bare.book.NumSheets(), 5);
  EXPECT_EQ(bare.inputSheet, 3);
  EXPECT_EQ(bare.outputSheet, 5);
}

TEST_F(CalculationGroupTest, ResolvesTheLinkSheet) {
  writeMethod("Donor.xls", {.map = {"Q||11", "|[An]|12", "Donor.Or||13"}});
  writeMethod("User.xls", {.links = {"priority|3", "a||=1+1|Donor", "b||'SUM(A1:A3)", "x|Donor.Q|",
                                     "[Donor].[An]|Gone.An|", "|Donor.Or|", "|Donor.Missing|5"},
                           .map = {"", "", "", "", "", "", "|||77"}});
  load();
  const MethodBook& user = group.method(group.MethodIndex("User"));
  const auto value = [&](int row) { return user.book.EntrySRC(2, row, 3); };
  EXPECT_EQ(value(2), "=1+1");
  EXPECT_EQ(value(3), "=SUM(A1:A3)");
  EXPECT_EQ(value(4), "11");
  EXPECT_EQ(value(5), "12");
  EXPECT_EQ(value(6), "13");
  EXPECT_EQ(value(7), "77");
  ASSERT_EQ(user.links.size(), 3u);
  EXPECT_EQ(user.links[1].reference, "'[Donor]Map'!$C$2");
  EXPECT_THAT(group.TeeLaskuJono(group.MethodIndex("User")), ElementsAre("Donor"));
  EXPECT_EQ(group.MethodPriority(group.MethodIndex("User"), 4), 3);
  EXPECT_EQ(group.MethodPriority(group.MethodIndex("Donor"), 4), 104);
}

}  // namespace
}  // namespace lodex
