#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lodex {

/// What every command of `lodex` gets: where data and messages go, the answers given in advance
/// with --answer, and the folder of the program, beside which Geo/ stands.
struct CommandContext {
  std::ostream& out;
  std::ostream& err;
  std::vector<std::string> answers;
  std::string appFolder;
};

/// Each adds one sub-command with its options. Its callback throws Error to fail with status 1.
void addCellsCommand(CLI::App& app, CommandContext& context);
void addCalcCommand(CLI::App& app, CommandContext& context);
void addConvertCommand(CLI::App& app, CommandContext& context);
void addRecalcCommand(CLI::App& app, CommandContext& context);
void addExportCommand(CLI::App& app, CommandContext& context);
void addIdentifyCommand(CLI::App& app, CommandContext& context);
void addMethodsCommand(CLI::App& app, CommandContext& context);
void addMineralsCommand(CLI::App& app, CommandContext& context);
void addMapCommand(CLI::App& app, CommandContext& context);
void addSaveCommand(CLI::App& app, CommandContext& context);
void addCombineCommand(CLI::App& app, CommandContext& context);
void addModalCommand(CLI::App& app, CommandContext& context);
void addSqlCommand(CLI::App& app, CommandContext& context);

}  // namespace lodex
