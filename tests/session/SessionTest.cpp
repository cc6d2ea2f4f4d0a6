#include "session/Session.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <new>
#include <stdexcept>

#include "basic/Error.h"
#include "basic/Files.h"
#include "session/Ini.h"

namespace lodex {
namespace {
namespace fs = std::filesystem;

// An installation folder of its own for each test.
class SessionTest : public testing::Test {
 protected:
  SessionTest() {
    app_ =
        fs::temp_directory_path() / ("lodex-session-" + std::to_string(::getpid()) + "-" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(app_ / "Geo/ini");
    fs::create_directories(app_ / "Geo/System");
  }
  ~SessionTest() override { fs::remove_all(app_); }

  void writeMainIni(std::string_view text) { writeFileWhole(mainIni(), text); }
  std::string mainIni() const { return (app_ / "Geo/ini/LODEXGeo.ini").string(); }
  std::string app() const { return app_.string(); }
  void makeDatabase(std::string_view name) {
    writeFileWhole((app_ / "Geo/System" / name).string(), "x");
  }
  const SessionRecord& read() {
    session_.ReadSession(app(), true, true);
    return session_.record;
  }

  fs::path app_;
  ScriptedDialogs dialogs_;
  NoEvents events_;
  MemoryClipboard clipboard_;
  Session session_{Services{dialogs_, events_, clipboard_}};
};

TEST_F(SessionTest, KnowsWhichLinesOfTheLogAreFindings) {
  Findings found;
  found.warn("text counted as 0", {.sheet = "Cu", .row = 2, .column = 2});
  found.error("a record was left out");
  session_.notice(found);
  session_.log.LisaaLog("Total");
  EXPECT_EQ(session_.log.txtLog.text(),
            "sheet Cu, B2: text counted as 0\r\na record was left out\r\nTotal");
  EXPECT_EQ(session_.log.txtErr.text(), "a record was left out");
  EXPECT_TRUE(session_.wroteAsFinding("sheet Cu, B2: text counted as 0"));
  EXPECT_FALSE(session_.wroteAsFinding("Total"));
  EXPECT_TRUE(session_.found.hasErrors());
}

TEST_F(SessionTest, IniLookupIgnoresCaseQuotesAndComments) {
  const std::string ini = mainIni();
  writeFileWhole(ini,
                 "; a comment\r\n[general]\nOWNER = The Mine \n;Owner2=no\nQuoted=\"  kept \"\n"
                 "[Other]\nOwner=someone else\n[GENERAL]\nLate=found\n");
  EXPECT_EQ(GetIni(ini, "General", "owner"), "The Mine");
  EXPECT_EQ(GetIni(ini, "General", "Owner2"), "");
  EXPECT_EQ(GetIni(ini, "General", "Quoted"), "  kept ");
  EXPECT_EQ(GetIni(ini, "General", "Late"), "found");
  EXPECT_EQ(GetIni(ini, "Missing", "Owner"), "");
  EXPECT_EQ(GetIni("no such file.ini", "General", "Owner"), "");
  EXPECT_EQ(GetIni("Win.ini", "MS User Info", "DefName"), "");
}

TEST_F(SessionTest, IniValuesExpandTheEnvironmentButNotQueries) {
  ::setenv("LODEX_TEST_VARIABLE", "value", 1);
  const std::string ini = mainIni();
  writeFileWhole(ini,
                 "[s]\na=x%LODEX_TEST_VARIABLE%y\nb=50% of it\nc=SELECT * LIKE '%a%'\n"
                 "d=%NO_SUCH_VARIABLE_AT_ALL%z\n");
  EXPECT_EQ(GetIni(ini, "s", "a"), "xvaluey");
  EXPECT_EQ(GetIni(ini, "s", "b"), "50% of it");
  EXPECT_EQ(GetIni(ini, "s", "c"), "SELECT * LIKE '%a%'");
  EXPECT_EQ(GetIni(ini, "s", "d"), "z");
  const std::string home = ExpandEnv("%HOME%");
  ::setenv("HOME", "", 1);
  EXPECT_NE(ExpandEnv("%HOME%"), "");
  ::setenv("HOME", home.c_str(), 1);
  EXPECT_EQ(ExpandEnv("%LODEX_TEST_VARIABLE%%LODEX_TEST_VARIABLE%%"), "valuevalue%");
}

TEST_F(SessionTest, IniValuesAreCutAtTheBufferButNotInsideACharacter) {
  writeFileWhole(mainIni(), "[s]\nlong=" + std::string(1022, 'x') + "ä\n");
  EXPECT_EQ(GetIni(mainIni(), "s", "long"), std::string(1022, 'x'));
}

TEST_F(SessionTest, PutIniChangesOneKeyAndKeepsTheRest) {
  const std::string ini = mainIni();
  writeFileWhole(ini, "; mine\r\n[A]\r\nkey=1\r\n\r\n[B]\r\nkey=2\r\n");
  PutIni(ini, "a", "KEY", "changed");
  PutIni(ini, "A", "new", "3");
  PutIni(ini, "C", "key", "4");
  EXPECT_EQ(readFile(ini),
            "; mine\r\n[A]\r\nKEY=changed\r\nnew=3\r\n\r\n[B]\r\nkey=2\r\n[C]\r\nkey=4\r\n");
}

TEST_F(SessionTest, DefaultsHoldWithoutAnIniFile) {
  makeDatabase("LODEXGeo.mdb");
  const SessionRecord& r = read();
  EXPECT_EQ(r.BasePath, app() + "\\Geo");
  EXPECT_EQ(r.UserPath, app() + "\\Geo");
  EXPECT_EQ(r.SampleDbPath, app() + "\\Geo\\System\\LODEXGeo.mdb");
  EXPECT_EQ(r.MineralDbPath, r.SampleDbPath);
  EXPECT_EQ(r.CGroupsFolder, app() + "\\Geo\\C-Groups");
  EXPECT_EQ(r.DefaultCGroup, "ROCK");
  EXPECT_EQ(r.HelpPath, app() + "\\Geo\\Help");
  EXPECT_EQ(r.CalcIni, r.MainIni);
  EXPECT_FALSE(r.UserName.empty());
  EXPECT_TRUE(fs::is_directory(app_ / "Geo/data"));
  EXPECT_EQ(session_.splash.labOwner.caption(), "Owner:; Run by:" + r.UserName);
}

TEST_F(SessionTest, UserFolderPiecesAndTheLoginName) {
  makeDatabase("LODEXGeo.mdb");
  const auto userPath = [&](const std::string& keys) {
    writeMainIni("[Users]\n" + keys);
    return read().UserPath;
  };
  const std::string me = read().UserName;
  const std::string root = app();
  EXPECT_EQ(userPath("UserPath1=" + root + "\\u\nUserPath2=v\n"), root + "\\u\\v");
  EXPECT_EQ(userPath("UserPath1=" + root + "/u\nUserNamePosition=1\n"), root + "/u\\" + me);
  EXPECT_EQ(userPath("UserPath1=" + root + "\\u\nUserPath2=\\w\nUserNamePosition=1\n"),
            root + "\\u" + me + "\\w");
  EXPECT_EQ(userPath("UserPath1=" + root + "\\u\nUserPath2=w\\\nUserNamePosition=2\n"),
            root + "\\u\\w\\" + me);
  EXPECT_EQ(userPath("UserPath1=" + root + "\\u\nUserNamePosition=x\n"), root + "\\u");
}

TEST_F(SessionTest, PrefixesStandForTheFolders) {
  session_.record.GeoPath = "G";
  session_.record.BasePath = "B";
  session_.record.UserPath = "U";
  EXPECT_EQ(session_.ExpandPath("@data", ""), "G\\data");
  EXPECT_EQ(session_.ExpandPath("!\\y", ""), "B\\y");
  EXPECT_EQ(session_.ExpandPath("+x", ""), "U\\x");
  EXPECT_EQ(session_.ExpandPath("plain\\p", "d"), "plain\\p");
  EXPECT_EQ(session_.ExpandPath("", "d"), "d");
}

TEST_F(SessionTest, UserIniWinsOverMainIni) {
  makeDatabase("LODEXGeo.mdb");
  makeDatabase("other.mdb");
  writeMainIni(
      "[Users]\nUserIniFile=@ini\\user.ini\n[C-Groups]\nDefault=ROCK\nFolder=@main\n"
      "[Databases]\nMinerals=@System\\other.mdb\n");
  writeFileWhole((app_ / "Geo/ini/user.ini").string(), "[C-Groups]\nDefault=MINE\n");
  const SessionRecord& r = read();
  EXPECT_EQ(r.DefaultCGroup, "MINE");
  EXPECT_EQ(r.CGroupsFolder, app() + "\\Geo\\main");
  EXPECT_EQ(r.MineralDbPath, app() + "\\Geo\\System\\other.mdb");
}

TEST_F(SessionTest, MissingSampleDatabaseIsToldAndTheSessionGoesOn) {
  const std::string path = app() + "\\Geo\\System\\LODEXGeo.mdb";
  dialogs_.expectMessage("File  " + path + " can not be found");
  EXPECT_EQ(read().SampleDbPath, path);
  EXPECT_TRUE(dialogs_.allAsked());
  makeDatabase("LodexGeo.mdb");
  EXPECT_EQ(read().SampleDbPath, app() + "\\Geo\\System\\LodexGeo.mdb");
}

TEST_F(SessionTest, LastFilesKeepTenWithoutDuplicates) {
  makeDatabase("LODEXGeo.mdb");
  read();
  for (int i = 1; i <= 11; ++i) {
    PushLastFile(session_.record, "file" + std::to_string(i), "Session");
  }
  PushLastFile(session_.record, "file5", "Session");
  const std::vector<std::string> expected{"file5", "file11", "file10", "file9", "file8",
                                          "file7", "file6",  "file4",  "file3", "file2"};
  EXPECT_EQ(LastFiles(session_.record, "Session"), expected);
}

TEST_F(SessionTest, LogLinesGoToTheirPanes) {
  frmLog& log = session_.log;
  log.LisaaLog("first");
  log.LisaaLog("second line", LogKind::Both);
  log.LisaaLog("second", LogKind::Log, true);
  EXPECT_EQ(log.txtLog.text(), "first\r\nsecond line");
  EXPECT_EQ(log.txtErr.text(), "second line");
  log.clear();
  log.activate();
  EXPECT_EQ(log.txtErr.text(), "No Errors");
}

TEST_F(SessionTest, LogCommandsTakeTheOpenPane) {
  frmLog& log = session_.log;
  log.LisaaLog("a line");
  log.show();
  log.activate();
  log.TabStrip1.select(1);
  log.mnuCopy.click();
  EXPECT_EQ(clipboard_.text(), "No Errors");
  log.TabStrip1.select(0);
  log.cmdClear.click();
  EXPECT_EQ(log.txtLog.text(), "");
  EXPECT_EQ(log.txtErr.text(), "No Errors");

  log.LisaaLog("kept");
  const std::string file = app() + "/log.txt";
  dialogs_.expectSave(file);
  log.mnuSave.click();
  EXPECT_EQ(readFile(file), "kept");
  dialogs_.expectSave(app());
  EXPECT_THROW(log.cmdSave.click(), std::logic_error);
  EXPECT_TRUE(dialogs_.asked().back().starts_with("Error ")) << dialogs_.asked().back();
  dialogs_.expectSave(std::nullopt);
  log.cmdSave.click();
  log.mnuHide.click();
  EXPECT_FALSE(log.visible());
  EXPECT_EQ(log.txtLog.text(), "kept");
}

TEST(ProgressLine, EndsClearedAndAbortIsAFlag) {
  Progress progress;
  progress.bar.setMaximum(10);
  progress.ShowStop(true);
  progress.ShowProgress("Solving...", 4);
  EXPECT_TRUE(progress.visible());
  EXPECT_EQ(progress.txtInfo.caption(), "Solving...");
  progress.cmdAbort.click();
  EXPECT_TRUE(progress.AbortFlag);
  progress.ShowProgress("", 0);
  EXPECT_EQ(progress.bar.value(), 0);
  EXPECT_EQ(progress.txtInfo.caption(), "Ready!");
  EXPECT_FALSE(progress.cmdAbort.visible());
  progress.ShowStop(true);
  EXPECT_FALSE(progress.AbortFlag);
}

TEST_F(SessionTest, AnExceptionOfAnyKindEndsACommandAndItsJobs) {
  Progress& progress = session_.progress;
  const auto fails = [&](const std::string& message, const auto& thrown) {
    session_.record.FileLoadInProgress = true;
    dialogs_.expectMessage(message);
    const bool done = session_.run([&] {
      const JobScope job(session_);
      progress.ShowProgress("Working", 3);
      EXPECT_TRUE(progress.cmdAbort.visible());
      progress.cmdAbort.click();
      throw thrown;
    });
    EXPECT_FALSE(done) << message;
    EXPECT_FALSE(progress.visible() || progress.cmdAbort.visible()) << message;
    EXPECT_FALSE(progress.AbortFlag || session_.record.FileLoadInProgress) << message;
  };
  fails("Error 7 It broke", Error("It broke", 7));
  fails("Error 0 There is not enough memory for this.", std::bad_alloc());
  fails("Error 0 odd", std::runtime_error("odd"));
  EXPECT_TRUE(session_.run([] {}));
  EXPECT_TRUE(dialogs_.allAsked());
}

TEST_F(SessionTest, AFailureWithinARunningJobLeavesItsProgress) {
  JobScope job(session_);
  session_.progress.ShowProgress("Outer", 2);
  dialogs_.expectMessage("Error 0 inner");
  session_.run([&] {
    const JobScope inner(session_);
    throw Error("inner");
  });
  EXPECT_TRUE(session_.progress.visible());
  EXPECT_TRUE(session_.progress.cmdAbort.visible());
  session_.progress.cmdAbort.click();
  EXPECT_TRUE(job.aborted());
  EXPECT_TRUE(job.aborted()) << "an aborted job stays aborted";
  EXPECT_FALSE(session_.progress.AbortFlag);
  EXPECT_EQ(session_.log.txtLog.text(), "!! Aborted !!") << "logged once";
}

}  // namespace
}  // namespace lodex
