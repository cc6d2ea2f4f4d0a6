#include "db/CombineDatabases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "OtherUser.h"
#include "basic/Error.h"
#include "db/DatabaseMap.h"
#include "db/Recordset.h"
#include "db/SchemaOperations.h"
#include "db/frmCombineDBS.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class CombineTest : public testing::Test {
 protected:
  CombineTest() { std::filesystem::create_directories(folder); }
  ~CombineTest() override { std::filesystem::remove_all(folder); }

  std::string path(const std::string& name) const { return (folder / name).string(); }
  std::string make(const std::string& name, const std::vector<std::string>& statements) {
    createDatabase(path(name));
    run(name, statements);
    return path(name);
  }
  void run(const std::string& name, const std::vector<std::string>& statements) {
    Connection connection;
    connection.Open(ConnectionString(path(name), "", ""));
    for (const std::string& sql : statements) connection.Execute(sql);
  }
  std::vector<std::string> rows(const std::string& name, const std::string& sql) {
    Connection connection;
    connection.Open(ConnectionString(path(name), "", ""));
    std::vector<std::string> lines;
    for (const auto records = connection.OpenRecordset(sql); !records->Eof(); records->MoveNext()) {
      std::string line;
      for (size_t i = 0; i < records->Fields().size(); ++i) {
        line += (i > 0 ? "|" : "") + records->Text(static_cast<int>(i));
      }
      lines.push_back(line);
    }
    return lines;
  }
  std::string log() const { return session.log.txtLog.text(); }

  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("lodex combine " + std::to_string(::getpid()) +
                                  testing::UnitTest::GetInstance()->current_test_info()->name());
  std::function<void()> atEvents = [] {};
  ScriptedDialogs dialogs;
  NoEvents events{[this] { atEvents(); }};
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
};

const std::vector<std::string> kRocks{
    "CREATE TABLE [Rock's] ([SampleNo] TEXT (20), [Order] LONG, [Fe] SINGLE, [Day] DATE, [On] "
    "BOOLEAN, [Note] MEMO, PRIMARY KEY ([SampleNo], [Order]))",
    "CREATE INDEX [By Fe] ON [Rock's] ([Fe])",
    "INSERT INTO [Rock's] VALUES ('S1', 1, 0.1, '2020-01-31', -1, '007')",
    "INSERT INTO [Rock's] VALUES ('S2', 1, NULL, NULL, 0, NULL)"};

TEST_F(CombineTest, TablesFieldsIndexesAndRecordsArriveWhole) {
  const std::string source = make("a.mdb", kRocks);
  const std::string out = make("out.mdb", {});
  const CombineOutcome outcome = combineDatabases(session, {source, out}, out);
  EXPECT_EQ(outcome.written, 2U);
  EXPECT_TRUE(outcome.outcome.found.empty());
  EXPECT_EQ(rows("out.mdb", "SELECT * FROM [Rock's]"), rows("a.mdb", "SELECT * FROM [Rock's]"));
  Connection connection;
  connection.Open(ConnectionString(out, "", ""));
  const auto columns = connection.OpenSchema(SchemaKind::Columns);
  std::vector<std::string> types;
  for (; !columns->Eof(); columns->MoveNext()) {
    types.push_back(columns->Text("COLUMN_NAME") + columns->Text("DATA_TYPE") + "/" +
                    columns->Text("CHARACTER_MAXIMUM_LENGTH"));
  }
  EXPECT_THAT(types,
              ElementsAre("SampleNo202/20", "Order3/", "Fe4/", "Day7/", "On11/", "Note203/"));
  std::vector<std::string> indexes;
  const auto schema = connection.OpenSchema(SchemaKind::Indexes);
  for (; !schema->Eof(); schema->MoveNext()) {
    indexes.push_back(schema->Text("INDEX_NAME") + "." + schema->Text("COLUMN_NAME") + " " +
                      schema->Text("PRIMARY_KEY") + " " + schema->Text("UNIQUE"));
  }
  EXPECT_THAT(indexes,
              testing::UnorderedElementsAre("PrimaryKey.SampleNo True True",
                                            "PrimaryKey.Order True True", "By Fe.Fe False False"));
  EXPECT_TRUE(log().starts_with("***** Combining databases ******\r\nCreating table  Rock's ..."));
  EXPECT_THAT(log(), HasSubstr("\r\n -EXECUTED: CREATE TABLE [Rock's]\r\n"));
  EXPECT_TRUE(log().ends_with(" -2 records written in Rock's\r\nReady"));
}

