#include "db/Recordset.h"
#include "shell/ShellFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class OpenTest : public ShellFixture {};
class WorkTest : public ShellFixture {
 protected:
  WorkTest() {
    std::filesystem::create_directories(folder / "groups" / "ROCK");
    settings += "[C-Groups]\nFolder=" + path("groups") + "\nDefault=ROCK\n";
    writeMethod("Ratio", "=Input!C2/Input!C3");
    writeMethod("Metal", "=Input!C2*2");
  }
  // A method over SiO2 and Al2O3.
  void writeMethod(const std::string& name, const std::string& formula) {
    Worksheet book;
    book.NumSheets(5);
    const char* names[] = {"List", "Links", "Input", "Map", "Output"};
    for (int i = 1; i <= 5; ++i) book.SheetName(i, names[i - 1]);
    book.EntrySRC(3, 2, 1, "SiO2 %");
    book.EntrySRC(3, 3, 1, "Al2O3 %");
    book.EntrySRC(5, 1, 1, name);
    book.EntrySRC(5, 1, 3, formula);
    book.Write(path("groups/ROCK/" + name + ".xls"), FileType::Excel);
  }
  void identify() {
    shell->sheets.lstI.selectAll(true);
    shell->cmdIdentify.click();
  }
  std::string database() {
    createDatabase(path("samples.mdb"));
    Connection connection;
    connection.Open(ConnectionString(path("samples.mdb"), "", ""));
    connection.Execute(
        "CREATE TABLE [Rocks] ([SampleNo] TEXT (20), [SiO2 %] SINGLE, [Al2O3 %] SINGLE)");
    connection.Execute("INSERT INTO [Rocks] VALUES ('S1', 50, 10)");
    connection.Execute("CREATE TABLE [Notes] ([Note] MEMO)");
    return path("samples.mdb");
  }
};

TEST_F(OpenTest, ThreeFilesAtOnce) {
  start();
  open({assays("a.txt"), assays("b c.txt"), assays("d.txt")});
  for (ListBox* list : {&shell->sheets.lstI, &shell->sheets.lstSrcF, &shell->sheets.lstSrcD}) {
    EXPECT_THAT(list->items(), ElementsAre("a", "b c", "d")) << list->name();
  }
  EXPECT_THAT(selected(shell->sheets.lstI), ElementsAre("a", "b c", "d"));
  EXPECT_EQ(shell->stages.stage(), 1);
  EXPECT_TRUE(sheet("b c").visible());
  EXPECT_FALSE(session.record.SourcesBuilt);
}

TEST_F(OpenTest, WorkbookOfThreeSheets) {
  Worksheet book;
  book.NumSheets(3);
  for (int i = 1; i <= 3; ++i) book.EntrySRC(i, 1, 1, "on " + std::to_string(i));
  book.Write(path("book.xls"), FileType::Excel);
  start();
  open({path("book.xls"), path("book.xls")});
  EXPECT_THAT(shell->sheets.lstI.items(),
              ElementsAre("book / Sheet3", "book / Sheet2", "book / Sheet1", "book / Sheet31",
                          "book / Sheet22", "book / Sheet13"));
  EXPECT_EQ(sheet("book / Sheet2").F1D.TextRC(1, 1), "on 2");
}

TEST_F(OpenTest, WhatCannotBeOpenedIsToldAndTheRestOpens) {
  start();
  dialogs.expectMessage("Error 0 Cannot open " + path("gone.txt") + ": there is no such file");
  try {
    shell->dropFiles({assays("a.txt"), path("gone.txt"), assays("b.txt")});
  } catch (const std::logic_error& unexpected) {
    FAIL() << unexpected.what();
  }
  EXPECT_THAT(shell->sheets.lstI.items(), ElementsAre("a", "b"));
  dialogs.expectOpen({});
  shell->mnuOpen.click();
  EXPECT_EQ(shell->sheets.DataSheetCount(), 2);
}

TEST_F(OpenTest, LastFilesAreOffered) {
  start();
  EXPECT_FALSE(shell->mnuLastFile(1).visible());
  open({assays("a&b.txt"), assays("c.txt")});
  EXPECT_EQ(shell->mnuLastFile(1).caption(), "&1 " + path("c.txt"));
  EXPECT_EQ(shell->mnuLastFile(2).caption(), "&2 " + path("a&&b.txt"));
  EXPECT_FALSE(shell->mnuLastFile(3).visible());
  shell->mnuLastFile(2).click();
  EXPECT_EQ(shell->sheets.DataSheetCount(), 3);
  EXPECT_EQ(shell->mnuLastFile(1).caption(), "&1 " + path("a&&b.txt"));
  EXPECT_FALSE(shell->mnuLastDB(1).visible());
}

