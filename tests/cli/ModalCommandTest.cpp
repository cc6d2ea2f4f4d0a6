#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "basic/Files.h"
#include "cli/RunLodex.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

// A folder of its own for every test, which is also the user's home.
class ModalCommand : public testing::Test {
 protected:
  ModalCommand() : folder_(fs::path(testing::TempDir()) / ("modal" + std::to_string(::getpid()))) {
    fs::create_directories(folder_);
  }
  ~ModalCommand() override { fs::remove_all(folder_); }

  CommandRun run(const std::string& arguments) {
    return runShell("cd '" + folder_.string() + "' && HOME=. " LODEX_BIN_DIR "/lodex modal " +
                    arguments + " 2>&1");
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  fs::path folder_;
};

// 170 is chalcopyrite (34.6 % copper) and 1601 quartz in the shipped catalogue.
const char* setUp =
    "1\tassays\nM/Ccp/170\tM/Qz/1601\nM/Ccp/170\nCu (29) / <<First>>\n2\t2\n"
    "M/Qz/1601\nSi (14) / <<First>>\n2\n";

TEST_F(ModalCommand, CalculatesPrintsAndSaves) {
  writeFileWhole(path("two.mmq"), setUp);
  writeFileWhole(path("assays.txt"),
                 "Sample\tCu ppm\tSiO2 %\tFeOT\nA-1\t34625\t80\t3\nA-2\t\t50\t<1\n");
  const CommandRun done = run("--assays assays.txt --setup two.mmq");
  ASSERT_EQ(done.status, 0) << done.text;
  EXPECT_THAT(done.text, HasSubstr("SampleNo  Ccp %   Qz %  Total\n"
                                   "A-1       10.00  80.00  90.00\n"
                                   "A-2        0.00  50.00  50.00\n"));
  EXPECT_THAT(done.text, HasSubstr("Cu ppm as Cu %"));
  EXPECT_THAT(done.text, HasSubstr("FeOT"));  // reported: it feeds no equation
  EXPECT_THAT(done.text, HasSubstr("All samples: two"));
  EXPECT_THAT(done.text, HasSubstr("\n\nassays_modal.xls\n"));

  Worksheet book;
  book.Read(path("assays_modal.xls"));
  std::vector<std::string> names;
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) names.push_back(book.SheetName(sheet));
  EXPECT_THAT(names, testing::ElementsAre("Mode", "BulkChem", "Residual", "Assays", "Notes",
                                          "Chemistry", "Dissolution", "SetUp", "Log"));
  EXPECT_EQ(book.TextSRC(1, 1, 2), "Ccp %");
  EXPECT_EQ(book.TextSRC(1, 2, 1), "A-1");
  EXPECT_EQ(book.TextSRC(1, 2, 2), "10.00");
  EXPECT_EQ(book.NumberSRC(1, 3, 4), 50);
  EXPECT_EQ(book.TextSRC(3, 3, 2), "");  // not assayed: no residual
}

// What is printed of the amounts.
std::string amountsIn(const std::string& text) {
  const size_t start = text.find("Modal composition, %");
  return start == std::string::npos ? text
                                    : text.substr(start, text.find("Residual", start) - start);
}

