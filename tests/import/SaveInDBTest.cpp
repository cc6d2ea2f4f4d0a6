#include "import/SaveInDB.h"

#include <gmock/gmock.h>

#include "OtherUser.h"
#include "basic/Error.h"
#include "db/Recordset.h"
#include "import/ImportFixture.h"

namespace lodex {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class SaveTest : public ImportFixture {
 protected:
  SaveTest() { EXPECT_TRUE(destination.openDestination(path("out.mdb"), true)); }

  // A sheet with captions in column 1, the ID in column 2 and the system rows TABLE to MULTIPLIER
  // in rows 1 to 7 as far as `rows` gives them; data follow from row 8 on.
  frmDataIN& addSheet(std::string_view name, const std::vector<std::string>& rows) {
    frmDataIN& sheet = sheets.newSheet(name);
    fill(sheet.F1D, rows);
    SheetStructure structure;
    for (int i = 0; i < 7; ++i) structure.row(sysrow::Table + i) = i + 1;
    structure.firstDataRow = 8;
    structure.idColumn = 2;
    sheet.setStructure(structure);
    sheet.bIdentified = true;
    sheets.TarkastaJaLisaaListaan();
    sheets.lstSrcD.selectAll(true);
    return sheet;
  }
  frmDataIN& addAssays(const std::vector<std::string>& data) {
    std::vector<std::string> rows{"TABLE|Assays|Assays|Log|Assays",
                                  "FIELD|SampleNo|Fe/XRF/%|Rock type|Au",
                                  "TYPE|TEXT(20)(U,I)|SINGLE|TEXT|DOUBLE (I)",
                                  "LENGTH|||8|",
                                  "DIGITS|||x|2",
                                  "INDEXED|YES|||",
                                  "MULTIPLIER||10000||"};
    rows.insert(rows.end(), data.begin(), data.end());
    return addSheet("assays", rows);
  }
  std::vector<std::string> saved(const std::string& sql) {
    std::vector<std::string> lines;
    const auto records = destination.destination().connection.OpenRecordset(sql);
    for (; !records->Eof(); records->MoveNext()) {
      std::vector<std::string> texts;
      for (size_t i = 0; i < records->Fields().size(); ++i) {
        texts.push_back(records->Text(static_cast<int>(i)));
      }
      lines.push_back(join(texts, "|"));
    }
    return lines;
  }

  // What the last saving noticed, a line each.
  std::vector<std::string> findings() {
    std::vector<std::string> lines;
    for (const Finding& finding : stage.outcome().found.all()) lines.push_back(describe(finding));
    return lines;
  }
  void run(const std::string& sql) { destination.destination().connection.Execute(sql); }

