#include "db/Servers.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include "DatabaseFixture.h"
#include "db/MapDatabase.h"

// The server's own driver keeps some bytes of a statement that failed.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:psqlodbcw.so\n";
}

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Every test has a schema of its own on the server, which the tests that run beside it do not see.
class ServerTest : public DatabaseFixture {
 protected:
  void SetUp() override {
    DatabaseFixture::SetUp();
    connection_.Close();
    schema_ = folder_.filename().string();
  }
  void TearDown() override {
    if (connection_.IsOpen()) {
      connection_.Close();
      open("DROP SCHEMA \"" + schema_ + "\" CASCADE");
    }
    DatabaseFixture::TearDown();
  }
  ServerIni writeIni(const std::string& entry) {
    std::ofstream(path("servers.ini")) << "[Servers]\nLAB=" << entry << "\n";
    return {"", path("servers.ini")};
  }
  void open(const std::string& settings, const std::string& options = "") {
    connection_.Open(ConnectionString("LAB.ORA", "", ""),
                     writeIni("%LODEX_TEST_SERVER%;ConnSettings={" + settings + "}" + options));
  }
  // Opens the temporary server of script/with-postgres; false if there is none. `settings` are
  // statements that run before all others.
  bool openServer(const std::string& options = "", const std::string& settings = "") {
    if (!std::getenv("LODEX_TEST_SERVER")) return false;
    open("CREATE SCHEMA IF NOT EXISTS \"" + schema_ + "\"; SET search_path TO \"" + schema_ +
             "\"; " + settings,
         options);
    return true;
  }

  std::string schema_;
};

TEST_F(ServerTest, AServiceIsAnEntryOrADataSource) {
  ::setenv("LODEX_TEST_SECRET", "s3cret", 1);
  const auto textOf = [](const ServerIni& ini, const char* name, const char* password = "") {
    return serverLogin(ini, name, "me", password).connectionText;
  };
  ServerIni ini = writeIni("Driver=x;Pwd=%LODEX_TEST_SECRET%");
  EXPECT_EQ(textOf(ini, "lab", "other"), "Driver=x;Pwd=s3cret;UID=me");
  EXPECT_EQ(textOf(ini, "MINE", "a;b}c"), "DSN=MINE;UID=me;PWD={a;b}}c}");
  EXPECT_EQ(textOf(ini, "DSN=LAB;PWD=%LODEX_TEST_SECRET%"), "DSN=LAB;PWD=s3cret;UID=me");
  ini = writeIni("Laboratory");
  EXPECT_EQ(textOf(ini, "LAB"), "DSN=Laboratory;UID=me");
}

TEST_F(ServerTest, PasswordsAreNeitherShownNorKept) {
  const struct {
    std::string text, shown;
  } rows[] = {
      {"Driver={a;Pwd=b};Pwd={p;w}};x};UID=me", "Driver={a;Pwd=b};Pwd=...;UID=me"},
      {"DSN=LAB;password=p", "DSN=LAB;password=..."},
      {"DSN=LAB;PWD=%LAB_PASSWORD%", "DSN=LAB;PWD=%LAB_PASSWORD%"},
      {"DSN=LAB;PWD=%", "DSN=LAB;PWD=..."},
      {"C:\\Pwd=x\\a.mdb", "C:\\Pwd=x\\a.mdb"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shownName(row.text), row.shown);
    EXPECT_EQ(holdsSecret(row.text), row.shown != row.text) << row.text;
  }
  ::setenv("LODEX_TEST_SECRET", "s3cret", 1);
  const ServerIni ini = writeIni("Driver={No such driver s3cret};Pwd=%LODEX_TEST_SECRET%");
  const std::string error =
      errorOf([&] { connection_.Open(ConnectionString("LAB.ORA", "me", ""), ini); });
  EXPECT_THAT(error, HasSubstr("Server LAB cannot be opened"));
  EXPECT_THAT(error, Not(HasSubstr("s3cret")));
  EXPECT_FALSE(connection_.IsOpen());
}

TEST_F(ServerTest, AConnectionTextOpensItsServer) {
  if (!openServer()) GTEST_SKIP() << "run under script/with-postgres";
  run("CREATE TABLE [T] ([n] LONG)");
  Connection connection;
  connection.Open(ConnectionString(std::string(std::getenv("LODEX_TEST_SERVER")) +
                                       ";ConnSettings={SET search_path TO \"" + schema_ + "\"}",
                                   "", ""));
  EXPECT_EQ(connection.OpenSchema(SchemaKind::Tables)->Text("TABLE_NAME"), "T");
  connection.Close();
}

