#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Files.h"
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
  void writeMethod(const std::string& file, FileType type) const {
    Worksheet book;
    book.NumSheets(2);
    book.SheetName(1, "Input");
    book.SheetName(2, "Output");
    book.TextSRC(1, 2, 1, "Cu %");
    book.TextSRC(2, 1, 1, "Copper");
    book.FormulaSRC(2, 1, 3, "ROUND(Input!C2*2,6)");
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
  const Outcome all = runLodex(common + "--out " + quoted("r.xls") + "2>&1");
  EXPECT_EQ(all.status, 0) << all.text;
  EXPECT_THAT(all.text, HasSubstr("2 samples found, 2 calculated, 2 result sheets, 0 errors"));
  Worksheet saved;
  saved.Read((folder / "r.xls").string());
  ASSERT_EQ(saved.SheetNumber("Old"), 2);
  EXPECT_EQ(saved.TextSRC(2, 6, 2), "B1");
  EXPECT_EQ(saved.NumberSRC(2, 6, 3), 0.02);
  const Outcome asked = runLodex("--answer 2 " + common + "--method old --ask-refs 2>/dev/null");
  EXPECT_THAT(asked.text, HasSubstr("\tB1\t0.0014\n\tB2\t"));
  EXPECT_THAT(runLodex("methods --group " + quoted("group")).text,
              HasSubstr("  Old\n    Inputs: Cu %\n    Outputs: Copper\n"));
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
    const Outcome described = runLodex("identify " + quoted(results));
    EXPECT_THAT(described.text, HasSubstr("2 data rows, first data row 13, ID column B"));
    EXPECT_THAT(described.text, testing::ContainsRegex("C  *Copper  *New  *Copper  *DOUBLE"));
    const Outcome saved = runLodex("save " + quoted(results) + "--db " + database + "2>&1");
    EXPECT_EQ(saved.status, 0) << saved.text;
    for (const char* table : {"Old", "New"}) {
      const std::string query = std::string("'SELECT [Sample], [Copper] FROM [") + table + "]'";
      EXPECT_THAT(runLodex("sql " + database + query).text,
                  HasSubstr("Sample\tCopper\nB1\t0.02\nB2\t0.01\n"));
    }
  }
}

TEST_F(CalcCommand, SaysWhatIsWrong) {
  writeMethod("Old.xls", FileType::Excel);
  writeFileWhole((folder / "a.txt").string(), "Sample\tCu ppm\nB2\t50\n");
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
           Case{file + group + "--out r.pdf", 1, "save results as"},
           Case{"calc " + quoted("gone.txt") + group, 1, "gone.txt"},
           Case{file, 2, "--group is required"},
       }) {
    const Outcome outcome = runLodex(c.arguments + " 2>&1");
    EXPECT_EQ(outcome.status, c.status) << c.arguments;
    EXPECT_THAT(outcome.text, HasSubstr(c.text));
  }
}

}  // namespace
}  // namespace lodex
