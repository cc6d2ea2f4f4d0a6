// "lodex convert": from any workbook file to any other.
#include <CLI/CLI.hpp>
#include <memory>

#include "cli/Commands.h"
#include "cli/WorkbookFiles.h"
#include "worksheet/Worksheet.h"

namespace lodex {

void addConvertCommand(CLI::App& app, CommandContext& context) {
  struct Options {
    std::string in, out;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("convert", "read a workbook and write it as another kind");
  command->add_option("IN", options->in, "the file to read")->required();
  command->add_option("OUT", options->out, "the file to write: txt, tsv, csv, xls, xlsx or vts")
      ->required();
  command->callback([options, &context] {
    Worksheet book;
    readAnyFile(options->in, book, context.found);
    writeByEnding(options->out, book);
  });
}

}  // namespace lodex