TEST_F(ServerTest, ReadsAndWritesARealServer) {
  if (!openServer()) GTEST_SKIP() << "run under script/with-postgres";
  run("CREATE TABLE [Lab results]");
  run("ALTER TABLE [Lab results] ADD COLUMN [SampleNo] TEXT (50)");
  run("CREATE UNIQUE INDEX SampleNo ON [Lab results] (SampleNo) WITH PRIMARY");
  for (const auto* column : {"[Cu %] SINGLE", "[n] LONG", "[w] DOUBLE", "[Day] DATE",
                             "[Ok] BOOLEAN", "[Note] MEMO", "[Cost] CURRENCY"}) {
    run("ALTER TABLE [Lab results] ADD COLUMN " + std::string(column));
  }
  run("CREATE INDEX n ON [Lab results] (n)");

  auto results = connection_.OpenRecordset("SELECT * FROM [Lab results]");
  ASSERT_TRUE(results->Updatable());
  const std::string longText(10000, 'x');
  for (const std::string name : {"a", "Å'1"}) {
    results->AddNew();
    results->SetValue("SampleNo", name);
    results->SetValue("Cu %", "0.5");
    results->SetValue("n", std::int64_t{7});
    results->SetValue("w", 0.1);
    results->SetValue("Day", "2020-01-31 12:30:00");
    results->SetValue("Ok", "True");
    results->SetValue("Note", longText + "\nÄ☃");
    results->SetValue("Cost", 1.25);
    results->Update();
  }
  auto stored = connection_.OpenRecordset(
      "SELECT * FROM [Lab results] WHERE [SampleNo] Like 'å*' AND [Day] > #1/1/2020#");
  ASSERT_EQ(stored->RecordCount(), 1);
  EXPECT_EQ(stored->Text("SampleNo"), "Å'1");
  EXPECT_EQ(stored->Value("w"), FieldValue(0.1));
  EXPECT_EQ(stored->Value("n"), FieldValue(std::int64_t{7}));
  EXPECT_EQ(stored->Text("Day"), "2020-01-31 12:30:00");
  EXPECT_EQ(stored->Text("Ok"), "True");
  EXPECT_EQ(stored->Text("Note"), longText + "\nÄ☃");
  EXPECT_EQ(stored->Text("Cost"), "1.25");
  stored->SetValue("Cu %", FieldValue());
  stored->Update();
  EXPECT_EQ(records("SELECT [SampleNo] FROM [Lab results] WHERE [Cu %] Is Null"), "Å'1");
  stored->AddNew();
  stored->SetValue("SampleNo", "a");
  EXPECT_THAT(errorOf([&] { stored->Update(); }), HasSubstr("duplicate key"));
  stored->CancelUpdate();

  {
    Transaction work(connection_);
    EXPECT_EQ(connection_.Execute("UPDATE [Lab results] SET [n] = ? WHERE [SampleNo] = ?",
                                  {std::int64_t{9}, "a"}),
              1);
  }
  EXPECT_EQ(records("SELECT Max([n]) AS m FROM [Lab results]"), "7") << "not rolled back";
  EXPECT_EQ(show("TRANSFORM Sum([w]) SELECT [n] FROM [Lab results] GROUP BY [n] PIVOT [SampleNo]"),
            "n|a|Å'1\n7|0.1|0.1");

  const auto schema = [&](SchemaKind kind, int field) {
    auto records = connection_.OpenSchema(kind);
    records->Filter("TABLE_NAME='Lab results'");
    std::string text;
    for (; !records->Eof(); records->MoveNext()) text += records->Text(field) + ";";
    return text;
  };
  EXPECT_EQ(schema(SchemaKind::Tables, 1), "TABLE;");
  EXPECT_EQ(schema(SchemaKind::Columns, 1), "SampleNo;Cu %;n;w;Day;Ok;Note;Cost;");
  EXPECT_EQ(schema(SchemaKind::Columns, 3), "202;4;3;5;7;11;203;131;");
  EXPECT_EQ(schema(SchemaKind::Indexes, 1), "SampleNo;n;");
  EXPECT_EQ(schema(SchemaKind::Indexes, 2), "True;False;");
  EXPECT_EQ(schema(SchemaKind::Indexes, 5), "SampleNo;n;");
  results->MoveFirst();
  results->Delete();
  EXPECT_EQ(records("SELECT Count(*) FROM [Lab results]"), "1");
  EXPECT_THAT(errorOfSql("SELECT * FROM [nowhere]"), HasSubstr("nowhere"));
}

// A server may give up a whole unit of work for one refused record, and the driver may be told to.
class UnitOfWorkTest : public ServerTest, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(, UnitOfWorkTest, testing::Values("", ";Protocol=7.4-1"));

