#include <gmock/gmock.h>
#include <sys/wait.h>

#include <csignal>
#include <random>

#include "DatabaseFixture.h"

namespace lodex {
namespace {

using testing::HasSubstr;

class TypedFieldsTest : public DatabaseFixture {
 protected:
  // The table as a data sheet's saving makes it: empty, then field by field.
  void makeSamples() {
    run("CREATE TABLE [Samples]");
    run("ALTER TABLE [Samples] ADD COLUMN [SampleNo] TEXT (8)");
    run("CREATE UNIQUE INDEX SampleNo ON [Samples] (SampleNo) WITH PRIMARY");
    for (const auto* column : {"[Cu %] SINGLE", "[Count] LONG", "[Small] INTEGER2", "[B] BYTE",
                               "[Ok] BOOLEAN", "[Day] DATE", "[Cost] CURRENCY", "[Note] MEMO"}) {
      run("ALTER TABLE [Samples] ADD COLUMN " + std::string(column));
    }
  }
  std::string schema(SchemaKind kind, const std::string& filter) {
    auto records = connection_.OpenSchema(kind);
    records->Filter(filter);
    std::string text;
    for (; !records->Eof(); records->MoveNext()) {
      for (size_t i = 1; i < records->Fields().size(); ++i) {
        text += (i > 1 ? "|" : "") + records->Text(static_cast<int>(i));
      }
      text += ";";
    }
    return text;
  }
};

TEST_F(TypedFieldsTest, ATableGrowsFromNothing) {
  run("CREATE TABLE [Empty]");
  EXPECT_EQ(schema(SchemaKind::Tables, "TABLE_NAME='Empty'"), "TABLE;");
  EXPECT_EQ(schema(SchemaKind::Columns, "TABLE_NAME='Empty'"), "");
  EXPECT_EQ(show("SELECT * FROM [Empty]"), "");
  run("ALTER TABLE [Empty] ADD COLUMN [Cu %] SINGLE");
  run("CREATE INDEX Cu % ON [Empty] (Cu %)");
  run("CREATE TABLE [Other] ([Cu %] SINGLE)");
  run("CREATE INDEX [Cu %] ON [Other] ([Cu %])");
  EXPECT_EQ(schema(SchemaKind::Columns, "TABLE_NAME='Empty'"), "Cu %|1|4||||True|False|;");
  EXPECT_EQ(schema(SchemaKind::Indexes, "TABLE_NAME='Empty'"), "Cu %|False|False|1|Cu %;");
  run("DROP INDEX [Cu %] ON [Empty]");
  EXPECT_EQ(schema(SchemaKind::Indexes, "TABLE_NAME='Empty'"), "");
  makeSamples();
  EXPECT_EQ(schema(SchemaKind::Indexes, "TABLE_NAME='Samples' AND PRIMARY_KEY=True"),
            "SampleNo|True|True|1|SampleNo;");
  EXPECT_THAT(errorOfSql("CREATE UNIQUE INDEX B ON [Samples] (B) WITH PRIMARY"),
              HasSubstr("primary key already"));
  run("CREATE VIEW broken AS SELECT nothing FROM [Other]");
  run("ALTER TABLE [Samples] DROP COLUMN [Note]");
  EXPECT_THAT(schema(SchemaKind::Columns, "TABLE_NAME='Samples'"), testing::Not(HasSubstr("Note")));
  EXPECT_EQ(schema(SchemaKind::Tables, "TABLE_NAME='broken'"), "VIEW;");
  EXPECT_THAT(errorOfSql("CREATE TABLE [Samples]"), HasSubstr("already exists"));
  EXPECT_THAT(errorOfSql("ALTER TABLE [Nowhere] ADD COLUMN [x] LONG"), HasSubstr("Nowhere"));
}

TEST_F(TypedFieldsTest, ValuesThatDoNotFitAreRefusedOnEveryWayIn) {
  makeSamples();
  run("INSERT INTO [Samples] ([SampleNo]) VALUES ('first')");
  const struct {
    std::string field;
    FieldValue value;
    std::string reason;
  } rows[] = {
      {"Cu %", "n.d.", "[Cu %] of table [Samples] takes numbers"},
      {"Cu %", 1e300, "single precision"},
      {"Count", 3e9, "between -2147483648 and 2147483647"},
      {"Count", "many", "whole numbers"},
      {"Small", std::int64_t{40000}, "between -32768 and 32767"},
      {"B", std::int64_t{-1}, "between 0 and 255"},
      {"Ok", "maybe", "True and False"},
      {"Day", "2020-13-77", "[Day] of table [Samples] takes dates"},
      {"Cost", "dear", "takes numbers"},
      {"SampleNo", "too long a name", "up to 8 characters"},
      {"SampleNo", "FIRST", "the same [SampleNo] of table [Samples] already"},
      {"SampleNo", {}, "primary key of table [Samples] cannot be empty"},
  };
  auto samples = connection_.OpenRecordset("SELECT * FROM [Samples]");
  for (const auto& row : rows) {
    const std::string& field = row.field;
    EXPECT_THAT(errorOf([&] {
                  const bool isKey = field == "SampleNo";
                  connection_.Execute("INSERT INTO [Samples] ([" + field + "]" +
                                          (isKey ? "" : ", SampleNo") + ") VALUES (?" +
                                          (isKey ? "" : ", 'new'") + ")",
                                      {row.value});
                }),
                HasSubstr(row.reason))
        << field;
    samples->AddNew();
    samples->SetValue("SampleNo", "new");
    samples->SetValue(field, row.value);
    EXPECT_THAT(errorOf([&] { samples->Update(); }), HasSubstr(row.reason)) << field;
    EXPECT_EQ(samples->Editing(), EditMode::Add);
    samples->CancelUpdate();
  }
  EXPECT_EQ(records("SELECT Count(*) FROM [Samples]"), "1");
}

TEST_F(TypedFieldsTest, RecordsetsWriteWhatFits) {
  makeSamples();
  auto samples = connection_.OpenRecordset("SELECT * FROM [Samples]");
  ASSERT_TRUE(samples->Updatable());
  for (const auto* name : {"a", "b", "c"}) {
    samples->AddNew();
    samples->SetValue("SampleNo", name);
    samples->SetValue("Cu %", " 1.5 ");
    samples->SetValue("Count", 2.5);
    samples->SetValue("Ok", "Yes");
    samples->SetValue("Day", "31.1.2020");
    samples->SetValue("Cost", 0.00005);
    samples->Update();
    EXPECT_EQ(samples->Text("SampleNo"), name);
  }
  EXPECT_EQ(records("SELECT * FROM [Samples] WHERE SampleNo = 'c'"),
            "c|1.5|2|||True|2020-01-31|0|");
  samples->MoveFirst();
  const int first = samples->Bookmark();
  samples->SetValue("Count", std::int64_t{9});
  samples->MoveNext();  // writes the change
  samples->Delete();
  EXPECT_THROW(samples->Text(0), Error);
  EXPECT_EQ(samples->RecordCount(), 2);
  samples->MoveNext();
  EXPECT_EQ(samples->Text(0), "c");
  samples->SetValue("Count", std::int64_t{1});
  samples->CancelUpdate();
  samples->Bookmark(first);
  EXPECT_EQ(samples->Text("Count"), "9");
  EXPECT_EQ(records("SELECT SampleNo, Count FROM [Samples]"), "a|9;c|2");
  samples->Filter("SampleNo = 'c'");
  EXPECT_THROW(samples->Bookmark(first), Error);

  for (const auto* sql :
       {"SELECT Count(*) AS n FROM [Samples]", "SELECT DISTINCT SampleNo FROM [Samples]",
        "SELECT a.SampleNo FROM [Samples] a, [Samples] b"}) {
    EXPECT_FALSE(connection_.OpenRecordset(sql)->Updatable()) << sql;
  }
  auto computed = connection_.OpenRecordset("SELECT SampleNo AS s, Count * 2 AS d FROM [Samples]");
  EXPECT_THAT(errorOf([&] { computed->SetValue("d", 1.0); }), HasSubstr("computed"));
  computed->SetValue("s", "z");
  computed->Update();
  EXPECT_EQ(records("SELECT SampleNo FROM [Samples] ORDER BY 1"), "c;z");
  connection_.Close();
  computed->SetValue("s", "y");
  EXPECT_THAT(errorOf([&] { computed->Update(); }), HasSubstr("closed"));
}

TEST_F(TypedFieldsTest, ARefusedRecordKeepsNoOtherOut) {
  run("CREATE TABLE [U] ([SampleNo] TEXT (5) PRIMARY KEY, [n] LONG)");
  auto units = connection_.OpenRecordset("SELECT * FROM [U]");
  const auto add = [&](const FieldValue& name, const FieldValue& n) {
    units->AddNew();
    units->SetValue("SampleNo", name);
    units->SetValue("n", n);
    units->Update();
  };
  Transaction work(connection_);
  add("a", std::int64_t{1});
  const Row refused[] = {
      {"a", std::int64_t{2}}, {{}, std::int64_t{2}}, {"abcdef", {}}, {"b", "<0.01"}, {"b", 3e9}};
  int good = 0;
  for (const Row& row : refused) {
    EXPECT_NE(errorOf([&] { add(row[0], row[1]); }), "(no error)") << fieldText(row[0]);
    units->CancelUpdate();
    add("z" + std::to_string(++good), {});
  }
  work.commit();
  EXPECT_EQ(records("SELECT [SampleNo] FROM [U] ORDER BY [SampleNo]"), "a;z1;z2;z3;z4;z5");
}

TEST_F(TypedFieldsTest, CountersNumberThemselves) {
  run("CREATE TABLE [k] ([ID] COUNTER PRIMARY KEY, [a] TEXT (5))");
  run("CREATE TABLE [n] ([ID] COUNTER, [a] TEXT (5), CONSTRAINT pk PRIMARY KEY ([a]))");
  for (const std::string table : {"k", "n"}) {
    auto records = connection_.OpenRecordset("SELECT * FROM [" + table + "]");
    for (const auto* text : {"x", "y"}) {
      records->AddNew();
      records->SetValue("a", text);
      records->Update();
    }
    EXPECT_EQ(records->Text("ID"), "2") << table;
  }
  run("CREATE TABLE [r] ([a] LONG NOT NULL)");
  EXPECT_THAT(errorOfSql("INSERT INTO [r] VALUES (Null)"),
              HasSubstr("[a] of table [r] is required"));
}

// Two tables get their records in units of twenty each, until the writer is killed.
[[noreturn]] void saveUntilKilled(const std::string& path) {
  try {
    Connection connection;
    connection.Open(ConnectionString(path, "", ""));
    connection.BusyTimeout(60000);
    while (true) {
      Transaction work(connection);
      for (int i = 0; i < 20; ++i) {
        connection.Execute("INSERT INTO [A] ([x]) VALUES (?)", {std::string(200, 'a')});
        connection.Execute("INSERT INTO [B] ([x]) VALUES (?)", {std::int64_t{i}});
      }
      work.commit();
    }
  } catch (...) {
  }
  _exit(1);
}

TEST_F(TypedFieldsTest, KillingTheSavingProcessLeavesWholeUnits) {
  run("CREATE TABLE [A] ([x] TEXT (250))");
  run("CREATE TABLE [B] ([x] LONG)");
  connection_.Close();
  std::mt19937 random(7);
  for (int round = 0; round < 50; ++round) {
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) saveUntilKilled(path());
    ::usleep(std::uniform_int_distribution<useconds_t>(2000, 30000)(random));
    ASSERT_EQ(::kill(writer, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";
  }
  connection_.Open(ConnectionString(path(), "", ""));
  EXPECT_EQ(records("PRAGMA integrity_check"), "ok");
  const auto counts = connection_.OpenRecordset(
      "SELECT (SELECT Count(*) FROM [A]) AS a, (SELECT Count(*) FROM [B]) AS b");
  EXPECT_EQ(counts->Value(0), counts->Value(1));
  EXPECT_GT(fieldNumber(counts->Value(0)), 0);
  EXPECT_EQ(std::get<std::int64_t>(counts->Value(0)) % 20, 0);
}

}  // namespace
}  // namespace lodex
