#include "import/SaveInDB.h"

#include <gmock/gmock.h>

#include "db/Recordset.h"
#include "import/ImportFixture.h"

namespace lodex {
namespace {

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

  frmDDB destination{session};
  SavingStage stage{shell, session, sheets, destination};
};

TEST_F(SaveTest, MakesTablesAndWritesScaledRoundedValues) {
  addAssays({"|S1|0.5|gneiss|1.2345", "||7|nobody|1", "|O'Brien]|2||x;--"});
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
  EXPECT_EQ(stage.SaveErrors(), 1);
}

TEST_F(SaveTest, AbortKeepsWhatWasWritten) {
  addAssays({"|S1|1|a|1", "|S2|2|b|2", "|S3|3|c|3"});
  MappedDatabase& target = destination.destination();
  const SheetToSave sheet{"assays", &sheets.sheet(1).F1D, sheets.sheet(1).structure()};
  int count = 0;
  Session* acting = nullptr;
  NoEvents user([&] { acting->progress.AbortFlag = ++count == 3; });
  Session own{Services{dialogs, user, clipboard}};
  acting = &own;
  dialogs.expectMessage("Aborted!");
  EXPECT_FALSE(saveSheets(own, target, {{sheet}, false, false, false}).finished);
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
