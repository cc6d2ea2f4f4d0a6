// The thesaurus: its rules at work and its editor.
#include <gtest/gtest.h>

#include "OtherUser.h"
#include "basic/Error.h"
#include "import/ImportFixture.h"
#include "import/ThesaurusStep.h"
#include "session/Ini.h"

namespace lodex {
namespace {

class Thesaurus : public ImportFixture {
 protected:
  // Rows 1 to 12 are the system rows in order, the ID column is 1.
  LogLines applyTo(const std::vector<std::string>& rows) {
    fill(sheet, rows);
    structure.idColumn = 1;
    for (int i = 0; i < systemRowCount; ++i) structure.row(i) = i + 1;
    LogLines log;
    applyThesaurus(ThesaurusIndex(thesaurus.F1Lib), {sheet, structure}, log);
    return log;
  }
  Worksheet sheet;
  SheetStructure structure;
};

TEST_F(Thesaurus, RulesRewriteTheOtherRows) {
  struct Case {
    const char* name;
    std::vector<std::vector<std::string>> rules;
    std::vector<std::string> rows;
    std::string column;  // rows 1 to 12 of column 2 afterwards
  };
  const Case cases[] = {
      {"all targets, each column feeding the row three before it",
       {{"Rauta", "HEADER", "iron", "Fe", "XRF", "%", "T", "F", "SINGLE", "5", "2", "YES", "10"}},
       {"x|Rauta"},
       "iron|Fe|XRF|%|T|F|SINGLE|5|2|YES|10|X"},
      {"a dash empties",
       {{"Fe", "ELEMENT", "", "", "", "-"}},
       {"x|h", "x|Fe", "", "x|ppm"},
       "h|Fe||||||||||X"},
      {"counts in its own row only",
       {{"Fe", "ELEMENT", "", "S"}},
       {"x|Fe", "x|Au"},
       "Fe|Au||||||||||"},
      {"whole cell, exact case",
       {{"fe", "HEADER", "", "Fe"}, {"Fe %", "HEADER", "", "Fe"}},
       {"x|Fe"},
       "Fe|||||||||||"},
      {"the topmost of several has the last word",
       {{"Fe", "HEADER", "", "Fe2O3", "A"}, {"Fe", "HEADER", "", "FeO", "", "%"}},
       {"x|Fe"},
       "Fe|Fe2O3|A|%||||||||X"},
      {"a rewritten row meets the rules of that row",
       {{"Rauta", "HEADER", "", "iron"}, {"iron", "ELEMENT", "", "Fe"}},
       {"x|Rauta"},
       "Rauta|Fe||||||||||X"},
      {"the ID column is left alone", {{"No", "HEADER", "", "No"}}, {"No|a"}, "a|||||||||||"},
  };
  for (const Case& c : cases) {
    thesaurus.F1Lib = Worksheet();
    sheet = Worksheet();
    for (const auto& rule : c.rules) addRule(rule);
    applyTo(c.rows);
    EXPECT_EQ(columnText(sheet, 2, systemRowCount), c.column) << c.name;
  }
}

TEST_F(Thesaurus, LogTellsOldAndNewText) {
  addRule({"Rauta", "HEADER", "iron", "Fe", "-"});
  const LogLines log = applyTo({"x|Rauta", "", "x|XRF"});
  EXPECT_EQ(log[0],
            "-Thesaurus replacement [Rauta found on (R,C)=(1,2) -> (R,C)=(1,2)] : Rauta=iron");
  EXPECT_EQ(log[1], "-Thesaurus replacement [Rauta found on (R,C)=(1,2) -> (R,C)=(2,2)] : =Fe");
  EXPECT_EQ(log[2], "-Thesaurus replacement [Rauta found on (R,C)=(1,2) -> (R,C)=(3,2)] : XRF=");
}

TEST_F(Thesaurus, SavingAndLoadingKeepsRulesAndHeadings) {
  addRule({"b", "HEADER", "", "B", "", "", "", "", "", "", "2", "YES", "10"});
  addRule({"a", "ELEMENT", "", "A"});
  thesaurus.SaveAs(path("lib.txt"));
  EXPECT_EQ(thesaurus.F1Lib.TextRC(1, 1), "b");
  frmSynonLib again(session);
  again.Aukaise(path("lib.txt"));
  EXPECT_EQ(again.F1Lib.LastRow(), 2);
  EXPECT_EQ(again.F1Lib.TextRC(1, 1), "a");
  EXPECT_EQ(again.F1Lib.ColText(11), "Multiplied");
  EXPECT_EQ(again.F1Lib.MaxCol(), 11);
  EXPECT_EQ(ThesaurusIndex(again.F1Lib).rule(1).texts[10], "10");
  EXPECT_FALSE(again.Changed());
  EXPECT_THROW(again.Aukaise(path("missing.txt")), FileError);
  EXPECT_EQ(again.F1Lib.LastRow(), 2);
}

TEST_F(Thesaurus, OldFilesLoseTheirMineralColumn) {
  const std::string file = write("old.txt",
                                 "Value\tIn\tMineral\tHeader\tElement\r\n"
                                 "z\tHEADER\tPy\t\tZr\r\na\tHEADER\t\t\tAu\r\n");
  thesaurus.Aukaise(file);
  EXPECT_EQ(rowText(thesaurus.F1Lib, 1), "a|HEADER||Au");
  EXPECT_EQ(rowText(thesaurus.F1Lib, 2), "z|HEADER||Zr");
  EXPECT_EQ(thesaurus.F1Lib.ColText(3), "Header");
}

TEST_F(Thesaurus, EditorFindsAddsAndRemovesRules) {
  for (const char* text : {"Fe", "S", "Fe", "Fe"}) addRule({text, "HEADER"});
  thesaurus.F1Lib.TextRC(4, 4, "last");
  thesaurus.AddRule("S");
  EXPECT_EQ(thesaurus.FoundRow(), 2);
  thesaurus.AddRule("Fe");
  EXPECT_EQ(columnText(thesaurus.F1Lib, 1, 3), "S|Fe|");
  EXPECT_EQ(thesaurus.F1Lib.TextRC(thesaurus.FoundRow(), 4), "last");
  thesaurus.AddRule("Au");
  EXPECT_EQ(thesaurus.F1Lib.TextRC(3, 1), "Au");
  EXPECT_EQ(thesaurus.lblValue.caption(), "Value: 'Au'");
  thesaurus.clickGrid(1, 1);
  thesaurus.mnuDeleteRow.click();
  EXPECT_EQ(columnText(thesaurus.F1Lib, 1, 3), "Fe|Au|");
  dialogs.expectMessage("Header is empty");
  thesaurus.AddRule("");
  thesaurus.clickGrid(9, 1);
  dialogs.expectMessage("Select row");
  thesaurus.DeleteRow();
  thesaurus.mnuSort(1).click();
  EXPECT_EQ(columnText(thesaurus.F1Lib, 1, 2), "Au|Fe");
}

TEST_F(Thesaurus, SaveAsDefaultIsNotedInTheIni) {
  std::filesystem::create_directories(folder / "ini");
  session.record.UserIni = path("user.ini");
  addRule({"Fe", "HEADER"});
  thesaurus.mnuSaveDefault.click();
  EXPECT_EQ(GetIni(path("user.ini"), "Thesaurus", "File"),
            session.record.GeoPath + "\\ini\\DefSynonLib.txt");
  EXPECT_TRUE(pathExists(path("ini/DefSynonLib.txt")));
}

TEST_F(Thesaurus, TheDefaultOfOthersGetsACopyOfTheUser) {
  std::filesystem::create_directories(folder / "home/ini");
  std::filesystem::permissions(folder / "home/ini", std::filesystem::perms::all);
  writeFileWhole(path("shared.txt"), "as it was");
  session.record.UserPath = path("home");
  session.record.UserIni = path("home/ini/user.ini");
  session.record.ThesaurusFile = path("shared.txt");
  addRule({"Fe", "HEADER"});
  {
    ReadOnly shared(path("shared.txt"));
    AsOtherUser other;
    thesaurus.mnuSaveDefault.click();
  }
  EXPECT_EQ(readFile(path("shared.txt")), "as it was");
  EXPECT_TRUE(pathExists(path("home/ini/SynonLib.txt")));
  EXPECT_EQ(GetIni(path("home/ini/user.ini"), "Thesaurus", "File"), "+ini\\SynonLib.txt");
}

}  // namespace
}  // namespace lodex