TEST_F(OpenTest, NewSheetsAndTheClipboard) {
  start();
  shell->mnuNew.click();
  EXPECT_EQ(shell->sheets.sheet(1).caption(), "New 1");
  dialogs.expectMessage("There is no text on the clipboard.");
  shell->mnuPaste.click();
  clipboard.setText("Sample\tSiO2 %\nS1\t50\n");
  shell->mnuPaste.click();
  frmDataIN& pasted = sheet("New Data 2");
  EXPECT_TRUE(pasted.bIdentified && pasted.statusGreen());
  EXPECT_FALSE(shell->sheets.sheet(1).bIdentified);
  EXPECT_EQ(pasted.itemSheet().elementRow, pasted.SystemRows(sysrow::Element));
}

TEST_F(OpenTest, OtherProgramsHandFilesOver) {
  start();
  shell->LinkExecute("nothing");
  shell->LinkExecute("file;");
  shell->LinkExecute("FILE; " + assays("a.txt") + "\r\n");
  EXPECT_THAT(shell->sheets.lstI.items(), ElementsAre("a"));
}

TEST_F(WorkTest, DatabaseIsASourceInPlaceOfSheets) {
  start();
  open({assays("a.txt")});
  open({database(), path("a.txt")});
  EXPECT_EQ(shell->sheets.DataSheetCount(), 1);
  EXPECT_TRUE(shell->sourceForm.visible());
  EXPECT_EQ(shell->caption(), "TarnKraph (" + path("samples.mdb") + ")");
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("Notes", "Rocks"));
  EXPECT_THAT(shell->sheets.lstI.items(), ElementsAre("a"));
  shell->sourceForm.close();
  shell->mnuLastDB(1).click();
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("Notes", "Rocks"));

  shell->sourceForm.cmdOK.click();
  EXPECT_EQ(shell->stages.stage(), 2);
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("Notes", "Rocks"));
  toggle(shell->sheets.lstSrcF, "Rocks");
  shell->calculations.lstCalc.selectAll(true);
  shell->calculations.cmdCalculate.click();
  Worksheet& result = shell->sheets.result.F1D;
  result.Sheet(result.SheetNumber("Ratio"));
  EXPECT_EQ(result.TextRC(result.LastRow(), 2), "S1");
  EXPECT_EQ(result.TextRC(result.LastRow(), 3), "5");

  shell->sourceForm.show();
  shell->sourceForm.cmdCancel.click();
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("a"));
  EXPECT_FALSE(shell->calculations.databaseTables);
}

TEST_F(WorkTest, DatabaseThatCannotBeOpenedLeavesTheSheetsAsSource) {
  start();
  open({assays("a.txt")});
  open({database()});
  write("bad.mdb", "no database at all");
  dialogs.expectOpen({path("bad.mdb")});
  dialogs.expectMessage("Database " + path("bad.mdb") +
                        " can not be opened neither by using DAO nor ADO connection");
  dialogs.expectMessage("Error in opening database " + path("bad.mdb"));
  shell->btChange.click();
  EXPECT_TRUE(dialogs.allAsked());
  EXPECT_FALSE(shell->mnuLastDB(2).visible());
  EXPECT_THAT(shell->sheets.lstSrcF.items(), ElementsAre("a"));
  EXPECT_EQ(shell->source.pathInUse(), "");
  EXPECT_EQ(shell->tbLodexGeoDB.caption(), path("Geo/System/LODEXGeo.mdb"));
}

TEST_F(WorkTest, RoadFromFilesToTheDatabase) {
  start();
  open({assays("a.txt"), assays("b.txt")});
  identify();
  EXPECT_EQ(shell->stages.stage(), 3);
  EXPECT_TRUE(session.log.visible());
  shell->stages.cmdBack0.click();
  EXPECT_EQ(shell->stages.stage(), 2);
  EXPECT_THAT(selected(shell->sheets.lstSrcF), ElementsAre("a", "b"));
  shell->calculations.cmdCalculate.click();
  EXPECT_EQ(shell->sheets.result.F1D.NumSheets(), 2);
  shell->stages.cmdNext2.click();
  EXPECT_THAT(selected(shell->sheets.lstSrcD), ElementsAre("a", "b", "Calculation Result"));
  toggle(shell->sheets.lstSrcD, "b");
  EXPECT_FALSE(sheet("b").visible());

  shell->destinationForm.openDestination(path("out.mdb"), true);
  EXPECT_EQ(shell->saving.lblDB.caption(), "out.mdb");
  EXPECT_TRUE(sheet("a").Changed);
  shell->saving.cmdSaveInDBNow.click();
  EXPECT_EQ(shell->stages.stage(), 3);
  EXPECT_FALSE(sheet("a").Changed);
  EXPECT_TRUE(sheet("b").Changed);
  Connection connection;
  connection.Open(ConnectionString(path("out.mdb"), "", ""));
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM [ANALYSES]")->RecordCount(), 2);
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM [Ratio]")->RecordCount(), 2);
  shell->stages.cmdNext3.click();
  EXPECT_EQ(shell->stages.stage(), 4);
}

