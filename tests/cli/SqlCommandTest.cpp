#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "cli/RunLodex.h"
#include "db/Connection.h"

namespace lodex {
namespace {

using testing::HasSubstr;

class SqlCommand : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::remove(database_);
    createDatabase(database_);
    Connection connection;
    connection.Open(ConnectionString(database_, "", ""));
    connection.Execute("CREATE TABLE [T] ([a, \"b\"] TEXT, [n] SINGLE, [Ok] BOOLEAN)");
    connection.Execute("INSERT INTO [T] VALUES (?, 0.5, True)", {"tab\there, \"quote\"\nline"});
    connection.Execute("INSERT INTO [T] VALUES ('Å', Null, False)");
  }
  void TearDown() override { std::filesystem::remove(database_); }

  CommandRun run(const std::string& statement, const std::string& options = "") {
    return runLodex("sql " + database_ + " \"" + statement + "\" " + options + " 2>&1");
  }

  std::string database_ = (std::filesystem::temp_directory_path() /
                           ("lodex_sql_command_" + std::to_string(::getpid()) + ".mdb"))
                              .string();
};

TEST_F(SqlCommand, PrintsRecordsInEachFormatWhole) {
  const struct {
    std::string options, expected;
  } rows[] = {
      {"", "a, \"b\"\tn\tOk\ntab\\there, \"quote\"\\nline\t0.5\tTrue\nÅ\t\tFalse\n"},
      {"--format csv",
       "\"a, \"\"b\"\"\",n,Ok\n\"tab\there, \"\"quote\"\"\nline\",0.5,True\nÅ,,False\n"},
      {"--format json",
       "[\n  {\"a, \\\"b\\\"\": \"tab\\u0009here, \\\"quote\\\"\\nline\", \"n\": 0.5, \"Ok\": "
       "true},"
       "\n  {\"a, \\\"b\\\"\": \"Å\", \"n\": null, \"Ok\": false}\n]\n"},
  };
  for (const auto& row : rows) {
    const CommandRun outcome = run("SELECT * FROM [T]", row.options);
    EXPECT_EQ(outcome.status, 0) << row.options;
    EXPECT_EQ(outcome.text, row.expected) << row.options;
  }
}

TEST_F(SqlCommand, RunsStatementsAndTellsFaults) {
  const CommandRun changed = run("DELETE * FROM [T] WHERE [n] Is Null");
  EXPECT_EQ(changed.status, 0);
  EXPECT_EQ(changed.text, "");
  EXPECT_EQ(run("SELECT Count(*) AS c FROM [T]").text, "c\n1\n");
  const CommandRun wrong = run("SELECT * FORM [T]");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.text, HasSubstr("line 1, column 10"));
  EXPECT_EQ(run("SELECT 1", "--format xml").status, 2);
}

}  // namespace
}  // namespace lodex
