#include "db/OpenDatabase.h"

#include "basic/Error.h"
#include "db/Errors.h"

namespace lodex {

void openDatabase(Session& session, Connection& connection, std::string_view name) {
  connection.Open(ConnectionString(name, "", ""), {session.record.UserIni, session.record.MainIni});
  Findings noticed = connection.Noticed();
  noticed.nameFile(shownName(name));
  session.notice(noticed);
  if (!noticed.empty()) session.log.show();
}

void requireWritable(const Connection& connection, std::string_view name) {
  if (!connection.IsReadOnly()) return;
  throw Error("Database " + shownName(name) + " is write-protected", dberror::Unspecified);
}

}  // namespace lodex
