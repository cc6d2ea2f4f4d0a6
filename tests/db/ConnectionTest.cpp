#include "db/Connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/MineralCatalogue.h"
#include "db/Recordset.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class ConnectionTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("lodex_db_" + std::to_string(::getpid()));
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }
  Connection open(const std::string& name) const {
    Connection connection;
    connection.Open(ConnectionString(path(name), "", ""));
    return connection;
  }
  Connection makeDatabase(const std::string& name) const {
    createDatabase(path(name));
    return open(name);
  }

  fs::path folder_;
};

std::string errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "(no error)";
}

TEST(ConnectionString, NamesTheProviderByThePath) {
  const std::string jet = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=";
  const struct {
    std::string name, path, user, password, expected;
  } rows[] = {
      {"capital ending", "C:\\x\\y.MDB", "", "", jet + "C:\\x\\y.MDB"},
      {"mixed ending", "C:\\x\\y.Mdb", "", "", jet + "C:\\x\\y.Mdb"},
      {"service", "SERVICE.ORA", "u", "p",
       "Provider=MSDAORA;User ID=u;Password=p;Data Source=SERVICE"},
      {"lower case service without user", "service.ora", "", "",
       "Provider=MSDAORA;User ID=;Password=;Data Source=service"},
      {"both endings", "a.ora.mdb", "u", "p", jet + "a.ora.mdb"},
      {"data source file", "lab.dsn", "u", "p", jet + "lab.dsn"},
      {"folder that looks like a service", "my.orange/new.sqlite", "", "",
       jet + "my.orange/new.sqlite"},
      {"connection text", "Driver={My driver};Server=a.mdb;Database=LAB.ORA", "", "",
       "Driver={My driver};Server=a.mdb;Database=LAB.ORA"},
      {"connection text with a login", "dsn=Lab;UID=me", "u", "p;q", "dsn=Lab;UID=me;PWD={p;q}"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ConnectionString(row.path, row.user, row.password), row.expected) << row.name;
  }
}

TEST_F(ConnectionTest, AnExistingFileWinsOverTheWordsInItsPath) {
  for (const char* name : {"LAB.ORA", "DSN=LAB.sqlite", "a.xyz"}) {
    { makeDatabase(name).Execute("CREATE TABLE [A b] (x TEXT)"); }
    EXPECT_FALSE(namesServer(path(name)));
    EXPECT_TRUE(namesDatabase(path(name))) << name;
    EXPECT_EQ(open(name).OpenSchema(SchemaKind::Tables)->Text("TABLE_NAME"), "A b") << name;
  }
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  EXPECT_FALSE(namesServer("DSN=LAB.sqlite"));
  EXPECT_TRUE(namesServer("DSN=OTHER.sqlite"));
  fs::current_path(before);
  write("sheet.ora", "Sample\tCu\n");
  EXPECT_FALSE(namesDatabase(path("sheet.ora")));
  EXPECT_TRUE(namesDatabase(path("no such.ora")));
  EXPECT_FALSE(namesDatabase(path("no such.txt")));
}

// A program that was killed while it made a database leaves such a file.
TEST_F(ConnectionTest, AnEmptyFileIsAnEmptyDatabase) {
  write("empty.mdb", "");
  ensureDatabase(path("empty.mdb"));
  Connection connection = open("empty.mdb");
  EXPECT_EQ(connection.OpenSchema(SchemaKind::Tables)->RecordCount(), 0);
  connection.Execute("CREATE TABLE T (x TEXT)");
  connection.Close();
  EXPECT_EQ(open("empty.mdb").OpenSchema(SchemaKind::Tables)->Text("TABLE_NAME"), "T");
}

TEST(ConnectionString, KeepsASemicolonInThePath) {
  EXPECT_EQ(connectionItem(ConnectionString("a;Provider=b.mdb", "", ""), "data source"),
            "a;Provider=b.mdb");
}

TEST_F(ConnectionTest, TellsWhyAFileCannotBeOpened) {
  { makeDatabase("good.mdb").Execute("CREATE TABLE [A b] (x TEXT)"); }
  std::string damaged(4096, 'x');
  std::ifstream(path("good.mdb"), std::ios::binary).read(damaged.data(), 100);
  write("damaged.mdb", damaged);
  write("access.mdb", std::string("\0\1\0\0Standard Jet DB\0more", 24));
  write("accdb.mdb", std::string("\0\1\0\0Standard ACE DB\0more", 24));
  write("text.mdb", "Mineral\tFormula\n");
  fs::create_directory(folder_ / "folder.mdb");
  const struct {
    std::string file, reason;
  } rows[] = {
      {"missing.mdb", "does not exist"}, {"folder.mdb", "is a folder"},
      {"text.mdb", "is not a database"}, {"access.mdb", "cannot be read"},
      {"accdb.mdb", "cannot be"},        {"damaged.mdb", "is damaged"},
  };
  for (const auto& row : rows) {
    const std::string error = errorOf([&] { open(row.file); });
    EXPECT_THAT(error, HasSubstr(row.reason)) << row.file;
    EXPECT_THAT(error, HasSubstr(path(row.file)));
  }
  EXPECT_FALSE(fs::exists(path("missing.mdb")));
  EXPECT_THAT(errorOf([&] { createDatabase(path("good.mdb")); }), HasSubstr("exists already"));
}

