// "lodex export": a whole database for other programs.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/CliSession.h"
#include "db/Connection.h"
#include "db/Export.h"

namespace lodex {

void addExportCommand(CLI::App& app, CommandContext& context) {
  struct Options {
    std::string database, out;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("export", "write all tables of a database for others");
  command
      ->add_option("DATABASE", options->database,
                   "database file, or NAME.ORA or a connection text for a server")
      ->required();
  command
      ->add_option("OUT", options->out,
                   "a folder for texts with schema.ini and a script, or a workbook (.xlsx)")
      ->required();
  command->callback([options, &context] {
    Connection connection;
    openPlainly(context, connection, options->database);
    context.found.append(exportDatabase(connection, options->out));
  });
}

}  // namespace lodex
