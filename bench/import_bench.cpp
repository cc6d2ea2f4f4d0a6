// Identification of a large assay sheet.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "chem/Elements.h"
#include "import/DataSheets.h"

namespace {

using namespace lodex;

constexpr int rows = 5000;
constexpr int columns = 60;

// A laboratory's sheet: an identifier and columns such as "Si_XRF ppm", some of them oxides.
void fillAssays(Worksheet& sheet) {
  sheet.TextRC(1, 1, "Sample");
  for (int column = 2; column <= columns; ++column) {
    const std::string& symbol = ElementSymbols()[static_cast<size_t>(column + 2)];
    sheet.TextRC(1, column, symbol + (column % 3 == 0 ? "_XRF ppm" : "O %"));
  }
  for (int row = 2; row <= rows; ++row) {
    sheet.TextRC(row, 1, "LX-" + std::to_string(row));
    for (int column = 2; column <= columns; ++column) {
      sheet.NumberRC(row, column, row * 0.01 + column);
    }
  }
}

struct Bench {
  Bench() {
    for (int n = 1; n <= 106; ++n) {
      tables.F1Data.TextRC(n + 1, 2, ElementSymbols()[static_cast<size_t>(n)]);
    }
    for (int rule = 1; rule <= 2000; ++rule) {
      thesaurus.F1Lib.TextRC(rule, 1, "Heading " + std::to_string(rule));
      thesaurus.F1Lib.TextRC(rule, 2, "HEADER");
      thesaurus.F1Lib.TextRC(rule, 4, "Fe");
    }
  }
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  taulukot tables;
  frmSynonLib thesaurus{session};
  ImportContext context{session, tables, thesaurus};
};

void identify(benchmark::State& state) {
  Bench bench;
  Worksheet assays;
  fillAssays(assays);
  for (auto _ : state) {
    state.PauseTiming();
    frmDataIN form(bench.context, "assays");
    form.F1D.CopyAll(assays);
    bench.session.log.clear();
    state.ResumeTiming();
    form.AjaTunnista({});
    state.PauseTiming();
    if (form.F1D.TextRC(12, 3) != "X(Be)1/1") std::abort();
    state.ResumeTiming();
  }
}
BENCHMARK(identify)->Unit(benchmark::kMillisecond);

void readComma(benchmark::State& state) {
  Bench bench;
  Worksheet assays;
  fillAssays(assays);
  std::string text;
  for (int row = 1; row <= rows; ++row) {
    for (int column = 1; column <= columns; ++column) {
      text += assays.TextRC(row, column) + (column < columns ? "," : "\n");
    }
  }
  for (auto _ : state) {
    frmDataIN form(bench.context, "assays");
    form.readText(text, ",");
    benchmark::DoNotOptimize(form.F1D.LastRow());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(readComma)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
