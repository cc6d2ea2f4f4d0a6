#include "db/DatabaseMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
#include "db/MapDatabase.h"
#include "db/MapFile.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MapTest : public testing::Test {
 protected:
  MapTest() { std::filesystem::create_directories(folder); }
  ~MapTest() override { std::filesystem::remove_all(folder); }

  void make(const std::vector<std::string>& statements) {
    createDatabase(database.path);
    Connection connection;
    connection.Open(ConnectionString(database.path, "", ""));
    for (const std::string& sql : statements) connection.Execute(sql);
  }
  Outcome map(const MapRequest& request = {}) { return MapDatabase(session, database, request); }
  std::string row(const Worksheet& sheet, int row) const {
    std::string text;
    for (int column = 1; column <= sheet.LastCol(); ++column) {
      text += (column > 1 ? "|" : "") + sheet.TextRC(row, column);
    }
    return text;
  }

  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("lodex map " + std::to_string(::getpid()) +
                                  testing::UnitTest::GetInstance()->current_test_info()->name());
  std::function<void()> atEvents = [] {};
  ScriptedDialogs dialogs;
  NoEvents events{[this] { atEvents(); }};
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  MappedDatabase database{(folder / "rocks.v2.mdb").string(), {}, {}};
};

const std::vector<std::string> kRocks{
    "CREATE TABLE [Assays] ([SampleNo] TEXT (50), [Run No] LONG, [Fe_XRF] SINGLE, [Note] MEMO, "
    "PRIMARY KEY ([SampleNo], [Run No]))",
    "CREATE TABLE [Bare] ([FeO] SINGLE, [Note] TEXT (20))",
    "CREATE TABLE [Holes] ([Hole] TEXT (20) PRIMARY KEY, [Run No] LONG)",
    "CREATE VIEW [f_Rock] AS SELECT [SampleNo], [Fe_XRF] FROM [Assays]",
    "CREATE VIEW [Q_All] AS SELECT * FROM [Bare]"};

TEST_F(MapTest, HoldsTablesKeysLinksAndFilters) {
  make(kRocks);
  ASSERT_TRUE(map().done());
  const DatabaseMap& found = database.map;
  EXPECT_EQ(row(found.F1Key2, 1), "Assays|SampleNo|Run No|Fe_XRF|Note");
  EXPECT_THAT(found.tables(), ElementsAre("Assays", "Bare", "Holes"));
  EXPECT_THAT(found.FilterList, ElementsAre("Rock"));
  ASSERT_EQ(found.F1Avain.LastRow(), 3);
  EXPECT_EQ(row(found.F1Avain, 2), "Assays|Run No");
  EXPECT_EQ(row(found.F1Indx, 3), "Holes|Hole");
  ASSERT_EQ(found.F1Linkki.LastRow(), 5);
  EXPECT_EQ(row(found.F1Linkki, 1), "Assays|Assays|SampleNo|SampleNo");
  EXPECT_EQ(row(found.F1Linkki, 4), "Assays|Bare|Note|Note");
  EXPECT_EQ(row(found.F1Linkki, 5), "Assays|Holes|Run No|Run No");
  EXPECT_FALSE(pathExists(mapFilePath(database.path)));
}

TEST_F(MapTest, AnswersQuestions) {
  make(kRocks);
  map();
  EXPECT_EQ(database.map.PrimaryKeyField("[Assays]"), "SampleNo");
  EXPECT_EQ(database.map.PrimaryKeyField("assays"), "SampleNo");
  EXPECT_EQ(database.map.PrimaryKeyField("Bare"), "");
  std::vector<ElementField> fields;
  EXPECT_TRUE(database.map.FindElementFields(26, fields));
  EXPECT_THAT(fields, ElementsAre(ElementField{1, 4, "[Assays].[Fe_XRF]"},
                                  ElementField{2, 2, "[Bare].[FeO]"}));
  EXPECT_FALSE(database.map.FindElementFields(79, fields));
  Worksheet F1Ref;
  F1Ref.TextRC(26, 1, "2");
  F1Ref.TextRC(26, 2, "2");
  EXPECT_TRUE(database.map.FindElementFieldsSelected(26, F1Ref, fields));
  EXPECT_THAT(fields, ElementsAre(ElementField{2, 2, "[Bare].[FeO]"}));
  std::string table;
  std::string key;
  ViewBaseTable(database, "[f_Rock];", table, key);
  EXPECT_EQ(table + "|" + key, "Assays|SampleNo");
  EXPECT_THAT(TableFields(database.connection, "[f_Rock]"), ElementsAre("SampleNo", "Fe_XRF"));
}

