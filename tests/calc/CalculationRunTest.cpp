#include "calc/CalculationRun.h"

#include <gmock/gmock.h>

#include "calc/CalcFixture.h"
#include "calc/frmSelectElements.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class CalculationRunTest : public CalcFixture {};

const TestMethod sumMethod = {.input = {"SiO2 %", "Cu ppm"},
                              .output = {"Sum||=Input!C2+Input!C3|DOUBLE", "label only", "||5",
                                         "Silica|SiO2 out|=Input!C2|SINGLE"}};

TEST_F(CalculationRunTest, JoinsSheetsAndLaysResultsOutAsADataSheet) {
  writeMethod("Sum.xls", sumMethod);
  frmDataIN& first = addSheet(
      "one", {"HEADER|SampleNo|SiO2 %", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S2|60", "|S1|50"});
  SheetStructure structure = first.structure();
  structure.row(sysrow::Field) = 2;  // column 2 of it holds the key's field
  first.F1D.TextRC(2, 2, "SampleKey");
  first.setStructure(structure);
  addSheet("two",
           {"HEADER|No|Cu ppm", "ELEMENT||Cu", "METHOD", "UNIT||ppm", "|S1|7", "|S3|8", "||9"});
  loadAndRun();
  Worksheet& result = sheets.result.F1D;
  EXPECT_EQ(sheets.result.caption(), "Calculation Result");
  EXPECT_EQ(result.SheetName(1), "Sum");
  EXPECT_EQ(rowText(result, 1), "HEADER|SampleKey|Sum|label only|SiO2 out");
  EXPECT_EQ(rowText(result, 2), "TABLE|Sum|Sum|Sum|Sum");
  EXPECT_EQ(rowText(result, 3), "FIELD|SampleKey|Sum|label only|SiO2 out");
  EXPECT_EQ(rowText(result, 4), "TYPE|TEXT(10)(U,I)|DOUBLE|DOUBLE|SINGLE");
  EXPECT_EQ(rowText(result, 5), "INDEXED|YES|||");
  EXPECT_THAT(resultRows("Sum"), ElementsAre("S1|57||50", "S2|60||60", "S3|8||0"));
  EXPECT_EQ(sheets.result.FirstDataRow(), 6);
  EXPECT_EQ(sheets.result.IDColumn(), 2);
  EXPECT_TRUE(logHas("3 rows found."));
  EXPECT_THAT(sheets.lstSrcD.items(), testing::Contains("Calculation Result"));
}

TEST_F(CalculationRunTest, KeepsTheFirstOfDuplicateRows) {
  writeMethod("Sum.xls", sumMethod);
  addSheet("one",
           {"HEADER|SampleNo|SiO2 %", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|50", "|S1|60"});
  loadAndRun();
  EXPECT_THAT(resultRows("Sum"), ElementsAre("S1|50||50"));
  const std::string line =
      " Error: Duplicate rows of sample S1 found. Row 5 of file one used. Row 6 of file one "
      "omitted!";
  EXPECT_THAT(session.log.txtErr.text(), HasSubstr(line));
}

TEST_F(CalculationRunTest, FindsNumericIdentifiersByText) {
  writeMethod("Sum.xls", sumMethod);
  addSheet("texts", {"HEADER|No|SiO2", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|007|50"});
  addSheet("numbers", {"HEADER|No|Cu", "ELEMENT||Cu", "METHOD", "UNIT||ppm", "|7|3"});
  loadAndRun();
  // "007" finds the number 7; the number does not find the text.
  EXPECT_THAT(resultRows("Sum"), ElementsAre("007|53||50", "7|3||0"));
}

TEST_F(CalculationRunTest, ConvertsUnitsAndForms) {
  struct Case {
    const char* name;
    const char* item;
    const char* element;
    const char* unit;
    const char* value;
    double expected;
  };
  for (const Case& c : {
           Case{"same unit", "Cu ppm", "Cu", "ppm", "500", 500},
           Case{"ppm to %", "Cu %", "Cu", "PPM", "500", 0.05},
           Case{"% to ppb", "Au ppb", "Au", "%", "0.001", 10000},
           Case{"g/t of a column is ppb", "Au ppm", "Au", "g/t", "2", 0.002},
           Case{"g/t of an item is ppm", "Au g/t", "Au", "ppm", "2", 2},
           Case{"unit unknown", "Cu ppm", "Cu", "", "38", 38},
           Case{"element to oxide", "SiO2 %", "Si", "%", "10", 21.3932},
           Case{"total iron", "FeOtot %", "Fe2O3TOT", "%", "10", 8.9981},
           Case{"both", "Na ppm", "Na2O", "%", "1", 7418.6},
       }) {
    writeMethod("M.xls", {.input = {c.item}, .output = {"R||=Input!C2"}});
    addSheet("s", {"HEADER|No|x", std::string("ELEMENT||") + c.element, "METHOD",
                   std::string("UNIT||") + c.unit, std::string("|A|") + c.value});
    loadAndRun();
    const Worksheet& result = sheets.result.F1D;
    EXPECT_NEAR(result.NumberRC(6, 3), c.expected, 1e-4 * c.expected) << c.name;
    sheets.result.F1D = Worksheet();
    sheets.sheet(1).close();
  }
}

TEST_F(CalculationRunTest, TakesTheFirstSourceWithAValue) {
  writeMethod("M.xls",
              {.input = {"Cu ppm"}, .output = {"R||=Input!C2", "Empty||=ISBLANK(Input!C2)"}});
  addSheet("s", {"HEADER|No|a|b", "ELEMENT||Cu|Cu", "METHOD||XRF|ICP", "UNIT||ppm|ppm", "|A|1|2",
                 "|B||3", "|C|0|4", "|D|<5|6", "|E|  |"});
  loadAndRun();
  EXPECT_THAT(resultRows("M"),
              ElementsAre("A|1|FALSE", "B|3|FALSE", "C|0|FALSE", "D|<5|FALSE", "E|0|TRUE"));
}

TEST_F(CalculationRunTest, MethodsOfHeadingsAndOxidesChooseTheirColumns) {
  writeMethod("M.xls", {.input = {"Ni_BM ppm", "Ni_XRF ppm", "Fe2O3 %", "FeO %", "LOI %"},
                        .output = {"BM||=Input!C2", "XRF||=Input!C3", "Ferric||=Input!C4",
                                   "Ferrous||=Input!C5", "LOI||=Input!C6"}});
  addSheet("s", {"HEADER|No|Ni|Ni|FeO|Fe2O3|LOI", "ELEMENT||Ni|Ni|FeO|Fe2O3|", "METHOD||XRF|BM||",
                 "UNIT||ppm|ppm|%|%|%", "|A|10|20|3|4|1.5", "|B|10|20||4|"});
  loadAndRun();
  // Iron given as Fe2O3 only is not counted again as FeO.
  EXPECT_THAT(resultRows("M"), ElementsAre("A|20|10|4|3|1.5", "B|20|10|4|0|0"));
}

TEST_F(CalculationRunTest, MethodsReadEachOther) {
  writeMethod("Zfirst.xls", {.input = {"SiO2 %"},
                             .map = {"Twice||=Output!C1"},
                             .output = {"Double|Twice|=Input!C2*2", "Text||=\"t\"&Input!C2"}});
  writeMethod("Later.xls", {.links = {"|0", "|Zfirst.Twice"},
                            .input = {"Zfirst.Twice", "Zfirst.Text", "Nobody.Q"},
                            .output = {"Ref||=Input!C2", "Text||=Input!C3", "Link||=Links!C2",
                                       "Unknown||=ISBLANK(Input!C4)"}});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|A|1", "|B|2"});
  calculations.AlustaCALC(true);
  // Neither listed before nor selected: what it gives is needed and thus computed.
  calculations.lstCalc.setSelected(0, true);
  ASSERT_EQ(calculations.lstCalc.item(0), "Later");
  calculations.Calculate();
  EXPECT_THAT(resultRows("Later"), ElementsAre("A|2|t1|2|TRUE", "B|4|t2|4|TRUE"));
  EXPECT_EQ(sheets.result.F1D.NumSheets(), 1);
}

TEST_F(CalculationRunTest, CirclesAndFormulaErrorsDoNotStopARun) {
  writeMethod("A.xls", {.links = {"", "|||B"},
                        .input = {"B.R"},
                        .output = {"R||=Input!C2+1", "Bad||=1/0", "Own||=C3"}});
  writeMethod(
      "B.xls",
      {.links = {"", "|||A", "|||Nobody"}, .input = {"A.R"}, .output = {"R||=Input!C2+10"}});
  writeMethod("NoSheets.xls", {});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1", "|S2|2"});
  loadAndRun();
  const auto rows = resultRows("A");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_THAT(rows[0], HasSubstr("#DIV/0!"));
  EXPECT_EQ(rows[0].substr(2), rows[1].substr(2));
  EXPECT_THAT(resultRows("NoSheets"), ElementsAre("S1", "S2"));
}

TEST_F(CalculationRunTest, PriorityComesBeforeThePlaceInTheList) {
  writeMethod("A.xls", {.list = {"1"}, .output = {"Common.order||1"}});
  writeMethod("B.xls", {.list = {"2"}, .links = {"priority|5"}, .output = {"Common.order||2"}});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1"});
  loadAndRun();
  // A runs last, and its value stays.
  EXPECT_THAT(resultRows("Common"), ElementsAre("S1|1"));
  EXPECT_EQ(sheets.result.F1D.SheetName(1), "A");
}

TEST_F(CalculationRunTest, OutputsMayNameOtherSheets) {
  writeMethod("A.xls", {.output = {"B.extra||1|LONG", "D.I.||2", "Alk. index||3", "own||4"}});
  writeMethod("B.xls", {.output = {"r||5"}});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1"});
  loadAndRun();
  EXPECT_THAT(resultRows("A"), ElementsAre("S1|2|3|4"));
  // A sheet that a method owns takes the rows of both.
  EXPECT_THAT(resultRows("B"), ElementsAre("S1|1|", "S1||5"));
}

TEST_F(CalculationRunTest, AbortKeepsWhatIsDone) {
  writeMethod("Sum.xls", sumMethod);
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1", "|S2|2", "|S3|3"});
  int pumped = 0;
  std::string shown;
  events = NoEvents([&] {
    shown = session.progress.txtInfo.caption();
    if (++pumped == 2) session.progress.cmdAbort.click();
  });
  loadAndRun();
  EXPECT_EQ(shown, "Calculating sample 2; S2/3... [Errors=0]");
  EXPECT_EQ(resultRows("Sum").size(), 1u);
  EXPECT_TRUE(logHas("!! Aborted !!"));
  EXPECT_FALSE(session.progress.AbortFlag);
  EXPECT_EQ(session.progress.bar.value(), 0);
  EXPECT_EQ(sheets.result.FirstDataRow(), 6);
}

TEST_F(CalculationRunTest, ASheetThatIsClosedEndsTheRun) {
  writeMethod("Sum.xls", sumMethod);
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1", "|S2|2"});
  events = NoEvents([&] {
    if (sheets.DataSheetCount() > 0) sheets.sheet(1).close();
    calculations.Calculate();  // a second run inside of the first does nothing
  });
  loadAndRun();
  EXPECT_TRUE(logHas("!! Aborted !!"));
}

TEST_F(CalculationRunTest, ResetsOrKeepsEarlierResults) {
  writeMethod("Sum.xls", sumMethod);
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1"});
  loadAndRun();
  const std::string question = "Do you want to reset earlier results?";
  dialogs.expectMessage(question, Answer::No);
  calculations.Calculate();
  EXPECT_THAT(resultRows("Sum"), ElementsAre("S1|1||1", "S1|1||1"));
  dialogs.expectMessage(question, Answer::Yes);
  calculations.Calculate();
  EXPECT_THAT(resultRows("Sum"), ElementsAre("S1|1||1"));
}

TEST_F(CalculationRunTest, ListsTheRoutinesThatHaveSources) {
  for (const char* file : {"A.xls", "B.xls"}) writeMethod(file, {.input = {"SiO2 %"}});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1"});
  calculations.AlustaCALC(true);
  EXPECT_THAT(calculations.HaeRutiiniLista("TEST"), ElementsAre());
  calculations.Alusta("B");
  EXPECT_THAT(calculations.HaeRutiiniLista("test"), ElementsAre(2));
  calculations.Alusta("-ALL-");
  EXPECT_THAT(calculations.HaeRutiiniLista("TEST"), ElementsAre(1, 2));
  EXPECT_THAT(calculations.HaeRutiiniLista("NOWHERE"), ElementsAre());
}

TEST_F(CalculationRunTest, AddsToResultsThatWereIdentified) {
  writeMethod("A.xls", {.input = {"SiO2 %"}, .output = {"a||=Input!C2|DOUBLE"}});
  writeMethod("B.xls", {.input = {"SiO2 %"}, .output = {"b||=Input!C2|DOUBLE"}});
  addSheet("s", {"HEADER|No|x", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1"});
  loadAndRun();
  sheets.result.AjaTunnista({});
  Worksheet& results = sheets.result.F1D;
  for (const int sheet : {1, 2}) {
    results.Sheet(sheet);
    EXPECT_EQ(results.TextRC(12, 1), "IDENTIFIED");
    EXPECT_EQ(results.TextRC(13, 2), "S1");
    EXPECT_EQ(results.TextRC(2, 3), results.SheetName(sheet));
  }
  writeMethod("C.xls", {.input = {"SiO2 %"}, .output = {"c||=Input!C2|DOUBLE"}});
  dialogs.expectMessage("Do you want to reset earlier results?", Answer::No);
  loadAndRun();
  EXPECT_EQ(sheets.result.FirstDataRow(), 13);
  results.Sheet(2);
  EXPECT_EQ(rowText(results, 14), "|S1|1");
  results.Sheet(3);
  EXPECT_EQ(results.SheetName(3), "C");
  EXPECT_EQ(columnText(results, 1, 13),
            "HEADER|TABLE|FIELD|TYPE|INDEXED|ELEMENT|METHOD|UNIT|LENGTH|DIGITS|MULTIPLIER|"
            "IDENTIFIED|");
  EXPECT_EQ(columnText(results, 3, 13), "c|C|c|DOUBLE|||||||||1");
  EXPECT_EQ(results.LastRow(), 13);
}

TEST_F(CalculationRunTest, AsksForSourcesAndKeepsTheAnswer) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  addSheet("s", {"HEADER|No|Cu a|Cu b", "ELEMENT||Cu|Cu", "METHOD", "UNIT||ppm|ppm", "|A|1|2"});
  calculations.chkAskRefs.setChecked(true);
  dialogs.expectForm("frmSelectElements", [](Form& form) {
    auto& dialog = dynamic_cast<frmSelectElements&>(form);
    EXPECT_EQ(dialog.caption(), "Source for Cu");
    EXPECT_THAT(dialog.lstSel.items(), ElementsAre("s , Column 3 , Cu a", "s , Column 4 , Cu b"));
    dialog.lstSel.setCurrent(0);
    dialog.cmdDown.click();
    dialog.Command1.click();
    EXPECT_EQ(dialog.answer(), "2,1");
  });
  loadAndRun();
  EXPECT_THAT(resultRows("M"), ElementsAre("A|2"));
  EXPECT_EQ(rowText(sheets.F1Ref, 29).substr(0, 9), "2|1|4|1|3");
  EXPECT_TRUE(logHas("No source for item Si"));
  dialogs.expectMessage("Do you want to reset earlier results?", Answer::Yes);
  calculations.Calculate();  // the map is still good: nothing is asked
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(CalculationRunTest, AnElementThatIsNotToBeUsedStaysEmpty) {
  writeMethod("M.xls", {.input = {"Cu ppm"}, .output = {"R||=Input!C2"}});
  addSheet("s", {"HEADER|No|Cu ppm|Cu_ICP ppm", "ELEMENT||Cu|Cu", "METHOD|||ICP", "UNIT||ppm|ppm",
                 "|A|1|2"});
  calculations.chkAskRefs.setChecked(true);
  dialogs.expectForm("frmSelectElements", [](Form& form) {
    auto& dialog = dynamic_cast<frmSelectElements&>(form);
    for (const int offer : {0, 1}) dialog.lstSel.setChecked(offer, false);
    dialog.Command1.click();
  });
  loadAndRun();
  // A heading that reads like the item does not bring it back.
  EXPECT_THAT(resultRows("M"), ElementsAre("A|0"));
}

TEST_F(CalculationRunTest, NeedsASelection) {
  writeMethod("Sum.xls", sumMethod);
  calculations.AlustaCALC(true);
  dialogs.expectMessage("Select calculations!");
  calculations.Calculate();
  calculations.lstCalc.selectAll(true);
  dialogs.expectMessage("Select data sources!");
  calculations.Calculate();
  EXPECT_TRUE(dialogs.allAsked());
}

}  // namespace
}  // namespace lodex
