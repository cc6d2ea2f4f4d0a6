#include "cli/CliSession.h"

#include <ostream>

#include "basic/Text.h"

namespace lodex {

void CliSession::open(Connection& connection, std::string_view path) {
  openDatabase(session_, connection, path);
  printLines(session_.log.txtErr);
}

void CliSession::printLines(const TextBox& pane, std::string_view prefix) const {
  for (const std::string& line : split(pane.text(), "\r\n")) {
    if (!line.empty()) err_ << prefix << line << '\n';
  }
}

}  // namespace lodex
