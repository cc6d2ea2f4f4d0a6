// lodex map: what tables, fields, keys, links and filters a database has.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "cli/CliSession.h"
#include "db/MapDatabase.h"

namespace lodex {
namespace {

struct MapOptions {
  std::string database;
  bool refresh = false;
};

void printRows(std::ostream& out, std::string_view kind, const Worksheet& sheet) {
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    out << kind;
    for (int column = 1; column <= sheet.LastCol(); ++column) {
      const std::string text = sheet.TextRC(row, column);
      if (text.empty()) break;
      out << '\t' << text;
    }
    out << '\n';
  }
}

void runMap(const MapOptions& options, CommandContext& context) {
  CliSession console(context);
  Session& session = console.session();
  MappedDatabase database;
  database.path = options.database;
  const MapRequest request{true, !options.refresh, options.refresh};
  const Outcome outcome = MapDatabase(session, database, request);
  console.printLines(session.log.txtErr.text());
  if (!outcome.done()) throw Error("Error in opening database " + shownName(options.database));
  printRows(context.out, "table", database.map.F1Key2);
  printRows(context.out, "key", database.map.F1Avain);
  printRows(context.out, "link", database.map.F1Linkki);
  for (const std::string& filter : database.map.FilterList) {
    context.out << "filter\t" << filter << '\n';
  }
}

}  // namespace

void addMapCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<MapOptions>();
  CLI::App* command = app.add_subcommand(
      "map", "list a database's tables with their fields, keys, links and filters");
  command
      ->add_option("DATABASE", options->database,
                   "database file, or NAME.ORA or a connection text for a server")
      ->required();
  command->add_flag("--refresh", options->refresh,
                    "map the database afresh, and write the map file (.ake) beside it anew");
  command->callback([options, &context] { runMap(*options, context); });
}

}  // namespace lodex
