#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
#include "cli/RunLodex.h"

namespace lodex {
namespace {

using testing::HasSubstr;

TEST(DatabaseCommands, SaveMapAndCombine) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex databases " + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  const auto quoted = [&](const char* name) { return "'" + (folder / name).string() + "' "; };
  writeFileWhole((folder / "good.txt").string(), "Sample\tFe_XRF %\nS1\t5.5\nS2\t6\n");
  writeFileWhole((folder / "bad.txt").string(), "Sample\tFe_XRF %\nS3\t<5\n");
  const std::string db = "--db " + quoted("a.mdb");
  const CommandRun saved = runLodex("save " + quoted("good.txt") + db + "--log");
  EXPECT_EQ(saved.status, 0);
  EXPECT_THAT(saved.text, HasSubstr("  -EXECUTED: CREATE TABLE [ANALYSES]"));
  EXPECT_EQ(runLodex("save " + quoted("bad.txt") + db + "2>/dev/null").status, 1);
  EXPECT_THAT(runLodex("save " + quoted("good.txt") + db + "--overwrite 2>&1").text,
              HasSubstr("2 records written in "));
  EXPECT_THAT(runLodex("save " + quoted("good.txt") + db + "--merge 2>&1").text,
              HasSubstr("0 records written in "));
  EXPECT_EQ(runLodex("save " + quoted("missing.txt") + db + "2>/dev/null").status, 1);
  const CommandRun map = runLodex("map --refresh " + quoted("a.mdb"));
  EXPECT_EQ(map.status, 0);
  EXPECT_THAT(map.text, HasSubstr("table\tANALYSES\tSample\tFe/XRF/%\n"));
  EXPECT_THAT(map.text, HasSubstr("key\tANALYSES\tSample\n"));
  EXPECT_TRUE(std::filesystem::exists(folder / "a.ake"));
  const auto now = std::filesystem::file_time_type::clock::now();
  std::filesystem::last_write_time(folder / "a.mdb", now + std::chrono::hours(1));
  EXPECT_THAT(runLodex("map " + quoted("a.mdb") + "2>&1 >/dev/null").text,
              HasSubstr("is older than the database"));
  EXPECT_EQ(runLodex("map " + quoted("missing.mdb") + "2>/dev/null").status, 1);
  const CommandRun combined = runLodex("combine " + quoted("a.mdb") + "--into " + quoted("b.mdb"));
  EXPECT_EQ(combined.status, 0);
  EXPECT_THAT(combined.text, HasSubstr(" -3 records written in ANALYSES"));
  EXPECT_THAT(runLodex("combine " + quoted("a.mdb") + "--into " + quoted("a.mdb") + "2>&1").text,
              HasSubstr("a.mdb is the database to add to and not used as a source"));
  EXPECT_EQ(runLodex("export " + quoted("b.mdb") + quoted("out") + "2>&1").text, "");
  EXPECT_EQ(readFile((folder / "out" / "ANALYSES.csv").string()),
            "\"Sample\",\"Fe/XRF/%\"\r\n\"S1\",5.5\r\n\"S2\",6\r\n\"S3\",\r\n");
  const CommandRun server = runLodex("map 'Driver={None such};Server=x;Pwd=s3cret' 2>&1");
  EXPECT_EQ(server.status, 1);
  EXPECT_THAT(server.text,
              HasSubstr("Server Driver={None such};Server=x;Pwd=... cannot be opened"));
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace lodex