TEST_F(ConnectionTest, ServiceWithoutDriverIsRefusedWithoutItsPassword) {
  Connection connection;
  const std::string error =
      errorOf([&] { connection.Open(ConnectionString("LAB.ORA", "me", "secret")); });
  EXPECT_THAT(error, HasSubstr("LAB"));
  EXPECT_THAT(error, testing::Not(HasSubstr("secret")));
  EXPECT_FALSE(connection.IsOpen());
  EXPECT_THAT(errorOf([&] { connection.Execute("SELECT 1"); }), HasSubstr("closed"));
}

TEST_F(ConnectionTest, KeepsWhatAFieldHoldsAndItsType) {
  auto connection = makeDatabase("types.mdb");
  const std::string_view declarations[] = {"TEXT (50)", "MEMO", "SINGLE",  "DOUBLE", "LONG",
                                           "INTEGER",   "BYTE", "BOOLEAN", "DATE",   "CURRENCY"};
  std::string columns;
  for (const auto declaration : declarations) {
    columns += (columns.empty() ? "" : ", ") + quoteName(declaration) + " " +
               columnDeclaration(parseFieldType(declaration));
  }
  connection.Execute("CREATE TABLE [t] (" + columns + ")");
  for (const FieldValue& value : {FieldValue("007"), FieldValue("1e5")}) {
    connection.Execute("INSERT INTO [t] ([TEXT (50)], MEMO) VALUES (?, ?)", {value, value});
  }
  auto records = connection.OpenRecordset("SELECT * FROM [t]");
  for (const auto& field : records->Fields()) {
    EXPECT_EQ(field.type, parseFieldType(field.name)) << field.name;
  }
  EXPECT_EQ(records->Fields()[0].type.size, 50);
  for (const auto* name : {"TEXT (50)", "MEMO"}) {
    EXPECT_EQ(records->Value(name), FieldValue("007")) << name;
  }
}

