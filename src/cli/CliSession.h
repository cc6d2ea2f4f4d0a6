#pragma once

#include "cli/Commands.h"
#include "db/Connection.h"
#include "session/Session.h"

namespace lodex {

/// A session without a screen: questions take the answers given on the command line, messages go
/// to standard error.
class CliSession {
 public:
  explicit CliSession(CommandContext& context)
      : err_(context.err),
        dialogs_(context.err, context.answers),
        session_(Services{dialogs_, events_, clipboard_}) {
    session_.ReadSession(context.appFolder, true, true);
  }
  Session& session() { return session_; }

  /// Prints a pane of the log to standard error, each line behind `prefix`.
  void printLines(const TextBox& pane, std::string_view prefix = "lodex: ") const;

 private:
  std::ostream& err_;
  ConsoleDialogs dialogs_;
  NoEvents events_;
  MemoryClipboard clipboard_;
  Session session_;
};

/// Opens a database without a session, unless it is a server that needs the session's ini files,
/// and prints what is to be told of the opening to standard error.
void openPlainly(CommandContext& context, Connection& connection, std::string_view path);

}  // namespace lodex
