#include "cli/CliSession.h"

#include <ostream>

#include "basic/Text.h"

namespace lodex {

void CliSession::printLines(const TextBox& pane, std::string_view prefix) const {
  for (const std::string& line : split(pane.text(), "\r\n")) {
    if (!line.empty()) err_ << prefix << line << '\n';
  }
}

void openPlainly(CommandContext& context, Connection& connection, std::string_view path) {
  ServerIni servers;
  if (namesServer(path)) {
    CliSession console(context);
    servers = {console.session().record.UserIni, console.session().record.MainIni};
  }
  connection.Open(ConnectionString(path, "", ""), servers);
  for (const std::string& warning : connection.Warnings()) {
    context.err << "lodex: " << warning << '\n';
  }
}

}  // namespace lodex