TEST_F(ModalCommand, StoredSamplesGiveTheAmountsOfTheirFile) {
  const std::string examples = LODEX_BIN_DIR "/Geo/examples/";
  const struct {
    const char *name, *assays, *setUp;
  } rows[] = {
      {"ore", "ore_assays.txt", "ore.mmq"},  // methods, ppm, oxides of iron
      {"ore2", "ore_assays_2.csv", "ore.mmq"},
      {"gabbro", "gabbros.txt", "gabbro.mmq"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string setUpPath = "'" + examples + row.setUp + "'";
    const std::string database = path(row.name) + ".mdb";
    // Texts such as "<10" among numbers are refused, which does not stop the rest.
    runLodex("save '" + examples + row.assays + "' --db '" + database + "' 2>/dev/null");
    const CommandRun stored = run("--db '" + database + "' --setup " + setUpPath);
    const CommandRun file = run("--assays '" + examples + row.assays + "' --setup " + setUpPath);
    ASSERT_EQ(stored.status, 0) << stored.text;
    ASSERT_EQ(file.status, 0) << file.text;
    EXPECT_EQ(amountsIn(stored.text), amountsIn(file.text));
    EXPECT_THAT(stored.text, HasSubstr("\n" + std::string(row.name) + "_modal.xls\n"));
  }
  const std::string ore = "'" + path("ore") + ".mdb'";
  runLodex("sql " + ore + " 'CREATE VIEW [f_Top] AS SELECT * FROM [Sample] WHERE [From] < 214'");
  const CommandRun top = run("--db " + ore + " --filter Top --setup '" + examples + "ore.mmq'");
  EXPECT_EQ(top.status, 0) << top.text;
  EXPECT_THAT(top.text, HasSubstr("LX-1042"));
  EXPECT_THAT(top.text, testing::Not(HasSubstr("LX-1043")));
}

TEST_F(ModalCommand, AnInterruptWhileItReadsEndsItTruthfully) {
  writeFileWhole(path("two.mmq"), setUp);
  writeFileWhole(path("assays.txt"), "Sample\tCu ppm\nA-1\t34625\n");
  const CommandRun outcome =
      runInterrupted("modal --assays '" + path("assays.txt") + "' --setup '" + path("two.mmq") +
                         "' --out '" + path("r.xls") + "'",
                     SIGINT);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.text, HasSubstr("stopping"));
  EXPECT_THAT(outcome.text,
              HasSubstr("aborted before any sample was calculated; nothing is saved"));
  EXPECT_FALSE(fs::exists(path("r.xls")));
}

TEST_F(ModalCommand, PrintsTheSetUp) {
  writeFileWhole(path("two.mmq"), setUp);
  const CommandRun report = run("--report --setup two.mmq");
  EXPECT_EQ(report.status, 0);
  EXPECT_THAT(report.text, StartsWith("**** Mineral quantification setup: ****\n"));
  EXPECT_THAT(report.text, HasSubstr("\n2\tM/Qz/1601\tSi (14) / <<First>>\t"));
}

TEST_F(ModalCommand, RefusesClearly) {
  writeFileWhole(path("two.mmq"), setUp);
  writeFileWhole(path("odd.mmq"), "1\n\nM/Nosuch/123456789\nCu (29) / <<First>>\n2\n");
  writeFileWhole(path("empty.mmq"), "1\tx\n");
  writeFileWhole(path("assays.txt"), "Sample\tCu ppm\nA-1\t34625\n");
  writeFileWhole(path("assays.xls"), "Sample\tCu ppm\nA-1\t34625\n");
  writeFileWhole(path("words.txt"), "Sample\tRock\nA-1\tgranite\n");
  const struct {
    const char *arguments, *reason;
    int status;
  } rows[] = {
      {"--setup two.mmq", "--assays or --db is required", 2},
      {"--assays assays.txt --setup two.mmq --digits x", "--digits", 2},
      {"--assays none.txt --setup two.mmq", "none.txt", 1},
      {"--assays assays.txt --setup none.mmq", "none.mmq", 1},
      {"--assays assays.txt --setup empty.mmq", "empty.mmq holds no rounds", 1},
      {"--assays words.txt --setup two.mmq", "no column with an element that is known", 1},
      {"--assays assays.txt --setup odd.mmq", "No chemistry for M/Nosuch/123456789", 1},
      {"--assays assays.txt --setup two.mmq --minerals no.mdb", "no.mdb does not exist", 1},
      {"--assays assays.txt --setup two.mmq --out x.doc", "x.doc", 1},
      {"--assays assays.txt --setup two.mmq --out assays.txt", "must be xls, xlsx or vts", 1},
      {"--assays assays.xls --setup two.mmq --out assays.xls", "what the calculation reads", 1},
      {"--assays assays.txt --setup two.mmq --sheet Data", "has no sheet Data", 1},
      {"--db none.mdb --setup two.mmq", "none.mdb", 1},
      {"--db none.mdb --assays assays.txt --setup two.mmq", "excludes", 2},
      {"--assays assays.txt --filter x --setup two.mmq", "--filter requires --db", 2},
  };
  for (const auto& row : rows) {
    const CommandRun outcome = run(row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.arguments << '\n' << outcome.text;
    EXPECT_THAT(outcome.text, HasSubstr(row.reason)) << row.arguments;
  }
}

}  // namespace
}  // namespace lodex
