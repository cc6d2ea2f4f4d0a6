#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "db/frmConnect.h"
#include "db/frmDB.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class SourceTest : public testing::Test {
 protected:
  SourceTest() {
    std::filesystem::create_directories(folder / "data");
    std::filesystem::create_directories(folder / "ini");
    session.record.UserPath = folder.string();
    createDatabase(database);
    Connection connection;
    connection.Open(ConnectionString(database, "", ""));
    connection.Execute(
        "CREATE TABLE [A] ([SampleNo] TEXT (9) PRIMARY KEY, [Fe] SINGLE, [Np] SINGLE, [U] LONG)");
    connection.Execute("CREATE TABLE [B] ([FeO_XRF] SINGLE)");
    connection.Execute("CREATE VIEW [f_Rock] AS SELECT [SampleNo] FROM [A]");
  }
  ~SourceTest() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("lodex source " + std::to_string(::getpid()) +
                                  testing::UnitTest::GetInstance()->current_test_info()->name());
  std::string database = (folder / "data" / "rocks.mdb").string();
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  Form shell{"MDIMain"};
  frmDB form{session, shell};
};

TEST_F(SourceTest, OpensShowsAndPairsElements) {
  dialogs.expectForm("frmConnect", [](Form& shown) {
    auto& dialog = dynamic_cast<frmConnect&>(shown);
    EXPECT_THAT(dialog.lstFiles.items(), ElementsAre("rocks.mdb"));
    dialog.lstFiles.setCurrent(0);
    dialog.Command2.click();
  });
  std::string macro;
  form.onMacroLine = [&](const std::string& line) { macro = line; };
  form.cmdOpenSDB.click();
  EXPECT_THAT(macro, StartsWith("OPENDB "));
  EXPECT_TRUE(form.SourceDbInUse);
  EXPECT_THAT(shell.caption(), HasSubstr("TarnKraph ("));
  EXPECT_THAT(form.lstTables.items(), ElementsAre("A", "B"));
  form.lstTables.setCurrent(0);
  form.lstFields.setCurrent(1);
  EXPECT_THAT(form.txtParam.text(), HasSubstr("COLUMN_NAME :Fe\n"));
  form.chkFilterOn.setChecked(true);
  EXPECT_THAT(form.cmbFilter.items(), ElementsAre("Rock"));
  EXPECT_EQ(form.F1Ref.TextRC(26, 1) + form.F1Ref.TextRC(26, 2), "13");
  EXPECT_EQ(form.F1Ref.TextRC(26, 3) + form.F1Ref.TextRC(26, 4), "22");
  EXPECT_EQ(form.F1Ref.TextRC(92, 1) + form.F1Ref.TextRC(92, 2), "15");
  EXPECT_EQ(form.F1Ref.LastRow(), 92);
  dialogs.expectSelection(1);
  form.cmdDefineKeyTable.click();
  EXPECT_EQ(form.txtKeyTable.text(), "B");
  form.cmdCancel.click();
  EXPECT_FALSE(form.SourceDbInUse);
}

TEST_F(SourceTest, FailureIsToldTwiceAndShortPathsAreIgnored) {
  EXPECT_FALSE(form.OpenDBFromMDI("C:"));
  const std::string missing = (folder / "missing.mdb").string();
  dialogs.expectMessage("Database " + missing +
                        " can not be opened neither by using DAO nor ADO connection");
  dialogs.expectMessage("Error in opening database " + missing);
  EXPECT_FALSE(form.AvaaDB(missing));
}

TEST_F(SourceTest, LastDatabasesAreOfferedWithTheirMaps) {
  for (int i = 1; i <= 11; ++i) {
    PushLastFile(session.record, "db" + std::to_string(i) + ".mdb", "Session");
  }
  frmConnect dialog(session);
  ASSERT_EQ(dialog.lstLast.count(), 10);
  EXPECT_EQ(dialog.lstLast.item(0), "db11.mdb");
  EXPECT_EQ(dialog.lstLast.item(9), "db2.mdb");
  dialog.lstLast.setCurrent(3);
  dialog.chkMapLast.setChecked(true);
  dialog.cmdOpenLast.click();
  EXPECT_EQ(dialog.ConnectResult(), "db8.mdb");
  EXPECT_FALSE(dialog.ReadMapFile());
  EXPECT_TRUE(dialog.SaveMapFile());
  frmConnect cancelled(session);
  cancelled.cmdCancel.click();
  EXPECT_EQ(cancelled.ConnectResult(), "");
}

}  // namespace
}  // namespace lodex