TEST_P(UnitOfWorkTest, ARefusedRecordLeavesTheRest) {
  if (!openServer(GetParam())) GTEST_SKIP() << "run under script/with-postgres";
  run("CREATE TABLE [Units] ([SampleNo] TEXT (5) PRIMARY KEY, [n] LONG)");
  auto units = connection_.OpenRecordset("SELECT * FROM [Units]");
  const auto add = [&](const FieldValue& name, const FieldValue& n) {
    units->AddNew();
    units->SetValue("SampleNo", name);
    units->SetValue("n", n);
    units->Update();
  };
  Transaction work(connection_);
  add("a", std::int64_t{1});
  const struct {
    std::string name;
    FieldValue sample, n;
    std::string reason;
  } rows[] = {
      {"duplicate key", "a", std::int64_t{2}, "duplicate key"},
      {"no key", {}, std::int64_t{2}, "null value"},
      {"text too long", "abcdef", {}, "[SampleNo] of table [Units] takes texts of up to 5"},
      {"no number", "b", "<0.01", "[n] of table [Units] takes whole numbers"},
      {"number out of range", "b", 3e9, "between -2147483648 and 2147483647"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(errorOf([&] { add(row.sample, row.n); }), HasSubstr(row.reason)) << row.name;
    units->CancelUpdate();
  }
  EXPECT_THAT(errorOf([&] {
                connection_.Execute("INSERT INTO [Units] VALUES (?, ?)", {"abcdef", FieldValue()});
              }),
              HasSubstr("too long"));
  add("z", std::int64_t{9});
  work.commit();
  EXPECT_EQ(records("SELECT * FROM [Units] ORDER BY [SampleNo]"), "a|1;z|9");
}

TEST_F(ServerTest, WhatTheServerFillsInIsReadBack) {
  if (!openServer()) GTEST_SKIP() << "run under script/with-postgres";
  run("CREATE TABLE [Numbered] ([ID] COUNTER PRIMARY KEY, [Name] TEXT (9), [Grade] LONG DEFAULT 7, "
      "[d] DECIMAL (10, 2))");
  run("CREATE TABLE [Parts] ([Of] LONG REFERENCES [Numbered] ([ID]))");
  auto numbered = connection_.OpenRecordset("SELECT * FROM [Numbered]");
  for (const auto* name : {"a", "b"}) {
    numbered->AddNew();
    numbered->SetValue("Name", name);
    numbered->SetValue("d", 1.005);
    numbered->Update();
  }
  EXPECT_EQ(numbered->Text("ID") + numbered->Text("Grade"), "27");
  numbered->SetValue("Name", "c");
  numbered->Update();
  EXPECT_EQ(records("SELECT [Name] FROM [Numbered] ORDER BY [ID]"), "a;c");
  EXPECT_EQ(records("SELECT 9007199254740993 AS n"), "9007199254740993");
  auto columns = connection_.OpenSchema(SchemaKind::Columns);
  columns->Filter("TABLE_NAME='Numbered' AND COLUMN_NAME='d'");
  EXPECT_EQ(columns->Text("NUMERIC_PRECISION") + "," + columns->Text("NUMERIC_SCALE"), "10,2");
  auto keys = connection_.OpenSchema(SchemaKind::ForeignKeys);
  ASSERT_EQ(keys->RecordCount(), 1);
  EXPECT_EQ(keys->Text("PK_TABLE_NAME") + keys->Text("PK_COLUMN_NAME"), "NumberedID");
}

TEST_F(ServerTest, IsMappedWithTheTablesBehindItsViews) {
  // A table of the same name in another schema, which a statement would not reach.
  const std::string other = "\"" + schema_ + " other\"";
  if (!openServer("", "CREATE SCHEMA IF NOT EXISTS " + other + "; CREATE TABLE IF NOT EXISTS " +
                          other + ".\"Assays\" (\"Other\" int primary key)")) {
    GTEST_SKIP() << "run under script/with-postgres";
  }
  run("CREATE TABLE [Assays] ([SampleNo] TEXT (9) PRIMARY KEY, [Fe_XRF] SINGLE, [Hole] LONG)");
  run("CREATE TABLE [Holes] ([Hole] LONG PRIMARY KEY, [Zone] TEXT (9))");
  run("CREATE VIEW [f_Rich] AS SELECT [SampleNo], [Fe_XRF] FROM [Assays] WHERE [Fe_XRF] > 30");
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  session.record.MainIni = path("servers.ini");
  MappedDatabase server{"LAB.ORA", {}, {}};
  ASSERT_TRUE(MapDatabase(session, server, {}).done()) << session.log.txtErr.text();
  EXPECT_THAT(server.map.tables(), ElementsAre("Assays", "Holes"));
  EXPECT_THAT(server.map.fields(1), ElementsAre("SampleNo", "Fe_XRF", "Hole"));
  EXPECT_THAT(server.map.FilterList, ElementsAre("Rich"));
  EXPECT_EQ(server.map.PrimaryKeyField("Holes"), "Hole");
  EXPECT_THAT(JoinPath(server, "f_Rich", "Holes"),
              ElementsAre(TableLink{"Assays", "Holes", "Hole", "Hole"}));
  connection_.Close();
  open("DROP SCHEMA " + other + " CASCADE");
}

}  // namespace
}  // namespace lodex
