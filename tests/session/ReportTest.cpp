#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
#include "session/frmReport.h"

namespace lodex {
namespace {

using testing::HasSubstr;

class ReportTest : public testing::Test {
 protected:
  ReportTest() {
    report.goTo = [this](const Place& place) {
      visited.push_back(describe(place));
      return place.sheet != "gone";
    };
    report.onSummary = [this](const std::string& summary) { summaries.push_back(summary); };
  }
  static Findings warning() {
    Findings found;
    found.note("Two samples");
    found.warn("Text counted as 0", {.file = "/a/ores.xls", .sheet = "Cu", .row = 14, .column = 2});
    found.warn("Text counted as 0", {.file = "/a/ores.xls", .sheet = "Cu", .row = 15, .column = 2});
    return found;
  }
  static Findings error() {
    Findings found;
    found.error("A record could not be written", {.sheet = "gone", .record = "LX-7"});
    return found;
  }
  // The cells of a row, without the time of day that heads a command.
  std::string line(int row) const {
    std::string text;
    for (int column = 1; column <= 4; ++column) {
      text += (column > 1 ? "|" : "") + report.F1Report.TextRC(row, column);
    }
    return text;
  }

  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  frmReport report{session};
  std::vector<std::string> visited;
  std::vector<std::string> summaries;
};

TEST_F(ReportTest, ListsTheNewestCommandFirstAndTheGravestFindingFirst) {
  session.run(
      [&] {
        session.notice(warning());
        session.run([&] { session.notice(error()); }, "part of it");
        EXPECT_FALSE(report.visible()) << "the command still runs";
      },
      "&Identify...");
  EXPECT_TRUE(report.visible()) << "something was left out";
  report.hide();
  session.notice(warning());
  EXPECT_FALSE(report.visible()) << "nothing was left out";
  EXPECT_EQ(summaries, (std::vector<std::string>{"1 error, 2 warnings", "2 warnings"}));
  EXPECT_THAT(line(2), HasSubstr(": 2 warnings"));
  EXPECT_EQ(line(3), "Warning|2|Text counted as 0|ores.xls, sheet Cu, B14");
  EXPECT_EQ(line(4), "|||ores.xls, sheet Cu, B15");
  EXPECT_EQ(line(5), "Note|1|Two samples|");
  EXPECT_THAT(line(6), HasSubstr(" Identify: 1 error, 2 warnings"));
  EXPECT_EQ(line(7), "Error|1|A record could not be written|sheet gone, record LX-7");
  report.chkNotes.setChecked(false);
  EXPECT_THAT(line(5), HasSubstr(" Identify: ")) << "the note is hidden";
}

TEST_F(ReportTest, AClickGoesToThePlaceOrSaysWhyNot) {
  session.notice(warning());
  session.notice(error());
  for (const int row : {0, 1, 2, 3, 5, 6, 99}) report.gridF1Report.click(row, 3);
  EXPECT_EQ(visited, (std::vector<std::string>{"sheet gone, record LX-7", "ores.xls, sheet Cu, B14",
                                               "ores.xls, sheet Cu, B15"}));
  report.gridF1Report.click(6, 1);
  EXPECT_EQ(report.lblPlace.caption(), "Click a line to go to its place");
  report.gridF1Report.click(3, 1);
  EXPECT_EQ(report.lblPlace.caption(), "This is not an open data sheet: sheet gone, record LX-7");
}

TEST_F(ReportTest, ManyPlacesAreCountedAndLongReportsEnd) {
  Findings many;
  for (int row = 1; row <= 312; ++row) many.warn("Text counted as 0", {.sheet = "Cu", .row = row});
  for (int i = 0; i < 900; ++i) many.error("No method for element " + std::to_string(i));
  for (int i = 0; i < 8; ++i) session.notice(many);
  EXPECT_THAT(report.text(), HasSubstr("\t\t\tand 292 more\r\n"));
  EXPECT_LT(report.F1Report.LastRow(), 5100);
  EXPECT_THAT(report.text(), testing::EndsWith("\t\tThe log has the findings before these\t\r\n"));
}

TEST_F(ReportTest, IsCopiedSavedAndEmptied) {
  EXPECT_FALSE(report.cmdSave.enabled());
  session.notice(error());
  report.cmdCopy.click();
  EXPECT_THAT(clipboard.text(), HasSubstr("Error\t1\tA record could not be written\tsheet gone"));
  const std::string path = testing::TempDir() + "lodex-report-" + std::to_string(::getpid());
  dialogs.expectSave(path);
  report.cmdSave.click();
  EXPECT_EQ(readFile(path), clipboard.text());
  std::filesystem::remove(path);
  dialogs.expectSave("/nowhere/at/all.txt");
  dialogs.expectMessage("Error 0 Cannot write /nowhere/at/all.txt: No such file or directory");
  report.cmdSave.click();
  report.cmdClear.click();
  EXPECT_EQ(report.F1Report.LastRow(), 1);
  EXPECT_EQ(summaries.back(), "");
}

TEST(Report, LeavesTheSessionAtItsEnd) {
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session(Services{dialogs, events, clipboard});
  { frmReport report(session); }
  Findings found;
  found.note("n");
  session.notice(found);
  EXPECT_EQ(session.found.count(Severity::Note), 1u);
}

}  // namespace
}  // namespace lodex
