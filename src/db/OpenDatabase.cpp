#include "db/OpenDatabase.h"

namespace lodex {

void openDatabase(Session& session, Connection& connection, std::string_view path) {
  connection.Open(ConnectionString(path, "", ""), {session.record.UserIni, session.record.MainIni});
  for (const std::string& warning : connection.Warnings()) {
    session.log.LisaaLog(warning, LogKind::Both);
  }
  if (!connection.Warnings().empty()) session.log.show();
}

}  // namespace lodex