TEST_F(ConnectionTest, StatementsReportWhatTheyDid) {
  auto connection = makeDatabase("s.mdb");
  connection.Execute("CREATE TABLE [t] (a LONG INT UNIQUE, b TEXT)");
  EXPECT_EQ(connection.Execute("INSERT INTO t VALUES (1, 'x'), (2, 'y')"), 2);
  EXPECT_EQ(connection.Execute("UPDATE t SET b = 'z' WHERE a > 5"), 0);
  const struct {
    std::string sql, reason;
  } rows[] = {
      {"SELEC 1", "SELEC 1"},
      {"", "empty"},
      {"SELECT * FROM [nowhere]", "nowhere"},
      {"INSERT INTO t VALUES (1, 'x')", "refused"},
      {"DELETE FROM t; DROP TABLE t", "behind the end"},
      {"INSERT INTO t VALUES (?, 'x')", "1 parameters, not 0"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(errorOf([&] { connection.Execute(row.sql); }), HasSubstr(row.reason)) << row.sql;
  }
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM t;")->RecordCount(), 2);
}

TEST_F(ConnectionTest, QuotingWithstandsHostileNames) {
  auto connection = makeDatabase("q.mdb");
  for (const std::string name : {"a]; DROP TABLE x; --", "it's", "\"double\" ]", "Cu %"}) {
    connection.Execute("CREATE TABLE " + quoteName(name) + " (a TEXT)");
    connection.Execute("INSERT INTO " + quoteName(name) + " VALUES (" + quoteText(name) + ")");
    EXPECT_EQ(connection.OpenRecordset("SELECT * FROM " + quoteName(name))->Text(0), name);
  }
  EXPECT_THROW(quoteText(std::string_view("a\0b", 3)), Error);
}

TEST_F(ConnectionTest, AnotherUsersLockGivesAClearErrorAndLeavesTheDataWhole) {
  auto writer = makeDatabase("lock.mdb");
  writer.Execute("CREATE TABLE t (a LONG INT)");
  auto other = open("lock.mdb");
  other.BusyTimeout(10);
  {
    Transaction work(writer);
    writer.Execute("INSERT INTO t VALUES (1)");
    EXPECT_THAT(errorOf([&] { other.Execute("INSERT INTO t VALUES (2)"); }),
                HasSubstr("is in use"));
    EXPECT_EQ(other.OpenRecordset("SELECT * FROM t")->RecordCount(), 0);
  }
  EXPECT_EQ(other.OpenRecordset("SELECT * FROM t")->RecordCount(), 0) << "not rolled back";
  other.Execute("INSERT INTO t VALUES (2)");
  EXPECT_EQ(writer.OpenRecordset("SELECT * FROM t")->RecordCount(), 1);
}

TEST_F(ConnectionTest, ADatabaseThatWasReplacedTakesNoRecords) {
  auto connection = makeDatabase("here.mdb");
  connection.Execute("CREATE TABLE T (a LONG)");
  std::filesystem::rename(path("here.mdb"), path("old.mdb"));
  createDatabase(path("here.mdb"));
  EXPECT_THAT(errorOf([&] { connection.Execute("INSERT INTO T VALUES (1)"); }),
              HasSubstr("must be opened again"));
}

TEST_F(ConnectionTest, LongStatementsAreShownByTheirStart) {
  std::string letters;
  for (int i = 0; i < 3000; ++i) letters += "ä";
  auto connection = makeDatabase("long.mdb");
  for (const char* start : {"SELECT nosuch AS ", "SELECT ) ", "SELECT )"}) {
    const std::string message = errorOf([&] { connection.OpenRecordset(start + letters); });
    EXPECT_LT(message.size(), 700U) << start;
    EXPECT_TRUE(isValidUtf8(message)) << start;
  }
}

TEST_F(ConnectionTest, AFullDiskLeavesNothingOfAUnit) {
  auto connection = makeDatabase("full.mdb");
  connection.Execute("CREATE TABLE a (x MEMO)");
  connection.Execute("CREATE TABLE b (x LONG)");
  connection.Execute("PRAGMA max_page_count = 12");
  {
    Transaction work(connection);
    connection.Execute("INSERT INTO b VALUES (1)");
    EXPECT_THAT(
        errorOf([&] { connection.Execute("INSERT INTO a VALUES (?)", {std::string(90000, 'x')}); }),
        HasSubstr("the disk is full"));
    // The rest of the unit must not become lasting record by record.
    EXPECT_THAT(errorOf([&] { connection.Execute("INSERT INTO b VALUES (2)"); }),
                HasSubstr("was given up"));
    EXPECT_THAT(errorOf([&] { work.commit(); }), HasSubstr("was given up"));
  }
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM b")->RecordCount(), 0);
  Transaction work(connection);
  connection.Execute("INSERT INTO b VALUES (3)");
  work.commit();
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM b")->RecordCount(), 1);
}

TEST_F(ConnectionTest, ForwardOnlyRecordsPassOnce) {
  auto connection = makeDatabase("f.mdb");
  connection.Execute("CREATE TABLE t (a LONG INT)");
  connection.Execute("INSERT INTO t VALUES (1), (2), (NULL)");
  auto records = connection.OpenRecordset("SELECT a FROM t", CursorKind::ForwardOnly);
  std::vector<std::string> seen;
  for (; !records->Eof(); records->MoveNext()) seen.push_back(records->Text(0));
  EXPECT_THAT(seen, ElementsAre("1", "2", ""));
  EXPECT_EQ(records->RecordCount(), -1);
  EXPECT_THROW(records->MoveNext(), Error);
  EXPECT_THROW(records->Filter("a = 1"), Error);
}

TEST_F(ConnectionTest, SchemaTellsTablesColumnsAndKeys) {
  auto connection = makeDatabase("schema.mdb");
  EXPECT_EQ(connection.OpenSchema(SchemaKind::Tables)->RecordCount(), 0);
  connection.Execute(
      "CREATE TABLE [b %] (y MEMO TEXT NOT NULL, x TEXT(30), d DECIMAL(10, 2), PRIMARY KEY (x, "
      "y))");
  connection.Execute("CREATE TABLE [A] (k LONG INT, [v \"q\"] SINGLE REAL)");
  connection.Execute("CREATE UNIQUE INDEX [A k] ON [A] (k)");
  connection.Execute(
      "CREATE TABLE [C] (ID COUNTER PRIMARY KEY, [No] COUNTER, kk LONG REFERENCES [A] (k))");
  connection.Execute("CREATE VIEW [f_Rock] AS SELECT k AS n FROM [A]");
  connection.Execute("CREATE TABLE gone (x TEXT)");
  connection.Execute("CREATE VIEW [f_Broken] AS SELECT x FROM gone");
  connection.Execute("DROP TABLE gone");

  const auto listing = [&](SchemaKind kind) {
    std::string text;
    auto records = connection.OpenSchema(kind);
    for (; !records->Eof(); records->MoveNext()) {
      for (size_t i = 0; i < records->Fields().size(); ++i) {
        text += (i ? "|" : "") + records->Text(static_cast<int>(i));
      }
      text += '\n';
    }
    return text;
  };
  EXPECT_EQ(listing(SchemaKind::Tables),
            "A|TABLE\nb %|TABLE\nC|TABLE\nf_Broken|VIEW\nf_Rock|VIEW\n");
  EXPECT_EQ(listing(SchemaKind::Columns),
            "A|k|1|3||||True|False|\n"
            "A|v \"q\"|2|4||||True|False|\n"
            "b %|y|1|203||||False|False|\n"
            "b %|x|2|202|30|||False|False|\n"
            "b %|d|3|131||10|2|True|False|\n"
            "C|ID|1|3||||True|True|\n"
            "C|No|2|3||||True|True|\n"
            "C|kk|3|3||||True|False|\n"
            "f_Rock|n|1|3||||True|False|\n");
  EXPECT_EQ(listing(SchemaKind::Indexes),
            "A|A k|False|True|1|k\n"
            "b %|PrimaryKey|True|True|1|x\n"
            "b %|PrimaryKey|True|True|2|y\n"
            "C|PrimaryKey|True|True|1|ID\n");
  EXPECT_EQ(listing(SchemaKind::ForeignKeys), "A|k|C|kk|1|AC0\n");
  EXPECT_THAT(
      errorOf([&] { connection.Execute("INSERT INTO [b %] VALUES ('y', 'x', 123456789)"); }),
      HasSubstr("numbers of up to 8 digits before the point"));
}

// A file that another program made: its types are the engine's and not those of Jet.
TEST_F(ConnectionTest, FilesOfOtherProgramsKeepTheirTypes) {
  sqlite3* file = nullptr;
  ASSERT_EQ(sqlite3_open(path("other.db").c_str(), &file), SQLITE_OK);
  sqlite3_exec(file,
               "CREATE TABLE t (id INTEGER PRIMARY KEY, note TEXT, grade REAL, code VARCHAR(9), "
               "untyped); INSERT INTO t VALUES (1, 'x', 0.1, 'c', 'u')",
               nullptr, nullptr, nullptr);
  sqlite3_close(file);
  auto connection = open("other.db");
  auto records = connection.OpenRecordset("SELECT * FROM t");
  const FieldCode expected[] = {FieldCode::Integer, FieldCode::Memo, FieldCode::Double,
                                FieldCode::VarText, FieldCode::VarText};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(records->Fields()[i].type.code, expected[i]) << records->Fields()[i].name;
  }
  records->SetValue("note", std::string(1000, 'n'));
  records->SetValue("grade", 0.1 + 0.2);
  records->Update();
  auto again = connection.OpenRecordset("SELECT * FROM t");
  EXPECT_EQ(again->Text("note").size(), 1000U);
  EXPECT_EQ(again->Value("grade"), FieldValue(0.1 + 0.2));
}

