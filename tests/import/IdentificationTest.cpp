#include "import/Identification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "basic/Error.h"
#include "import/ImportFixture.h"

namespace lodex {
namespace {

using testing::HasSubstr;
using testing::Not;

class Identify : public ImportFixture {
 protected:
  frmDataIN& sheetOf(const std::vector<std::string>& rows) {
    frmDataIN& made = sheets.newSheet("test");
    fill(made.F1D, rows);
    return made;
  }
  std::string cell(frmDataIN& form, int systemRow, int column) {
    return form.F1D.TextRC(form.SystemRows(systemRow), column);
  }
};

TEST_F(Identify, BareTableIsDescribed) {
  frmDataIN& form = sheetOf({"Sample|SiO2 %|Au ppb|Rock", "O'Brien|50.1|2|gabbro", "00123|49|3|"});
  form.AjaTunnista({});
  Worksheet& F1D = form.F1D;
  EXPECT_EQ(rowText(F1D, 1), "HEADER|Sample|SiO2 %|Au ppb|Rock");
  EXPECT_EQ(rowText(F1D, 2), "ELEMENT|Sample|SiO2|Au|");
  EXPECT_EQ(rowText(F1D, 3), "METHOD||||");
  EXPECT_EQ(rowText(F1D, 4), "UNIT||%|ppb|");
  EXPECT_EQ(columnText(F1D, 1, 14),
            "HEADER|ELEMENT|METHOD|UNIT|TABLE|FIELD|TYPE|LENGTH|DIGITS|INDEXED|MULTIPLIER|"
            "IDENTIFIED||");
  EXPECT_EQ(rowText(F1D, 5), "TABLE||ANALYSES|ANALYSES|USERX");
  EXPECT_EQ(rowText(F1D, 6), "FIELD|Sample|SiO2/%|Au/ppb|Rock");
  EXPECT_EQ(rowText(F1D, 7), "TYPE|TEXT(20)(U,I)|SINGLE|SINGLE|TEXT (255)");
  EXPECT_EQ(rowText(F1D, 10), "INDEXED|YES|||");
  EXPECT_EQ(rowText(F1D, 12), "IDENTIFIED|ID|X(Si)1/1|X(Au)1/1|");
  EXPECT_EQ(rowText(F1D, 14), "|00123|49|3|");
  EXPECT_EQ(form.FirstDataRow(), 13);
  EXPECT_EQ(form.IDColumn(), 2);
  EXPECT_EQ(form.lblStatus.caption(), "Identified");
  EXPECT_EQ(form.F1Ref.NumberRC(14, 1), 1);
  EXPECT_EQ(form.F1Ref.NumberRC(14, 3), 3);
  EXPECT_EQ(form.F1Ref.NumberRC(14, 2), form.sheetNumber());
  for (const char* line :
       {"-First row is set to HEADER", "-Adding ELEMENT row", "-Moving first column to ID col = 2",
        "-Column identified [Si (Column=3) = Element 14\r\n",
        "-Column 5=(Rock/) not identified -> to the USERX table"}) {
    EXPECT_THAT(logText(), HasSubstr(line));
  }
}

TEST_F(Identify, DescribedSheetIsRecognisedAgain) {
  frmDataIN& form = sheetOf({"Sample|SiO2 %|Mineral", "A-1|50.1|Py"});
  form.AjaTunnista({});
  form.F1D.Write(path("saved.txt"), FileType::Text);
  frmDataIN& again = sheets.newSheet("again");
  again.OpenFile(path("saved.txt"), "", "", false);
  session.log.clear();
  again.AjaTunnista({});
  EXPECT_EQ(again.structure(), form.structure());
  for (int row = 1; row <= form.F1D.LastRow(); ++row) {
    EXPECT_EQ(rowText(again.F1D, row), rowText(form.F1D, row)) << row;
  }
  EXPECT_THAT(logText(), Not(HasSubstr("-Adding")));
}

TEST_F(Identify, ASheetThatComesDescribedKeepsItsDescription) {
  addRule({"Note", "HEADER", "", "", "", "", "Sample", "Remark"});
  addRule({"SiO2", "HEADER", "", "SiO2", "", "%"});
  frmDataIN& form =
      sheetOf({"HEADER|Sample|SiO2|Cu ppm|Note|Later|Own", "TABLE|CIPW|CIPW|CIPW|CIPW||T",
               "FIELD|Sample|SiO2|Cu ppm|Note||", "TYPE|TEXT(10)(U,I)|DOUBLE|DOUBLE|TEXT(60)||",
               "INDEXED|YES", "|A|50|3|x|y|z"});
  for (int run = 1; run <= 2; ++run) {
    SCOPED_TRACE(run);
    session.log.clear();
    form.AjaTunnista({});
    EXPECT_EQ(rowText(form.F1D, 2), "TABLE|CIPW|CIPW|CIPW|CIPW|USERX|USERX");
    EXPECT_EQ(rowText(form.F1D, 3), "FIELD|Sample|SiO2|Cu ppm|Note|Later|Own");
    EXPECT_EQ(rowText(form.F1D, 4),
              "TYPE|TEXT(10)(U,I)|DOUBLE|DOUBLE|TEXT(60)|TEXT (255)|TEXT (255)");
    // What the columns hold is found out all the same.
    EXPECT_EQ(cell(form, sysrow::Identified, 3), "X(Si)1/1");
    EXPECT_EQ(cell(form, sysrow::Unit, 4), "ppm");
    EXPECT_EQ(session.log.txtErr.text(), "");
  }
}

TEST_F(Identify, UnidentifiedColumnsFollowTheNameOfTheirTable) {
  frmDataIN& form = sheetOf({"No|Zork: x|Depth", "1|5|7"});
  form.AjaTunnista({});
  form.F1D.TextRC(form.SystemRows(sysrow::Table), 4, "CORE");
  form.F1D.TextRC(form.SystemRows(sysrow::Type), 4, "SINGLE");
  context.unidentifiedTable = "OTHER";
  form.AjaTunnista({});
  EXPECT_EQ(cell(form, sysrow::Table, 3), "OTHER");
  EXPECT_EQ(cell(form, sysrow::Table, 4), "CORE");
}

TEST_F(Identify, CaptionsAboveTheIdsMoveInFrontOfThem) {
  frmDataIN& form =
      sheetOf({"HEADER|Fe2O3|S", "UNIT|%|%", "ELEMENT|Fe2O3|S", "METHOD|XRF|", "A-1|9.1|0.2"});
  form.AjaTunnista({});
  EXPECT_EQ(rowText(form.F1D, 1), "HEADER|SampleNo|Fe2O3|S");
  EXPECT_EQ(rowText(form.F1D, 2), "UNIT||%|%");
  EXPECT_EQ(cell(form, sysrow::Field, 3), "Fe2O3/XRF/%");
  EXPECT_EQ(cell(form, sysrow::Field, 2), "SampleNo");
  EXPECT_EQ(rowText(form.F1D, form.FirstDataRow()), "|A-1|9.1|0.2");
}

TEST_F(Identify, MineralSheetHasTablesOfItsOwn) {
  frmDataIN& form = sheetOf({"No|Mineral|Fe %|Note", "1|Py|46.6|x"});
  form.AjaTunnista({});
  EXPECT_EQ(form.MineralColumn(), 3);
  EXPECT_EQ(rowText(form.F1D, 5), "TABLE||MINERAL|MINERAL|MINERAL");
  EXPECT_EQ(rowText(form.F1D, 12), "IDENTIFIED|ID|MIN|X(Fe)1/1|");
  EXPECT_TRUE(logHas("Mineral column found: column 3"));
  EXPECT_EQ(cell(form, sysrow::Type, 2), "LONG(U,I)");
}

TEST_F(Identify, MineralFormulasBecomeColumnsOnYes) {
  context.HaeMinTieto = [](const std::string& mineral) {
    using Items = std::vector<std::pair<std::string, std::string>>;
    if (mineral == "Py") return Items{{"MF", "FeS2"}, {"MF_CATIONS", "1"}, {"MF_SITE1", "1.5"}};
    return mineral == "Qz" ? Items{{"MF_CATIONS", "2"}} : Items{};
  };
  const char* question =
      "Reading mineral formula information from the system database (minerals.mdb)?";
  frmDataIN& form = sheetOf({"No|Mineral", "1|Py", "2|Qz", "3|?", "4|"});
  dialogs.expectMessage(question, Answer::Cancel);
  form.AjaTunnista({});
  EXPECT_EQ(form.F1D.LastCol(), 3);
  dialogs.expectMessage(question, Answer::Yes);
  form.AjaTunnista({});
  EXPECT_EQ(rowText(form.F1D, 1), "HEADER|No|Mineral|MF_CATIONS|MF_SITE1");
  EXPECT_EQ(rowText(form.F1D, 13), "|1|Py|1|1.5");
  EXPECT_EQ(rowText(form.F1D, 14), "|2|Qz|2|");
  EXPECT_EQ(rowText(form.F1D, 7), "TYPE|LONG(U,I)|TEXT (255)|LONG|SINGLE");
  EXPECT_EQ(cell(form, sysrow::Identified, 4), "X(MF_CATIONS)1/1");
  form.AjaTunnista({});
  EXPECT_EQ(form.F1D.LastCol(), 5);
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(Identify, OnlyNonXKeepsMarkedColumns) {
  frmDataIN& form = sheetOf({"No|Fe %|Fe ppm|S %", "1|5|7|1"});
  form.AjaTunnista({});
  EXPECT_EQ(cell(form, sysrow::Identified, 3), "X(Fe)1/2");
  form.F1D.TextRC(form.SystemRows(sysrow::Table), 3, "MINE");
  form.F1D.TextRC(form.SystemRows(sysrow::Field), 3, "IRON");
  form.F1D.TextRC(form.SystemRows(sysrow::Identified), 5, "");
  form.F1D.TextRC(form.SystemRows(sysrow::Type), 5, "");
  IdentifyRequest request;
  request.onlyNonX = true;
  form.AjaTunnista(request);
  EXPECT_EQ(cell(form, sysrow::Table, 3), "MINE");
  EXPECT_EQ(cell(form, sysrow::Field, 3), "IRON");
  EXPECT_EQ(cell(form, sysrow::Type, 5), "SINGLE");
  form.AjaTunnista({});
  EXPECT_EQ(cell(form, sysrow::Field, 3), "Fe/%");
}

TEST_F(Identify, HeadingWithoutUnitNeedsTheThesaurus) {
  addRule({"SiO2", "HEADER", "", "SiO2", "XRF", "%", "ROCKS"});
  const std::vector<std::string> rows = {"No|SiO2|TiO2", "1|50|1"};
  frmDataIN& form = sheetOf(rows);
  IdentifyRequest request;
  request.useThesaurus = false;
  form.AjaTunnista(request);
  EXPECT_EQ(rowText(form.F1D, 12), "IDENTIFIED|ID||");
  form.AjaTunnista({});
  EXPECT_EQ(rowText(form.F1D, 12), "IDENTIFIED|ID|X(Si)1/1|");
  EXPECT_EQ(columnText(form.F1D, 3, 7), "SiO2|SiO2|XRF|%|ROCKS|SiO2/XRF/%|SINGLE");
  EXPECT_TRUE(logHas("-Thesaurus replacement [SiO2 found on (R,C)=(1,3) -> (R,C)=(3,3)] : =XRF"));
}

TEST_F(Identify, FileNameGivesTheMethod) {
  sheets.chkFILEISMET.setChecked(true);
  frmDataIN& form = sheetOf({"No|Fe %|Au_FA ppb", "1|5|7"});
  form.setCaption("hole 17 / ICP-MS ");
  form.AjaTunnista({});
  EXPECT_EQ(rowText(form.F1D, 3), "METHOD||ICP-MS|FA");
  EXPECT_EQ(cell(form, sysrow::Field, 3), "Fe/ICP_MS/%");
}

TEST_F(Identify, NamesAreCleanedForTheDatabase) {
  frmDataIN& form = sheetOf({"No|Fe %|S %", "1|5|7"});
  form.AjaTunnista({});
  form.F1D.TextRC(form.SystemRows(sysrow::Table), 3, "Fe/TOT %");
  form.F1D.TextRC(form.SystemRows(sysrow::Table), 4, "*");
  form.F1D.TextRC(form.SystemRows(sysrow::Element), 4, "S(tot)");
  form.F1D.TextRC(form.SystemRows(sysrow::Field), 4, "");
  IdentifyRequest request;
  request.columns = request.unidentifiedToUser = false;
  form.AjaTunnista(request);
  EXPECT_EQ(cell(form, sysrow::Table, 3), "Fe_TOT %");
  EXPECT_EQ(cell(form, sysrow::Table, 4), "*");
  EXPECT_EQ(cell(form, sysrow::Field, 3), "Fe/%");
  EXPECT_EQ(cell(form, sysrow::Field, 4), "S_tot_");
  EXPECT_TRUE(logHas("Replacing Table name Fe/TOT % by Fe_TOT % due to illegal characters!"));
  EXPECT_TRUE(logHas("Replacing Field name S(tot) by S_tot_ due to illegal characters!"));
}

TEST_F(Identify, OnlyTheWidestSheetLosesAColumnToTheIds) {
  for (const int columns : {255, 256, 300, maxColumns}) {
    frmDataIN& form = sheets.newSheet("wide");
    for (int c = 1; c <= columns; ++c) form.F1D.TextRC(1, c, "h" + std::to_string(c));
    session.found.clear();
    form.AjaTunnista({});
    const int kept = std::min(columns, maxColumns - 1);
    EXPECT_EQ(form.F1D.LastCol(), kept + 1);
    EXPECT_EQ(form.F1D.TextRC(1, kept + 1), "h" + std::to_string(kept));
    EXPECT_EQ(session.found.count(Severity::Error), columns == maxColumns ? 2U : 1U);
    EXPECT_THAT(describe(session.found.all().back()), HasSubstr("No column was understood"));
  }
}

TEST_F(Identify, OddSheetsEndDescribed) {
  struct Case {
    const char* name;
    std::vector<std::string> rows;
    std::string idType;
  };
  const Case cases[] = {
      {"empty", {}, "LONG(U,I)"},
      {"headings only", {"No|Fe %"}, "LONG(U,I)"},
      {"one column", {"No", "1"}, "LONG(U,I)"},
      {"number too large for an integer", {"No|Fe %", "2147483648|1"}, "TEXT(20)(U,I)"},
  };
  for (const Case& c : cases) {
    frmDataIN& form = sheetOf(c.rows);
    form.Varjaa(true);  // as the shell leaves a sheet: narrowed to its used size
    form.AjaTunnista({});
    EXPECT_EQ(form.FirstDataRow(), 13) << c.name;
    EXPECT_EQ(columnText(form.F1D, 1, 1), "HEADER") << c.name;
    EXPECT_EQ(cell(form, sysrow::Type, 2), c.idType) << c.name;
    EXPECT_EQ(form.F1D.MaxRow(), form.F1D.LastRow()) << c.name;
  }
}

TEST_F(Identify, RowsAndColumnsFarOutCostNothing) {
  frmDataIN& form = sheetOf({"No|Fe %", "1|5"});
  form.F1D.TextRC(500000, 1, "far");
  form.F1D.TextRC(2, 16000, "out");
  form.AjaTunnista({});
  EXPECT_EQ(form.F1D.TextRC(500011, 2), "far");
}

TEST_F(Identify, EmptyIdsAreLogged) {
  frmDataIN& form = sheetOf({"No|Fe %", "1|5", "|6", "3|7"});
  form.AjaTunnista({});
  EXPECT_TRUE(logHas("ID empty on row 14 (file " + form.caption() + ")"));
  EXPECT_FALSE(logHas("ID empty on row 13"));
}

TEST_F(Identify, NewIdColumnTakesTheMarks) {
  frmDataIN& form = sheetOf({"Sample|Name|Fe %", "1|A-1|5"});
  form.AjaTunnista({});
  form.txtID.setText("3");
  EXPECT_EQ(rowText(form.F1D, 7), "TYPE|LONG|TEXT(10)(U,I)|SINGLE");
  EXPECT_EQ(rowText(form.F1D, 10), "INDEXED||YES|");
  EXPECT_EQ(rowText(form.F1D, 12), "IDENTIFIED||ID|X(Fe)1/1");
}

TEST_F(Identify, HandSetNumbersOutsideOfTheSheetAreHarmless) {
  frmDataIN& form = sheetOf({"No|Fe %", "1|5"});
  for (int i = 0; i < systemRowCount; ++i) form.txtH(i).setText(i % 2 ? "99999999" : "-3");
  form.txtID.setText("40000");
  form.txtMinCol.setText("abc");
  form.AjaTunnista({});
  EXPECT_EQ(form.FirstDataRow(), 13);
  EXPECT_EQ(rowText(form.F1D, 12), "IDENTIFIED|ID|X(Fe)1/1");
}

TEST_F(Identify, ResultTwinWritesNoDefaultTables) {
  frmCResult& result = sheets.result;
  fill(result.F1D, {"No|Mineral|Fe %|MF_NAME", "1|Py|46.6|x"});
  IdentifyRequest request;
  request.unidentifiedToUser = false;
  result.AjaTunnista(request);
  EXPECT_EQ(rowText(result.F1D, 5), "TABLE||||");
  EXPECT_EQ(result.F1D.TextRC(7, 4), "SINGLE");
}

TEST_F(Identify, CommandRunsTheSelectedSheets) {
  dialogs.expectMessage("Select data sources!");
  EXPECT_FALSE(sheets.IDENTIFY(false));
  frmDataIN& one = sheetOf({"No|Fe %", "1|5"});
  frmDataIN& two = sheetOf({"No|Mineral", "1|Py"});
  context.HaeMinTieto = [](const std::string&) -> std::vector<std::pair<std::string, std::string>> {
    throw Error("the mineral database does not answer");
  };
  dialogs.expectMessage(
      "Reading mineral formula information from the system database (minerals.mdb)?", Answer::Yes);
  sheets.chkUnIDToUser.setChecked(true);
  sheets.txtUnID.setText("");
  sheets.lstI.selectAll(true);
  EXPECT_TRUE(sheets.IDENTIFY(true));
  EXPECT_EQ(sheets.txtUnID.text(), "USERX");
  EXPECT_TRUE(one.bIdentified);
  EXPECT_FALSE(two.bIdentified);
  EXPECT_TRUE(logHas("Running identify routine for file " + one.caption()));
  EXPECT_EQ(session.log.txtErr.text(),
            "sheet " + two.caption() +
                ": The sheet was not identified: the mineral database does not answer");
  EXPECT_TRUE(session.log.visible());
  EXPECT_FALSE(session.progress.visible());
}

TEST_F(Identify, SecondHeadingReaderFillsFromThesaurusOrFormula) {
  addRule({"Kupari", "HEADER", "", "Cu", "", "ppm"});
  frmDataIN& form = sheetOf({"No|Kupari|Au_FA ppb|MgO|Rock", "1|5|2|7|x"});
  form.TutkiOtsikot();
  EXPECT_EQ(columnText(form.F1D, 1, 13),
            "No|ELEMENT|METHOD|UNIT|TABLE|FIELD|TYPE|LENGTH|DIGITS|"
            "INDEXED|MULTIPLIER|IDENTIFIED|1");
  EXPECT_EQ(rowText(form.F1D, 2), "ELEMENT|Cu|Au|MgO|");
  EXPECT_EQ(rowText(form.F1D, 4), "UNIT|ppm|ppb||");
}

}  // namespace
}  // namespace lodex
