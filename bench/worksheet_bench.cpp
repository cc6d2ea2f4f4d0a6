#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "basic/Files.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

// A million cells written and read, as the inner loops of calculations do. Goal: 0.05 s.
void cellAccess(benchmark::State& state) {
  for (auto step : state) {
    Worksheet sheet;
    double sum = 0;
    for (int row = 1; row <= 20000; ++row) {
      for (int column = 1; column <= 50; ++column) sheet.NumberRC(row, column, row + column);
    }
    for (int row = 1; row <= sheet.LastRow(); ++row) {
      for (int column = 1; column <= 50; ++column) sum += sheet.NumberRC(row, column);
    }
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(cellAccess)->Unit(benchmark::kMillisecond);

std::string assayText(int rows, int columns) {
  std::string text;
  for (int row = 0; row < rows; ++row) {
    text += "DH-" + std::to_string(row);
    for (int column = 1; column < columns; ++column) {
      text += '\t';
      text += std::to_string(row % 97) + "." + std::to_string(101 + (row * 31 + column * 7) % 899);
    }
    text += "\r\n";
  }
  return text;
}

// A laboratory's tab text of 200,000 samples and 40 columns. Goal: 1 s.
void textOpen(benchmark::State& state) {
  const std::string text = assayText(200000, 40);
  for (auto step : state) {
    Worksheet sheet;
    readText(text, sheet);
    benchmark::DoNotOptimize(sheet.LastRow());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(textOpen)->Unit(benchmark::kMillisecond);

// Opening a workbook file of 16,000 rows and 40 columns, and writing it.
void openWorkbook(benchmark::State& state, FileType type) {
  Worksheet sheet;
  readText(assayText(16000, 40), sheet);
  const std::string path =
      pathText(std::filesystem::temp_directory_path() / "lodex_bench_workbook");
  sheet.Write(path, type);
  for (auto step : state) {
    Worksheet back;
    benchmark::DoNotOptimize(back.Read(path));
  }
  std::filesystem::remove(path);
}
BENCHMARK_CAPTURE(openWorkbook, xls, FileType::Excel)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openWorkbook, xlsx, FileType::Xlsx)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openWorkbook, native, FileType::Native)->Unit(benchmark::kMillisecond);

void writeWorkbook(benchmark::State& state, FileType type) {
  Worksheet sheet;
  readText(assayText(16000, 40), sheet);
  const std::string path =
      pathText(std::filesystem::temp_directory_path() / "lodex_bench_workbook");
  for (auto step : state) sheet.Write(path, type);
  std::filesystem::remove(path);
}
BENCHMARK_CAPTURE(writeWorkbook, xls, FileType::Excel)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeWorkbook, xlsx, FileType::Xlsx)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lodex

BENCHMARK_MAIN();
