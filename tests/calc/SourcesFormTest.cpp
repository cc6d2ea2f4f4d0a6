#include <gmock/gmock.h>

#include "calc/CalcFixture.h"
#include "calc/frmDefineItem.h"
#include "calc/frmSelectElements.h"
#include "calc/frmSources.h"
#include "form/frmSelectFromList.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int copper = 29;

class SourcesFormTest : public CalcFixture {
 protected:
  void open() {
    addSheet("s", {"HEADER|No|Cu a|Cu b|S", "ELEMENT||Cu|Cu|S", "METHOD||XRF|ICP|LECO",
                   "UNIT||ppm|ppm|%", "|A|1|2|3"});
    calculations.AlustaCALC(true);
    calculations.Alusta(allItems);
    session.record.SourcesBuilt = false;
    SourcesCaller caller{shell,
                         {"-ALL-", "M"},
                         sheets.F1Ref,
                         calculations.sourceSheets(),
                         [this] { calculations.Alusta(allItems); },
                         [this] { calculations.sourcesEdited(); },
                         calculations.group};
    form = std::make_unique<frmSources>(session, shippedTables(), std::move(caller));
    form->TarnPD1.setCurrent(copper - 1);
  }
  std::string copperRow(const Worksheet& map, int sheet) {
    std::vector<std::string> cells;
    for (int column = 1; column <= 5; ++column) {
      cells.push_back(map.TextSRC(sheet, copper, column));
    }
    return join(cells, "|");
  }
  void expectAnswer(const std::string& caption, const std::string& uncheck, bool cancel = false) {
    dialogs.expectForm("frmSelectElements", [=](Form& shown) {
      auto& dialog = dynamic_cast<frmSelectElements&>(shown);
      EXPECT_EQ(dialog.caption(), caption);
      for (int i = 0; i < dialog.lstSel.count(); ++i) {
        if (dialog.lstSel.item(i) == uncheck || uncheck == "all")
          dialog.lstSel.setChecked(i, false);
      }
      (cancel ? dialog.cmdCancel : dialog.Command1).click();
    });
  }

  std::unique_ptr<frmSources> form;
};

TEST_F(SourcesFormTest, ShowsTheCommonMap) {
  open();
  EXPECT_EQ(form->F1Ref.SheetName(1), "-ALL-");
  EXPECT_EQ(form->TarnPD1.item(copper - 1), "Cu");
  EXPECT_TRUE(form->TarnPD1.checked(copper - 1));
  EXPECT_FALSE(form->TarnPD1.checked(0));
  EXPECT_THAT(form->lstEls.items(), ElementsAre("s , Column 3 , Cu a", "s , Column 4 , Cu b"));
  form->cmdList.click();
  EXPECT_THAT(form->txtSrcList.text(), HasSubstr("Cu\r\n  s , Column 3 , Cu a"));
}

TEST_F(SourcesFormTest, AMethodStartsWithACopyOfTheCommonMap) {
  open();
  form->lstItem.setCurrent(1);
  const int own = form->F1Ref.SheetNumber("M");
  ASSERT_EQ(own, 2);
  form->lstItem.setCurrent(0);
  form->lstEls.setCurrent(0);
  form->cmdSDel.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "1|1|4||");
  EXPECT_EQ(copperRow(form->F1Ref, own), "2|1|3|1|4");
  form->lstEls.setCurrent(0);
  form->cmdSDel.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "0||||");
  EXPECT_FALSE(form->TarnPD1.checked(copper - 1));
  // Nothing has reached the caller yet.
  EXPECT_EQ(copperRow(sheets.F1Ref, 1), "2|1|3|1|4");
  form->cmdOK.click();
  EXPECT_EQ(copperRow(sheets.F1Ref, 1), "0||||");
  EXPECT_TRUE(session.record.SourcesBuilt);
}

