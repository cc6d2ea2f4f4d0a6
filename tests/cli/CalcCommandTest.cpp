#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
#include "basic/Numbers.h"
#include "cli/RunLodex.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

using testing::HasSubstr;

class CalcCommand : public testing::Test {
 protected:
  CalcCommand() { std::filesystem::create_directories(folder / "group"); }
  ~CalcCommand() override { std::filesystem::remove_all(folder); }
  std::string quoted(const std::string& name) const {
    return "'" + (folder / name).string() + "' ";
  }

  // Two sheets suffice: what is listed, linked and offered to others may be left out.
  void writeMethod(const std::string& file, FileType type, int outputs = 1) const {
    Worksheet book;
    book.NumSheets(2);
    book.SheetName(1, "Input");
    book.SheetName(2, "Output");
    book.TextSRC(1, 2, 1, "Cu %");
    for (int row = 1; row <= outputs; ++row) {
      book.TextSRC(2, row, 1, row == 1 ? "Copper" : "Copper " + std::to_string(row));
      book.FormulaSRC(2, row, 3, "ROUND(Input!C2*2,6)");
    }
    book.Write((folder / "group" / file).string(), type);
  }

  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex calc " + std::to_string(::getpid()));
};

TEST_F(CalcCommand, RunsWorkbooksAndItsResultsOpenAgain) {
  writeMethod("Old.xls", FileType::Excel);
  writeMethod("New.xlsx", FileType::Xlsx);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\tCu_ICP ppm\nB2\t50\t\nB1\t100\t7\n");
  const std::string common = "calc " + quoted("a.txt") + "--group " + quoted("group");
  const CommandRun all = runLodex(common + "--out " + quoted("r.xls") + "2>&1");
  EXPECT_EQ(all.status, 0) << all.text;
  EXPECT_THAT(all.text, HasSubstr("2 samples found, 2 calculated, 2 result sheets, 0 errors"));
  Worksheet saved;
  saved.Read((folder / "r.xls").string());
  ASSERT_EQ(saved.SheetNumber("Old"), 2);
  EXPECT_EQ(saved.TextSRC(2, 6, 2), "B1");
  EXPECT_EQ(saved.NumberSRC(2, 6, 3), 0.02);
  const CommandRun asked = runLodex("--answer 2 " + common + "--method old --ask-refs 2>/dev/null");
  EXPECT_THAT(asked.text, HasSubstr("\tB1\t0.0014\n\tB2\t"));
  EXPECT_THAT(runLodex("methods --group " + quoted("group")).text,
              HasSubstr("  Old\n    Inputs: Cu %\n    Outputs: Copper\n"));
}

TEST_F(CalcCommand, ReadsDecimalCommasWhenAsked) {
  writeMethod("Old.xls", FileType::Excel);
  writeFileWhole((folder / "a.csv").string(),
                 "Mine X, 2021;;\nProbe;Cu %;LOI\nA;0,52;1,5\nB;1.5;\nC;<0,01;\n1,5;2;\n");
  const std::string common =
      "calc " + quoted("a.csv") + "--header-row 2 --group " + quoted("group");
  const CommandRun plain = runLodex(common + "2>&1");
  EXPECT_THAT(
      plain.text,
      HasSubstr("A value with a comma, such as \"0,52\", is text and not a number (2 times)"));
  EXPECT_THAT(plain.text, HasSubstr("\tA\t#VALUE!\n\tB\t3\n"));
  const CommandRun asked = runLodex(common + "--decimal-comma 2>/dev/null");
  EXPECT_THAT(asked.text, HasSubstr("\t1,5\t4\n\tA\t1.04\n\tB\t3\n\tC\t#VALUE!\n"));
}

TEST_F(CalcCommand, ResultsGoIntoADatabase) {
  writeMethod("Old.xls", FileType::Excel);
  writeMethod("New.xlsx", FileType::Xlsx);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\nB2\t50\nB1\t100\n");
  for (const char* results : {"r.xls", "r.xlsx"}) {
    SCOPED_TRACE(results);
    const std::string database = quoted(std::string(results) + ".db");
    runLodex("calc " + quoted("a.txt") + "--group " + quoted("group") + "--out " + quoted(results) +
             "2>&1");
    const CommandRun described = runLodex("identify " + quoted(results));
    EXPECT_THAT(described.text, HasSubstr("2 data rows, first data row 13, ID column B"));
    EXPECT_THAT(described.text, testing::ContainsRegex("C  *Copper  *New  *Copper  *DOUBLE"));
    const CommandRun saved = runLodex("save " + quoted(results) + "--db " + database + "2>&1");
    EXPECT_EQ(saved.status, 0) << saved.text;
    for (const char* table : {"Old", "New"}) {
      const std::string query = std::string("'SELECT [Sample], [Copper] FROM [") + table + "]'";
      EXPECT_THAT(runLodex("sql " + database + query).text,
                  HasSubstr("Sample\tCopper\nB1\t0.02\nB2\t0.01\n"));
    }
  }
}

