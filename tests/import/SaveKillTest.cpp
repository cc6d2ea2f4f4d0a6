#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>

#include "db/Recordset.h"
#include "import/SaveSheets.h"

namespace lodex {
namespace {

constexpr int samples = 3000;
constexpr int kills = 50;
constexpr int mostRounds = 200;

// Every sample goes into two tables, with the same number in both.
class SaveKillTest : public testing::Test {
 protected:
  SaveKillTest() {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    createDatabase(path);
    sheet.structure.firstDataRow = 4;
    sheet.structure.idColumn = 1;
    const char* const captions[][4] = {{"Majors", "Majors", "Traces", "Traces"},
                                       {"SampleNo", "Round", "Round", "Note"},
                                       {"TEXT(20)(U,I)", "LONG", "LONG", "TEXT(60)"}};
    for (int row = 1; row <= 3; ++row) {
      sheet.structure.row(sysrow::Table + row - 1) = row;
      for (int column = 1; column <= 4; ++column) {
        cells.TextRC(row, column, captions[row - 1][column - 1]);
      }
    }
    for (int row = 4; row < 4 + samples; ++row) {
      cells.TextRC(row, 1, "S" + std::to_string(row));
      cells.TextRC(row, 4, std::string(50, 'n'));
    }
  }
  ~SaveKillTest() override { std::filesystem::remove_all(folder); }

  void setRound(int round) {
    for (int row = 4; row < 4 + samples; ++row) {
      cells.NumberRC(row, 2, round);
      cells.NumberRC(row, 3, round);
    }
  }

  bool save() const {
    ScriptedDialogs dialogs;
    NoEvents events;
    MemoryClipboard clipboard;
    Session session{Services{dialogs, events, clipboard}};
    MappedDatabase database{path, {}, {}};
    if (!MapDatabase(session, database, {}).done()) return false;
    database.connection.BusyTimeout(60000);
    const SaveOutcome outcome = saveSheets(session, database, {{sheet}, true, true, false});
    return outcome.outcome.exitStatus() == 0;
  }

  // Saves in a process of its own and kills that. True when the kill came before the end.
  bool saveUntilKilled(int microseconds) const {
    const pid_t saver = ::fork();
    if (saver == 0) {
      bool done = false;
      try {
        done = save();
      } catch (...) {
      }
      ::_exit(done ? 0 : 1);
    }
    ::usleep(static_cast<useconds_t>(microseconds));
    ::kill(saver, SIGKILL);
    int status = 0;
    ::waitpid(saver, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << "the saving failed by itself";
    return WIFSIGNALED(status);
  }

  static std::string one(Connection& connection, const std::string& sql) {
    return connection.OpenRecordset(sql)->Text(0);
  }

  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex-kill-" + std::to_string(::getpid()));
  std::string path = (folder / "saved.mdb").string();
  Worksheet cells;
  SheetToSave sheet{"assays", &cells, {}, 0};
};

TEST_F(SaveKillTest, ASampleStandsInBothTablesOrInNeither) {
  std::mt19937 random(20260101);
  setRound(0);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(save());
  const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  std::uniform_int_distribution<int> delay(0, static_cast<int>(whole.count()));
  int killed = 0;
  int begun = 0;
  int round = 0;
  while (killed < kills && ++round <= mostRounds) {
    // At times from the beginning: making the tables must not be left half-way either.
    if (round % 10 == 0) {
      std::filesystem::remove(path);
      createDatabase(path);
    }
    setRound(round);
    killed += saveUntilKilled(delay(random)) ? 1 : 0;

    Connection connection;
    ASSERT_NO_THROW(connection.Open(ConnectionString(path, "", ""))) << round;
    ASSERT_EQ(one(connection, "PRAGMA integrity_check"), "ok") << round;
    const int tables = connection.OpenSchema(SchemaKind::Tables)->RecordCount();
    ASSERT_TRUE(tables == 0 || tables == 2) << round;
    if (tables == 0) continue;
    ++begun;
    const std::string majors = one(connection, "SELECT Count(*) FROM [Majors]");
    EXPECT_EQ(one(connection, "SELECT Count(*) FROM [Traces]"), majors) << round;
    EXPECT_EQ(one(connection,
                  "SELECT Count(*) FROM [Majors] INNER JOIN [Traces] ON [Majors].[SampleNo] = "
                  "[Traces].[SampleNo] WHERE [Majors].[Round] = [Traces].[Round] AND "
                  "Len([Note]) = 50"),
              majors)
        << round;
  }
  EXPECT_EQ(killed, kills);
  EXPECT_GE(begun, kills / 2);
  // Saved once more without a kill, everything is there.
  setRound(-1);
  EXPECT_TRUE(save());
  Connection connection;
  connection.Open(ConnectionString(path, "", ""));
  EXPECT_EQ(one(connection, "SELECT Count(*) FROM [Traces] WHERE [Round] = -1"),
            std::to_string(samples));
}

}  // namespace
}  // namespace lodex
