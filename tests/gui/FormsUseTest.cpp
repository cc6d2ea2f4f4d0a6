#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>

#include "basic/Files.h"
#include "gui/FormsFixture.h"
#include "gui/WindowPlaces.h"
#include "gui/grid/WorksheetView.h"
#include "gui/widgets/Mnemonics.h"
#include "gui/widgets/PeriodicTable.h"

namespace lodex {
namespace {

/// A form and its window on the (absent) screen.
class FormsUse : public FormsTest {
 protected:
  FormWindow& open(Form& form) {
    form.show();
    window = std::make_unique<FormWindow>(form);
    window->show();
    settle();
    return *window;
  }
  template <typename Widget>
  Widget& the(const char* name) {
    auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
    if (!found) throw std::logic_error(std::string("no widget ") + name);
    return *found;
  }
  void press(const char* name) {
    the<QAbstractButton>(name).click();
    settle();
  }
  void pickMenu(const char* name) {
    the<QAction>(name).trigger();
    settle();
  }
  void doubleClick(const char* list, int row) {
    auto& view = the<QListWidget>(list);
    const QPoint place = view.visualItemRect(view.item(row)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
    settle();
  }
  void clickCell(const char* grid, int row, int column) {
    auto& view = the<WorksheetView>(grid);
    auto* table = view.findChild<QTableView*>();
    const QRect cell = table->visualRect(table->model()->index(row - 1, column - 1));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
    settle();
  }

  std::unique_ptr<FormWindow> window;
};

TEST_F(FormsUse, NumbersOfADataSheetArePickedSteppedAndTyped) {
  frmDataIN& sheet = addSheet();
  open(sheet);
  const QWidget& cells = *the<WorksheetView>("F1D").findChild<QTableView*>()->viewport();
  press("cmdPickID");
  EXPECT_TRUE(the<QAbstractButton>("cmdPickID").isChecked());
  EXPECT_EQ(cells.cursor().shape(), Qt::CrossCursor);
  clickCell("F1D", 3, 2);
  EXPECT_EQ(sheet.IDColumn(), 2);
  EXPECT_EQ(the<QLineEdit>("txtID").text(), QStringLiteral("2"));
  EXPECT_FALSE(the<QAbstractButton>("cmdPickID").isChecked());
  EXPECT_NE(cells.cursor().shape(), Qt::CrossCursor);

  clickCell("F1D", 5, 3);
  EXPECT_EQ(sheet.IDColumn(), 2) << "without a pick a click sets nothing";
  EXPECT_EQ(sheet.F1D.Row(), 5);

  EXPECT_TRUE(the<QWidget>("shpRed").isVisible());
  press("cmdUpH1");
  press("cmdUpH1");
  EXPECT_EQ(sheet.SystemRows(sysrow::Element), 2);
  EXPECT_EQ(sheet.F1D.RowText(2), "-Ele-");
  EXPECT_EQ(the<QLabel>("lblStatus").text(), QStringLiteral("Identified"));
  EXPECT_TRUE(the<QWidget>("shpGreen").isVisible());
  EXPECT_FALSE(the<QWidget>("shpRed").isVisible());

  EXPECT_TRUE(the<QAbstractButton>("cmdSplit").isEnabled());
  QTest::keyClick(&the<QLineEdit>("txtH0"), Qt::Key_Backspace);
  settle();
  EXPECT_FALSE(the<QAbstractButton>("cmdSplit").isEnabled());
}

TEST_F(FormsUse, IdColumnCountsOnceItIsTypedWhole) {
  frmDataIN& sheet = addSheet();
  sheet.txtH(sysrow::Type).setText("2");
  sheet.txtID.setText("3");
  open(sheet);
  QApplication::setActiveWindow(window.get());
  auto& id = the<QLineEdit>("txtID");
  id.setFocus();
  id.selectAll();
  QTest::keyClicks(&id, QStringLiteral("12"));
  EXPECT_EQ(sheet.IDColumn(), 3) << "column 1 is not marked on the way";
  pickMenu("mnuFreeze");
  EXPECT_EQ(sheet.IDColumn(), 12) << "a menu takes what is typed";
}

TEST_F(FormsUse, UndoOfADataSheetNeverLeadsIntoAnotherFile) {
  frmDataIN& sheet = addSheet();
  sheet.mnuNew.click();
  open(sheet);
  EditHistory& history = the<WorksheetView>("F1D").history();
  clickCell("F1D", 1, 1);
  sheet.gridF1D.edit("Typing", [&] { sheet.F1D.TextRC(1, 1, "typed"); });
  EXPECT_TRUE(history.canUndo() && sheet.Changed);
  const std::string file = fromQt(folder.filePath(QStringLiteral("other.txt")));
  writeFileWhole(file, "other\tcells\n");
  const std::string question = "The changes in " + sheet.caption() + " are lost. Go on?";
  dialogs.expectOpen({file});
  dialogs.expectMessage(question, Answer::No);
  sheet.mnuOpenData.click();
  EXPECT_EQ(sheet.F1D.TextRC(1, 1), "typed");
  EXPECT_TRUE(history.canUndo());
  dialogs.expectOpen({file});
  dialogs.expectMessage(question, Answer::Yes);
  sheet.mnuOpenData.click();
  EXPECT_EQ(sheet.F1D.TextRC(1, 2), "cells");
  EXPECT_FALSE(history.canUndo() || sheet.Changed);
  EXPECT_EQ(sheet.structure().highestRow(), 0);

  // Commands of the form are steps of it, with the mark for changes and a new recovery copy.
  struct Case {
    const char* name;
    MenuItem& command;
  };
  clipboard.setText("a\tb");
  for (const Case& row : {Case{"insert", sheet.mnuInsertRow}, Case{"delete", sheet.mnuDeleteRow},
                          Case{"paste", sheet.mnuPaste}, Case{"clear", sheet.mnuNew}}) {
    SCOPED_TRACE(row.name);
    sheet.Changed = false;
    const auto revision = sheet.gridF1D.revision();
    row.command.click();
    EXPECT_TRUE(sheet.Changed);
    EXPECT_NE(sheet.gridF1D.revision(), revision);
    ASSERT_TRUE(history.canUndo());
    history.undo();
    EXPECT_EQ(sheet.F1D.TextRC(1, 2), "cells");
    EXPECT_FALSE(history.canUndo());
  }
}

TEST_F(FormsUse, PanelOfADataSheetHidesAndItsThesaurusTabTakesHeadings) {
  frmDataIN& sheet = addSheet();
  open(sheet);
  pickMenu("mnuPanel");
  EXPECT_FALSE(the<QWidget>("picLe").isVisible());
  EXPECT_FALSE(the<QAction>("mnuPanel").isChecked());
  pickMenu("mnuPanel");
  EXPECT_TRUE(the<QWidget>("picLe").isVisible());

  EXPECT_FALSE(the<QAbstractButton>("cmdTranspose").isVisible());
  press("optVertical");
  EXPECT_TRUE(the<QAbstractButton>("cmdTranspose").isVisible());

  the<QTabWidget>("tabLe").setCurrentIndex(1);
  clickCell("F1D", 4, 3);
  EXPECT_EQ(thesaurus.F1Lib.TextRC(1, 1), "iron");
  EXPECT_EQ(thesaurus.lblValue.caption(), "Value: 'iron'");
  EXPECT_TRUE(thesaurus.visible());
  dialogs.expectMessage("Header is empty");
  clickCell("F1D", 4, 4);

  thesaurus.F1Lib.TextRC(2, 1, "copper");
  thesaurus.AddRule("copper");
  open(thesaurus);
  EXPECT_EQ(the<WorksheetView>("F1Lib").findChild<QTableView*>()->currentIndex().row(), 1);
}

TEST_F(FormsUse, ElementsOfASourceMapAreChosenOnThePeriodicTable) {
  const frmDataIN& sheet = addSheet();
  sheets.F1Ref.NumberRC(26, 1, 2);
  const int pairs[] = {1, 3, 1, 2};
  for (int i = 0; i < 4; ++i) sheets.F1Ref.NumberRC(26, i + 2, pairs[i]);
  SourcesCaller caller = sourcesCaller();
  caller.sheets.push_back({1, "New Data 1", &sheet.F1D, sheet.structure(), false, false});
  frmSources form(session, shippedTables(), std::move(caller));
  open(form);
  auto& table = the<PeriodicTable>("TarnPD1");
  auto* iron = dynamic_cast<QAbstractButton*>(table.cell(25));
  EXPECT_TRUE(iron->isChecked());
  EXPECT_EQ(iron->text(), QStringLiteral("Fe"));
  QTest::mouseClick(iron, Qt::LeftButton);
  settle();
  auto& sources = the<QListWidget>("lstEls");
  ASSERT_EQ(sources.count(), 2);
  EXPECT_EQ(sources.item(0)->text(), QStringLiteral("New Data 1 , Column 3 , iron"));

  sources.item(0)->setCheckState(Qt::Unchecked);
  QTest::keyClick(&table, Qt::Key_Right);
  settle();
  EXPECT_EQ(sources.count(), 0) << "cobalt has none";
  QTest::keyClick(&table, Qt::Key_Left);
  settle();
  ASSERT_EQ(sources.count(), 1);
  EXPECT_EQ(sources.item(0)->text(), QStringLiteral("New Data 1 , Column 2 , Sample"));

  sources.setCurrentRow(0);
  press("cmdSDel");
  EXPECT_FALSE(iron->isChecked());
  press("cmdList");
  EXPECT_TRUE(the<QPlainTextEdit>("txtSrcList").isVisible());
  press("cmdOK2");
  EXPECT_FALSE(the<QPlainTextEdit>("txtSrcList").isVisible());
  press("chkAskRefs");
  EXPECT_TRUE(askRefs.checked());
  the<QTabWidget>("TabStrip1").setCurrentIndex(1);
  settle();
  EXPECT_TRUE(the<QListWidget>("lstCalc").isVisible());
  the<QTabWidget>("TabStrip1").setCurrentIndex(0);
  settle();
  EXPECT_TRUE(table.isVisible());
  press("cmdOK");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(sheets.F1Ref.NumberRC(26, 1), 0);
}

TEST_F(FormsUse, DatabasesAreFoundByFolderAndFile) {
  QDir(folder.path()).mkpath(QStringLiteral("data/cores"));
  QDir(folder.path()).mkpath(QStringLiteral("data/.hidden"));
  QDir(folder.path()).mkpath(QStringLiteral("ini"));
  const std::string data = session.record.UserPath + "/data";
  for (const char* name : {"/cores/b.mdb", "/cores/a.MDB", "/cores/c.txt"}) {
    writeFileWhole(data + name, "x");
  }
  frmConnect form(session);
  open(form);
  EXPECT_EQ(the<QComboBox>("ListDBTypes").currentText(), QStringLiteral("Microsoft Access"));
  EXPECT_EQ(the<QLineEdit>("txtPattern").text(), QStringLiteral("*.mdb"));
  ASSERT_EQ(the<QListWidget>("Dir1").count(), 2) << "the folder above and cores";
  doubleClick("Dir1", 1);
  ASSERT_EQ(the<QListWidget>("lstFiles").count(), 2);
  doubleClick("Dir1", 0);
  EXPECT_EQ(the<QListWidget>("lstFiles").count(), 0);

  auto& typed = the<QLineEdit>("txtFolder");
  form.txtFile.setText("gone.mdb");
  typed.setText(toQt(data + "/cores"));
  QTest::keyClick(&typed, Qt::Key_Return);
  settle();
  EXPECT_TRUE(form.visible()) << "the file of the former folder is not opened";
  ASSERT_EQ(the<QListWidget>("lstFiles").count(), 2);
  the<QAbstractButton>("chkMapE").click();
  doubleClick("lstFiles", 1);
  EXPECT_FALSE(form.visible());
  EXPECT_EQ(form.ConnectResult(), data + "/cores\\b.mdb");
  EXPECT_TRUE(form.SaveMapFile() && !form.ReadMapFile());

  frmConnect again(session);
  open(again);
  the<QTabWidget>("tabs").setCurrentIndex(1);
  doubleClick("lstLast", 0);
  EXPECT_EQ(again.ConnectResult(), form.ConnectResult());
  EXPECT_TRUE(again.ReadMapFile());
}

TEST_F(FormsUse, SplittingIsPreviewedWhileTyping) {
  frmSplitDialog line("a;b;;c", TextSplit{",", false, false});
  open(line);
  EXPECT_FALSE(the<QWidget>("fraTitles").isVisible());
  auto& separator = the<QLineEdit>("txtSeparator");
  separator.selectAll();
  QTest::keyClicks(&separator, QStringLiteral(";"));
  settle();
  EXPECT_EQ(the<QPlainTextEdit>("txtPreview").toPlainText(), QStringLiteral("1=a\n2=b\n3=\n4=c"));
  press("chkTab");
  EXPECT_FALSE(separator.isEnabled());
  press("chkTab");
  QTest::keyClick(window.get(), Qt::Key_Return);
  EXPECT_EQ(line.split().separator, ";");

  frmSplitDialog title("Fe_XRF_%", TitleParts{});
  open(title);
  EXPECT_FALSE(the<QWidget>("fraColumns").isVisible());
  EXPECT_EQ(withoutMnemonic(the<QLabel>("txtSampleCaption").text()), QStringLiteral("Original:"));
  QTest::keyClicks(&the<QLineEdit>("txtElSepChar"), QStringLiteral("_"));
  press("chkFact1");
  the<QSpinBox>("txtPart1").setValue(2);
  settle();
  EXPECT_EQ(the<QPlainTextEdit>("txtPreview").toPlainText(), QStringLiteral("Method=XRF"));
  press("cmdCancel");
  EXPECT_EQ(title.parts().strSep2, "");
}

TEST_F(FormsUse, SmallDialoguesAnswer) {
  frmSelectElements order("Source for Fe", {"one", "two", "three"});
  open(order);
  auto& offers = the<QListWidget>("lstSel");
  offers.setCurrentRow(2);
  press("cmdUp");
  press("cmdUp");
  press("cmdUp");
  EXPECT_EQ(offers.currentRow(), 0);
  EXPECT_EQ(offers.item(0)->text(), QStringLiteral("three"));
  offers.item(1)->setCheckState(Qt::Unchecked);
  press("Command1");
  EXPECT_EQ(order.answer(), "3,2");

  const frmDataIN& sheet = addSheet();
  const SourceSheets offered{{1, "Cores", &sheet.F1D, sheet.structure(), false, false}};
  frmDefineItem item("-ALL- Fe", offered);
  open(item);
  EXPECT_EQ(the<QComboBox>("cmbSheet").currentText(), QStringLiteral("Cores"));
  auto& column = the<QComboBox>("cmbColumn");
  ASSERT_EQ(column.count(), 3);
  EXPECT_FALSE(the<QAbstractButton>("cmdOK").isEnabled());
  QTest::keyClick(&column, Qt::Key_End);
  settle();
  press("cmdOK");
  ASSERT_TRUE(item.answer());
  EXPECT_EQ(item.answer()->column, 3);

  frmSelectFromList several(dialogs, "Columns", {"a", "b", "c"}, true);
  open(several);
  the<QListWidget>("lstItems").selectAll();
  press("cmdOK");
  EXPECT_EQ(several.answer(), "a;;b;;c");

  frmAddField field(session, connection, "ANALYSES");
  open(field);
  EXPECT_TRUE(the<QLineEdit>("txtLen").isEnabled());
  press("optLong");
  EXPECT_FALSE(the<QLineEdit>("txtLen").isEnabled());
  EXPECT_EQ(field.optType.captions()[static_cast<size_t>(field.optType.selected())], "LONG");
}

TEST_F(FormsUse, LogShowsBothPanesAndObeysItsCommands) {
  session.log.LisaaLog("a line");
  open(session.log);
  EXPECT_EQ(the<QPlainTextEdit>("txtLog").toPlainText(), QStringLiteral("a line"));
  session.log.activate();
  the<QTabWidget>("TabStrip1").setCurrentIndex(1);
  settle();
  EXPECT_EQ(the<QPlainTextEdit>("txtErr").toPlainText(), QStringLiteral("No Errors"));
  pickMenu("mnuCopy");
  EXPECT_EQ(clipboard.text(), "No Errors");
  press("cmdClear");
  EXPECT_EQ(session.log.txtErr.text(), "");
  EXPECT_EQ(session.log.txtLog.text(), "a line");
  pickMenu("mnuHide");
  EXPECT_FALSE(window->isVisible());
}

TEST_F(FormsUse, LogOpensAsAPartOfTheMainWindow) {
  remember(QStringLiteral("places/frmLog"), {});
  QWidget main;
  main.resize(1200, 900);
  FormWindow log(session.log, &main);
  log.show();
  EXPECT_EQ(log.size(), QSize(600, 300));
}

TEST_F(FormsUse, ThesaurusIsSortedAndRulesAreDeleted) {
  for (int row = 1; row <= 3; ++row) {
    thesaurus.F1Lib.TextRC(row, 1, std::string(1, static_cast<char>('d' - row)));
  }
  open(thesaurus);
  pickMenu("mnuSort1");
  EXPECT_EQ(thesaurus.F1Lib.TextRC(1, 1), "a");
  clickCell("F1Lib", 2, 1);
  EXPECT_EQ(the<QLabel>("lblValue").text(), QStringLiteral("Value: 'b'"));
  pickMenu("mnuDeleteRow");
  EXPECT_EQ(the<QLabel>("lblValue").text(), QStringLiteral("Value: 'c'"));
  clickCell("F1Lib", 8, 1);
  dialogs.expectMessage("Select row");
  pickMenu("mnuDeleteRow");
}

}  // namespace
}  // namespace lodex
