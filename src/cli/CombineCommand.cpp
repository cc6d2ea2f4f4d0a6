// lodex combine: several databases into one.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "cli/CliSession.h"
#include "cli/ConsoleJob.h"
#include "db/CombineDatabases.h"
#include "db/Connection.h"

namespace lodex {
namespace {

struct CombineOptions {
  std::vector<std::string> sources;
  std::string into;
};

void runCombine(const CombineOptions& options, CommandContext& context) {
  CliSession console(context);
  for (const std::string& source : options.sources) {
    if (namesServer(source) || pathExists(source)) continue;
    throw FileError("Database " + source + " does not exist");
  }
  ensureDatabase(options.into);
  for (const std::string& source : options.sources) {
    std::error_code unknown;
    if (std::filesystem::equivalent(nativePath(source), nativePath(options.into), unknown)) {
      context.err << "lodex: " << source << " is the database to add to and not used as a source\n";
    }
  }
  auto job = followProgress(console.session(), context.err);
  const CombineOutcome combined =
      combineDatabases(console.session(), options.sources, options.into);
  job.reset();
  context.out << replaceAll(console.session().log.txtLog.text(), "\r\n", "\n") << '\n';
  if (combined.outcome.aborted()) {
    throw Error("combining was stopped " + combined.outcome.reason +
                "; what was written until then stays");
  }
  if (combined.errors > 0) {
    throw Error(std::to_string(combined.errors) + " records were not written, " +
                std::to_string(combined.written) + " were");
  }
}

}  // namespace

void addCombineCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<CombineOptions>();
  CLI::App* command =
      app.add_subcommand("combine", "merge databases: their tables, fields, indexes and records");
  command
      ->add_option("SOURCES", options->sources,
                   "database files, or NAME.ORA or connection texts for servers")
      ->required();
  command->add_option("--into", options->into, "the database to add to; made if it is missing")
      ->required();
  command->callback([options, &context] { runCombine(*options, context); });
}

}  // namespace lodex