TEST_F(MapTest, TheTableBehindAViewIsThatOfItsFirstKeyField) {
  make(kRocks);
  database.connection.Open(ConnectionString(database.path, "", ""));
  for (const char* sql :
       {"CREATE VIEW [f_Named] AS SELECT a.[Note] AS n, a.[Run No] AS r FROM [Assays] AS a",
        "CREATE VIEW [f_Joined] AS SELECT b.[Note], h.[Hole] AS x FROM [Bare] b, [Holes] h",
        "CREATE VIEW [f_Keyless] AS SELECT [Note] FROM [Assays]",
        "CREATE VIEW [f_Mg; high, 'x'] AS SELECT [Run No] FROM [Holes]",
        "CREATE VIEW [f_Counted] AS SELECT Count(*) AS n FROM [Assays]"}) {
    database.connection.Execute(sql);
  }
  map();
  const struct {
    std::string view, expected;
  } rows[] = {
      {"f_Named", "Assays|Run No"},
      {"[f_Joined]", "Holes|Hole"},
      {"f_Keyless", "Assays|SampleNo"},
      {"f_Counted", "f_Counted|"},
      {"nowhere", "nowhere|"},
      {"[Holes]", "Holes|Hole"},
      {"[f_Mg; high, 'x']", "Holes|Hole"},
  };
  for (const auto& row : rows) {
    std::string table;
    std::string key;
    ViewBaseTable(database, row.view, table, key);
    EXPECT_EQ(table + "|" + key, row.expected) << row.view;
  }
  EXPECT_THAT(JoinPath(database, "f_Joined", "[f_Rock]"),
              ElementsAre(TableLink{"Holes", "Assays", "Run No", "Run No"}));
}

TEST_F(MapTest, FindsTheWayBetweenTables) {
  make(kRocks);
  map();
  const DatabaseMap& found = database.map;
  EXPECT_THAT(found.JoinPath("[Holes]", "assays"),
              ElementsAre(TableLink{"Holes", "Assays", "Run No", "Run No"}));
  EXPECT_THAT(found.JoinPath("Bare", "Holes"), IsEmpty());
  database.map.addField(3, "Zone");
  database.map.addField(database.map.addTable("Zones"), "Zone");
  database.map.MakeLinks();
  EXPECT_THAT(found.JoinPath("Assays", "Zones", true),
              ElementsAre(TableLink{"Assays", "Holes", "Run No", "Run No"},
                          TableLink{"Holes", "Zones", "Zone", "Zone"}));
}

TEST_F(MapTest, LinksAreCutButTheWayIsFound) {
  for (int i = 1; i <= 400; ++i) {
    database.map.addField(database.map.addTable("T" + std::to_string(i)), "Key");
  }
  database.map.MakeLinks();
  EXPECT_EQ(database.map.F1Linkki.LastRow(), DatabaseMap::maxLinks);
  EXPECT_THAT(database.map.JoinPath("T400", "T399"),
              ElementsAre(TableLink{"T400", "T399", "Key", "Key"}));
}

TEST_F(MapTest, MapFileIsMadeReadAndRefreshed) {
  make(kRocks);
  const std::string file = mapFilePath(database.path);
  EXPECT_EQ(file, (folder / "rocks.v2.ake").string());
  ASSERT_TRUE(map({true, true, false}).done());
  ASSERT_TRUE(pathExists(file));
  const std::string before = database.map.F1Linkki.WriteToBlob();
  database.connection.Execute("CREATE TABLE [Late] ([A] LONG)");
  ASSERT_TRUE(map({true, true, false}).done());
  EXPECT_EQ(database.map.tableRow("Late"), 0);
  EXPECT_EQ(row(database.map.F1Key2, 1), "Assays|SampleNo|Run No|Fe_XRF|Note");
  EXPECT_EQ(database.map.F1Linkki.LastRow(), 5);
  EXPECT_THAT(database.map.FilterList, ElementsAre("Rock"));
  ASSERT_TRUE(map({true, false, true}).done());
  EXPECT_GT(database.map.tableRow("Late"), 0);
  map({true, true, false});
  EXPECT_GT(database.map.tableRow("Late"), 0);
  writeFileWhole(file, "no workbook");
  ASSERT_TRUE(map({true, true, false}).done());
  EXPECT_EQ(database.map.tables().size(), 4U);
}

TEST_F(MapTest, EmptyMissingAndAborted) {
  EXPECT_TRUE(map().failed());
  make({});
  EXPECT_TRUE(map().done());
  EXPECT_EQ(database.map.tableCount(), 0);
  database.connection.Execute("CREATE TABLE [A] ([x] LONG)");
  database.connection.Execute("CREATE TABLE [B] ([x] LONG)");
  atEvents = [this] {
    session.progress.AbortFlag = session.progress.bar.value() == 1 && session.progress.visible();
  };
  EXPECT_TRUE(map().aborted());
  EXPECT_THAT(database.map.tables(), ElementsAre("A"));
  EXPECT_FALSE(session.progress.AbortFlag);
}

TEST_F(MapTest, SampleDatabaseThatCannotBeOpenedIsTold) {
  session.record.SessionDbPath = "\\no\\such.mdb";
  dialogs.expectMessage(
      "Database \\\\no\\such.mdb can not be opened neither by using DAO nor ADO connection");
  EXPECT_TRUE(OpenSampleDatabase(session, database, {}).failed());
  EXPECT_EQ(session.record.ConnectionKindLast, "");
  EXPECT_FALSE(database.connection.IsOpen());
}

}  // namespace
}  // namespace lodex
