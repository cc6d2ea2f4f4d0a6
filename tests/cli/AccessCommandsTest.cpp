// Commands on an Access file of which something could not be read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "../db/AccessMaker.h"
#include "cli/RunLodex.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

TEST(AccessCommands, FailWheneverSomethingWasLeftOut) {
  const fs::path folder =
      fs::temp_directory_path() / ("lodex_access_commands_" + std::to_string(::getpid()));
  fs::create_directories(folder);
  AccessMaker maker;
  maker.addTable({"T", {{"n", AccessType::LongInteger}, {"m", AccessType::Memo}}});
  maker.addRecord({storedAs(7), "short"});
  const std::string file = (folder / "ores.mdb").string();
  maker.write(file);
  const std::string lost = "A value of field m could not be read";
  for (const std::string& command :
       {"sql '" + file + "' 'SELECT n FROM T'", "sql '" + file + "' 'SELECT n FROM T'",
        "map '" + file + "'", "map --refresh '" + file + "'", "map '" + file + "'",
        "export '" + file + "' '" + (folder / "out").string() + "'"}) {
    const CommandRun run = runLodex(command + " 2>&1");
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_THAT(run.text, HasSubstr(lost)) << command;
  }

  maker = AccessMaker();
  maker.addTable({"T", {{"n", AccessType::LongInteger}}});
  maker.addRecord({storedAs(8)});
  maker.write(file);
  const CommandRun sound = runLodex("sql '" + file + "' 'SELECT n FROM T' 2>&1");
  EXPECT_EQ(sound.status, 0);
  EXPECT_THAT(sound.text, HasSubstr("n\n8\n"));
  EXPECT_THAT(sound.text, Not(HasSubstr(lost)));
  fs::remove_all(folder);
}

}  // namespace
}  // namespace lodex