TEST_F(CalcCommand, AnInterruptIsReportedAndKeepsWhatIsDone) {
  writeMethod("M.xls", FileType::Excel);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\nB2\t50\nB1\t100\n");
  for (const int number : {SIGINT, SIGTERM}) {
    SCOPED_TRACE(number);
    const std::string out = "r" + std::to_string(number) + ".xls";
    const CommandRun run = runInterrupted(
        "calc " + quoted("a.txt") + "--group " + quoted("group") + "--out " + quoted(out), number);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, HasSubstr("lodex: stopping, what is finished is kept"));
    EXPECT_THAT(run.text, HasSubstr("aborted before the first sample was finished, 0 of 2;"));
    Worksheet saved;
    saved.Read((folder / out).string());
    EXPECT_EQ(saved.SheetNumber("M"), 1);
  }
}

TEST_F(CalcCommand, IndicesNeedWhatTheyAreMadeOf) {
  writeFileWhole((folder / "a.txt").string(),
                 "Sample\tSiO2 %\tAl2O3 %\tMgO %\tCaO %\tNa2O %\tK2O %\tFeO %\tFe2O3 %\n"
                 "Full\t60\t15\t4.03044\t5\t4\t3\t7.18444\t2\n"
                 "NoFe\t60\t15\t4.03044\t5\t4\t3\t\t\n"
                 "NoNa\t60\t15\t4.03044\t5\t\t3\t7.18444\t2\n");
  const std::string out = (folder / "r.xls").string();
  const CommandRun run = runLodex("calc " + quoted("a.txt") +
                                  "--group ROCK --method INDICES --out '" + out + "' 2>&1");
  EXPECT_EQ(run.status, 0) << run.text;
  EXPECT_THAT(run.text,
              HasSubstr("record NoFe: Missing iron: results that need it are left empty"));
  EXPECT_THAT(run.text, HasSubstr("sheet INDICES: No column gives TiO2, MnO, P2O5: counts as 0"));
  Worksheet saved;
  saved.Read(out);
  const auto text = [&](int sample, const char* heading) {
    return saved.TextRC(5 + sample, saved.Find(heading, 1, 1, 1, 1, saved.LastCol()).column);
  };
  EXPECT_NEAR(numberOf(text(1, "Mg#")), 50, 1e-9);  // FeO as analysed
  EXPECT_NE(text(1, "CIA"), "");
  EXPECT_EQ(text(2, "Mg#"), "");
  EXPECT_NE(text(2, "CIA"), "");
  EXPECT_EQ(text(2, "Remark"), "missing: iron");
  EXPECT_EQ(text(3, "CIA"), "");
  EXPECT_NE(text(3, "Mg#"), "");
  EXPECT_EQ(text(3, "Differentiation index"), "");
}

TEST_F(CalcCommand, TakesSamplesFromADatabase) {
  writeMethod("M.xls", FileType::Excel);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\tDepth\nB2\t50\t1\nB1\t100\t9\n");
  const std::string database = quoted("a.db");
  runLodex("save " + quoted("a.txt") + "--db " + database + "2>&1");
  runLodex("sql " + database +
           "'CREATE VIEW [f_Rich] AS SELECT * FROM [ANALYSES] WHERE [Cu/ppm] > 60'");
  struct Case {
    const char* options;
    int status;
    const char* text;
  };
  for (const Case& c : {
           Case{"", 0, "\tB1\t0.02\n\tB2\t0.01\n"},
           Case{"--table ANALYSES --filter rich", 0, "DOUBLE\nINDEXED\tYES\t\n\tB1\t0.02\n\n"},
           Case{"--table NONE", 1, "The database has no table NONE; it has: "},
           Case{"--filter Poor", 1, "The database has no filter Poor; it has: Rich"},
       }) {
    const CommandRun outcome =
        runLodex("calc --db " + database + "--group " + quoted("group") + c.options + " 2>&1");
    EXPECT_EQ(outcome.status, c.status) << c.options;
    EXPECT_THAT(outcome.text, HasSubstr(c.text)) << c.options;
  }
}

TEST_F(CalcCommand, SaysWhatIsWrong) {
  writeMethod("Old.xls", FileType::Excel);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\tCu %\nB2\t50\t1\n");
  struct Case {
    std::string arguments;
    int status;
    const char* text;
  };
  const std::string file = "calc " + quoted("a.txt");
  const std::string group = "--group " + quoted("group");
  for (const Case& c : {
           Case{file + "--group nowhere", 1, "There is no calculation group nowhere"},
           Case{file + group + "--method Neu", 1, "There is no method Neu"},
           Case{file + "--group rock --method Neu", 1, "there are: CIPW"},
           Case{file + group + "--out r.pdf", 1, "save results as"},
           Case{"calc " + quoted("gone.txt") + group, 1, "gone.txt"},
           Case{file, 2, "--group is required"},
           Case{"calc " + group, 2, "FILES or --db is required"},
           Case{file + group + "--out " + quoted("gone/r.xls"), 1, "There is no folder"},
           Case{file + group + "--out " + quoted("a.txt"), 1, "is what the calculation reads"},
           Case{"--answer 3 " + file + group + "--ask-refs", 1, "is not a choice among 1, 2"},
       }) {
    const CommandRun outcome = runLodex(c.arguments + " 2>&1");
    EXPECT_EQ(outcome.status, c.status) << c.arguments;
    EXPECT_THAT(outcome.text, HasSubstr(c.text));
  }
}

}  // namespace
}  // namespace lodex
