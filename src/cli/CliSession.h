#pragma once

#include "cli/Commands.h"
#include "cli/ConsoleJob.h"
#include "db/Connection.h"
#include "session/Session.h"

namespace lodex {

/// A session without a screen: questions take the answers given on the command line, messages go
/// to standard error.
class CliSession {
 public:
  explicit CliSession(CommandContext& context);
  /// Hands what the session noticed to the command's findings.
  ~CliSession();
  CliSession(const CliSession&) = delete;
  CliSession& operator=(const CliSession&) = delete;

  Session& session() { return session_; }

  /// Prints the text of a pane of the log to standard error, `prefix` before each line. Findings
  /// are left out: they are printed when the command has ended.
  void printLines(std::string_view pane, std::string_view prefix = "lodex: ") const;

 private:
  CommandContext& context_;
  ConsoleDialogs dialogs_;
  ConsoleEvents events_;
  MemoryClipboard clipboard_;
  Session session_;
};

/// Opens a database without a session, unless it is a server that needs the session's ini files,
/// and prints what the opening noticed to standard error.
void openPlainly(CommandContext& context, Connection& connection, std::string_view path);

}  // namespace lodex
