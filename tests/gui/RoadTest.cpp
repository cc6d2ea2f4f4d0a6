#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <fstream>
#include <memory>

#include "gui/GuiFixture.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/WorksheetView.h"
#include "gui/shell/MainWindow.h"
#include "gui/shell/SheetWindow.h"

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
  void tick(const char* list, const char* text, bool on = true) {
    auto* view = child<QListWidget>(window, list);
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
    QTest::keyClicks(view.table().viewport(), QString::fromUtf8(text));
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &view,
                    Qt::Key_Return);
    settle();
  }

  QTemporaryDir folder;
  MainWindow window;
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

  dialogs.expectOpen({file("rocks.txt", rocks), file("metals.txt", metals),
                      file("notes.txt", notes)});
  trigger("mnuOpen");
  EXPECT_EQ(window.area().subWindowList().size(), 3);
  EXPECT_EQ(child<QListWidget>(window, "lstI")->count(), 3);
  EXPECT_EQ(shell().stages.stage(), 1);
}

}  // namespace
}  // namespace lodex
