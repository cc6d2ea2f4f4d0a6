// Where the copies of Access files lie, and what becomes of them when either side changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include "AccessMaker.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "db/drivers/jet/AccessTwin.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// Root may write anywhere. Without this capability it is bound by the permissions of folders, as
// other users are, but can still start programs wherever they are.
void obeyPermissions() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
  if (::syscall(SYS_capget, &header, sets) != 0) std::abort();
  for (auto* set : {&sets[0].effective, &sets[0].permitted}) *set &= ~(1u << CAP_DAC_OVERRIDE);
  if (::syscall(SYS_capset, &header, sets) != 0) std::abort();
}

class AccessTwinTest : public testing::Test {
 protected:
  AccessTwinTest() { fs::create_directories(folder_); }
  ~AccessTwinTest() override {
    fs::permissions(folder_, fs::perms::all);
    fs::remove_all(folder_);
    setTwinFolder("");
  }

  void make(int records) const {
    AccessMaker maker;
    maker.addTable({"T", {{"n", AccessType::LongInteger}}});
    for (int i = 0; i < records; ++i) maker.addRecord({storedAs(i)});
    maker.write(access_.string());
  }
  // The number of records of the Access file, or of another database.
  std::string count(const fs::path& path) {
    Connection connection;
    connection.Open(ConnectionString(path.string(), "", ""));
    noticed_.clear();
    for (const Finding& finding : connection.Noticed().all()) noticed_.push_back(finding.text);
    return connection.OpenRecordset("SELECT Count(*) FROM T")->Text(0);
  }
  void change(const std::string& statement = "DELETE FROM T WHERE n = 0") const {
    Connection connection;
    connection.Open(ConnectionString(access_.string(), "", ""));
    connection.Execute(statement);
  }

  const fs::path folder_ = fs::temp_directory_path() / ("lodex_twin_" + std::to_string(::getpid()));
  const fs::path access_ = folder_ / "assays.mdb";
  const fs::path twin_ = folder_ / "assays.mdb.lodex.sqlite";
  const fs::path kept_ = folder_ / "assays.mdb.lodex.1.sqlite";
  std::vector<std::string> noticed_;
};

TEST_F(AccessTwinTest, IsUsedAgainWithItsChanges) {
  make(3);
  const std::string before = readFile(access_.string());
  EXPECT_EQ(count(access_), "3");
  EXPECT_THAT(noticed_, ElementsAre(HasSubstr("all changes go to this copy")));
  change();
  EXPECT_EQ(count(access_), "2");
  EXPECT_THAT(noticed_, IsEmpty());
  EXPECT_EQ(readFile(access_.string()), before);
}

// Only its content counts, not the time that a copy or a tool gave it.
TEST_F(AccessTwinTest, IsKeptWhenItsFileWasOnlyTouched) {
  const auto touch = [&](int minutes) {
    fs::last_write_time(access_, fs::file_time_type::clock::now() + std::chrono::minutes(minutes));
  };
  make(3);
  count(access_);
  touch(1);
  EXPECT_EQ(count(access_), "3");
  EXPECT_THAT(noticed_, IsEmpty());
  change();
  touch(2);
  EXPECT_EQ(count(access_), "2");
  EXPECT_THAT(noticed_, IsEmpty());

  const fs::path folder = folder_ / "copied";
  fs::create_directories(folder);
  fs::copy_file(access_, folder / access_.filename());
  fs::copy_file(twin_, folder / twin_.filename());
  EXPECT_EQ(count(folder / access_.filename()), "2");
  EXPECT_THAT(noticed_, IsEmpty());

  // A touched twin without changes is still one without changes.
  fs::remove(twin_);
  count(access_);
  touch(3);
  count(access_);
  make(4);
  EXPECT_EQ(count(access_), "4");
  EXPECT_FALSE(fs::exists(kept_));
}

TEST_F(AccessTwinTest, ReportsAtEveryOpeningWhatItLacks) {
  AccessMaker maker;
  maker.addTable({"T", {{"n", AccessType::LongInteger}, {"m", AccessType::Memo}}});
  maker.addRecord({storedAs(1), "short"});
  maker.addLink("Far", "far.mdb");
  maker.addQuery("Empty");
  maker.write(access_.string());
  count(access_);
  EXPECT_THAT(noticed_, UnorderedElementsAre(HasSubstr("all changes go to this copy"),
                                             HasSubstr("field m could not be read"),
                                             HasSubstr("in another database, far.mdb")));
  for (int i = 0; i < 2; ++i) {
    count(access_);
    EXPECT_THAT(noticed_, UnorderedElementsAre(HasSubstr("field m could not be read"),
                                               HasSubstr("in another database, far.mdb")));
  }
}

