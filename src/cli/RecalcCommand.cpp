// "lodex recalc": a full recalculation between reading and writing.
#include <CLI/CLI.hpp>
#include <memory>

#include "cli/Commands.h"
#include "cli/WorkbookFiles.h"
#include "worksheet/Worksheet.h"

namespace lodex {

void addRecalcCommand(CLI::App& app, CommandContext&) {
  struct Options {
    std::string in, out;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("recalc", "recalculate a workbook and write it");
  command->add_option("IN", options->in, "the file to read")->required();
  command->add_option("OUT", options->out, "the file to write, its kind by its ending")->required();
  command->callback([options] {
    Worksheet book;
    readAnyFile(options->in, book);
    book.Recalc();
    writeByEnding(options->out, book);
  });
}

}  // namespace lodex
