// The grid over 200,000 rows of 60 columns: what a user waits for between a key and the picture.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

#include "gui/grid/GridCursor.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/WorksheetView.h"

namespace lodex {
namespace {

constexpr int rows = 200000;
constexpr int columns = 60;

// A view of a large sheet; with formulas every row has its sum behind it.
struct LargeGrid {
  explicit LargeGrid(bool formulas) {
    for (int column = 1; column <= columns; ++column) {
      for (int row = 1; row <= rows; ++row) sheet.NumberRC(row, column, row * 0.37 + column);
    }
    for (int row = 1; formulas && row <= rows; ++row) {
      const std::string number = std::to_string(row);
      sheet.FormulaRC(row, columns + 1, "SUM(A" + number + ":BH" + number + ")");
    }
    sheet.FixedRows(2);
    view.resize(1280, 800);
    view.setSheet(sheet);
    view.show();
    view.table().setFocus();
    view.table().cursor().moveTo({10, 3});
    type();  // the first edit evaluates all formulas
  }

  // A number into the active cell and on to the next, until the picture stands.
  void type() {
    QTest::keyClicks(&view.table(), QStringLiteral("7"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // editors closed before
    auto* editor = view.table().findChild<QLineEdit*>(QStringLiteral("cellEditor"));
    QTest::keyClicks(editor, QStringLiteral(".25"));
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
    view.grab();
  }

  Worksheet sheet;
  WorksheetView view;
};

// Made on first use; windows must not outlive the application, so they end with the process.
LargeGrid& grid(bool formulas = false) {
  static LargeGrid* grids[2] = {};
  LargeGrid*& wanted = grids[formulas ? 1 : 0];
  if (wanted == nullptr) wanted = new LargeGrid(formulas);
  return *wanted;
}

void typeANumber(benchmark::State& state) {
  LargeGrid& large = grid(state.range(0) != 0);
  for (auto _ : state) large.type();
}
BENCHMARK(typeANumber)->Arg(0)->Arg(1)->ArgName("formulas")->Unit(benchmark::kMillisecond);

void scrollAPage(benchmark::State& state) {
  WorksheetView& view = grid().view;
  QScrollBar* bar = view.table().verticalScrollBar();
  for (auto _ : state) {
    bar->setValue(bar->value() > bar->maximum() / 2 ? 0 : bar->value() + bar->pageStep());
    view.grab();
  }
}
BENCHMARK(scrollAPage)->Unit(benchmark::kMillisecond);

void sumUpTheWholeSheet(benchmark::State& state) {
  SheetEditor& editor = grid().view.editor();
  for (auto _ : state) benchmark::DoNotOptimize(editor.summary(editor.wholeSheet()));
}
BENCHMARK(sumUpTheWholeSheet)->Unit(benchmark::kMillisecond);

void insertARowAndUndo(benchmark::State& state) {
  WorksheetView& view = grid().view;
  for (auto _ : state) {
    view.editor().insertRows(5, 5);
    view.editor().undo();
  }
}
BENCHMARK(insertARowAndUndo)->Unit(benchmark::kMillisecond);

void recordACommandAndUndo(benchmark::State& state) {
  LargeGrid& large = grid();
  for (auto _ : state) {
    large.view.editor().record("Command", [&] { large.sheet.TextRC(1, 1, "x"); });
    large.view.editor().undo();
  }
}
BENCHMARK(recordACommandAndUndo)->Unit(benchmark::kMillisecond);

void showASheet(benchmark::State& state) {
  LargeGrid& large = grid();
  for (auto _ : state) {
    WorksheetView view;
    view.resize(1280, 800);
    view.setSheet(large.sheet);
    view.show();
    view.grab();
  }
}
BENCHMARK(showASheet)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lodex

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
