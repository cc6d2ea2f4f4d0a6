// Bringing in an Access file: one table of numbers, texts and dates, with and without memos.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "../tests/db/AccessMaker.h"
#include "db/drivers/jet/AccessCopy.h"

namespace {

using namespace lodex;

// The most memory that the program ever used, in MiB.
double peakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

AccessMaker::Table assays(bool memos) {
  using T = AccessType;
  AccessMaker::Table table{"Assays",
                           {{"SampleNo", T::LongInteger, 0, 0, true},
                            {"Hole", T::Text, 40},
                            {"Rock", T::Text, 40},
                            {"Day", T::Date},
                            {"Price", T::Currency},
                            {"Done", T::Boolean},
                            {"Depth", T::Single},
                            {"Batch", T::Integer}},
                           {{"PrimaryKey", {0}, true, true}}};
  for (int i = 0; i < 11; ++i) table.columns.push_back({"E" + std::to_string(i), T::Double});
  table.columns.push_back({"Remark", memos ? T::Memo : T::Text, memos ? 0 : 100});
  return table;
}

void fill(AccessMaker& maker, int rows, bool memos) {
  std::mt19937 random(20);
  std::uniform_real_distribution<double> percent(0, 100);
  for (int row = 1; row <= rows; ++row) {
    std::vector<StoredCell> cells{storedAs(row),
                                  storedNarrow("DH-" + std::to_string(row % 500)),
                                  storedWide("amphibolite"),
                                  storedAs(36526 + row * 0.25),
                                  storedAs(std::int64_t{row} * 1234),
                                  row % 2 ? StoredCell("") : StoredCell(),
                                  storedAs(static_cast<float>(row) * 0.1f),
                                  storedAs(static_cast<std::int16_t>(row % 30000))};
    for (int i = 0; i < 11; ++i) cells.emplace_back(storedAs(percent(random)));
    const std::string remark = storedNarrow("core loss at " + std::to_string(row));
    cells.emplace_back(memos ? maker.longField(remark, AccessMaker::Long::OnePage) : remark);
    maker.addRecord(cells);
  }
}

// The arguments: how many records, and whether each has a memo on another page.
void bringIn(benchmark::State& state) {
  namespace fs = std::filesystem;
  const int rows = static_cast<int>(state.range(0));
  const bool memos = state.range(1) != 0;
  const fs::path folder =
      fs::temp_directory_path() / ("lodex-access-bench-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  const std::string source = (folder / "a.mdb").string();
  const std::string target = (folder / "a.sqlite").string();
  {
    AccessMaker maker;
    maker.addTable(assays(memos));
    fill(maker, rows, memos);
    maker.write(source);
  }
  const double before = peakMemory();
  for (auto _ : state) {
    fs::remove(target);
    copyAccessFile(source, target);
  }
  state.SetItemsProcessed(state.iterations() * rows);
  state.counters["peak_growth_MiB"] = peakMemory() - before;
  fs::remove_all(folder);
}
BENCHMARK(bringIn)
    ->ArgNames({"rows", "memos"})
    ->Args({250'000, 0})
    ->Args({250'000, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
