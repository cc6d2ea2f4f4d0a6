#include "session/UserCopies.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "OtherUser.h"
#include "basic/Files.h"
#include "session/Ini.h"

namespace lodex {
namespace {
namespace fs = std::filesystem;

class UserCopiesTest : public testing::Test {
 protected:
  UserCopiesTest() {
    root_ = fs::temp_directory_path() / ("lodex-copies-" + std::to_string(::getpid()));
    for (const char* folder : {"Geo/ini", "Geo/System", "Geo/C-Groups/ROCK", "home"}) {
      fs::create_directories(root_ / folder);
    }
    fs::permissions(root_ / "home", fs::perms::all);
    write("Geo/System/LODEXGeo.mdb", "shipped");
    write("Geo/C-Groups/ROCK/CIPW.xls", "norm");
    write("Geo/ini/UserSettings.ini", "; yours\n");
    write("Geo/ini/LODEXGeo.ini", "[Users]\nUserPath1=" + (root_ / "home/geo").string() +
                                      "\nUserIniFile=+ini\\LODEXGeo.ini\n");
  }
  ~UserCopiesTest() override { fs::remove_all(root_); }

  void write(const char* name, const std::string& text) {
    writeFileWhole((root_ / name).string(), text);
  }
  std::string text(const char* name) { return readFile((root_ / name).string()); }
  std::string inRoot(const char* name) { return (root_ / name).string(); }
  void read() { session_.ReadSession(root_.string(), false, true); }

  fs::path root_;
  ScriptedDialogs dialogs_;
  NoEvents events_;
  MemoryClipboard clipboard_;
  Session session_{Services{dialogs_, events_, clipboard_}};
};

TEST_F(UserCopiesTest, AReadOnlyInstallationIsUsedThroughCopies) {
  {
    ReadOnly installation(root_ / "Geo");
    AsOtherUser other;
    read();
  }
  EXPECT_EQ(nativePath(session_.record.SampleDbPath), inRoot("home/geo/data/LODEXGeo.mdb"));
  EXPECT_EQ(nativePath(session_.record.MineralDbPath), inRoot("Geo/System/LODEXGeo.mdb"));
  EXPECT_EQ(nativePath(session_.record.CGroupsFolder), inRoot("home/geo/C-Groups"));
  EXPECT_EQ(text("home/geo/C-Groups/ROCK/CIPW.xls"), "norm");
  EXPECT_EQ(text("home/geo/ini/LODEXGeo.ini"), "; yours\n");

  write("home/geo/data/LODEXGeo.mdb", "changed by the user");
  write("Geo/C-Groups/ROCK/REE.xls", "new in this version");
  {
    ReadOnly installation(root_ / "Geo");
    AsOtherUser other;
    read();
  }
  EXPECT_EQ(text("home/geo/data/LODEXGeo.mdb"), "changed by the user");
  EXPECT_EQ(text("home/geo/C-Groups/ROCK/REE.xls"), "new in this version");
}

TEST_F(UserCopiesTest, WhatCannotBeCopiedIsUsedWhereItIs) {
  fs::permissions(root_ / "home", fs::perms::owner_all);
  ReadOnly installation(root_ / "Geo");
  ReadOnly home(root_ / "home");
  AsOtherUser other;
  read();
  EXPECT_EQ(nativePath(session_.record.SampleDbPath), inRoot("Geo/System/LODEXGeo.mdb"));
  EXPECT_EQ(nativePath(session_.record.CGroupsFolder), inRoot("Geo/C-Groups"));
}

TEST_F(UserCopiesTest, AnInstallationOfTheUsersOwnIsUsedDirectly) {
  read();
  EXPECT_EQ(nativePath(session_.record.SampleDbPath), inRoot("Geo/System/LODEXGeo.mdb"));
  EXPECT_FALSE(fs::exists(root_ / "home/geo/C-Groups"));
}

}  // namespace
}  // namespace lodex