TEST_F(CombineTest, RecordsOfTheDestinationStayAndClashesAreCounted) {
  const std::string source = make("a.mdb", kRocks);
  const std::string other = make("b.mdb", kRocks);
  run("b.mdb", {"UPDATE [Rock's] SET [SampleNo] = 'S3' WHERE [SampleNo] = 'S1'"});
  const std::string out = make("out.mdb", {kRocks[0], kRocks[2]});
  const CombineOutcome combined = combineDatabases(session, {source, other}, out);
  EXPECT_EQ(combined.written, 2U);
  EXPECT_EQ(combined.errors, 2U);
  EXPECT_EQ(combined.outcome.exitStatus(), 1);
  EXPECT_THAT(describe(session.found.all().at(0)),
              HasSubstr("a.mdb, sheet Rock's, record S1: A record was not written: "));
  EXPECT_THAT(rows("out.mdb", "SELECT [SampleNo] FROM [Rock's] ORDER BY [SampleNo]"),
              ElementsAre("S1", "S2", "S3"));
  EXPECT_THAT(log(), HasSubstr("(Command: CREATE TABLE [Rock's])"));
  EXPECT_THAT(log(), HasSubstr("!! ERROR "));
}

TEST_F(CombineTest, NamesTablesThatFailAndCountsTheirRecords) {
  const std::string source =
      make("a.mdb", {"CREATE TABLE [A] ([x] LONG)", "CREATE TABLE [B] ([x] LONG)",
                     "INSERT INTO [A] VALUES (1), (2), (3)", "INSERT INTO [B] VALUES (1)"});
  const std::string out =
      make("out.mdb", {"CREATE TABLE [C] ([x] LONG)", "CREATE VIEW [A] AS SELECT [x] FROM [C]"});
  const CombineOutcome combined = combineDatabases(session, {source}, out);
  EXPECT_EQ(combined.written, 1U);
  EXPECT_EQ(combined.errors, 3U);
  const std::vector<Finding>& found = combined.outcome.found.all();
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found.back().count, 3U);
  EXPECT_THAT(describe(found.back()), HasSubstr("a.mdb, sheet A"));
}

TEST_F(CombineTest, AWriteProtectedDestinationGivesOneMessage) {
  const std::string source = make("a.mdb", kRocks);
  const std::string out = make("out.mdb", {});
  const ReadOnly locked(folder);
  const AsOtherUser user;
  try {
    combineDatabases(session, {source}, out);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(std::string(error.what()), "Database " + out + " is write-protected");
  }
  EXPECT_TRUE(session.found.empty());
}

TEST_F(CombineTest, AbortStopsBeforeTheNextTable) {
  const std::string source =
      make("a.mdb", {"CREATE TABLE [A] ([x] LONG)", "CREATE TABLE [B] ([x] LONG)"});
  const std::string out = make("out.mdb", {});
  int pumped = 0;
  atEvents = [&] { session.progress.AbortFlag = ++pumped == 2; };
  const Outcome outcome = combineDatabases(session, {source}, out).outcome;
  EXPECT_TRUE(outcome.aborted());
  EXPECT_EQ(outcome.reason, "before table B");
  EXPECT_TRUE(log().ends_with("!! Aborted!!"));
  EXPECT_THAT(log(), Not(HasSubstr("[B]")));
}

