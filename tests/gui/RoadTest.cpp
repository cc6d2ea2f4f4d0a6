#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTemporaryDir>
#include <QTimer>
#include <fstream>
#include <memory>

#include "basic/Files.h"
#include "db/Recordset.h"
#include "gui/GuiFixture.h"
#include "gui/QtServices.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/WorksheetView.h"
#include "gui/shell/MainWindow.h"
#include "gui/shell/SheetWindow.h"
#include "gui/shell/SingleInstance.h"
#include "gui/shell/TextFileEditor.h"

namespace lodex {
namespace {

/// The program as a user has it: the laid-out installation, a home folder of its own, widgets found
/// by their names.
class RoadTest : public GuiTest {
 protected:
  RoadTest() : window(session, QStringLiteral(LODEX_BIN_DIR)) { window.resize(1280, 800); }

  std::string file(const char* name, const char* text) {
    const std::string path = fromQt(folder.filePath(QString::fromLatin1(name)));
    std::ofstream(path) << text;
    return path;
  }
  MDIMain& shell() { return window.shell(); }
  void trigger(const char* action) {
    child<QAction>(window, action)->trigger();
    settle();
  }
  QWidget& panel() { return *child<QWidget>(window, "picCalc"); }
  QListWidget* panelList(const char* name) { return child<QListWidget>(panel(), name); }
  void press(const char* button) { click(panel(), button); }
  void tick(const char* list, const char* text, bool on = true) {
    auto* view = panelList(list);
    const auto found = view->findItems(QString::fromUtf8(text), Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << list << " has no " << text;
    found.front()->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    settle();
  }
  WorksheetView& grid(const Form& form) {
    SheetWindow* shown = window.windowOf(form);
    EXPECT_NE(shown, nullptr);
    return *shown->findChild<WorksheetView*>(QStringLiteral("F1D"));
  }
  void type(WorksheetView& view, int row, int column, const char* text) {
    view.select({row, column, row, column});
    const QString keys = QString::fromUtf8(text);
    QTest::keyClicks(&view.table(), keys.left(1));
    auto* editor = view.table().findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr) << "typing opens no editor";
    QTest::keyClicks(editor, keys.mid(1));
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
  }

  static std::string rowsOf(const std::string& database, const char* sql) {
    Connection connection;
    connection.Open(ConnectionString(database, "", ""));
    std::string text;
    for (auto rows = connection.OpenRecordset(sql); !rows->Eof(); rows->MoveNext()) {
      for (int field = 0; field < 3; ++field) text += (field ? " " : "") + rows->Text(field);
      text += '\n';
    }
    return text;
  }

  QTemporaryDir folder;
  MainWindow window;
};

/// The same with a running event loop between the samples of a calculation.
class LongWorkTest : public RoadTest {
 protected:
  LongWorkTest() { running = std::make_unique<MainWindow>(live, QStringLiteral(LODEX_BIN_DIR)); }

