#include "basic/Files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <set>

#include "basic/Error.h"

namespace lodex {
namespace {

TEST(Files, TakesPathsApart) {
  EXPECT_EQ(fileNameOf("C:\\Geo\\data/a.b.xls"), "a.b.xls");
  EXPECT_EQ(folderOf("C:\\Geo\\data/a.xls"), "C:\\Geo\\data");
  EXPECT_EQ(folderOf("a.xls"), "");
  EXPECT_EQ(extensionOf("x.y/a.B.XLS"), "xls");
  EXPECT_EQ(extensionOf("x.y/file"), "");
  EXPECT_EQ(nativePath("a\\b/c"), std::filesystem::path("a/b/c"));
}

TEST(Files, AFailedWriteLeavesTheOldFile) {
  const auto folder =
      std::filesystem::temp_directory_path() / ("lodex_files_" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  const std::string path = pathText(folder / "kept.txt");
  writeFileWhole(path, "old");
  const auto failing = [](const std::filesystem::path& temporary) {
    writeFileWhole(pathText(temporary), "half");
    throw Error("stopped");
  };
  EXPECT_THROW(writeFileWhole(path, failing), Error);
  EXPECT_EQ(readFile(path), "old");
  writeFileWhole(path, "new");
  EXPECT_EQ(readFile(path), "new");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1)
      << "no temporary file stays";
  EXPECT_THROW(readFile(path, 2), FileError);
  EXPECT_THROW(readFile(pathText(folder)), FileError);
  EXPECT_THROW(readFile(pathText(folder / "none")), FileError);
  EXPECT_THROW(writeFileWhole(pathText(folder / "none" / "x"), "x"), FileError);
  std::filesystem::remove_all(folder);
}

TEST(Files, WritesThroughLinksAndRefusesDevices) {
  namespace fs = std::filesystem;
  const auto folder = fs::temp_directory_path() / ("lodex_links_" + std::to_string(::getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder);
  const std::string target = pathText(folder / "target.txt");
  const std::string link = pathText(folder / "link.txt");
  writeFileWhole(target, "old");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("target.txt", link);
  writeFileWhole(link, "new");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(readFile(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_THROW(readFile("/dev/zero"), FileError);
  fs::remove_all(folder);
}

TEST(Files, TheTemporaryIsOutOfReachOfOthers) {
  namespace fs = std::filesystem;
  const auto folder = fs::temp_directory_path() / "lodex_private";
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::set<fs::path> places;
  for (int turn = 0; turn < 2; ++turn) {
    writeFileWhole(pathText(folder / "a.txt"), [&](const fs::path& temporary) {
      EXPECT_FALSE(fs::exists(temporary));
      EXPECT_EQ(fs::status(temporary.parent_path()).permissions(), fs::perms::owner_all);
      places.insert(temporary);
      writeFileWhole(pathText(temporary), "text");
    });
  }
  EXPECT_EQ(places.size(), 2u) << "names differ from turn to turn";
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace lodex
