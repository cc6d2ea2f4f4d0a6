// Saving a large assay sheet into two tables, and mapping a large database.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "db/MapDatabase.h"
#include "import/SaveSheets.h"

namespace {

using namespace lodex;

constexpr int rows = 20000;
constexpr int columns = 40;

struct Bench {
  Bench() {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
  }
  ~Bench() { std::filesystem::remove_all(folder); }
  void makeDatabase(const char* name) {
    database = {};
    database.path = (folder / name).string();
    createDatabase(database.path);
    if (!MapDatabase(session, database, {}).done()) std::abort();
  }

  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("lodex-save-bench-" + std::to_string(::getpid()));
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  MappedDatabase database;
};

SheetToSave describedAssays(Worksheet& sheet) {
  SheetToSave described{"assays", &sheet, {}, 0};
  for (int i = sysrow::Table; i <= sysrow::Multiplier; ++i) {
    described.structure.row(i) = i - sysrow::Table + 1;
  }
  described.structure.firstDataRow = 8;
  described.structure.idColumn = 1;
  for (int column = 1; column <= columns; ++column) {
    sheet.TextRC(1, column, column % 2 == 1 ? "Majors" : "Traces");
    sheet.TextRC(2, column, column == 1 ? "SampleNo" : "F" + std::to_string(column));
    sheet.TextRC(3, column, column == 1 ? "TEXT(20)(U,I)" : "SINGLE");
    if (column > 1) sheet.TextRC(7, column, "10000");
  }
  for (int row = 8; row < 8 + rows; ++row) {
    sheet.TextRC(row, 1, "LX-" + std::to_string(row));
    for (int column = 2; column <= columns; ++column) {
      sheet.NumberRC(row, column, row * 0.01 + column);
    }
  }
  return described;
}

void save(Bench& bench, const SaveRequest& request) {
  bench.session.log.clear();
  const SaveOutcome outcome = saveSheets(bench.session, bench.database, request);
  if (outcome.outcome.exitStatus() != 0) std::abort();
}

void append(benchmark::State& state) {
  Bench bench;
  Worksheet sheet;
  const SaveRequest request{{describedAssays(sheet)}, false, false, false};
  int run = 0;
  for (auto _ : state) {
    state.PauseTiming();
    bench.makeDatabase(("append" + std::to_string(++run) + ".mdb").c_str());
    state.ResumeTiming();
    save(bench, request);
  }
}
BENCHMARK(append)->Unit(benchmark::kMillisecond);

void merge(benchmark::State& state) {
  Bench bench;
  Worksheet sheet;
  SaveRequest request{{describedAssays(sheet)}, false, false, false};
  bench.makeDatabase("merge.mdb");
  save(bench, request);
  request.merge = request.overwrite = true;
  for (auto _ : state) save(bench, request);
}
BENCHMARK(merge)->Unit(benchmark::kMillisecond);

// 2,000 tables of 30 fields; the argument tells whether the map file is there.
void map(benchmark::State& state) {
  Bench bench;
  bench.makeDatabase("map.mdb");
  bench.database.connection.BeginTrans();
  for (int table = 1; table <= 2000; ++table) {
    std::string sql = "CREATE TABLE [T" + std::to_string(table) + "] ([SampleNo] TEXT (50)";
    for (int field = 1; field < 30; ++field) {
      sql += ", [F" + std::to_string(table) + "_" + std::to_string(field) + "] SINGLE";
    }
    bench.database.connection.Execute(sql + ", PRIMARY KEY ([SampleNo]))");
  }
  bench.database.connection.CommitTrans();
  const bool stored = state.range(0) != 0;
  const MapRequest request{true, stored, !stored};
  MapDatabase(bench.session, bench.database, {true, false, true});
  for (auto _ : state) {
    if (!MapDatabase(bench.session, bench.database, request).done()) std::abort();
  }
}
BENCHMARK(map)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
