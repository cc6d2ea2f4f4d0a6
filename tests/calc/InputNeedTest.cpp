#include "calc/InputNeed.h"

#include <gmock/gmock.h>

#include "calc/CalcFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class InputNeedTest : public CalcFixture {
 protected:
  std::string foundText() const {
    std::string text;
    for (const Finding& finding : session.found.all()) text += describe(finding) + "\n";
    return text;
  }
};

TEST_F(InputNeedTest, FormsOfAnElementAreFedAlikeButThoseOfIron) {
  writeMethod("M.xls",
              {.input = {"Cr2O3 %", "Cr ppm", "S %", "SO3 %", "FeO %", "Fe2O3 %"},
               .output = {"a||=ROUND(Input!C2,4)", "b||=ROUND(Input!C3,0)", "c||=ROUND(Input!C4,4)",
                          "d||=ROUND(Input!C5,4)", "e||=COUNT(Input!C6)", "f||=COUNT(Input!C7)"}});
  addSheet("one",
           {"HEADER|No", "ELEMENT||Cr|SO3|FeO", "METHOD", "UNIT||ppm|%|%", "|S1|6842|2.5|9"});
  loadAndRun();
  EXPECT_THAT(resultRows("M"), ElementsAre("S1|1|6842|1.0012|2.5|1|0"));
}

TEST_F(InputNeedTest, AnInputPrefersItsOwnFormAndMayTakeNothingElse) {
  writeMethod("M.xls",
              {.input = {"Cr2O3 %", "Cr %", "S %|||as analysed", "SO3 %|||optional, as analysed"},
               .output = {"a||=Input!C2", "b||=Input!C3", "c||=COUNT(Input!C4)", "d||=Input!C5"}});
  addSheet("one", {"HEADER|No", "ELEMENT||Cr|Cr2O3|SO3", "METHOD", "UNIT||%|%|%", "|S1|3|5|2.5"});
  loadAndRun();
  EXPECT_THAT(resultRows("M"), ElementsAre("S1|5|3|0|2.5"));
}

TEST_F(InputNeedTest, WhatIsMissingLeavesResultsEmptyOrCountsAsZero) {
  writeMethod("M.xls",
              {.input = {"SiO2 %|||required", "Na2O %|||required", "FeO %|||one of iron",
                         "Fe2O3 %|||one of iron", "MnO %|||optional", "P2O5 %|||optional"},
               .output = {"Sum||=MAX(Input!C2,0)+MAX(Input!C3,0)+MAX(Input!C6,0)",
                          "Ratio||=100*Input!C2/(Input!C2+MAX(Input!C4,0))||needs SiO2, iron",
                          "Remark||=\"fine\""}});
  writeMethod("Other.xls", {.input = {"M.Sum"}, .output = {"o||=COUNT(Input!C2)"}});
  addSheet("one",
           {"HEADER|No", "ELEMENT||SiO2|Na2O|FeO|MnO", "METHOD", "UNIT||%|%|%|%", "|All|60|3|20|1",
            "|NoMn|60|<0.01|20|", "|NoNa|60|n.a.|20|1", "|NoFe|60|3||1", "|Commas|48,5|3|20|0,15"});
  loadAndRun();
  EXPECT_THAT(resultRows("M"),
              ElementsAre("All|64|75|fine", "Commas|||missing: SiO2", "NoFe|||missing: iron",
                          "NoMn|60|75|fine", "NoNa||75|missing: Na2O"));
  EXPECT_THAT(resultRows("Other"), ElementsAre("All|1", "Commas|0", "NoFe|0", "NoMn|1", "NoNa|0"));
  const std::string found = foundText();
  for (const char* line : {
           "sheet M: No column gives P2O5: counts as 0\n",
           "sheet M, record Commas: MnO is missing and counts as 0 (2 times)\n",
           "sheet M, record NoMn: Na2O below the limit of detection counts as 0\n",
           "sheet M, record NoNa: Missing Na2O: results that need it are left empty\n",
           "sheet M, record Commas: SiO2 has a decimal comma and is not used",
           "sheet M, record Commas: MnO has a decimal comma and is not used",
       }) {
    EXPECT_THAT(found, HasSubstr(line));
  }
  EXPECT_EQ(session.found.count(Severity::Error), 2u) << found;  // the two lost numbers
}

TEST_F(InputNeedTest, RowsThatNobodyCanNameAreReported) {
  writeMethod("M.xls", {.input = {"SiO2 %"}, .output = {"o||=Input!C2"}});
  addSheet("one",
           {"HEADER|No", "ELEMENT||SiO2", "METHOD", "UNIT||%", "|S1|1", "||2", "||mean", "|S1|3"});
  loadAndRun();
  EXPECT_THAT(foundText(),
              HasSubstr("sheet one, row 6: A row of numbers without sample identifier"));
  EXPECT_THAT(foundText(), HasSubstr("row 8, record S1: A further row of the sample was left out"));
  EXPECT_EQ(session.found.count(Severity::Error), 2u);
}

TEST(InputNeed, ReadsTheWordsOfTheInputSheet) {
  EXPECT_EQ(parseNeed("Required").kind, InputNeed::Kind::Required);
  EXPECT_EQ(parseNeed(" one of  iron ").set, "iron");
  EXPECT_TRUE(parseNeed("optional, as analysed").asAnalysed);
  EXPECT_EQ(parseNeed("as analysed; all iron, optional").kind, InputNeed::Kind::Unsaid);
  EXPECT_EQ(parseNeed("").kind, InputNeed::Kind::Unsaid);
}

}  // namespace
}  // namespace lodex
