#include "calc/frmExcelCalc.h"

#include <gmock/gmock.h>

#include "calc/CalcFixture.h"
#include "calc/frmSources.h"

namespace lodex {
namespace {

using testing::ElementsAre;

class ExcelCalcTest : public CalcFixture {
 protected:
  void open() {
    form = std::make_unique<frmExcelCalc>(context, calculations);
    form->AlustaCALC(false);
  }
  void enter(const std::vector<std::string>& rows) {
    form->F1D = Worksheet();
    fill(form->F1D, rows);
  }
  std::vector<std::string> rows() const {
    std::vector<std::string> texts;
    for (int row = 1; row <= form->F1D.LastRow(); ++row) texts.push_back(rowText(form->F1D, row));
    return texts;
  }
  std::unique_ptr<frmExcelCalc> form;
};

const TestMethod method = {.input = {"SiO2 %", "Au g/t", "LOI %"},
                           .output = {"Twice||=Input!C2*2", "|Gold|=Input!C3", "||1",
                                      "Kind||=IF(Input!C4>0,\"wet\",\"dry\")"}};

TEST_F(ExcelCalcTest, CalculatesEverySampleBelowTheInput) {
  writeMethod("M.xls", method);
  write("groups/TEST/Broken.xls", "no workbook");
  open();
  EXPECT_THAT(form->cmbRoutines.items(), ElementsAre("M"));
  EXPECT_EQ(form->F1D.TextRC(1, 1), "Give input data in columns A, B->");
  enter({"Sample|a|b|c", "Au g/t|2||", "SiO2 %|50|60|", "LOI %|1||"});
  ASSERT_TRUE(form->CalcExcel("m"));
  form->cmdCalculate.click();
  EXPECT_THAT(rows(), ElementsAre("Sample|a|b|c", "Au g/t|2||", "SiO2 %|50|60|", "LOI %|1||", "|||",
                                  "Calculation Result|||", "Twice|100.000|120.000|0.000",
                                  "Gold|2.000|0.000|0.000", "Kind|wet|dry|dry"));
  form->F1D.NumberRC(3, 2, 1);
  form->Calculate("M");
  EXPECT_EQ(form->F1D.LastRow(), 9);
  EXPECT_EQ(form->F1D.NumberRC(7, 2), 2);
}

TEST_F(ExcelCalcTest, DoesNothingWithoutMethodOrSheets) {
  Worksheet unnamed;
  unnamed.Write((groups / "TEST" / "Bare.xls").string(), FileType::Excel);
  open();
  enter({"SiO2 %|50"});
  form->Calculate("Bare");
  form->Calculate("Nobody");
  EXPECT_THAT(rows(), ElementsAre("SiO2 %|50"));
  EXPECT_FALSE(form->CalcExcel("Nobody"));
}

TEST_F(ExcelCalcTest, UsesPrerequisitesAndConvertsForms) {
  writeMethod("Base.xls", {.input = {"SiO2 %"}, .output = {"S||=Input!C2"}});
  writeMethod("Top.xls",
              {.links = {"", "|||Base"}, .input = {"Base.S"}, .output = {"R||=ROUND(Input!C2,3)"}});
  open();
  enter({"Si %|10"});
  form->Calculate("Top");
  EXPECT_EQ(form->F1D.NumberRC(4, 2), 21.393);
}

TEST_F(ExcelCalcTest, SourcesHoldUntilTheTitlesChange) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"Copper||=Input!C2"}});
  open();
  enter({"Cu_AAS ppm|1", "Cu_ICP ppm|2"});
  const std::string caption = form->caption();
  dialogs.expectForm("frmSources", [&](Form& shown) {
    auto& options = dynamic_cast<frmSources&>(shown);
    EXPECT_THAT(options.lstItem.items(), ElementsAre(caption));
    options.TarnPD1.setCurrent(28);
    ASSERT_THAT(options.lstEls.items(), ElementsAre(caption + " , Column 3 , Cu_AAS ppm",
                                                    caption + " , Column 4 , Cu_ICP ppm"));
    options.lstEls.setChecked(0, false);
    options.cmdOK.click();
  });
  form->cmdSources.click();
  form->Calculate("M");
  form->Calculate("M");
  EXPECT_EQ(rows().back(), "Copper|2.000");
  form->F1D.TextRC(2, 1, "Cu_XRF ppm");
  form->Calculate("M");
  EXPECT_EQ(rows().back(), "Copper|1.000");
}

TEST_F(ExcelCalcTest, TakesExamplesAndSamples) {
  writeMethod("M.xls", method);
  Worksheet examples;
  examples.NumSheets(2);
  examples.SheetName(1, "CIPW");
  examples.SheetName(2, "REE");
  examples.TextSRC(2, 1, 1, "La ppm");
  examples.NumberSRC(2, 1, 2, 38.2);
  examples.Write(path("Examples.xls"), FileType::Excel);
  open();
  form->readExamples(path("Examples.xls"));
  ASSERT_EQ(form->exampleCount(), 2);
  EXPECT_EQ(form->mnuExamples(2).caption(), "REE");
  form->mnuExamples(2).click();
  EXPECT_THAT(rows(), ElementsAre("La ppm|38.2"));
  const frmDataIN& sheet = addSheet(
      "s", {"HEADER|No|Silica|Note", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|A|1", "|B|2|x"});
  form->takeSample(sheet, 6);
  EXPECT_THAT(rows(), ElementsAre("No|B", "SiO2 %|2", "Note|x"));
}

}  // namespace
}  // namespace lodex
