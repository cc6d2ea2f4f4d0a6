// Opening files into data sheets, and the list of them.
#include "import/DataSheets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "basic/Error.h"
#include "import/ImportFixture.h"
#include "import/frmSplitDialog.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Open : public ImportFixture {
 protected:
  // The user closes the split dialog without touching it, as the console does.
  void expectProposalAccepted() {
    dialogs.expectForm("frmSplitDialog", [](Form& form) { form.close(); });
  }
  std::string manyLines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += std::to_string(i) + "\tx\n";
    return text;
  }
  std::vector<std::string> windowNames() {
    std::vector<std::string> names;
    for (int i = 1; i <= sheets.DataSheetCount(); ++i) names.push_back(sheets.sheet(i).caption());
    return names;
  }
};

TEST_F(Open, TextFilesOfEveryShape) {
  struct Case {
    const char* name;
    std::string file, content;
    bool asks;
    std::vector<std::string> rows;
  };
  const Case cases[] = {
      {"tabs", "a.txt", "No\tFe %\n00123\t5\n", false, {"No|Fe %", "00123|5"}},
      {"comma", "b.csv", "No,Note\n12.0,\"a, b\"\n", true, {"No|Note", "12.0|a, b"}},
      {"print file", "c.prn", "No     Fe %\n5E1     5.1\n", true, {"No|Fe %", "5E1|5.1"}},
      {"Windows-1252 and CR", "d.lis", "N\xE4yte;Fe\rA-1;5\r", true, {"Näyte|Fe", "A-1|5"}},
      {"one column", "e.txt", "A\nB\n", true, {"A", "B"}},
      {"uneven lines", "f.txt", "a\tb\nc\td\te\nf\n", false, {"a|b|", "c|d|e", "f||"}},
      {"empty", "g.txt", "", false, {}},
      {"no text at all", "h.xls", std::string("\x01\x00\x02\xFF\x00\x07", 6), true, {"*"}},
  };
  for (const Case& c : cases) {
    if (c.asks) expectProposalAccepted();
    frmDataIN form(context);
    form.OpenFile(write(c.file, c.content), "", "", false);
    EXPECT_EQ(form.caption(), c.file.substr(0, 1)) << c.name;
    if (c.rows.empty() || c.rows[0] != "*") {
      EXPECT_EQ(form.F1D.LastRow(), static_cast<int>(c.rows.size())) << c.name;
      for (size_t i = 0; i < c.rows.size(); ++i) {
        EXPECT_EQ(rowText(form.F1D, static_cast<int>(i) + 1), c.rows[i]) << c.name;
      }
    }
  }
  EXPECT_TRUE(dialogs.allAsked());
  EXPECT_TRUE(logHas("h.xls: The file is taken as lines of text: "));
}

TEST_F(Open, GivenSeparatorIsTakenAsItIs) {
  frmDataIN form(context);
  form.OpenFile(write("a.txt", "a;\"b;c\";\nd\n"), "ASCII", ";", false);
  EXPECT_EQ(rowText(form.F1D, 1), "a|\"b|c\"");
  EXPECT_EQ(form.AD.ColCount(), 4);
  EXPECT_EQ(form.TextSeparator, ";");
}

TEST_F(Open, CancelledQuestionLeavesLinesWhole) {
  dialogs.expectForm("frmSplitDialog", [](Form& form) {
    auto& dialog = dynamic_cast<frmSplitDialog&>(form);
    EXPECT_EQ(dialog.txtSample.text(), "a;b");
    EXPECT_EQ(dialog.txtSeparator.text(), ";");
    dialog.cmdCancel.click();
  });
  frmDataIN form(context);
  form.OpenFile(write("a.lis", "a;b\nc;d\n"), "", "", false);
  EXPECT_EQ(form.F1D.LastCol(), 1);
  EXPECT_EQ(form.F1D.TextRC(2, 1), "c;d");
  dialogs.expectForm("frmSplitDialog",
                     [](Form& shown) { dynamic_cast<frmSplitDialog&>(shown).cmdOK.click(); });
  form.mnuParse.click();
  EXPECT_EQ(rowText(form.F1D, 2), "c|d");
}