  frmDDB destination{session};
  SavingStage stage{shell, session, sheets, destination};
};

TEST_F(SaveTest, MakesTablesAndWritesScaledRoundedValues) {
  addAssays({"|S1|0.5|gneiss|1.2345", "|O'Brien]|2||x;--"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [Assays]"), ElementsAre("S1|5000|1.23", "O'Brien]|20000|"));
  EXPECT_THAT(saved("SELECT * FROM [Log]"), ElementsAre("S1|gneiss", "O'Brien]|"));
  EXPECT_EQ(stage.SaveErrors(), 1);
  const std::string errors = session.log.txtErr.text();
  EXPECT_THAT(errors, HasSubstr("1 !ERROR in writing Sample O'Brien] in Assays. ErrNumber="));
  EXPECT_THAT(errors, HasSubstr("1 errors detected"));
  EXPECT_TRUE(logHas("Saving in " + path("out.mdb") + " started at "));
  EXPECT_TRUE(logHas("  -EXECUTED: CREATE TABLE [Assays]"));
  EXPECT_TRUE(
      logHas("  -EXECUTED: CREATE UNIQUE INDEX SampleNo ON [Assays] (SampleNo) WITH PRIMARY"));
  EXPECT_TRUE(logHas("  -EXECUTED: ALTER TABLE [Log] ADD COLUMN [Rock type] TEXT(8)"));
  EXPECT_TRUE(logHas("  -EXECUTED: CREATE INDEX Au ON [Assays] (Au)\r\n"));
  EXPECT_EQ(session.log.caption(), "*** SAVING IN DATABASE " + path("out.mdb") + " ***");
  EXPECT_EQ(destination.destination().map.PrimaryKeyField("Log"), "SampleNo");
}

TEST_F(SaveTest, AppendingTwiceCountsTheKeysThatExist) {
  addAssays({"|S1|1|a|1"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_EQ(stage.SaveErrors(), 2);
  EXPECT_EQ(saved("SELECT * FROM [Assays]").size(), 1U);
  EXPECT_FALSE(logHas("EXECUTED"));
}

TEST_F(SaveTest, MergeFillsOrReplaces) {
  frmDataIN& sheet = addAssays({"|S1|5||5", "|S2|1|a|1"});
  EXPECT_TRUE(stage.SaveInDB(false));
  for (const char* cell : {"s1|7|b|", "S3|3|c|3"}) {
    const auto cells = split(cell, "|");
    const int row = cells[0] == "s1" ? 8 : 9;
    for (int i = 0; i < 4; ++i) sheet.F1D.TextRC(row, i + 2, cells[static_cast<size_t>(i)]);
  }
  stage.chkMerge.setChecked(true);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [Assays] ORDER BY [SampleNo]"),
              ElementsAre("S1|50000|5", "S2|10000|1", "S3|30000|3"));
  EXPECT_THAT(saved("SELECT [Rock type] FROM [Log] ORDER BY [SampleNo]"),
              ElementsAre("b", "a", "c"));
  EXPECT_TRUE(
      logHas("-Sample s1 already exists in table. Writing in fields where Null value.Assays"));
  stage.chkOverWrite.setChecked(true);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [Assays] ORDER BY [SampleNo]"),
              ElementsAre("S1|70000|", "S2|10000|1", "S3|30000|3"));
  EXPECT_TRUE(logHas("-Sample s1 already exists in table. Overwritind data!Log"));
  EXPECT_EQ(stage.SaveErrors(), 0);
  stage.chkMerge.setChecked(false);
  EXPECT_FALSE(stage.chkOverWrite.checked());
}

TEST_F(SaveTest, SheetsWithoutDatabaseRowsAreAskedFor) {
  frmDataIN& sheet = sheets.newSheet("bare");
  fill(sheet.F1D, {"No|Fe|", "7|1.5|"});
  sheet.F1D.SheetName(1, "Rocks");
  SheetStructure structure;
  structure.row(sysrow::Header) = 1;
  structure.firstDataRow = 2;
  structure.idColumn = 1;
  sheet.setStructure(structure);
  sheets.TarkastaJaLisaaListaan();
  sheets.lstSrcD.selectAll(true);
  const std::string question = "Store data of file " + sheet.caption() +
                               " using default table and fields?\n-Yes = Use default names\n-No = "
                               "Don't save data of this file\n-Cancel = Cancel saving";
  dialogs.expectMessage(question, Answer::Cancel);
  EXPECT_FALSE(stage.SaveInDB(false));
  dialogs.expectMessage(question, Answer::No);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_EQ(destination.destination().map.tableCount(), 0);
  dialogs.expectMessage(question, Answer::Yes);
  dialogs.expectInput("Field type for [Rocks].[No]", "LONG");
  dialogs.expectInput("Field type for [Rocks].[Fe]", std::nullopt);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [Rocks]"), ElementsAre("7|1.5"));
  EXPECT_TRUE(logHas("ADD COLUMN [Fe] TEXT (25)"));
}

TEST_F(SaveTest, CellsCannotBringSql) {
  addSheet("bad",
           {"TABLE|T|T|U", "FIELD|Id|A|B", "TYPE|TEXT(9)|LONG, [C] LONG|TEXT(5); DROP TABLE T",
            "LENGTH", "DIGITS", "INDEXED", "MULTIPLIER", "|1|2|3"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [T]"), ElementsAre("1"));
  EXPECT_THAT(session.log.txtLog.text(), HasSubstr("!ERROR in executing command"));
  // Each field is reported, and each value that it should have taken.
  EXPECT_EQ(stage.SaveErrors(), 4);
  EXPECT_THAT(findings(), Contains("sheet bad1, C3: Field [A] of table [T] could not be made: "
                                   "\"LONG, [C] LONG\" is not a field type"));
}

TEST_F(SaveTest, ARefusedRecordDoesNotStopTheNext) {
  addAssays({"|S1|1||", "|S1|2||", "|S2|3||", "|a name that is far too long|4||", "|S3|5||"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT [SampleNo] FROM [Assays]"), ElementsAre("S1", "S2", "S3"));
  EXPECT_EQ(stage.SaveErrors(), 4);
  EXPECT_EQ(stage.savedRecords(), 6);
}

TEST_F(SaveTest, MultipliesBeforeItRounds) {
  addSheet("digits", {"TABLE|T|T", "FIELD|Id|A", "TYPE|TEXT(9)|DOUBLE", "LENGTH", "DIGITS||1",
                      "INDEXED", "MULTIPLIER||100", "|1|0.1234", "|2|<0.1", "|3|  "});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [T]"), ElementsAre("1|12.3", "2|", "3|"));
  EXPECT_EQ(stage.SaveErrors(), 1);
}

TEST_F(SaveTest, WhatIsLeftOutIsReported) {
  frmDataIN& sheet = addSheet(
      "left", {"TABLE|T|T|*|", "FIELD|Id|A|B|C", "TYPE|TEXT(9)|LONG|LONG|LONG", "LENGTH", "DIGITS",
               "INDEXED", "MULTIPLIER", "|1|2|3|", "||4||", "|||5|", "| |", "|A note||"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [T] ORDER BY [Id]"), ElementsAre("1|2", "A note|"));
  EXPECT_EQ(stage.SaveErrors(), 1);
  EXPECT_THAT(findings(), ElementsAre("sheet left1, row 9: The row has values but no identifier "
                                      "and was not saved"));
  EXPECT_EQ(stage.outcome().exitStatus(), 1);
  sheet.F1D.TextRC(8, 5, "homeless");
  sheet.F1D.TextRC(9, 2, "4");
  stage.chkMerge.setChecked(true);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(findings(), ElementsAre("sheet left1, E8: The column has values but no table or no "
                                      "field, and was not saved"));
}

TEST_F(SaveTest, TablesAndFieldsThatCannotBeMadeCountForEveryRecord) {
  run("CREATE TABLE [Real] ([Id] LONG)");
  run("CREATE VIEW [Log] AS SELECT [Id] FROM [Real]");
  addAssays({"|S1|1|a|1", "|S2|2|b|2"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT [SampleNo] FROM [Assays]"), ElementsAre("S1", "S2"));
  EXPECT_EQ(stage.SaveErrors(), 3);
  EXPECT_THAT(findings(), Contains("sheet assays1, row 8, record S1: The record was not saved: "
                                   "there is no table [Log] (2 times)"));
}

TEST_F(SaveTest, UnknownTypesAreRefused) {
  addSheet("types", {"TABLE|T|T|T", "FIELD|Id|A|B", "TYPE|TEXT(9)|SINGEL|MEMO", "LENGTH", "DIGITS",
                     "INDEXED", "MULTIPLIER", "|1|2|x", "|2||y"});
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [T]"), ElementsAre("1|x", "2|y"));
  EXPECT_THAT(findings(),
              ElementsAre("sheet types1, C3: Field [A] of table [T] could not be made: \"SINGEL\" "
                          "is not a field type",
                          "sheet types1, C8, record 1: The value was not saved: table [T] has no "
                          "field [A]"));
}

TEST_F(SaveTest, TablesMadeByAnotherProgramMeanwhileAreUsed) {
  addAssays({"|S1|1|a|1"});
  Connection other;
  other.Open(ConnectionString(path("out.mdb"), "", ""));
  other.Execute("CREATE TABLE [Assays] ([SampleNo] TEXT (20) PRIMARY KEY)");
  other.Execute("CREATE TABLE [Log] ([SampleNo] TEXT (20) PRIMARY KEY, [Rock type] TEXT (8))");
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_EQ(stage.SaveErrors(), 0);
  EXPECT_THAT(saved("SELECT * FROM [Assays]"), ElementsAre("S1|10000|1"));
  EXPECT_THAT(saved("SELECT * FROM [Log]"), ElementsAre("S1|a"));
}

TEST_F(SaveTest, IdentifiersAreStoredAsTheyAreOrNotAtAll) {
  frmDataIN& sheet =
      addSheet("ids", {"TABLE|T|T", "FIELD|Id|A", "TYPE||LONG", "LENGTH", "DIGITS", "INDEXED",
                       "MULTIPLIER", "|10.25|1", "|00123|2", "|5E1|3", "|50|4"});
  sheet.CheckIDCOL(2, 0);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT [Id] FROM [T]"), ElementsAre("00123", "10.25", "50", "5E1"));
  EXPECT_EQ(stage.SaveErrors(), 0);

  run("DROP TABLE [T]");
  run("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [A] LONG)");
  for (const bool merge : {true, false}) {
    stage.chkMerge.setChecked(merge);
    EXPECT_TRUE(stage.SaveInDB(false));
    EXPECT_THAT(saved("SELECT * FROM [T]"), ElementsAre("50|4"));
    EXPECT_EQ(stage.SaveErrors(), merge ? 3 : 4);
  }
}

TEST_F(SaveTest, OfTwoColumnsForAFieldTheFirstValueCounts) {
  addSheet("twice",
           {"HEADER", "TABLE|T|T|T|T", "FIELD|Id|Fe|Fe|id", "TYPE|TEXT(9)|DOUBLE|DOUBLE|TEXT(9)",
            "DIGITS", "INDEXED", "MULTIPLIER", "|1|5|5.0|1", "|2||7|2", "|3|8|9|3", "|4||x|other"});
  SheetStructure structure = sheets.sheet(1).structure();
  for (int i = sysrow::Table; i <= sysrow::Multiplier; ++i) structure.row(i) = 0;
  structure.row(sysrow::Table) = 2;
  structure.row(sysrow::Field) = 3;
  structure.row(sysrow::Type) = 4;
  sheets.sheet(1).setStructure(structure);
  stage.chkMerge.setChecked(true);
  stage.chkOverWrite.setChecked(true);
  EXPECT_TRUE(stage.SaveInDB(false));
  EXPECT_THAT(saved("SELECT * FROM [T]"), ElementsAre("1|5", "2|7", "3|8", "4|"));
  EXPECT_THAT(
      findings(),
      ElementsAre("sheet twice1, column D: Several columns feed field [Fe] of table [T]: \"C\" and "
                  "\"D\"; the first value of each record is taken",
                  "sheet twice1, column E: Several columns feed field [id] of table [T]: the "
                  "identifiers and \"E\"; the first value of each record is taken",
                  "sheet twice1, D10, record 3: A value was not saved: an earlier column has "
                  "another one for field [Fe]",
                  "sheet twice1, D11, record 4: Field [Fe] of table [T] takes numbers, not \"x\"",
                  "sheet twice1, E11, record 4: A value was not saved: an earlier column has "
                  "another one for field [id]"));
  EXPECT_TRUE(logHas("-Sample 3: field [Fe] gets 8, not 9"));
}

TEST_F(SaveTest, AWriteProtectedDatabaseGivesOneMessage) {
  addAssays({"|S1|1|a|1", "|S2|2|b|2", "|S3|3|c|3"});
  EXPECT_TRUE(stage.SaveInDB(false));
  const ReadOnly locked(folder);
  const AsOtherUser user;
  EXPECT_TRUE(destination.openDestination(path("out.mdb"), false));
  EXPECT_THROW(stage.SaveInDB(false), Error);
  EXPECT_EQ(stage.SaveErrors(), 0);
  EXPECT_EQ(stage.outcome().reason, "Database " + path("out.mdb") + " is write-protected");
}

TEST_F(SaveTest, AbortKeepsWhatWasWritten) {
  addAssays({"|S1|1|a|1", "|S2|2|b|2", "|S3|3|c|3"});
  MappedDatabase& target = destination.destination();
  const SheetToSave sheet{"assays", &sheets.sheet(1).F1D, sheets.sheet(1).structure(), 0};
  Session* acting = nullptr;
  NoEvents user([&] {
    acting->progress.AbortFlag = acting->progress.txtInfo.caption().starts_with("Writing row 2 ");
  });
  Session own{Services{dialogs, user, clipboard}};
  acting = &own;
  dialogs.expectMessage("Aborted!");
  const Outcome outcome = saveSheets(own, target, {{sheet}, false, false, false}).outcome;
  EXPECT_TRUE(outcome.aborted());
  EXPECT_EQ(outcome.reason, "after sample S2, row 9");
  EXPECT_THAT(saved("SELECT [SampleNo] FROM [Log]"), ElementsAre("S1", "S2"));
  EXPECT_THAT(own.log.txtLog.text(), HasSubstr("!! Aborted !!"));
  EXPECT_FALSE(own.progress.AbortFlag);
}

TEST_F(SaveTest, DestinationIsAskedForAndStaysWhenAnotherFails) {
  frmDDB none(session);
  Form panel("MDIMain");
  SavingStage empty(panel, session, sheets, none);
  dialogs.expectForm("frmDDB", [](Form& form) { form.hide(); });
  dialogs.expectMessage("Define database");
  EXPECT_FALSE(empty.SaveInDB(false));
  dialogs.expectForm("frmDDB", [](Form& form) { form.hide(); });
  empty.chkAndSave.setChecked(true);
  EXPECT_FALSE(empty.chkAndSave.checked());
  dialogs.expectMessage("Database could not be mapped!");
  EXPECT_FALSE(destination.openDestination(path("missing.mdb"), false));
  EXPECT_EQ(destination.destination().path, path("out.mdb"));
  dialogs.expectMessage("Source not defined!");
  destination.cmdSame.click();
  dialogs.expectInput("Give name for a new table", "USERTABLE");
  dialogs.expectMessage("Are you sure to run command:\nCREATE TABLE [USERTABLE]", Answer::Yes);
  destination.cmdCreateTable.click();
  EXPECT_THAT(destination.lstDTables.items(), ElementsAre("USERTABLE"));
  destination.lstDTables.setCurrent(0);
  dialogs.expectForm("frmAddField", [](Form& form) {
    dynamic_cast<TextBox&>(*form.control("txtFName")).setText("Zone");
    dynamic_cast<Button&>(*form.control("cmdAdd")).click();
  });
  dialogs.expectMessage(
      "You are creating field [Zone] in table [USERTABLE] using command \nALTER TABLE [USERTABLE] "
      "ADD COLUMN [Zone] TEXT (50)\nAre you sure?",
      Answer::Yes);
  dialogs.expectMessage("Field Zone is being added!");
  destination.cmdCreateField.click();
  EXPECT_THAT(destination.lstDFields.items(), ElementsAre("Zone"));
}

}  // namespace
}  // namespace lodex
