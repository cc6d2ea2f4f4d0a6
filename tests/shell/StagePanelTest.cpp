#include "shell/ShellFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StagePanelTest : public ShellFixture {
 protected:
  /// Sheets "known", which was identified, and "raw", which was not.
  void openTwo() {
    start();
    open({assays("known.txt"), assays("raw.txt")});
    shell->sheets.lstI.selectAll(false);
    toggle(shell->sheets.lstI, "known");
    shell->tbIdentify.click();
  }
  void fillResult() {
    shell->sheets.result.F1D.TextRC(1, 1, "x");
    shell->sheets.result.setCaption(calculationResult);
  }
};

TEST_F(StagePanelTest, EachStageShowsItsFrame) {
  start();
  struct Row {
    const char* name;
    std::function<void()> act;
    int stage;
  };
  StagePanel& stages = shell->stages;
  const Row rows[] = {
      {"Command1", [&] { stages.Command1.click(); }, 1},
      {"Command2", [&] { stages.Command2.click(); }, 2},
      {"back", [&] { stages.cmdBack0.click(); }, 1},
      {"chosen by name", [&] { stages.optStage.select(4); }, 4},
      {"beyond the last", [&] { stages.SetStage(5); }, 4},
      {"before the first", [&] { stages.SetStage(-1); }, 4},
      {"first", [&] { stages.SetStage(0); }, 0},
      {"back from the first", [&] { stages.cmdBack0.click(); }, 0},
  };
  for (const Row& row : rows) {
    row.act();
    EXPECT_EQ(stages.stage(), row.stage) << row.name;
    EXPECT_EQ(stages.optStage.selected(), row.stage) << row.name;
    for (int i = 0; i < stageCount; ++i) {
      EXPECT_EQ(stages.FraSo(i).visible(), i == row.stage) << row.name << ", frame " << i;
    }
  }
  stages.SetStage(3);
  shell->VaiheOn(false);
  EXPECT_FALSE(stages.picCalc.visible() || shell->mnuStagesToggle.checked());
  shell->mnuStagesToggle.click();
  EXPECT_TRUE(stages.picCalc.visible() && shell->mnuStagesToggle.checked());
  EXPECT_EQ(stages.stage(), 3);
}

TEST_F(StagePanelTest, SheetsCanBeEditedInTheFirstTwoStages) {
  openTwo();
  Worksheet& cells = sheet("known").F1D;
  for (int stage = 0; stage < stageCount; ++stage) {
    shell->SetStage(stage);
    const bool editing = stage < 2;
    const GridPermissions& permissions = cells.permissions();
    for (const bool allowed :
         {permissions.AllowFormulas, permissions.AllowInCellEditing, permissions.AllowDelete,
          permissions.AllowAutoFill, permissions.AllowDesigner, permissions.AllowEditHeaders,
          permissions.AllowMoveRange, sheet("known").picLe.visible()}) {
      EXPECT_EQ(allowed, editing) << "stage " << stage;
    }
    EXPECT_EQ(cells.MaxRow(), editing ? maxRows : cells.LastRow()) << "stage " << stage;
    EXPECT_EQ(cells.MaxCol(), editing ? maxColumns : cells.LastCol()) << "stage " << stage;
  }
}

TEST_F(StagePanelTest, StagesSelectAndShowWhatIsIdentified) {
  openTwo();
  fillResult();
  shell->sheets.F1Ref.TextRC(1, 1, "1");
  shell->SetStage(2);
  EXPECT_THAT(selected(shell->sheets.lstSrcF), ElementsAre("known"));
  EXPECT_TRUE(sheet("known").visible());
  EXPECT_FALSE(sheet("raw").visible());
  EXPECT_EQ(shell->sheets.F1Ref.LastRow(), 1) << "sources stay";

  shell->SetStage(3);
  EXPECT_THAT(selected(shell->sheets.lstSrcD), ElementsAre("known", "Calculation Result"));

  shell->SetStage(1);
  EXPECT_EQ(shell->sheets.F1Ref.LastRow(), 0);
  EXPECT_FALSE(sheet("raw").visible());
  sheet("raw").F1D.FixedRows(2);
  shell->SetStage(0);
  EXPECT_TRUE(sheet("raw").visible());
  EXPECT_EQ(sheet("raw").F1D.FixedRows(), 0);
}

