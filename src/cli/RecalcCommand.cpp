// "lodex recalc": a full recalculation between reading and writing.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/Commands.h"
#include "cli/WorkbookFiles.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

std::string cells(size_t count) {
  return std::to_string(count) + (count == 1 ? " formula cell" : " formula cells");
}

void printReport(const RecalcReport& report, std::ostream& err) {
  err << cells(report.formulas) << ", " << report.changed << " changed\n";
  if (report.withoutValue > 0) {
    err << cells(report.withoutValue) << " had no value in the file\n";
  }
  if (report.notComputed == 0) return;
  err << cells(report.notComputed) << " could not be computed:\n";
  for (const auto& [problem, count] : report.problems)
    err << "  " << problem << " (" << cells(count) << ")\n";
}

}  // namespace

void addRecalcCommand(CLI::App& app, CommandContext& context) {
  struct Options {
    std::string in, out;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("recalc", "recalculate a workbook and write it");
  command->add_option("IN", options->in, "the file to read")->required();
  command->add_option("OUT", options->out, "the file to write, its kind by its ending")->required();
  command->footer(
      "Standard error lists how many formula cells changed by more than 1e-9 of their value, and "
      "what could not be computed; such cells keep the value that the file gave.");
  command->callback([options, &context] {
    Worksheet book;
    readAnyFile(options->in, book, context.found);
    book.Recalc();
    writeByEnding(options->out, book);
    printReport(book.recalcReport(), context.err);
  });
}

}  // namespace lodex
