#pragma once

#include "cli/Commands.h"
#include "session/Session.h"

namespace lodex {

/// A session without a screen: questions take the answers given on the command line, messages go
/// to standard error.
class CliSession {
 public:
  explicit CliSession(CommandContext& context)
      : dialogs_(context.err, context.answers), session_(Services{dialogs_, events_, clipboard_}) {
    session_.ReadSession(context.appFolder, true, true);
  }
  Session& session() { return session_; }

 private:
  ConsoleDialogs dialogs_;
  NoEvents events_;
  MemoryClipboard clipboard_;
  Session session_;
};

}  // namespace lodex
