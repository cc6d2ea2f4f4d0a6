// How fast formulas are: a method workbook fed with samples, and a sheet of a million formulas.
#include <benchmark/benchmark.h>

#include <string>

#include "basic/A1.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

constexpr int inputs = 20;
constexpr int outputs = 40;
constexpr int chain = 300;

// Three sheets: 20 inputs, 300 formulas that build on each other in the manner of a norm
// calculation, and 40 outputs taken from them.
Worksheet methodWorkbook() {
  Worksheet book;
  book.NumSheets(3);
  book.SheetName(1, "Input");
  book.SheetName(2, "Work");
  book.SheetName(3, "Output");
  for (int i = 1; i <= inputs; ++i) {
    book.TextSRC(1, 1, i, "Item" + std::to_string(i));
    book.NumberSRC(1, 2, i, i * 1.5);
    book.NumberSRC(2, i, 10, i * 5.0);  // a table to look up
    book.NumberSRC(2, i, 11, 40.0 + i);
  }
  for (int i = 1; i <= chain; ++i) {
    const std::string in = "Input!" + columnLetters(i % inputs + 1) + "2";
    const std::string before = i > 1 ? "A" + std::to_string(i - 1) : "Input!A2";
    const std::string earlier = i > 6 ? "A" + std::to_string(i - 6) : "Input!B2";
    std::string formula;
    switch (i % 10) {
      case 0:
        formula = "IF(" + before + ">50,MIN(" + before + "," + in + ")," + before + "+1)";
        break;
      case 1:
        formula = in + "/(" + in + "+1)*" + earlier;
        break;
      case 2:
        formula = "SUM(Input!A2:T2)/100+" + before;
        break;
      case 3:
        formula = "SUMPRODUCT(Input!A2:T2,Input!A2:T2)/1000-" + earlier;
        break;
      case 4:
        formula = "MAX(" + before + "," + in + ",0.001)";
        break;
      case 5:
        formula = "LOG(" + in + "+1)*" + before;
        break;
      case 6:
        formula = "VLOOKUP(" + in + ",$J$1:$K$20,2)/10";
        break;
      case 7:
        formula = "ROUND(" + before + "*" + in + ",4)";
        break;
      case 8:
        formula = "SQRT(ABS(" + before + "))+" + earlier;
        break;
      default:
        formula = "(" + before + "-" + earlier + ")*0.5+" + in;
        break;
    }
    book.FormulaSRC(2, i, 1, formula);
  }
  for (int i = 1; i <= outputs; ++i) {
    book.FormulaSRC(3, 2, i, "Work!A" + std::to_string(chain - outputs * 7 + i * 7));
  }
  book.Recalc();
  return book;
}

void methodWorkbookSamples(benchmark::State& state) {
  Worksheet book = methodWorkbook();
  double seed = 1;
  double sum = 0;
  for (auto _ : state) {
    for (int i = 1; i <= inputs; ++i) book.NumberSRC(1, 2, i, i + seed);
    seed = seed > 80 ? 1 : seed + 0.37;
    book.Recalc();
    for (int i = 1; i <= outputs; ++i) sum += book.NumberSRC(3, 2, i);
    benchmark::DoNotOptimize(sum);
  }
  state.counters["samples/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(methodWorkbookSamples)->Unit(benchmark::kMicrosecond);

constexpr int manyRows = 100000;
constexpr int manyColumns = 10;

// Column 1 holds numbers, each of ten columns a formula on its left neighbour and the first column.
void fillMillion(Worksheet& book, bool cached) {
  for (int row = 1; row <= manyRows; ++row) {
    book.NumberSRC(1, row, 1, row % 97 + 0.5);
    for (int column = 2; column <= manyColumns + 1; ++column) {
      const std::string formula =
          columnLetters(column - 1) + std::to_string(row) + "*1.01+$A" + std::to_string(row);
      book.setFormulaWithValue(1, row, column, formula, cached ? Value(1.0) : Value());
    }
  }
}

void millionFormulasSet(benchmark::State& state) {
  for (auto _ : state) {
    Worksheet book;
    fillMillion(book, true);
    benchmark::DoNotOptimize(book.LastRow());
  }
}
BENCHMARK(millionFormulasSet)->Unit(benchmark::kMillisecond)->Iterations(1);

void millionFormulasFirstRecalc(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Worksheet book;
    fillMillion(book, true);
    state.ResumeTiming();
    book.Recalc();
  }
}
BENCHMARK(millionFormulasFirstRecalc)->Unit(benchmark::kMillisecond)->Iterations(1);

void millionFormulasAllChanged(benchmark::State& state) {
  Worksheet book;
  fillMillion(book, false);
  book.Recalc();
  double add = 0;
  for (auto _ : state) {
    state.PauseTiming();
    add += 0.25;
    for (int row = 1; row <= manyRows; ++row) book.NumberSRC(1, row, 1, row % 97 + add);
    state.ResumeTiming();
    book.Recalc();
  }
}
BENCHMARK(millionFormulasAllChanged)->Unit(benchmark::kMillisecond);

void millionFormulasOneChanged(benchmark::State& state) {
  Worksheet book;
  fillMillion(book, false);
  book.Recalc();
  double number = 0;
  for (auto _ : state) {
    book.NumberSRC(1, 777, 1, number += 1);
    book.Recalc();
  }
}
BENCHMARK(millionFormulasOneChanged)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lodex

BENCHMARK_MAIN();