TEST_F(CombineTest, WindowEditsTheChosenSource) {
  frmCombineDBS form(session);
  dialogs.expectOpen({make("a.mdb", kRocks)});
  form.cmdAddDB.click();
  EXPECT_THAT(form.lstTables.items(), ElementsAre("Rock's"));
  form.lstTables.setCurrent(0);
  form.lstFld.setCurrent(5);
  EXPECT_THAT(form.lstProp.text(), HasSubstr("\nCOLUMN_NAME :Note\n"));
  dialogs.expectMessage("Are you sure to execute command:\nALTER TABLE [Rock's] DROP COLUMN [Note]",
                        Answer::Yes);
  form.cmdRemoveFld.click();
  dialogs.expectInput("Give name for new table", "New]Table");
  dialogs.expectMessage("Are you sure to execute command:\nCREATE TABLE " + quoteName("New]Table"),
                        Answer::Yes);
  form.cmdAddTable.click();
  EXPECT_THAT(form.lstTables.items(), ElementsAre("New]Table", "Rock's"));
  dialogs.expectSave(path("new.mdb"));
  dialogs.expectMessage("Database: " + path("new.mdb") + " created.");
  form.cmdNew.click();
  dialogs.expectMessage("Are you sure to combine databases?", Answer::No);
  form.cmdCombine.click();
  EXPECT_EQ(log(), "***** Combining databases ******");
  dialogs.expectMessage("Are you sure to combine databases?", Answer::Yes);
  form.cmdCombine.click();
  EXPECT_THAT(rows("new.mdb", "SELECT COUNT(*) FROM [Rock's]"), ElementsAre("2"));
}

TEST(SchemaOperations, TypesAndMarkers) {
  struct Case {
    const char* given;
    const char* type;
    bool marked;
  };
  for (const Case& row : {Case{"DOUBLE (I)", "DOUBLE", true}, Case{"LONG(U,I)", "LONG", true},
                          Case{"TEXT(20)(I,U)", "TEXT(20)", true}, Case{"MEMO", "MEMO", false}}) {
    std::string type = row.given;
    EXPECT_EQ(stripTypeMarkers(type), row.marked) << row.given;
    EXPECT_EQ(type, row.type) << row.given;
    EXPECT_NO_THROW(requireFieldType(type)) << row.given;
  }
  for (const char* bad : {"", "50", "LONG, [C] LONG", "TEXT(5); DROP TABLE T", "TEXT(5", "TEXT)5(",
                          "TEXT((5))", "LONG DEFAULT 'x'", "TEXT(a)"}) {
    EXPECT_THROW(requireFieldType(bad), Error) << bad;
  }
  EXPECT_EQ(sqlTypeOf("4"), "SINGLE");
  EXPECT_EQ(sqlTypeOf("999"), "TEXT (255)");
  EXPECT_EQ(sqlTypeOf("MEMO"), "MEMO");
}

TEST_F(CombineTest, AnIndexedFieldIsNoKeyAndAUniqueOneTakesNoValueTwice) {
  MappedDatabase database;
  database.path = make("a.mdb", {"CREATE TABLE [T] ([SampleNo] TEXT (9) PRIMARY KEY)"});
  ASSERT_TRUE(MapDatabase(session, database, {}).done());
  const auto add = [&](const std::string& field, const std::string& type) {
    bool isKey = false;
    return CheckAndAddField(session, database.connection, database.map, {}, "T", field, type,
                            isKey);
  };
  EXPECT_TRUE(add("Zone", "TEXT (5)(I)"));
  EXPECT_TRUE(add("Bag", "LONG (U)"));
  EXPECT_EQ(database.map.PrimaryKeyField("T"), "SampleNo");
  database.connection.Execute("INSERT INTO [T] VALUES ('a', 'N', 1), ('b', 'N', 2)");
  EXPECT_THROW(database.connection.Execute("INSERT INTO [T] VALUES ('c', 'N', 2)"), Error);
}

TEST_F(CombineTest, UserTablesAreMade) {
  MakeUserTables(make("user.mdb", {}), true, "202");
  EXPECT_THAT(rows("user.mdb", "SELECT * FROM [UserCalc]"), testing::IsEmpty());
  EXPECT_THROW(run("user.mdb", {"INSERT INTO [UserCalc] ([SampleNo]) VALUES ('a')",
                                "INSERT INTO [UserCalc] ([SampleNo]) VALUES ('A')"}),
               Error);
  run("user.mdb", {"INSERT INTO [UserGroups] ([SampleNo]) VALUES ('a')"});
}

}  // namespace
}  // namespace lodex
