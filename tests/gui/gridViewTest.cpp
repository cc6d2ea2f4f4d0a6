#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QPrinter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "gui/QtText.h"
#include "gui/grid/GridCursor.h"
#include "gui/grid/GridPaint.h"
#include "gui/grid/GridPrint.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/SortDialog.h"
#include "gui/grid/WorksheetView.h"

namespace lodex {
namespace {

// A view of 5 rows and 4 columns of numbers: row 2, column 3 holds 23.
class GridView : public testing::Test {
 protected:
  void SetUp() override {
    for (int row = 1; row <= 5; ++row) {
      for (int column = 1; column <= 4; ++column) sheet.NumberRC(row, column, row * 10 + column);
    }
    view.resize(900, 500);
    view.setSheet(sheet);
    view.show();
    table().setFocus();
    QApplication::processEvents();
  }

  GridTable& table() { return view.table(); }
  GridCursor& cursor() { return table().cursor(); }
  // The open editor; closed ones wait for the next turn of the event loop to be gone.
  QLineEdit* cellEditor() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return table().findChild<QLineEdit*>(QStringLiteral("cellEditor"));
  }
  QPoint middleOf(int row, int column) {
    return table().visualRect(table().model()->index(row - 1, column - 1)).center();
  }
  void click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(table().viewport(), Qt::LeftButton, modifiers, middleOf(row, column));
  }
  void drag(const QPoint& from, const QPoint& to,
            Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mousePress(table().viewport(), Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(table().viewport(), to);
    QMouseEvent move(QEvent::MouseMove, to, table().viewport()->mapToGlobal(to), Qt::NoButton,
                     Qt::LeftButton, modifiers);
    QApplication::sendEvent(table().viewport(), &move);
    QTest::mouseRelease(table().viewport(), Qt::LeftButton, modifiers, to);
  }
  QPoint handleOf(int row, int column) {
    return table().visualRect(table().model()->index(row - 1, column - 1)).bottomRight();
  }
  void type(const char* text, Qt::Key end = Qt::Key_Return) {
    QTest::keyClicks(&table(), QString::fromLatin1(text).left(1));
    ASSERT_NE(cellEditor(), nullptr);
    QTest::keyClicks(cellEditor(), QString::fromLatin1(text).mid(1));
    QTest::keyClick(cellEditor(), end);
    QApplication::processEvents();
  }
  std::string cell(int row, int column) { return sheet.TextRC(row, column); }
  std::string selection() {
    const CellBlock block = view.editor().selection();
    return std::to_string(block.row1) + "," + std::to_string(block.column1) + ":" +
           std::to_string(block.row2) + "," + std::to_string(block.column2) + " at " +
           std::to_string(sheet.Row()) + "," + std::to_string(sheet.Col());
  }
  void trigger(const char* action) { view.gridAction(QLatin1String(action))->trigger(); }

  Worksheet sheet;
  WorksheetView view;
};

TEST_F(GridView, TypingEntersTextsNumbersAndFormulas) {
  QSignalSpy edited(&view, &WorksheetView::edited);
  click(2, 2);
  type("7.5");
  EXPECT_EQ(cell(2, 2), "7.5");
  EXPECT_EQ(selection(), "3,2:3,2 at 3,2") << "Enter goes down";
  type("=B2*2", Qt::Key_Tab);
  EXPECT_EQ(cell(3, 2), "15");
  EXPECT_EQ(selection(), "3,3:3,3 at 3,3") << "Tab goes right";
  type("x", Qt::Key_Up);
  EXPECT_EQ(cell(3, 3), "x");
  EXPECT_EQ(selection(), "2,3:2,3 at 2,3") << "arrow keys end what was begun by typing";
  QTest::keyClicks(&table(), "gone");
  QTest::keyClick(cellEditor(), Qt::Key_Escape);
  EXPECT_EQ(cell(2, 3), "23");
  EXPECT_EQ(cellEditor(), nullptr);
  EXPECT_EQ(edited.count(), 3);
  QTest::keyClick(&table(), Qt::Key_F2);
  ASSERT_NE(cellEditor(), nullptr);
  EXPECT_EQ(cellEditor()->text(), "23");
  QTest::keyClick(cellEditor(), Qt::Key_Left);
  QTest::keyClicks(cellEditor(), ".");
  QTest::keyClick(cellEditor(), Qt::Key_Return);
  EXPECT_EQ(cell(2, 3), "2.3") << "after F2 arrow keys move within the text";
  for (int i = 0; i < 4; ++i) trigger("actUndo");
  EXPECT_EQ(cell(2, 2), "22");
  EXPECT_EQ(cell(3, 2), "32");
  trigger("actRedo");
  EXPECT_EQ(cell(2, 2), "7.5");
}

TEST_F(GridView, ControlEnterFillsTheSelection) {
  click(1, 1);
  click(2, 2, Qt::ShiftModifier);
  QTest::keyClicks(&table(), "9");
  QTest::keyClick(cellEditor(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(cell(1, 1) + cell(1, 2) + cell(2, 1) + cell(2, 2), "9999");
  trigger("actUndo");
  EXPECT_EQ(cell(2, 2), "22");
}

TEST_F(GridView, ComposedCharactersStartEditing) {
  click(1, 1);
  QInputMethodEvent event;
  event.setCommitString(QStringLiteral("\u00e4"));
  QApplication::sendEvent(&table(), &event);
  ASSERT_NE(cellEditor(), nullptr);
  QTest::keyClick(cellEditor(), Qt::Key_Return);
  EXPECT_EQ(cell(1, 1), "\u00e4");
}

TEST_F(GridView, TheNumberPadTypesAPoint) {
  click(1, 1);
  QTest::keyClicks(&table(), "1");
  QKeyEvent comma(QEvent::KeyPress, Qt::Key_Comma, Qt::KeypadModifier, ",");
  QApplication::sendEvent(cellEditor(), &comma);
  QTest::keyClicks(cellEditor(), "5");
  QTest::keyClick(cellEditor(), Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_EQ(cell(1, 1), "1.5");
}

TEST_F(GridView, KeysMoveAndSelect) {
  struct Step {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* selection;
  };
  sheet.TextRC(9, 1, "far");
  const Qt::KeyboardModifiers none = Qt::NoModifier;
  const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
  const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
  click(2, 2);
  for (const Step& step :
       std::initializer_list<Step>{{Qt::Key_Down, none, "3,2:3,2 at 3,2"},
                                   {Qt::Key_Right, shift, "3,2:3,3 at 3,2"},
                                   {Qt::Key_Down, shift, "3,2:4,3 at 3,2"},
                                   {Qt::Key_Return, none, "3,2:4,3 at 4,2"},
                                   {Qt::Key_Return, none, "3,2:4,3 at 3,3"},
                                   {Qt::Key_Tab, none, "3,2:4,3 at 4,2"},
                                   {Qt::Key_Up, ctrl, "1,2:1,2 at 1,2"},
                                   {Qt::Key_Down, ctrl | shift, "1,2:5,2 at 1,2"},
                                   {Qt::Key_Left, none, "1,1:1,1 at 1,1"},
                                   {Qt::Key_End, ctrl, "9,4:9,4 at 9,4"},
                                   {Qt::Key_Home, none, "9,1:9,1 at 9,1"},
                                   {Qt::Key_Up, ctrl, "5,1:5,1 at 5,1"},
                                   {Qt::Key_Home, ctrl | shift, "1,1:5,1 at 5,1"},
                                   {Qt::Key_Home, ctrl, "1,1:1,1 at 1,1"},
                                   {Qt::Key_Space, shift, "1,1:1,16384 at 1,1"},
                                   {Qt::Key_Space, ctrl | shift, "1,1:1048576,16384 at 1,1"}}) {
    QTest::keyClick(&table(), step.key, step.modifiers);
    EXPECT_EQ(selection(), step.selection);
  }
  EXPECT_TRUE(table().selectionModel()->isSelected(table().model()->index(500000, 9000)));
}

TEST_F(GridView, ItsShortCutsWinOverThoseOfTheWindow) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  layout->addWidget(&view);
  QAction other;
  other.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
  window.addAction(&other);
  QSignalSpy triggered(&other, &QAction::triggered);
  window.show();
  QApplication::setActiveWindow(&window);
  table().setFocus();
  view.select({1, 1, 1, 2});
  QTest::keyClick(&table(), Qt::Key_R, Qt::ControlModifier);
  EXPECT_EQ(cell(1, 2), "11");
  EXPECT_EQ(triggered.count(), 0);
  view.setParent(nullptr);
}

TEST_F(GridView, MouseSelectsCellsRowsAndColumns) {
  QSignalSpy clicked(&view, &WorksheetView::cellClicked);
  drag(middleOf(2, 2), middleOf(4, 3));
  EXPECT_EQ(selection(), "2,2:4,3 at 2,2");
  const int x = table().columnViewportPosition(2) + 10;
  QTest::mouseClick(table().horizontalHeader()->viewport(), Qt::LeftButton, {}, {x + 20, 5});
  EXPECT_EQ(selection(), "1,3:1048576,3 at 1,3");
  const int y = table().rowViewportPosition(3) + 8;
  QTest::mouseClick(table().verticalHeader()->viewport(), Qt::LeftButton, {}, {5, y});
  EXPECT_EQ(selection(), "4,1:4,16384 at 4,1");
  ASSERT_EQ(clicked.count(), 3);
  EXPECT_EQ(clicked.at(0), (QVariantList{2, 2}));
  EXPECT_EQ(clicked.at(1), (QVariantList{0, 3}));
  EXPECT_EQ(clicked.at(2), (QVariantList{4, 0}));
}

TEST_F(GridView, DraggingFillsMovesAndSetsWidths) {
  click(1, 1);
  click(2, 1, Qt::ShiftModifier);
  drag(handleOf(2, 1), middleOf(4, 1));
  EXPECT_EQ(cell(3, 1) + " " + cell(4, 1), "31 41");
  trigger("actUndo");
  click(1, 2);
  drag(handleOf(1, 2), middleOf(3, 2));
  EXPECT_EQ(cell(3, 2), "12") << "one number repeats";
  trigger("actUndo");
  click(1, 1);
  const QRect first = table().visualRect(table().model()->index(0, 0));
  drag(first.topLeft() + QPoint(20, 0), middleOf(7, 2));
  EXPECT_EQ(cell(7, 2), "11");
  EXPECT_EQ(cell(1, 1), "");
  EXPECT_EQ(selection(), "7,2:7,2 at 7,2");
  QWidget* heading = table().horizontalHeader()->viewport();
  const int edge = table().columnViewportPosition(2) - 1;
  QTest::mousePress(heading, Qt::LeftButton, {}, {edge, 5});
  QMouseEvent move(QEvent::MouseMove, QPoint(edge + 60, 5), heading->mapToGlobal(QPoint()),
                   Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(heading, &move);
  QTest::mouseRelease(heading, Qt::LeftButton, {}, {edge + 60, 5});
  const double width = sheet.columnWidth(1, 2);
  EXPECT_GT(width, 12);
  sheet.TextRC(1, 2, "A text that is much wider than its column was before");
  const int now = table().columnViewportPosition(2) - 1;
  QTest::mouseDClick(heading, Qt::LeftButton, {}, {now, 5});
  EXPECT_GT(sheet.columnWidth(1, 2), width) << "a double click fits the column";
}

TEST_F(GridView, TheClipboardHoldsTabTextAndHtml) {
  view.editor().setBold({1, 1, 1, 1}, true);
  view.select({1, 1, 2, 2});
  trigger("actCopy");
  const QMimeData* data = QApplication::clipboard()->mimeData();
  EXPECT_EQ(QApplication::clipboard()->text().remove('\r'), "11\t12\n21\t22\n");
  EXPECT_THAT(fromQt(data->html()), testing::HasSubstr("font-weight:bold;text-align:right;\">11<"));
  view.select({7, 1, 7, 1});
  trigger("actPaste");
  EXPECT_EQ(cell(8, 2), "22");
  EXPECT_TRUE(view.editor().formatAt(7, 1).bold);
  EXPECT_EQ(selection(), "7,1:8,2 at 7,1");
  QApplication::clipboard()->setText("a\tb\r\n=1+1\t007");
  view.select({1, 3, 1, 3});
  trigger("actPaste");
  EXPECT_EQ(cell(1, 3) + cell(1, 4) + cell(2, 3) + cell(2, 4), "ab2007");
  view.select({1, 1, 1, 1});
  trigger("actCut");
  EXPECT_EQ(cell(1, 1), "");
  trigger("actUndo");
  EXPECT_EQ(cell(1, 1), "11");
}

TEST_F(GridView, FrozenRowsStayAtTheTop) {
  for (int row = 6; row <= 300; ++row) sheet.NumberRC(row, 1, row);
  sheet.FixedRows(2);
  view.refresh();
  const int frozen = table().frozenHeight();
  EXPECT_EQ(frozen, 2 * table().rowHeight(0));
  click(2, 1);
  QTest::keyClick(&table(), Qt::Key_End, Qt::ControlModifier);
  EXPECT_GT(table().verticalScrollBar()->value(), 1000);
  EXPECT_EQ(table().rowAtY(frozen - 3), 2) << "the frozen rows are still there";
  EXPECT_GT(table().rowAtY(frozen + 3), 250);
  click(1, 2);
  EXPECT_EQ(selection(), "1,2:1,2 at 1,2");
  type("top");
  EXPECT_EQ(cell(1, 2), "top");
  EXPECT_GT(table().verticalScrollBar()->value(), 1000) << "nothing scrolls for a frozen cell";
  view.select({100, 1, 100, 1});
  QTest::keyClick(&table(), Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(sheet.Row(), 3) << "the first row that scrolls";
  EXPECT_GE(middleOf(3, 1).y(), frozen);
  sheet.FixedRows(200);
  view.refresh();
  const int room = table().viewport()->height() - table().frozenHeight();
  EXPECT_GE(room, 3 * table().rowHeight(0)) << "something must be left to scroll";
  EXPECT_EQ(table().frozenHeight() % table().rowHeight(0), 0) << "no row is cut";
  trigger("actUnfreeze");
  EXPECT_EQ(table().frozenHeight(), 0);
}

TEST_F(GridView, ColumnsWithoutAWidthShowTheirShortTexts) {
  const int usual = table().columnWidth(0);
  sheet.TextRC(1, 1, "SiO2_XRF_%_total");
  sheet.TextRC(1, 2, "A remark that is much too long to make its column wide");
  sheet.TextRC(1, 3, "SiO2_XRF_%_total");
  sheet.columnWidth(1, 3, 5);
  view.refresh();
  EXPECT_GT(table().columnWidth(0), usual);
  EXPECT_EQ(table().columnWidth(1), usual);
  EXPECT_EQ(table().columnWidth(2), table().widthInPixels(5));
  EXPECT_EQ(sheet.columnWidth(1, 1), 0) << "the sheet itself is left alone";
}

TEST_F(GridView, AMillionRowsCanBeReached) {
  EXPECT_EQ(table().model()->rowCount(), maxRows);
  EXPECT_LT(table().verticalScrollBar()->maximum(), 5000)
      << "the slider moves within what is used, not over a million empty rows";
  view.select({maxRows, 1, maxRows, 1});
  EXPECT_TRUE(table().viewport()->rect().contains(middleOf(maxRows, 1)));
  type("last");
  EXPECT_EQ(sheet.LastRow(), maxRows);
  table().selectAll();
  EXPECT_EQ(view.editor().summary(cursor().block()).count, 21);
  trigger("actBold");
  trigger("actClear");
  EXPECT_EQ(sheet.LastRow(), 0);
}

TEST_F(GridView, FollowsLimitsHeadingsAndHiddenLines) {
  sheet.ColText(2, "-ID-");
  sheet.MaxRow(5);
  sheet.MaxCol(4);
  sheet.rowHidden(1, 3, true);
  sheet.columnHidden(1, 1, true);
  sheet.columnWidth(1, 2, 30);
  sheet.SetSelection(4, 2, 5, 3);
  view.refresh();
  const WorksheetModel& model = *table().model();
  EXPECT_EQ(model.rowCount(), 5);
  EXPECT_EQ(model.columnCount(), 4);
  EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), "-ID-");
  EXPECT_EQ(model.headerData(2, Qt::Horizontal).toString(), "C");
  EXPECT_EQ(model.headerData(2, Qt::Vertical).toString(), "3");
  EXPECT_EQ(model.data(model.index(1, 2)).toString(), "23");
  EXPECT_TRUE(table().isRowHidden(2));
  EXPECT_EQ(table().rowViewportPosition(3), 2 * table().rowHeight(0)) << "the rest moves up";
  EXPECT_TRUE(table().isColumnHidden(0));
  EXPECT_EQ(table().columnWidth(1), table().widthInPixels(30));
  EXPECT_EQ(cursor().block(), (CellBlock{4, 2, 5, 3}));
  sheet.rowHidden(1, 3, false);
  sheet.columnWidth(1, 2, 0);
  sheet.MaxRow(maxRows);
  view.refresh();
  EXPECT_FALSE(table().isRowHidden(2));
  EXPECT_EQ(table().columnWidth(1), table().columnWidth(2));
  EXPECT_EQ(model.rowCount(), maxRows);
}

TEST_F(GridView, ObeysPermissionsAsTheyAre) {
  sheet.permissions().AllowInCellEditing = false;
  sheet.permissions().AllowDelete = false;
  click(1, 1);
  QTest::keyClicks(&table(), "x");
  EXPECT_EQ(cellEditor(), nullptr);
  QTest::keyClick(&table(), Qt::Key_Delete);
  EXPECT_EQ(cell(1, 1), "11");
  EXPECT_FALSE(view.gridAction("actPaste")->isEnabled());
  EXPECT_FALSE(view.gridAction("actCut")->isEnabled());
  EXPECT_TRUE(view.gridAction("actCopy")->isEnabled());
  sheet.permissions() = {};
  QTest::keyClick(&table(), Qt::Key_Delete);
  EXPECT_EQ(cell(1, 1), "");
  view.setReadOnly(true);
  QTest::keyClicks(&table(), "x");
  EXPECT_EQ(cellEditor(), nullptr);
  view.setReadOnly(false);
  sheet.permissions().AllowFormulas = false;
  QSignalSpy refused(&view, &WorksheetView::refused);
  type("=1");
  EXPECT_EQ(refused.count(), 1);
  EXPECT_EQ(cell(1, 1), "");
}

TEST_F(GridView, FormulaBarShowsAndEdits) {
  auto* entry = view.findChild<QLineEdit*>("formulaEdit");
  auto* address = view.findChild<QLineEdit*>("cellAddress");
  click(2, 3);
  EXPECT_EQ(address->text(), "C2");
  EXPECT_EQ(entry->text(), "23");
  entry->setFocus();
  entry->selectAll();
  QTest::keyClicks(entry, "=A1*2");
  QTest::keyClick(entry, Qt::Key_Return);
  EXPECT_EQ(cell(2, 3), "22");
  EXPECT_EQ(address->text(), "C3");
  click(2, 3);
  EXPECT_EQ(entry->text(), "=A1*2");
  entry->setFocus();
  QTest::keyClicks(entry, "rubbish");
  QTest::keyClick(entry, Qt::Key_Escape);
  EXPECT_EQ(entry->text(), "=A1*2");
  address->setFocus();
  address->selectAll();
  QTest::keyClicks(address, "b4:a2");
  QTest::keyClick(address, Qt::Key_Return);
  EXPECT_EQ(selection(), "2,1:4,2 at 2,1");
}

TEST_F(GridView, PointingWritesReferences) {
  click(7, 1);
  QTest::keyClicks(&table(), "=");
  QTest::keyClicks(cellEditor(), "sum(");
  click(1, 1);
  ASSERT_NE(cellEditor(), nullptr) << "the formula is still being typed";
  EXPECT_EQ(cellEditor()->text(), "=sum(A1");
  drag(middleOf(1, 2), middleOf(3, 2));
  EXPECT_EQ(cellEditor()->text(), "=sum(B1:B3") << "pointing again replaces the reference";
  QTest::keyClicks(cellEditor(), ")");
  QTest::keyClick(cellEditor(), Qt::Key_Return);
  EXPECT_EQ(cell(7, 1), "66");
  QTest::keyClicks(&table(), "x");
  click(1, 1);
  EXPECT_EQ(cellEditor(), nullptr) << "a click ends what is no formula";
  EXPECT_EQ(cell(8, 1), "x");
}

TEST_F(GridView, FindsAndReplaces) {
  QTest::keyClick(&table(), Qt::Key_H, Qt::ControlModifier);
  auto* text = view.findChild<QLineEdit*>("findText");
  auto* with = view.findChild<QLineEdit*>("replaceText");
  ASSERT_TRUE(text->isVisible() && with->isVisible());
  text->setText("2");
  QTest::keyClick(text, Qt::Key_Return);
  EXPECT_EQ(selection(), "1,2:1,2 at 1,2");
  QTest::keyClick(&table(), Qt::Key_F3);
  EXPECT_EQ(selection(), "2,1:2,1 at 2,1");
  with->setText("9");
  QTest::mouseClick(view.findChild<QWidget*>("replaceOne"), Qt::LeftButton);
  EXPECT_EQ(cell(2, 1), "91");
  QTest::mouseClick(view.findChild<QWidget*>("replaceAll"), Qt::LeftButton);
  EXPECT_EQ(cell(5, 2), "59");
  trigger("actUndo");
  EXPECT_EQ(cell(5, 2), "52");
  QTest::keyClick(text, Qt::Key_Escape);
  EXPECT_FALSE(text->isVisible());
}

TEST_F(GridView, LinesAreInsertedAndDeleted) {
  cursor().selectRows(2, 3);
  QTest::keyClick(&table(), Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(cell(4, 1), "21");
  QTest::keyClick(&table(), Qt::Key_Z, Qt::ControlModifier);
  cursor().selectColumns(1, 1);
  QTest::keyClick(&table(), Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_EQ(cell(1, 1), "12");
  QTest::keyClick(&table(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(cell(1, 1), "11");
  // A narrowed sheet grows, and the view stays where it was.
  for (int row = 6; row <= 200; ++row) sheet.NumberRC(row, 1, row);
  sheet.MaxRow(200);
  view.refresh();
  view.select({150, 1, 150, 1});
  const int before = table().verticalScrollBar()->value();
  EXPECT_GT(before, 0);
  trigger("actInsertRows");
  EXPECT_EQ(table().model()->rowCount(), 201);
  EXPECT_EQ(table().verticalScrollBar()->value(), before);
}

TEST_F(GridView, SortsBySeveralColumns) {
  view.editor().enterAll({2, 1, 5, 1}, "7");
  view.editor().enter(1, 1, "heading");
  view.select({1, 1, 5, 4});
  QTimer::singleShot(0, [] {
    auto* dialog = qobject_cast<SortDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    auto* second = dialog->findChild<QComboBox*>("sortColumn2");
    second->setCurrentIndex(second->findData(2));
    EXPECT_EQ(dialog->findChild<QComboBox*>("sortColumn1")->currentText(), "A  (heading)");
    dialog->findChild<QCheckBox*>("sortDescending2")->setChecked(true);
    dialog->findChild<QCheckBox*>("sortHeading")->setChecked(true);
    dialog->accept();
  });
  trigger("actSort");
  EXPECT_EQ(cell(1, 2) + " " + cell(2, 2) + " " + cell(5, 2), "12 52 22");
  trigger("actUndo");
  EXPECT_EQ(cell(2, 2), "22");
}

TEST_F(GridView, SheetsHaveTabs) {
  auto* tabs = view.findChild<QTabBar*>("sheetTabs");
  EXPECT_FALSE(tabs->isVisible()) << "one sheet needs none";
  sheet.InsertSheets(2, 2);
  sheet.SheetName(2, "R&D");
  sheet.TextSRC(2, 1, 1, "second");
  sheet.sheetVisibility(3, SheetVisibility::Hidden);
  view.refresh();
  EXPECT_EQ(tabs->count(), 2);
  QSignalSpy shown(&view, &WorksheetView::sheetShown);
  tabs->setCurrentIndex(1);
  EXPECT_EQ(sheet.Sheet(), 2);
  EXPECT_EQ(table().model()->data(table().model()->index(0, 0)).toString(), "second");
  type("typed");
  EXPECT_EQ(sheet.TextSRC(2, 1, 1), "typed");
  QTest::keyClick(&table(), Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(sheet.Sheet(), 1);
  trigger("actUndo");
  EXPECT_EQ(sheet.Sheet(), 2) << "undo shows what it changes";
  EXPECT_EQ(tabs->currentIndex(), 1);
  EXPECT_EQ(shown.count(), 2);
}

TEST_F(GridView, TellsAboutTheSelection) {
  QSignalSpy status(&view, &WorksheetView::statusText);
  view.select({1, 1, 2, 2});
  ASSERT_TRUE(status.wait(2000));
  EXPECT_EQ(status.last().first().toString(), "Sum 66   Average 16.5   Count 4");
}

TEST_F(GridView, ZoomKeepsWithinItsBounds) {
  const int height = table().rowHeight(0);
  view.setZoom(200);
  EXPECT_GT(table().rowHeight(0), height * 3 / 2);
  view.setZoom(1000);
  EXPECT_EQ(view.zoom(), 300);
  view.setZoom(1);
  EXPECT_EQ(view.zoom(), 50);
  QWheelEvent wheel(QPointF(50, 50), table().viewport()->mapToGlobal(QPointF(50, 50)), {}, {0, 120},
                    Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(table().viewport(), &wheel);
  EXPECT_EQ(view.zoom(), 60);
}

TEST_F(GridView, AWorksheetThatIsTakenAwayIsNotTouched) {
  auto other = std::make_unique<Worksheet>();
  other->TextRC(1, 1, "other");
  view.setSheet(*other);
  EXPECT_FALSE(view.history().canUndo());
  QTest::keyClicks(&table(), "typing");
  other.reset();
  view.clear();
  EXPECT_FALSE(view.hasSheet());
  EXPECT_EQ(cellEditor(), nullptr);
  EXPECT_EQ(table().model()->rowCount(), 0);
  QTest::keyClicks(&table(), "x");
  trigger("actPaste");
  view.refresh();
  view.grab();
  view.setSheet(sheet);
  EXPECT_EQ(table().model()->rowCount(), maxRows);
}

TEST_F(GridView, RecordedCommandsShowAtOnce) {
  view.editor().record("Identify", [this] {
    sheet.InsertRange(1, 1, 2, 1, Shift::Rows);
    sheet.FixedRows(2);
    sheet.MaxRow(7);
    sheet.SetSelection(1, 1, 1, 1);
  });
  EXPECT_EQ(table().model()->rowCount(), 7);
  EXPECT_GT(table().frozenHeight(), 0);
  EXPECT_EQ(view.gridAction("actUndo")->text(), "&Undo identify");
  trigger("actUndo");
  EXPECT_EQ(table().model()->rowCount(), maxRows);
  EXPECT_EQ(table().frozenHeight(), 0);
}

TEST_F(GridView, PrintsPagesWithFrozenRows) {
  for (int row = 6; row <= 150; ++row) sheet.NumberRC(row, 1, row);
  for (int column = 5; column <= 20; ++column) sheet.NumberRC(1, column, column);
  sheet.FixedRows(1);
  QTemporaryDir folder;
  QPrinter printer(QPrinter::ScreenResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(folder.filePath("pages.pdf"));
  const int pages = paintPages(printer, sheet);
  EXPECT_GE(pages, 6) << "three pages down, two or more across";
  EXPECT_LE(pages, 20);
  const int narrower = paintPages(printer, sheet, true);
  EXPECT_LT(narrower, pages) << "the columns are side by side";
  printer.setFromTo(2, 3);
  EXPECT_EQ(paintPages(printer, sheet), 2);
  Worksheet empty;
  QPrinter none(QPrinter::ScreenResolution);
  none.setOutputFormat(QPrinter::PdfFormat);
  none.setOutputFileName(folder.filePath("none.pdf"));
  EXPECT_EQ(paintPages(none, empty), 0);
}

TEST(GridPainting, ColoursStayReadable) {
  const QColor paper = Qt::white;
  const QColor night(30, 30, 30);
  EXPECT_EQ(readableOn(paper, Qt::black), QColor(Qt::black));
  EXPECT_GT(readableOn(night, Qt::black).lightness(), 200);
  EXPECT_LT(readableOn(paper, QColor(250, 250, 250)).lightness(), 60);
  const QColor blue = readableOn(night, QColor(0, 0, 128));
  EXPECT_GT(blue.blue(), 150) << "it is still blue";
  EXPECT_LT(blue.red(), blue.blue());
}

TEST(GridPainting, NumbersAreNeverCutShort) {
  const QFontMetricsF metrics(cellFont(CellFormat(), 1.3));
  const double digit = metrics.horizontalAdvance('0');
  const auto fitted = [&](double number, const char* shown, bool general, double digits) {
    return fromQt(fittedNumber(number, shown, general, static_cast<int>(digit * digits), metrics));
  };
  EXPECT_EQ(fitted(1.25, "1.25", true, 6), "1.25");
  EXPECT_EQ(fitted(1.0 / 3, "0.333333333333333", true, 6.2).substr(0, 5), "0.333");
  EXPECT_EQ(fitted(1234567, "1234567", true, 3).substr(0, 1), "#")
      << "not even its power of ten fits";
  EXPECT_EQ(fitted(12.345, "12.345", false, 4).substr(0, 1), "#") << "a format leaves no choice";
}

}  // namespace
}  // namespace lodex