TEST_F(StagePanelTest, ClicksInTheListToSave) {
  openTwo();
  fillResult();
  shell->SetStage(3);
  ListBox& list = shell->sheets.lstSrcD;
  toggle(list, "known");
  EXPECT_FALSE(sheet("known").visible());
  toggle(list, "known");
  EXPECT_TRUE(sheet("known").visible());
  toggle(list, "Calculation Result");
  EXPECT_FALSE(shell->sheets.result.visible());
  toggle(list, "Calculation Result");
  EXPECT_TRUE(shell->sheets.result.visible());

  dialogs.expectMessage("Structure of raw is unknown.\nGo back to Identifying stage!");
  toggle(list, "raw");
  EXPECT_FALSE(sheet("raw").visible());
  EXPECT_THAT(selected(list), ElementsAre("known", "Calculation Result"));
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(StagePanelTest, ClicksInTheOtherListsBringSheetsForward) {
  openTwo();
  sheet("raw").hide();
  for (ListBox* list : {&shell->sheets.lstI, &shell->sheets.lstSrcF}) {
    done.clear();
    list->click(1);
    EXPECT_TRUE(sheet("raw").visible());
    EXPECT_THAT(done, ElementsAre("front raw"));
  }
  EXPECT_EQ(shell->sheets.LastSheet(), &sheet("raw"));
}

TEST_F(StagePanelTest, PopUpMenus) {
  openTwo();
  fillResult();
  shell->sheets.TarkastaJaLisaaListaan();
  StagePanel& stages = shell->stages;
  ListBox& methods = shell->calculations.lstCalc;
  methods.clear();
  for (const char* name : {"Ratios", "mica", "REE", "CIPW"}) methods.add(name);
  struct Row {
    MenuItem& entry;
    ListBox& list;
    std::vector<std::string> selected;
  };
  const Row rows[] = {
      {stages.mnuSelectAll1, methods, {"Ratios", "mica", "REE", "CIPW"}},
      {stages.mnuSelectRock, methods, {"Ratios", "REE"}},
      {stages.mnuSelectMineral, methods, {"mica"}},
      {stages.mnuDeselectAll1, methods, {}},
      {stages.mnuSelectAllF, shell->sheets.lstSrcF, {"known", "raw"}},
      {stages.mnuDeselectAllF, shell->sheets.lstSrcF, {}},
      {stages.mnuSelectAllDB, shell->sheets.lstSrcD, {"known", "raw", "Calculation Result"}},
      {stages.mnuDeselectAllDB, shell->sheets.lstSrcD, {}},
      {stages.mnuDeselectAllID, shell->sheets.lstI, {}},
      {stages.mnuSelectAllID, shell->sheets.lstI, {"known", "raw"}},
  };
  for (const Row& row : rows) {
    row.entry.click();
    EXPECT_EQ(selected(row.list), row.selected) << row.entry.name();
  }
  stages.mnuRemove.click();
  EXPECT_EQ(shell->sheets.DataSheetCount(), 2) << "no entry is current";
  shell->sheets.lstI.setCurrent(1);
  stages.mnuRemove.click();
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("known"));
}

TEST_F(StagePanelTest, SelectionOfMethodsCanBeMadeTheDefault) {
  openTwo();
  ListBox& methods = shell->calculations.lstCalc;
  methods.selectAll(false);
  toggle(methods, "REE");
  shell->SetStage(2);
  EXPECT_THAT(selected(methods), ElementsAre("REE")) << "as it was";
  shell->stages.mnuSaveSelectionAsDefault.click();
  methods.selectAll(true);
  shell->SetStage(2);
  EXPECT_THAT(selected(methods), ElementsAre("REE"));
  methods.clear();
  shell->stages.mnuLoadAll.click();
  EXPECT_GT(methods.count(), 2);
}

}  // namespace
}  // namespace lodex