TEST_F(WorkTest, ASheetSavedWithErrorsStaysChanged) {
  start();
  open({assays("a.txt")});
  identify();
  shell->destinationForm.openDestination(path("out.mdb"), true);
  shell->saving.cmdSaveInDBNow.click();
  EXPECT_FALSE(sheet("a").Changed);
  // The same samples again: their keys are taken.
  sheet("a").Changed = true;
  shell->saving.cmdSaveInDBNow.click();
  EXPECT_GT(shell->saving.SaveErrors(), 0);
  EXPECT_TRUE(sheet("a").Changed);
}

TEST_F(WorkTest, ErrorsEndACommandWithTheirText) {
  start();
  shell->sheets.lstI.selectAll(false);
  dialogs.expectMessage("Select data sources!");
  shell->cmdIdentify.click();
  EXPECT_EQ(shell->stages.stage(), 0) << "nothing was identified";
  dialogs.expectMessage("Error 42 broken");
  session.progress.ShowProgress("Working", 1);
  session.run([] { throw Error("broken", 42); });
  EXPECT_FALSE(session.progress.visible());
}

TEST_F(WorkTest, SingleSampleTakesTheCurrentRowOfTheLastSheet) {
  start();
  open({assays("a.txt"), assays("b.txt")});
  identify();
  frmDataIN& last = sheet("a");
  last.activate();
  last.F1D.SetActiveCell(last.FirstDataRow() + 1, 4);
  shell->tbSingle.click();
  const Worksheet& input = shell->singleSample().F1D;
  EXPECT_TRUE(shell->singleSample().visible());
  EXPECT_EQ(input.TextRC(1, 2), "S2");
  EXPECT_EQ(input.TextRC(2, 1) + "=" + input.TextRC(2, 2), "SiO2 %=60");
  EXPECT_EQ(input.ValueRC(2, 2).kind(), ValueKind::Number);
  // A row that describes the columns is no sample.
  last.F1D.SetActiveCell(1, 1);
  shell->tbSingle.click();
  EXPECT_EQ(input.TextRC(1, 2), "S1");
  last.close();
  shell->tbSingle.click();
  EXPECT_EQ(input.TextRC(2, 2), "50") << "the other sheet is the last one now";
  // Identifying unloads the form.
  shell->sheets.lstI.selectAll(true);
  shell->cmdIdentify.click();
  EXPECT_FALSE(shell->singleSample().visible());
}

TEST_F(WorkTest, ToolsTellAndAskThePlatform) {
  start();
  struct Row {
    const char* name;
    std::function<void()> act;
    std::vector<std::string> done;
  };
  const std::string ini = path("user") + "/ini/x.ini";
  const Row rows[] = {
      {"sample database",
       [&] {
         dialogs.expectMessage("LodexGeo -database currently in use:\n" +
                               path("Geo/System/LODEXGeo.mdb"));
         shell->tbLodexGeoDB.click();
       },
       {}},
      {"mineral database",
       [&] {
         dialogs.expectMessage("Mineral -database currently in use:\n" +
                               path("Geo/System/LODEXGeo.mdb"));
         shell->tbMineralDB.click();
       },
       {}},
      {"about",
       [&] {
         dialogs.expectMessage("Lodex Geo 1.2.3");
         shell->mnuAbout.click();
       },
       {}},
      {"ini",
       [&] {
         dialogs.expectOpen({ini});
         shell->tbIni.click();
       },
       {"edit " + ini}},
      {"ini cancelled",
       [&] {
         dialogs.expectOpen({});
         shell->mnuEditIni.click();
       },
       {}},
      {"help", [&] { shell->mnuHelp.click(); }, {"help MDIMain"}},
      {"tile", [&] { shell->mnuTile.click(); }, {"arrange 1"}},
      {"not yet", [&] { dynamic_cast<Button*>(shell->control("tbModal"))->click(); }, {}},
  };
  for (const Row& row : rows) {
    done.clear();
    row.act();
    EXPECT_EQ(done, row.done) << row.name;
    EXPECT_TRUE(dialogs.allAsked()) << row.name;
  }
  shell->mnuButtonsToggle.click();
  EXPECT_FALSE(shell->tbMain.visible() || shell->mnuButtonsToggle.checked());
}