TEST_F(Open, RowsBeyondTheGridAreLoadedOnDemand) {
  const std::pair<int, int> cases[] = {{16000, 0}, {16001, 16001}, {20000, 20000}};
  for (const auto& [lines, rawRows] : cases) {
    if (rawRows > 0) {
      dialogs.expectMessage("long.txt has " + std::to_string(lines) +
                                " rows; the grid shows the first 16000.\nLoad all rows?",
                            Answer::No);
    }
    frmDataIN form(context);
    form.OpenFile(write("long.txt", manyLines(lines)), "", "", false);
    EXPECT_EQ(form.F1D.LastRow(), 16000);
    EXPECT_EQ(form.AD.RowCount(), rawRows);
    EXPECT_EQ(form.RowsNotLoaded(), lines - 16000);
    EXPECT_EQ(form.mnuLoadAllRows.enabled(), rawRows > 0);
    if (rawRows > 0) {
      EXPECT_EQ(form.AD.Cell(1, lines), std::to_string(lines));
    }
  }
  EXPECT_TRUE(logHas("long.txt: The grid shows the first 16000 of 20000 rows"));
}

TEST_F(Open, AllRowsComeByQuestionMenuAndSetting) {
  const std::string file = write("long.txt", manyLines(16500));
  const std::string question =
      "long.txt has 16500 rows; the grid shows the first 16000.\nLoad all rows?";
  dialogs.expectMessage(question, Answer::Yes);
  frmDataIN asked(context);
  asked.OpenFile(file, "", "", false);
  EXPECT_EQ(asked.F1D.TextRC(16500, 1), "16500");
  EXPECT_EQ(asked.RowsNotLoaded(), 0);

  dialogs.expectMessage(question, Answer::No);
  session.record.UserIni = path("user.ini");
  frmDataIN later(context);
  later.OpenFile(file, "", "", false);
  later.AjaTunnista({});
  dialogs.expectMessage(
      "The sheet is filled again from its file; what was identified or edited in "
      "it is lost.\nLoad all rows?",
      Answer::Yes);
  later.mnuLoadAllRows.click();
  EXPECT_EQ(later.F1D.LastRow(), 16500);
  EXPECT_EQ(later.SystemRows(sysrow::Element), 0);
  EXPECT_FALSE(later.mnuLoadAllRows.enabled());

  later.mnuAlwaysLoadAllRows.click();
  frmDataIN always(context);
  EXPECT_TRUE(always.mnuAlwaysLoadAllRows.checked());
  always.OpenFile(file, "", "", false);
  EXPECT_EQ(always.F1D.LastRow(), 16500);
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(Open, WhatCannotBeOpenedIsAnErrorAndChangesNothing) {
  frmDataIN form(context);
  form.OpenFile("", "", "", true);
  form.OpenFile(write("a.txt", "No\tFe\n"), "", "", false);
  EXPECT_THROW(form.OpenFile(path("missing.txt"), "", "", false), FileError);
  EXPECT_THROW(form.OpenFile(folder.string(), "", "", false), FileError);
  const std::string wide = std::string(20000, '\t') + "\n";
  EXPECT_THROW(form.OpenFile(write("wide.txt", wide), "", "", false), FileError);
  EXPECT_EQ(form.caption(), "a");
  EXPECT_EQ(form.F1D.TextRC(1, 2), "Fe");
  write("b.txt", "No\tFe %\nA\t1\n");
  EXPECT_THROW(sheets.openSources({path("b.txt"), path("missing.txt")}), FileError);
  EXPECT_THAT(sheets.lstI.items(), ElementsAre("b"));
}

TEST_F(Open, EachSheetOfAWorkbookGetsAWindow) {
  Worksheet book;
  book.NumSheets(3);
  for (int sheet = 1; sheet <= 3; ++sheet) {
    book.SheetName(sheet, "S" + std::to_string(sheet));
    book.NumberSRC(sheet, 1, 1, 0.1 + sheet);
  }
  book.setFormulaWithValue(1, 2, 1, "S2!A1", Value(2.1));
  CellFormat format;
  format.numberFormat = "0";
  book.setFormat(2, 1, 1, format);
  book.Write(path("ore.vts"), FileType::Native);
  write("a.txt", "No\tFe %\nA\t1\n");
  sheets.openSources({path("a.txt"), path("ore.vts"), path("a.txt")});
  EXPECT_THAT(windowNames(), ElementsAre("a", "ore / S3", "ore / S2", "ore / S1", "a1"));
  for (const ListBox* list : {&sheets.lstI, &sheets.lstSrcF, &sheets.lstSrcD}) {
    EXPECT_EQ(list->items(), windowNames());
  }
  EXPECT_EQ(sheets.lstI.selectedItems().size(), 5u);
  EXPECT_EQ(sheets.sheet(3).F1D.NumberRC(1, 1), 2.1);
  EXPECT_EQ(sheets.sheet(3).F1D.TextRC(1, 1), "2");
  EXPECT_EQ(sheets.sheet(4).F1D.NumSheets(), 1);
  EXPECT_FALSE(sheets.sheet(4).F1D.HasFormula(1, 2, 1));
  EXPECT_EQ(sheets.sheet(4).F1D.NumberRC(2, 1), 2.1);
}

TEST_F(Open, ListsFollowTheWindows) {
  for (const char* name : {"x", "x", "x", "x1", "Calculation Result"}) {
    sheets.newSheet("n").setCaption(name);
  }
  sheets.TarkastaJaLisaaListaan();
  auto names = windowNames();
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
  EXPECT_EQ(sheets.find("Calculation Result"), nullptr);

  sheets.lstSrcF.setSelected(4, true);
  const std::string kept = sheets.lstSrcF.item(4);
  sheets.sheet(2).F1Ref.NumberRC(26, 1, 1);
  sheets.sheet(2).F1Ref.NumberRC(26, 2, 2);
  sheets.sheet(2).F1Ref.NumberRC(26, 3, 7);
  sheets.result.F1D.TextRC(1, 1, "x");
  sheets.result.setCaption("Calculation Result");
  sheets.sheet(1).close();
  EXPECT_EQ(sheets.DataSheetCount(), 4);
  EXPECT_EQ(sheets.sheet(1).F1Ref.NumberRC(26, 2), 1);
  EXPECT_EQ(sheets.lstSrcD.items().back(), "Calculation Result");
  EXPECT_EQ(sheets.lstSrcF.count(), 4);
  EXPECT_TRUE(sheets.lstSrcF.selected(3));
  EXPECT_EQ(sheets.lstSrcF.item(3), kept);
}

TEST_F(Open, DialogTextIsCutAtBlanks) {
  write("a.txt", "No\tFe\n");
  write("b.txt", "No\tFe\n");
  sheets.ValmistaSource(path("") + " a.txt b.txt");
  EXPECT_THAT(windowNames(), ElementsAre("a", "b"));
  write("with blank.txt", "No\tFe\n");
  dialogs.expectOpen({path("with blank.txt")});
  EXPECT_TRUE(sheets.Open());
  EXPECT_EQ(sheets.sheet(3).caption(), "with blank");
  dialogs.expectOpen({});
  EXPECT_FALSE(sheets.Open());
}

TEST_F(Open, ADatabaseAmongTheFilesGoesAlone) {
  EXPECT_THROW(sheets.openSources({"x.mdb"}), Error);
  std::vector<std::string> opened;
  context.AvaaDB = [&](const std::string& file) { opened.push_back(file); };
  sheets.ValmistaSource("/data/ a.txt samples.MDB other.mdb");
  EXPECT_THAT(opened, ElementsAre("/data/samples.MDB"));
  EXPECT_EQ(sheets.DataSheetCount(), 0);
}

TEST_F(Open, ADatabaseIsKnownByItsContent) {
  std::vector<std::string> opened;
  context.AvaaDB = [&](const std::string& file) { opened.push_back(file); };
  const std::string access = write("new.accdb", std::string("\0\1\0\0Standard ACE DB\0", 20));
  const std::string sqlite = write("samples.db", std::string("SQLite format 3\0", 16));
  sheets.openSources({access});
  sheets.openSources({sqlite});
  EXPECT_THAT(opened, ElementsAre(access, sqlite));
  EXPECT_EQ(sheets.DataSheetCount(), 0);
}

TEST_F(Open, RenameKeepsTheNameOnAnEmptyAnswer) {
  frmDataIN& form = sheets.newSheet("New Data ");
  EXPECT_EQ(form.caption(), "New Data 1");
  dialogs.expectInput("Give new name for window", "");
  form.mnuRenameWindow.click();
  EXPECT_EQ(form.caption(), "New Data 1");
  dialogs.expectInput("Give new name for window", "ore");
  form.mnuRenameWindow.click();
  EXPECT_EQ(form.caption(), "ore");
  EXPECT_THAT(sheets.lstI.items(), ElementsAre("New Data 1"));
}

}  // namespace
}  // namespace lodex