TEST_F(SourcesFormTest, EditsAddsAndOrdersSources) {
  open();
  expectAnswer("Source for Cu", "", true);
  form->cmdSEdit.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "2|1|3|1|4");
  expectAnswer("Source for Cu", "s , Column 3 , Cu a");
  form->cmdSEdit.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "1|1|4||");
  dialogs.expectForm("frmDefineItem", [](Form& shown) {
    auto& dialog = dynamic_cast<frmDefineItem&>(shown);
    EXPECT_EQ(dialog.caption(), "-ALL- Cu");
    dialog.cmbColumn.setCurrent(2);
    dialog.cmdOK.click();
  });
  form->cmdSAdd.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "2|1|4|1|3");
  dialogs.expectForm("frmSelectElements", [](Form& shown) {
    auto& dialog = dynamic_cast<frmSelectElements&>(shown);
    EXPECT_EQ(dialog.caption(), "Methods for Cu");
    EXPECT_THAT(dialog.lstSel.items(), ElementsAre("ICP", "XRF"));
    dialog.lstSel.setCurrent(1);
    dialog.cmdUp.click();
    dialog.Command1.click();
  });
  form->cmdMethods.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "2|1|3|1|4");
  expectAnswer("Source for Cu", "all");
  form->cmdSEdit.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "0||||");
  form->cmdGet.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "2|1|3|1|4");
  form->lstEls.setChecked(1, false);
  form->lstEls.setCurrent(0);
  form->cmdSDel.click();
  EXPECT_EQ(copperRow(form->F1Ref, 1), "0||||") << "what was unchecked came back";
  form->cmdGet.click();
  form->lstEls.setChecked(1, false);
  form->cmdOK.click();
  EXPECT_EQ(copperRow(sheets.F1Ref, 1), "1|1|3||");
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(SourcesFormTest, WithoutAnElementThereIsNothingToAdd) {
  open();
  form->TarnPD1.setCurrent(-1);
  dialogs.expectMessage("Select item");
  form->cmdSAdd.click();
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(SourcesFormTest, AMapOfItsOwnFeedsAMethod) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  writeMethod("N.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  open();
  form->lstItem.setCurrent(1);
  form->lstEls.setChecked(0, false);
  form->cmdOK.click();
  calculations.lstCalc.selectAll(true);
  calculations.Calculate();
  EXPECT_THAT(resultRows("M"), ElementsAre("A|2"));
  EXPECT_THAT(resultRows("N"), ElementsAre("A|1"));
}

TEST_F(SourcesFormTest, EditsAMethodWorkbook) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  open();
  form->lstCalc.setCurrent(0);
  form->E.EntrySRC(5, 1, 3, "=Input!C2*100");
  form->cmdSave.click();
  calculations.lstCalc.selectAll(true);
  calculations.Calculate();
  EXPECT_THAT(resultRows("M"), ElementsAre("A|100"));
  Worksheet saved;
  saved.Read((groups / "TEST" / "M.xls").string());
  EXPECT_EQ(saved.FormulaSRC(5, 1, 3), "Input!C2*100");
  dialogs.expectSave(path("copy"));
  form->cmdSaveAs.click();
  EXPECT_TRUE(pathExists(path("copy.xls")));
}

TEST_F(SourcesFormTest, AWorkbookThatCannotBeReadReplacesNoOther) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  writeMethod("N.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2*7"}});
  open();
  form->lstCalc.setCurrent(0);
  const std::filesystem::path gone = groups / "TEST" / "N.xls";
  std::filesystem::remove(gone);
  dialogs.expectMessage("Error 0 Cannot open " + gone.string() + ": there is no such file");
  form->lstCalc.setCurrent(1);
  form->cmdSave.click();
  EXPECT_FALSE(std::filesystem::exists(gone));
  EXPECT_EQ(calculations.group.method(2).book.FormulaSRC(5, 1, 3), "Input!C2*7");
}

TEST(SelectFromList, NeedsAChoice) {
  ScriptedDialogs dialogs;
  frmSelectFromList list(dialogs, "Select", {"a", "b", "c"}, true);
  dialogs.expectMessage("No selected");
  list.cmdOK.click();
  list.lstItems.setSelected(0, true);
  list.lstItems.setSelected(2, true);
  list.cmdOK.click();
  EXPECT_EQ(list.answer(), "a;;c");
  EXPECT_EQ(list.index(), 0);
}

}  // namespace
}  // namespace lodex
