// Calculation runs: one workbook of the size of a norm, and four methods over joined sheets.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "basic/Error.h"
#include "calc/CalculationRun.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;

const char* const oxides[] = {"SiO2", "TiO2", "Al2O3", "Fe2O3", "FeO",  "MnO",
                              "MgO",  "CaO",  "Na2O",  "K2O",   "P2O5", "Cr2O3"};

// About 300 formulas in the manner of a norm: moles of twelve oxides, then steps that each read
// earlier ones.
Worksheet normLikeBook() {
  Worksheet book;
  book.NumSheets(6);
  book.SheetName(3, "Input");
  book.SheetName(5, "Output");
  book.SheetName(6, "Steps");
  int row = 2;
  for (const char* oxide : oxides) book.TextSRC(3, row++, 1, std::string(oxide) + " %");
  for (int step = 1; step <= 250; ++step) {
    const std::string input = "Input!C" + std::to_string(2 + step % 12);
    if (step <= 12) {
      book.FormulaSRC(6, step, 1, "IF(ISNUMBER(" + input + ")," + input + "/60,0)");
      continue;
    }
    const std::string a = "A" + std::to_string(step - 12);
    const std::string b = "A" + std::to_string(step - 1 - step % 7);
    book.FormulaSRC(6, step, 1,
                    "IF(" + a + ">" + b + "," + a + "-0.5*" + b + ",MAX(" + b + "-" + a +
                        ",0)+MIN(" + a + "," + b + ")/3)");
  }
  for (int output = 1; output <= 40; ++output) {
    book.TextSRC(5, output, 1, "Mineral" + std::to_string(output));
    book.FormulaSRC(5, output, 3, "100*Steps!A" + std::to_string(200 + output));
  }
  return book;
}

/// A group of equal methods and two sheets that share their samples.
class CalcData {
 public:
  CalcData(int methods, int samples)
      : folder_(fs::temp_directory_path() / ("lodex-calc-bench-" + std::to_string(::getpid()))) {
    fs::create_directories(folder_);
    const Worksheet book = normLikeBook();
    for (int i = 1; i <= methods; ++i) {
      book.Write((folder_ / ("Norm" + std::to_string(i) + ".xls")).string(), FileType::Excel);
    }
    group.load(folder_.string(), UnreadableBook::Stop);
    fs::remove_all(folder_);
    if (group.count() != methods) throw Error("The benchmark's methods could not be read back");
    fillSheet(first_, 0, 6, samples);
    fillSheet(second_, 6, 12, samples);
    SheetStructure structure;
    for (int row = 0; row < 4; ++row) structure.row(row) = row + 1;
    structure.firstDataRow = 5;
    structure.idColumn = 2;
    sheets = {{1, "first", &first_, structure, false, true},
              {2, "second", &second_, structure, false, true}};
    buildSources(F1Ref, sheets, converter, {});
  }

  CalculationGroup group;
  SourceSheets sheets;
  Worksheet F1Ref;
  CompoundConverter converter;

 private:
  static void fillSheet(Worksheet& sheet, int from, int to, int samples) {
    for (int oxide = from; oxide < to; ++oxide) {
      const int column = 3 + oxide - from;
      sheet.TextRC(2, column, oxides[oxide]);
      sheet.TextRC(4, column, "%");
      for (int sample = 0; sample < samples; ++sample) {
        sheet.NumberRC(5 + sample, column, 1 + (sample * 37 + oxide * 11) % 50 + sample * 1e-5);
      }
    }
    for (int sample = 0; sample < samples; ++sample) {
      sheet.TextRC(5 + sample, 2, "S" + std::to_string(sample));
    }
  }

  fs::path folder_;
  Worksheet first_;
  Worksheet second_;
};

// Arguments: methods, samples.
void run(benchmark::State& state) {
  CalcData data(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const std::vector<std::string> methods = data.group.MethodListOrder();
  for (auto unused : state) {
    (void)unused;
    Worksheet results;
    const CalculationRequest request{data.group, methods,        data.sheets,
                                     data.F1Ref, data.converter, results};
    const CalculationOutcome outcome = runCalculation(request);
    if (outcome.calculated != state.range(1) || outcome.ErrorCount > 0) {
      state.SkipWithError("a sample failed");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(run)
    ->Args({1, 1000})
    ->Args({1, 10000})
    ->Args({1, 100000})
    ->Args({4, 10000})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lodex

BENCHMARK_MAIN();
