// Splitting of titles and the dialog that asks how.
#include <gtest/gtest.h>

#include "import/HeadingSplit.h"
#include "import/ImportFixture.h"
#include "import/frmSplitDialog.h"

namespace lodex {
namespace {

class SplitTitles : public ImportFixture {
 protected:
  SplitTitles() {
    fill(form.F1D, {"HEADER|Fe_XRF_%|Au_ppb|Cu_AAS_ppm_x", "TABLE|T1|T2|T3", "data|1|2|3"});
    SheetStructure structure;
    structure.row(sysrow::Header) = 1;
    structure.row(sysrow::Table) = 2;
    structure.firstDataRow = 3;
    form.setStructure(structure);
    form.F1D.SetActiveCell(1, 2);
  }
  void split(const TitleParts& parts) {
    dialogs.expectForm("frmSplitDialog", [&](Form& shown) {
      auto& dialog = dynamic_cast<frmSplitDialog&>(shown);
      dialog.txtElSepChar.setText(parts.strSep2);
      const auto numbers = lodex::split(parts.strSepNo, ",");
      for (int fact = 0; fact < static_cast<int>(numbers.size()); ++fact) {
        dialog.chkFact(fact).setChecked(true);
        dialog.txtPart(fact).setText(numbers[static_cast<size_t>(fact)]);
      }
      preview = dialog.txtPreview.text();
      (parts.strSep2.empty() ? dialog.cmdCancel : dialog.cmdOK).click();
    });
    form.cmdSplit.click();
  }
  frmDataIN& form = sheets.newSheet("titles");
  std::string preview;
};

TEST_F(SplitTitles, FillsRowsThatAreMadeWhereMissing) {
  split({"_", "1,2,3", ""});
  EXPECT_EQ(preview, "Chemical element=Fe\r\nMethod=XRF\r\nUnit=%");
  Worksheet& F1D = form.F1D;
  EXPECT_EQ(rowText(F1D, form.SystemRows(sysrow::Element)), "ELEMENT|Fe||Cu");
  EXPECT_EQ(rowText(F1D, form.SystemRows(sysrow::Method)), "METHOD|XRF||AAS");
  EXPECT_EQ(rowText(F1D, form.SystemRows(sysrow::Unit)), "UNIT|%||ppm");
  EXPECT_EQ(rowText(F1D, form.SystemRows(sysrow::Table)), "TABLE|T1|T2|T3");
  EXPECT_EQ(form.FirstDataRow(), 6);
  const int rows = F1D.LastRow();
  form.SplittaaOtsikko(false);
  EXPECT_EQ(F1D.LastRow(), rows);
  EXPECT_EQ(rowText(F1D, form.SystemRows(sysrow::Unit)), "UNIT|%||ppm");
}

TEST_F(SplitTitles, PartZeroMakesTheRowOnly) {
  split({"_", "1,0", ""});
  EXPECT_EQ(preview, "Chemical element=Fe");
  EXPECT_EQ(rowText(form.F1D, form.SystemRows(sysrow::Method)), "METHOD|||");
  EXPECT_EQ(rowText(form.F1D, form.SystemRows(sysrow::Element)), "ELEMENT|Fe|Au|Cu");
}

TEST_F(SplitTitles, WithoutCaptionsTheFirstColumnIsATitle) {
  form.F1D.TextRC(1, 1, "SiO2_XRF_%");
  split({"_", "1,2,3", ""});
  // Rows that were made have their caption there and lose it to the piece.
  EXPECT_EQ(rowText(form.F1D, form.SystemRows(sysrow::Element)), "SiO2|Fe||Cu");
  EXPECT_EQ(rowText(form.F1D, form.SystemRows(sysrow::Unit)), "%|%||ppm");
}

TEST_F(SplitTitles, CancelChangesNothing) {
  split({"", "1,2", ""});
  EXPECT_EQ(form.F1D.LastRow(), 3);
  EXPECT_EQ(form.SystemRows(sysrow::Element), 0);
}

TEST(SplitDialog, AnswersForColumns) {
  const TextSplit aligned{" ", true, false};
  frmSplitDialog dialog("a  b", aligned);
  EXPECT_EQ(dialog.txtPreview.text(), "1=a\r\n2=b");
  EXPECT_EQ(dialog.split(), aligned);
  dialog.txtSeparator.setText("  b");
  EXPECT_EQ(dialog.txtPreview.text(), "1=a\r\n2=");
  dialog.chkTab.setChecked(true);
  EXPECT_FALSE(dialog.txtSeparator.enabled());
  dialog.cmdOK.click();
  EXPECT_EQ(dialog.split(), (TextSplit{"\t", false, false}));

  frmSplitDialog tabbed("a\tb", TextSplit{"\t", false, false});
  EXPECT_TRUE(tabbed.chkTab.checked());
  tabbed.cmdCancel.click();
  EXPECT_EQ(tabbed.split().separator, "");
}

}  // namespace
}  // namespace lodex