TEST_F(ConnectionTest, MineralFormulasAreFoundByName) {
  auto connection = makeDatabase("m.mdb");
  connection.Execute("CREATE TABLE Minerals (ID LONG INT, Mineral TEXT, MF TEXT, MF2 TEXT)");
  connection.Execute("INSERT INTO Minerals VALUES (1, 'Pyrite', 'FeS2', NULL)");
  connection.Execute("INSERT INTO Minerals VALUES (2, 'O''Brien''s ore', 'PbS', 'x')");
  MineralCatalogue catalogue(path("m.mdb"));
  std::vector<std::string> elements{"old"};
  std::vector<std::string> values{"old"};
  catalogue.HaeMinTieto("pyrite", elements, values);
  EXPECT_THAT(elements, ElementsAre("MF"));
  EXPECT_THAT(values, ElementsAre("FeS2"));
  catalogue.HaeMinTieto("O'Brien's ore", elements, values);
  EXPECT_THAT(elements, ElementsAre("MF", "MF2"));
  EXPECT_THAT(values, ElementsAre("PbS", "x"));
  catalogue.HaeMinTieto("Unobtainium", elements, values);
  EXPECT_TRUE(elements.empty() && values.empty());
  EXPECT_THROW(MineralCatalogue(path("none.mdb")).HaeMinTieto("x", elements, values), FileError);
}

}  // namespace
}  // namespace lodex