TEST_F(WorkTest, TheReportLeadsToTheCellThatWasNoticed) {
  start();
  const std::string file = assays("ores.txt");
  open({file, assays("other.txt")});
  EXPECT_FALSE(shell->tbReport.visible());
  Findings found;
  found.warn("Text counted as 0", {.file = file, .row = 3, .column = 2});
  found.error("Not identified", {.sheet = "other", .column = 4});
  found.error("No such sheet", {.file = file, .sheet = "Cu"});
  session.notice(found);
  EXPECT_EQ(shell->tbReport.caption(), "2 errors, 1 warning");
  EXPECT_TRUE(shell->tbReport.visible());
  auto* entry = dynamic_cast<MenuItem*>(shell->control("mnuReport"));
  EXPECT_TRUE(entry->checked()) << "opened by itself";
  done.clear();
  for (const int row : {3, 4, 5}) shell->report.gridF1Report.click(row, 1);
  EXPECT_THAT(done, ElementsAre("front other", "front ores"));
  EXPECT_EQ(sheet("ores").F1D.Row(), 3);
  EXPECT_EQ(sheet("ores").F1D.Col(), 2);
  EXPECT_EQ(sheet("other").F1D.Col(), 4);
  entry->click();
  EXPECT_FALSE(shell->report.visible() || entry->checked());
  shell->tbReport.click();
  EXPECT_TRUE(shell->report.visible());
}

TEST_F(WorkTest, ValuesBelowTheDetectionLimitAreConvertedOnDemand) {
  start();
  open({write("a.txt", "Sample\tCu ppm\tNote\n<1\t< 0.5\t<2\nS2\t<\t\nS3\t<-1\t\n")});
  EXPECT_EQ(shell->cmdBDL.caption(), "BDLC=OFF");
  shell->tbIdentify.click();
  frmDataIN& rocks = sheet("a");
  const int row = rocks.FirstDataRow();
  EXPECT_EQ(rocks.F1D.TextRC(row, 3), "< 0.5");
  shell->cmdBDL.click();
  EXPECT_EQ(shell->cmdBDL.caption(), "BDLC=ON");
  shell->tbIdentify.click();
  EXPECT_EQ(rocks.F1D.ValueRC(row, 3).asNumber(), 0.25);
  EXPECT_EQ(rocks.F1D.TextRC(row, 2), "<1") << "identifiers stay";
  EXPECT_EQ(rocks.F1D.TextRC(row, 4), "<2") << "so does what is no element";
  EXPECT_EQ(rocks.F1D.TextRC(row + 1, 3), "<");
  EXPECT_EQ(rocks.F1D.TextRC(row + 2, 3), "<-1");
  EXPECT_THAT(session.log.txtLog.text(),
              HasSubstr("A value below the detection limit was replaced by half"));
}

TEST_F(WorkTest, ViewerIsTriedAtTwoPlacesAndEndsTheProgram) {
  start();
  viewerFails = 2;
  dialogs.expectMessage("Error not there 53");
  dialogs.expectMessage("Error 53 not there");
  shell->Command3.click();
  EXPECT_FALSE(shell->closed());
  done.clear();
  viewerFails = 1;
  dialogs.expectMessage("Error not there 53");
  dialogs.expectMessage("Are you sure to exit Lodex Geo?", Answer::Ok);
  shell->Command3.click();
  EXPECT_THAT(done, ElementsAre("view " + folder.string() + "\\LodexData.exe ",
                                "view C:\\Lodex5\\LodexData.exe ", "quit"));
}

TEST_F(WorkTest, SetOfTheListIsShownAndLoaded) {
  std::filesystem::create_directories(folder / "groups" / "MINERAL");
  start();
  ComboBox& list = shell->cmbSets;
  EXPECT_THAT(list.items(), ElementsAre("ROCK", "MINERAL", "Ni-SURVEY", "MISCE", "USER", "OTHER"));
  list.click(1);
  EXPECT_EQ(shell->lblSet.caption(), "MINERAL");
  EXPECT_EQ(shell->calculations.cmdGroup.caption(), "MINERAL");
  EXPECT_EQ(shell->calculations.lstCalc.count(), 0);
  list.click(3);
  EXPECT_EQ(shell->lblSet.caption(), "MISCE") << "shown although there is no such folder";
  EXPECT_EQ(session.record.CurrentCGroup, "MINERAL");
}

}  // namespace
}  // namespace lodex
