#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
#include "cli/RunLodex.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class IdentifyCommand : public testing::Test {
 protected:
  IdentifyCommand() { std::filesystem::create_directories(folder); }
  ~IdentifyCommand() override { std::filesystem::remove_all(folder); }
  std::string file(const std::string& name, const std::string& content) {
    writeFileWhole((folder / name).string(), content);
    return "'" + (folder / name).string() + "' ";
  }
  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex identify " + std::to_string(::getpid()));
};

TEST_F(IdentifyCommand, PrintsAndSavesWhatItFound) {
  const std::string comma = file("core.csv", "Hole No,SiO2_XRF %\n00123,50.10\n");
  const std::string aligned = file("pulp.lis", "Lab        Au ppb\nO'Brien        2\n");
  const std::string out = (folder / "out.xlsx").string();
  const CommandRun outcome = runLodex("identify " + comma + aligned + "--log --out '" + out + "'");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.text, HasSubstr("Sheet core: 1 data rows, first data row 13, ID column B"));
  EXPECT_THAT(outcome.text, ContainsRegex("C  *SiO2_XRF %  *SiO2  *XRF  *%  *ANALYSES  *"
                                          "SiO2/XRF/%  *SINGLE  *X\\(Si\\)1/1"));
  EXPECT_THAT(outcome.text, HasSubstr("Running identify routine for file pulp"));
  Worksheet saved;
  saved.Read(out);
  EXPECT_EQ(saved.NumSheets(), 2);
  EXPECT_EQ(saved.TextSRC(1, 13, 2), "00123");
  EXPECT_EQ(saved.TextSRC(2, 13, 2), "O'Brien");
  EXPECT_EQ(saved.TextSRC(2, 2, 3), "Au");
}

TEST_F(IdentifyCommand, CorrectionsInASavedSheetHold) {
  const std::string raw = file("a.txt", "No\tFe ppm\tCore depth\tNote\n1\t5\t12.5\tx\n");
  const std::string path = (folder / "a.xlsx").string();
  EXPECT_EQ(runLodex("identify " + raw + "--out '" + path + "'").status, 0);
  Worksheet book;
  book.Read(path);
  const auto correct = [&](const char* caption, int column, const char* text) {
    const FindResult row = book.Find(caption, 1, 1, 1, 12, 1);
    ASSERT_GT(row.found, 0) << caption;
    book.TextSRC(1, row.row, column, text);
  };
  correct("ELEMENT", 3, "Fe2O3");
  correct("UNIT", 3, "%");
  correct("FIELD", 3, "Iron");
  correct("TABLE", 4, "CORE");
  book.Write(path, FileType::Xlsx);
  const CommandRun again = runLodex("identify '" + path + "' 2>&1");
  EXPECT_THAT(again.text, ContainsRegex("C  *Fe ppm  *Fe2O3  *%  *ANALYSES  *Iron  *SINGLE"));
  EXPECT_THAT(again.text, ContainsRegex("D  *Core depth  *CORE  *Core depth  *TEXT"));
}

TEST_F(IdentifyCommand, GoesOnBehindAFileThatCannotBeOpened) {
  const std::string good = file("good.txt", "No\tFe %\n1\t5\n");
  const std::string missing = "'" + (folder / "missing.xls").string() + "' ";
  const CommandRun outcome = runLodex("identify " + missing + good + "2>/dev/null");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.text, HasSubstr("X(Fe)1/1"));
  const CommandRun messages = runLodex("identify " + missing + good + "2>&1 >/dev/null");
  EXPECT_THAT(messages.text, HasSubstr("missing.xls"));
}

TEST_F(IdentifyCommand, TitlesAndUnitsAroundTheHeadings) {
  const std::string units = file("units.csv", "Sample,Cu,SiO2,Depth\n,ppm,wt%,m\nA,5,50,1\n");
  const CommandRun joined = runLodex("identify " + units + "2>&1");
  EXPECT_THAT(joined.text, HasSubstr("row 2 holds units"));
  EXPECT_THAT(joined.text, HasSubstr("1 data rows"));
  EXPECT_THAT(joined.text, ContainsRegex("Cu ppm  *Cu  *ppm  *ANALYSES"));
  EXPECT_THAT(joined.text, ContainsRegex("SiO2 %  *SiO2  *%  *ANALYSES"));
  EXPECT_THAT(joined.text, HasSubstr("Depth m"));

  const std::string titled = file("titled.csv", "Report,,\nMine,,\nNo,Fe %,Cu ppm\nA,5,6\n");
  EXPECT_THAT(runLodex("identify " + titled + "2>&1").text,
              ContainsRegex("Fe %  *Fe  *%  *ANALYSES"));
  const CommandRun told = runLodex("identify --header-row 3 " + titled + "2>&1");
  EXPECT_THAT(told.text, HasSubstr("X(Fe)1/1"));
  EXPECT_THAT(told.text, HasSubstr("1 data rows"));
  EXPECT_THAT(told.text, Not(HasSubstr("X(N)")));
  EXPECT_EQ(runLodex("identify --header-row 9 " + titled + "2>/dev/null").status, 1);
}

TEST_F(IdentifyCommand, UsesEveryRow) {
  std::string rows = "No,Fe %\n";
  for (int i = 0; i < 20000; ++i) rows += "A" + std::to_string(i) + ",5\n";
  const CommandRun run = runLodex("identify " + file("long.csv", rows));
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.text, HasSubstr("Sheet long: 20000 data rows"));
}

TEST_F(IdentifyCommand, ThesaurusCanBeChosenOrLeftOut) {
  const std::string rocks = file("rocks.txt", "No\tRauta\n1\t5\n");
  const std::string own =
      file("own.txt", "Value\tIn\tHeader\tElement\tMethod\tUnit\nRauta\tHEADER\t\tFe\t\t%\n");
  EXPECT_THAT(runLodex("identify " + rocks + "--thesaurus " + own).text, HasSubstr("X(Fe)1/1"));
  EXPECT_THAT(runLodex("identify " + rocks + "--no-thesaurus").text, Not(HasSubstr("X(Fe)")));
  EXPECT_EQ(runLodex("identify " + rocks + "--thesaurus nowhere.txt 2>/dev/null").status, 1);
  EXPECT_EQ(runLodex("identify " + rocks + rocks + "--out '" + (folder / "x.txt").string() +
                     "' 2>/dev/null")
                .status,
            1);
  EXPECT_EQ(runLodex("identify 2>/dev/null >&2").status, 2);
}

}  // namespace
}  // namespace lodex
