#include "db/OpenDatabase.h"

namespace lodex {

void openDatabase(Session& session, Connection& connection, std::string_view name) {
  connection.Open(ConnectionString(name, "", ""), {session.record.UserIni, session.record.MainIni});
  Findings noticed = connection.Noticed();
  noticed.nameFile(shownName(name));
  session.notice(noticed);
  if (!noticed.empty()) session.log.show();
}

}  // namespace lodex
