// Editing a described sheet: numbers, references, marks, paint.
#include <gtest/gtest.h>

#include "import/ImportFixture.h"
#include "import/StructureEdit.h"

namespace lodex {
namespace {

class Edit : public ImportFixture {
 protected:
  Edit() {
    fill(form.F1D, {"No|Fe %|S %|Fe ppm|Fe_ICP ppb", "1|5|1|7|8", "2|6|2|8|9"});
    form.AjaTunnista({});
  }
  void select(int row1, int column1, int row2, int column2) {
    form.F1D.SetSelection(row1, column1, row2, column2);
  }
  std::string marks() { return rowText(form.F1D, form.SystemRows(sysrow::Identified)); }
  std::vector<int> ironColumns() {
    std::vector<int> columns;
    for (const ItemReference& r : referencesOf(form.F1Ref, 26)) columns.push_back(r.column);
    return columns;
  }
  frmDataIN& form = sheets.newSheet("edit");
};

TEST_F(Edit, RowsMoveTheNumbers) {
  select(3, 1, 4, 1);
  form.mnuInsertRow.click();
  EXPECT_EQ(form.SystemRows(sysrow::Element), 2);
  EXPECT_EQ(form.SystemRows(sysrow::Method), 5);
  EXPECT_EQ(form.FirstDataRow(), 15);
  EXPECT_EQ(form.F1D.TextRC(5, 1), "METHOD");
  select(2, 1, 4, 1);
  form.mnuDeleteRow.click();
  EXPECT_EQ(form.SystemRows(sysrow::Element), 2);  // stood in the block: its user corrects it
  EXPECT_EQ(form.SystemRows(sysrow::Method), 2);
  EXPECT_EQ(form.FirstDataRow(), 12);
}

TEST_F(Edit, ColumnsMoveReferencesAndMarks) {
  EXPECT_EQ(marks(), "IDENTIFIED|ID|X(Fe)1/3|X(S)1/1|X(Fe)2/3|X(Fe)3/3");
  select(1, 1, 1, 2);
  form.mnuInsertCol.click();
  EXPECT_EQ(form.IDColumn(), 4);
  EXPECT_EQ(ironColumns(), (std::vector<int>{5, 7, 8}));
  EXPECT_EQ(marks(), "||IDENTIFIED|ID|X(Fe)1/3|X(S)1/1|X(Fe)2/3|X(Fe)3/3");
  select(1, 1, 1, 2);
  form.mnuDeleteCol.click();
  EXPECT_EQ(form.IDColumn(), 2);
  select(1, 3, 1, 3);
  form.mnuDeleteCol.click();
  EXPECT_EQ(ironColumns(), (std::vector<int>{4, 5}));
  EXPECT_EQ(form.F1Ref.NumberRC(26, 1), 2);
  EXPECT_EQ(marks(), "IDENTIFIED|ID|X(S)1/1|X(Fe)1/2|X(Fe)2/2");
}

TEST_F(Edit, PaintShowsTheStructure) {
  Worksheet& F1D = form.F1D;
  EXPECT_EQ(F1D.RowText(1), "-Hdr-");
  EXPECT_EQ(F1D.RowText(12), "-Idf-");
  EXPECT_EQ(F1D.RowText(13), "-1-");
  EXPECT_EQ(F1D.ColText(2), "-ID-");
  EXPECT_EQ(F1D.FixedRows(), 12);
  EXPECT_EQ(F1D.formatOf(1, 3, 4).patternColor, paletteColor(7));
  EXPECT_EQ(F1D.formatOf(1, 14, 2).fontColor, paletteColor(12));
  EXPECT_FALSE(F1D.formatOf(1, 14, 3).bold);
  form.chkSysRows.setChecked(true);
  EXPECT_FALSE(F1D.rowHidden(1, 1));
  EXPECT_TRUE(F1D.rowHidden(1, 2));
  EXPECT_FALSE(F1D.rowHidden(1, 13));
  form.chkSysRows.setChecked(false);
  EXPECT_FALSE(F1D.rowHidden(1, 2));

  form.txtFDR.setText("4");
  form.txtID.setText("3");
  form.Varjaa(true);
  EXPECT_EQ(form.FirstDataRow(), 13);
  EXPECT_EQ(F1D.ColText(2), "");
  EXPECT_EQ(F1D.RowText(4), "-1-");
  EXPECT_FALSE(F1D.formatOf(1, 14, 2).bold);
  EXPECT_EQ(F1D.MaxCol(), F1D.LastCol());
}

TEST_F(Edit, ClicksAndStepsSetTheNumbers) {
  form.setPickMode(2);
  form.clickGrid(5, 3);
  EXPECT_EQ(form.SystemRows(sysrow::Element), 5);
  EXPECT_EQ(form.PickMode(), 0);
  form.setPickMode(22);
  form.clickGrid(0, 4);
  EXPECT_EQ(form.MineralColumn(), 4);
  EXPECT_EQ(form.F1D.Row(), 1);
  form.clickGrid(2, 3);
  EXPECT_EQ(form.F1D.Row(), 1) << "a plain click is the grid's own business";

  auto& unit = form.numberButtons(4);
  auto& id = form.numberButtons(21);
  unit.cmdPick.click();
  id.cmdPick.click();
  EXPECT_TRUE(id.cmdPick.checked() && !unit.cmdPick.checked() && form.gridF1D.picking());
  id.cmdPick.click();
  EXPECT_FALSE(id.cmdPick.checked() || form.gridF1D.picking());
  EXPECT_EQ(id.cmdPick.caption(), "-ID-");
  id.cmdUp.click();
  EXPECT_EQ(form.F1D.ColText(form.IDColumn()), "-ID-");
  form.stepNumber(1, -5);
  EXPECT_EQ(form.SystemRows(sysrow::Header), 0);
  EXPECT_FALSE(form.cmdSplit.enabled());
  form.txtH(sysrow::Element).setText("0");
  EXPECT_EQ(form.lblStatus.caption(), "Not Identied");
  EXPECT_TRUE(form.shpRed.visible() && !form.shpGreen.visible());
  form.setPickMode(1);
  form.clickGrid(1, 1);
  form.tabLe.select(1);
  form.clickGrid(3, 3);
  EXPECT_EQ(thesaurus.F1Lib.TextRC(1, 1), "Fe %");
  EXPECT_TRUE(thesaurus.visible());
}

TEST_F(Edit, TransposeNewCopyAllAndCopyRow) {
  form.F1D.SetActiveCell(3, 1);
  form.mnuCopyRow(sysrow::Unit).click();
  EXPECT_EQ(rowText(form.F1D, 3), "METHOD||%|%|ppm|ppb");
  form.F1D.ColText(3, "iron");
  form.mnuCopyAll.click();
  EXPECT_EQ(clipboard.text().substr(0, 14), "A\t-ID-\tiron\tD\t");
  EXPECT_EQ(form.F1D.TextRC(1, 1), "HEADER");

  form.optOrientation.select(1);
  EXPECT_TRUE(form.cmdTranspose.visible());
  form.cmdTranspose.click();
  EXPECT_EQ(form.F1D.TextRC(3, 1), "Fe %");
  EXPECT_EQ(form.F1D.TextRC(4, 14), "2");
  EXPECT_EQ(form.SystemRows(sysrow::Header), 1);
  EXPECT_EQ(form.SystemRows(sysrow::Element), 0);
  EXPECT_EQ(form.IDColumn(), 0);
  form.mnuNew.click();
  EXPECT_EQ(form.F1D.LastRow(), 0);
  EXPECT_EQ(form.structure(), SheetStructure());
}

}  // namespace
}  // namespace lodex