TEST_F(AccessTwinTest, IsMadeOnceByProgramsThatStartTogether) {
  for (int round = 0; round < 8; ++round) {
    make(round + 1);
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
      children.push_back(::fork());
      if (children.back() != 0) continue;
      try {
        ::_exit(count(access_) == std::to_string(round + 1) ? 0 : 1);
      } catch (const std::exception&) {
        ::_exit(2);
      }
    }
    for (const pid_t child : children) {
      int status = 0;
      EXPECT_EQ(::waitpid(child, &status, 0), child);
      EXPECT_EQ(status, 0);
    }
    EXPECT_FALSE(fs::exists(kept_)) << "a copy that nobody changed was kept";
  }
}

TEST_F(AccessTwinTest, FollowsItsFileAndKeepsChanges) {
  const struct {
    std::string name;
    std::function<void()> before;
    bool kept;
  } cases[] = {
      {"unchanged copy", [] {}, false},
      {"changed copy", [this] { change(); }, true},
      {"copy without its record", [this] { change("DROP TABLE MSysLodexOrigin"); }, true},
      {"another database",
       [this] {
         fs::remove(twin_);
         createDatabase(twin_.string());
       },
       true},
  };
  for (const auto& row : cases) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    make(3);
    count(access_);
    row.before();
    make(5);
    EXPECT_EQ(count(access_), "5") << row.name;
    EXPECT_EQ(fs::exists(kept_), row.kept) << row.name;
    if (row.kept) {
      EXPECT_THAT(noticed_, Contains(HasSubstr(kept_.string()))) << row.name;
    }
    count(access_);
    EXPECT_THAT(noticed_, IsEmpty()) << row.name;
  }
}

TEST_F(AccessTwinTest, IsMadeAgainWhenItIsGone) {
  make(3);
  count(access_);
  fs::remove(twin_);
  EXPECT_EQ(count(access_), "3");
}

TEST_F(AccessTwinTest, LeftoversOfKilledProgramsGo) {
  make(3);
  const std::string killed = twin_.string() + ".2147483647.tmp";
  const std::string running = twin_.string() + "." + std::to_string(::getppid()) + ".tmp";
  for (const auto& path : {killed, running}) {
    writeFileWhole(path, "x");
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
  }
  count(access_);
  EXPECT_FALSE(fs::exists(killed));
  EXPECT_TRUE(fs::exists(running));
}

TEST_F(AccessTwinTest, StaysAsItIsWhenTheNewFileIsDamaged) {
  make(3);
  count(access_);
  change();
  fs::resize_file(access_, 4096 * 2 + 7);
  EXPECT_THROW(count(access_), FileError);
  EXPECT_TRUE(fs::exists(twin_));
  EXPECT_FALSE(fs::exists(kept_));
  EXPECT_EQ(count(twin_), "2");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 2);
}

TEST_F(AccessTwinTest, SinglesReadAsTheyWereEntered) {
  AccessMaker maker;
  maker.addTable({"T", {{"n", AccessType::Single}}});
  for (const float value : {0.1f, 444.555f, 16777217.0f, 1e-7f, 1.0f / 3}) {
    maker.addRecord({storedAs(value)});
  }
  maker.write(access_.string());
  Connection connection;
  connection.Open(ConnectionString(access_.string(), "", ""));
  std::string texts;
  for (auto rows = connection.OpenRecordset("SELECT n FROM T"); !rows->Eof(); rows->MoveNext()) {
    texts += rows->Text(0) + ";";
  }
  EXPECT_EQ(texts, "0.1;444.555;16777216;1E-07;0.33333334;");
}

TEST_F(AccessTwinTest, GoesToTheUsersFolderWhereItsOwnCannotBeWritten) {
  make(3);
  const fs::path home = folder_ / "home";
  fs::create_directories(home);
  fs::permissions(home, fs::perms::all);
  fs::permissions(folder_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                               fs::perms::others_exec | fs::perms::group_read |
                               fs::perms::group_exec);
  const pid_t child = ::fork();
  if (child == 0) {
    obeyPermissions();
    try {
      setTwinFolder((home / "data").string());
      const bool first = count(access_) == "3" && noticed_.size() == 1 &&
                         noticed_[0].find((home / "data").string()) != std::string::npos;
      change();
      ::_exit(first && count(access_) == "2" && noticed_.empty() ? 0 : 1);
    } catch (const Error& error) {
      std::fprintf(stderr, "%s\n", error.what());
      ::_exit(1);
    }
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(fs::exists(twin_));
}

}  // namespace
}  // namespace lodex
