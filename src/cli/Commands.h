#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "basic/Findings.h"

namespace CLI {
class App;
}

namespace lodex {

/// What every command of `lodex` gets.
struct CommandContext {
  std::ostream& out;                 // data
  std::ostream& err;                 // messages
  std::vector<std::string> answers;  // given in advance with --answer
  std::string appFolder;             // the folder of the program; Geo/ is beside it
  /// What the command noticed. It is printed when the command has ended, and an error among it
  /// makes the exit status 1. What a CliSession noticed is added when that goes.
  Findings found{};
};

/// Prints what the command noticed to standard error, a line for each finding, and returns the exit
/// status of a command that came to its end: 1 when something was left out or lost, else 0.
int printFindings(const CommandContext& context);

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