  QtEventPump pump;
  Session live{Services{dialogs, pump, clipboard}};
  std::unique_ptr<MainWindow> running;
};

constexpr const char* rocks =
    "Sample\tSiO2 %\tTiO2 %\tAl2O3 %\tFe2O3 %\tMgO %\tCaO %\tNa2O %\tK2O %\n"
    "R1\t50.1\t1.2\t15.0\t11.0\t7.5\t10.4\t2.6\t0.5\n"
    "R2\t65.0\t0.6\t15.8\t5.0\t2.1\t4.5\t3.9\t2.2\n";
constexpr const char* metals = "Sample\tNi ppm\tCu ppm\tXyz\nR1\t120\t55\t1\nR2\t20\t12\t2\n";
constexpr const char* notes = "Sample\tS %\nR1\t0.1\nR2\t0.02\n";

TEST_F(RoadTest, OpensIdentifiesOverrulesCalculatesSavesAndReopens) {
  ASSERT_TRUE(window.start());
  EXPECT_TRUE(window.isVisible());

  // Three files at once.
  dialogs.expectOpen(
      {file("rocks.txt", rocks), file("metals.txt", metals), file("notes.txt", notes)});
  trigger("mnuOpen");
  EXPECT_EQ(window.area().subWindowList().size(), 3);
  EXPECT_EQ(panelList("lstI")->count(), 3);
  EXPECT_EQ(shell().stages.stage(), 1);

  // All of them are identified; the log comes up and the saving stage follows.
  for (const char* sheet : {"rocks", "metals", "notes"}) tick("lstI", sheet);
  press("cmdIdentify");
  EXPECT_TRUE(session.log.visible());
  session.log.hide();
  frmDataIN& metalSheet = *shell().sheets.find("metals");
  for (const char* name : {"rocks", "metals", "notes"}) {
    EXPECT_TRUE(shell().sheets.find(name)->bIdentified) << name;
  }
  EXPECT_EQ(metalSheet.F1D.TextRC(2, 3), "Ni");

  // The user knows better what the third column is, and types it.
  shell().stages.SetStage(Stage::Identify);
  settle();
  WorksheetView& cells = grid(metalSheet);
  const auto described = [&](int systemRow) {
    return metalSheet.F1D.TextRC(metalSheet.SystemRows(systemRow), 5);
  };
  EXPECT_EQ(described(sysrow::Header), "Xyz");
  EXPECT_EQ(described(sysrow::Identified), "");
  type(cells, metalSheet.SystemRows(sysrow::Element), 5, "Co");
  type(cells, metalSheet.SystemRows(sysrow::Unit), 5, "ppm");
  EXPECT_EQ(described(sysrow::Element), "Co");
  EXPECT_TRUE(metalSheet.Changed);
  click(*window.windowOf(metalSheet), "cmdIdentify");
  const std::string mark = described(sysrow::Identified);
  EXPECT_TRUE(mark.starts_with("X(Co)")) << mark;
  // Every step can be taken back, the program's as well as the user's.
  cells.editor().undo();
  EXPECT_EQ(described(sysrow::Identified), "");
  cells.editor().undo();
  cells.editor().undo();
  EXPECT_EQ(described(sysrow::Element), "");
  for (int step = 0; step < 3; ++step) cells.editor().redo();
  EXPECT_EQ(described(sysrow::Identified), mark);

  // Two methods.
  press("Command2");
  EXPECT_EQ(shell().stages.stage(), 2);
  for (const char* method : {"REE", "PGE", "SF"}) tick("lstCalc", method, false);
  press("cmdCalculate");
  EXPECT_EQ(session.log.txtErr.text(), "");
  frmCResult& result = shell().sheets.result;
  ASSERT_EQ(result.F1D.NumSheets(), 2);
  EXPECT_TRUE(result.visible());

  // Into a new database, and from there back.
  shell().stages.SetStage(Stage::Save);
  settle();
  const std::string database = fromQt(folder.filePath(QStringLiteral("samples.mdb")));
  dialogs.expectForm("frmDDB", [&](Form& form) {
    auto& destination = dynamic_cast<frmDDB&>(form);
    dialogs.expectSave(database);
    destination.Command1.click();
    destination.cmdOK.click();
  });
  press("cmdDefine");
  EXPECT_EQ(child<QLabel>(panel(), "lblDB")->text(), QStringLiteral("samples.mdb"));
  // The three sheets share the samples and a table, so the later ones complete the earlier.
  child<QCheckBox>(panel(), "chkMerge")->click();
  press("cmdSaveInDBNow");
  EXPECT_EQ(shell().saving.SaveErrors(), 0) << session.log.txtErr.text();
  session.log.hide();
  EXPECT_EQ(rowsOf(database, "SELECT [SiO2/%], [Ni/ppm], [S/%] FROM [ANALYSES] ORDER BY [Sample]"),
            "50.1 120 0.1\n65 20 0.02\n");

  // The saved database as a source of samples.
  dialogs.expectOpen({database});
  trigger("mnuOpen");
  EXPECT_TRUE(shell().sourceForm.visible());
  EXPECT_EQ(shell().sourceForm.txtDB.text(), database);
}

TEST_F(LongWorkTest, OnlyAbortTakesAClickAndWhatWasDoneStays) {
  ASSERT_TRUE(running->start());
  std::string many = rocks;
  constexpr int samples = 40000;
  for (int i = 0; i < samples; ++i) {
    many += "S" + std::to_string(i) + "\t50.1\t1.2\t15.0\t11.0\t7.5\t10.4\t2.6\t0.5\n";
  }
  dialogs.expectMessage("many.txt has 40003 rows; the grid shows the first 16000.\nLoad all rows?",
                        Answer::No);
  running->shell().dropFiles({file("many.txt", many.c_str())});
  running->shell().sheets.lstI.selectAll(true);
  running->shell().IDENTIFY(false);
  running->shell().stages.SetStage(Stage::Calculate);
  settle();
  frmDataIN& sheet = running->shell().sheets.sheet(1);
  bool aborted = false, byKey = false;
  QTimer user;
  QObject::connect(&user, &QTimer::timeout, running.get(), [&] {
    auto* abort = child<QPushButton>(*running->statusBar(), "cmdAbort");
    if (!abort->isVisible() || live.progress.bar.value() < 100 || aborted) return;
    EXPECT_TRUE(child<QProgressBar>(*running->statusBar(), "bar")->isVisible());
    aborted = true;
    // Clicks anywhere else wait in vain.
    QTest::mouseClick(child<QWidget>(*child<QWidget>(*running, "picCalc"), "cmdBack0"),
                      Qt::LeftButton);
    running->windowOf(sheet)->close();
    QTest::keyClick(running.get(), Qt::Key_O, Qt::ControlModifier);

    QStatusTipEvent hint(QStringLiteral("a hint under the mouse"));
    QApplication::sendEvent(running.get(), &hint);
    EXPECT_EQ(running->statusBar()->currentMessage(), QString());
    if (byKey) {
      QTest::keyClick(running.get(), Qt::Key_Escape);
    } else {
      QTest::mouseClick(abort, Qt::LeftButton);
    }
  });
  user.start(1);
  for (const bool key : {false, true}) {
    byKey = key;
    aborted = false;
    if (byKey) dialogs.expectMessage("Do you want to reset earlier results?", Answer::Yes);
    running->activateWindow();  // short cuts are those of the window in front
    ASSERT_TRUE(QTest::qWaitForWindowActive(running.get()));
    running->shell().Calculate();
    ASSERT_TRUE(aborted) << "the work ended before it could be aborted";
    EXPECT_EQ(running->shell().sheets.DataSheetCount(), 1);
    EXPECT_EQ(running->shell().stages.stage(), 2);
    EXPECT_NE(live.log.txtLog.text().find("Aborted"), std::string::npos);
    const int rows = running->shell().sheets.result.F1D.LastRow();
    EXPECT_GT(rows, 6);
    EXPECT_LT(rows, 16000);
    EXPECT_FALSE(live.progress.visible());
  }
}

TEST_F(LongWorkTest, AQuestionThatComesUpMeanwhileCanBeAnswered) {
  ASSERT_TRUE(running->start());
  QTest::qWait(30);  // the pump rests between two turns
  bool answered = false;
  QTimer::singleShot(0, [&] {
    QDialog question(running.get());
    QPushButton yes(QStringLiteral("Yes"), &question);
    QObject::connect(&yes, &QPushButton::clicked, &question, &QDialog::accept);
    QTimer::singleShot(0, &question, [&] { QTest::mouseClick(&yes, Qt::LeftButton); });
    QTimer::singleShot(2000, &question, &QDialog::reject);
    answered = question.exec() == QDialog::Accepted;
  });
  pump.pump();
  EXPECT_TRUE(answered);
}

TEST_F(RoadTest, FilesFromOtherProcessesWaitForTheEndOfAJob) {
  // Not the one that the tester may be running.
  qputenv("USER", "lodex-test-" + QByteArray::number(QCoreApplication::applicationPid()));
  SingleInstance instance;
  MainWindow busy(session, QStringLiteral(LODEX_BIN_DIR), &instance);
  ASSERT_TRUE(busy.start());
  session.progress.ShowProgress("Calculating", 1);
  for (const auto& [name, text] : {std::pair{"rocks.txt", rocks}, std::pair{"notes.txt", notes}}) {
    Q_EMIT instance.received(QStringLiteral("file;") + toQt(file(name, text)));
  }
  settle();
  EXPECT_EQ(busy.shell().sheets.DataSheetCount(), 0);
  session.progress.ShowProgress("", 0);
  QTRY_COMPARE(busy.shell().sheets.DataSheetCount(), 2);
}

TEST_F(RoadTest, UnsavedSettingsKeepTheProgramOpen) {
  ASSERT_TRUE(window.start());
  dialogs.expectOpen({file("settings.ini", "a=b\n")});
  trigger("mnuEditIni");
  child<QPlainTextEdit>(*child<TextFileEditor>(window, "TextFileEditor"), "text")
      ->insertPlainText(QStringLiteral("x"));
  for (const auto choice : {QMessageBox::Cancel, QMessageBox::Discard}) {
    QTimer::singleShot(0, [choice] {
      auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(question, nullptr);
      question->button(choice)->click();
    });
    dialogs.expectMessage("Are you sure to exit LodexGeo?", Answer::Ok);
    trigger("mnuExit");
    EXPECT_EQ(window.isVisible(), choice == QMessageBox::Cancel);
  }
}

TEST_F(RoadTest, SettingsKeepTheirEncodingAndLineEnds) {
  const struct {
    const char* name;
    const char* before;
    const char* typed;
    const char* after;
  } cases[] = {
      {"Windows", "[Paths]\r\nData=C:\\N\xE4yte\r\n", "x", "x[Paths]\r\nData=C:\\N\xE4yte\r\n"},
      {"Windows with a new sign", "a=\xE4\n", "\u03A9",
       "\u03A9"
       "a=\u00E4\n"},
      {"UTF-8", "a=\u00E4\n", "x", "xa=\u00E4\n"},
      {"UTF-8 with mark",
       "\xEF\xBB\xBF"
       "a=b\n",
       "x", "\xEF\xBB\xBFxa=b\n"},
  };
  for (const auto& row : cases) {
    const std::string path = file("settings.ini", row.before);
    TextFileEditor editor(toQt(path));
    child<QPlainTextEdit>(editor, "text")->insertPlainText(QString::fromUtf8(row.typed));
    ASSERT_TRUE(editor.save()) << row.name;
    EXPECT_EQ(readFile(path), row.after) << row.name;
  }
}

TEST_F(RoadTest, ClosingAsksOnceAndACancelKeepsEverything) {
  ASSERT_TRUE(window.start());
  dialogs.expectOpen({file("rocks.txt", rocks)});
  trigger("mnuOpen");
  dialogs.expectMessage("Are you sure to exit Lodex Geo?", Answer::Cancel);
  window.close();
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(shell().sheets.DataSheetCount(), 1);
  dialogs.expectMessage("Are you sure to exit LodexGeo?", Answer::Ok);
  trigger("mnuExit");
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(shell().sheets.DataSheetCount(), 0);
}

TEST_F(RoadTest, InputsHaveNamesForScreenReaders) {
  ASSERT_TRUE(window.start());
  EXPECT_EQ(namelessInputs(window), "");
}

TEST_F(RoadTest, TheKeyToCloseClosesTheSheetInFront) {
  ASSERT_TRUE(window.start());
  shell().dropFiles({file("rocks.txt", rocks), file("notes.txt", notes)});
  trigger("mnuSingle");
  for (const int left : {2, 1, 0}) {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    settle();
    EXPECT_EQ(shell().sheets.DataSheetCount(), left);
    EXPECT_FALSE(shell().singleSample().visible());
    EXPECT_EQ(shell().sheets.find("notes") != nullptr, left == 2);
  }
}

TEST_F(RoadTest, GoingThroughTheStagesKeepsTheSize) {
  ASSERT_TRUE(window.start());
  window.showNormal();
  window.resize(1280, 700);
  settle();
  for (const int stage : {1, 3, 1, 4, 2, 0, 3}) {
    shell().SetStage(stage);
    settle();
    EXPECT_EQ(window.height(), 700) << "stage " << stage;
  }
}

TEST_F(RoadTest, MenusOfADataSheetHoldTheGridsCommands) {
  ASSERT_TRUE(window.start());
  shell().dropFiles({file("rocks.txt", rocks)});
  frmDataIN& sheet = shell().sheets.sheet(1);
  WorksheetView& cells = grid(sheet);
  type(cells, 1, 1, "Rock");
  const auto choose = [&](const char* menu, const char* command) {
    for (QAction* entry : child<QMenu>(*window.windowOf(sheet), menu)->actions()) {
      if (entry->objectName() == QLatin1String(command)) return entry->trigger();
    }
    ADD_FAILURE() << menu << " has no " << command;
  };
  choose("menuEdit", "actUndo");
  EXPECT_EQ(sheet.F1D.TextRC(1, 1), "Sample");
  choose("menuFormat", "actBold");
  EXPECT_TRUE(sheet.F1D.formatOf(1, 1, 1).bold);
  choose("menuData", "actSortDescending");
  EXPECT_EQ(sheet.F1D.TextRC(1, 1), "Sample");
  choose("menuView", "actZoomIn");
  EXPECT_GT(cells.zoom(), 100);
}

TEST_F(RoadTest, KeysGoThroughTheStagesAndHideTheirPanel) {
  ASSERT_TRUE(window.start());
  window.activateWindow();
  settle();
  for (int stage = 4; stage >= 0; --stage) {
    QTest::keyClick(&window, static_cast<Qt::Key>(Qt::Key_1 + stage), Qt::ControlModifier);
    QTRY_COMPARE(shell().stages.stage(), stage);
  }
  QTest::keyClick(&window, Qt::Key_F11);
  EXPECT_FALSE(shell().stages.picCalc.visible());
  QTest::keyClick(&window, Qt::Key_F11);
  EXPECT_TRUE(shell().stages.picCalc.visible());
}

TEST_F(RoadTest, TheReportDocksAndItsLinesLeadToTheirCells) {
  ASSERT_TRUE(window.start());
  shell().dropFiles({file("ores.txt", rocks), file("other.txt", metals)});
  Findings found;
  found.error("Not read", {.sheet = "ores", .row = 3, .column = 2});
  session.notice(found);
  settle();
  auto* dock = child<QDockWidget>(window, "frmReport");
  EXPECT_TRUE(dock->isVisible());
  EXPECT_EQ(window.dockWidgetArea(dock), Qt::BottomDockWidgetArea);
  EXPECT_TRUE(child<QAction>(window, "mnuReport")->isChecked());
  EXPECT_EQ(child<QAction>(window, "tbReport")->text(), "1 error");
  window.area().setActiveSubWindow(window.windowOf(*shell().sheets.find("other")));
  auto* lines = child<WorksheetView>(*dock, "F1Report");
  lines->select({3, 1, 3, 1});
  QTest::keyClick(&lines->table(), Qt::Key_Return);
  settle();
  EXPECT_EQ(window.area().activeSubWindow(), window.windowOf(*shell().sheets.find("ores")));
  EXPECT_EQ(shell().sheets.find("ores")->F1D.Row(), 3);
  window.addDockWidget(Qt::RightDockWidgetArea, dock);
  delete dock;
  trigger("mnuReport");
  trigger("mnuReport");
  EXPECT_EQ(window.dockWidgetArea(child<QDockWidget>(window, "frmReport")), Qt::RightDockWidgetArea)
      << "its edge is remembered";
}

TEST_F(RoadTest, DroppedFilesOpen) {
  ASSERT_TRUE(window.start());
  QMimeData dropped;
  dropped.setUrls({QUrl::fromLocalFile(toQt(file("rocks.txt", rocks))),
                   QUrl::fromLocalFile(toQt(file("notes.txt", notes)))});
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&window, &drop);
  QTRY_COMPARE(shell().sheets.DataSheetCount(), 2);
}

}  // namespace
}  // namespace lodex
