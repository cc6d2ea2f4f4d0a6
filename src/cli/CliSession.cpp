#include "cli/CliSession.h"

#include <ostream>

#include "basic/Text.h"

namespace lodex {

CliSession::CliSession(CommandContext& context)
    : context_(context),
      dialogs_(context.err, context.answers),
      events_(context.err, session_.progress),
      session_(Services{dialogs_, events_, clipboard_}) {
  session_.ReadSession(context.appFolder, true, true);
}

CliSession::~CliSession() {
  context_.found.append(session_.found);
}

void CliSession::printLines(std::string_view pane, std::string_view prefix) const {
  for (const std::string& line : split(pane, "\r\n")) {
    if (line.empty() || session_.wroteAsFinding(line)) continue;
    context_.err << prefix << line << '\n';
  }
}

void openPlainly(CommandContext& context, Connection& connection, std::string_view path) {
  ServerIni servers;
  if (namesServer(path)) {
    CliSession console(context);
    servers = {console.session().record.UserIni, console.session().record.MainIni};
  }
  connection.Open(ConnectionString(path, "", ""), servers);
  Findings noticed = connection.Noticed();
  noticed.nameFile(shownName(path));
  context.found.append(noticed);
}

}  // namespace lodex
