#include "db/OpenDatabase.h"

#include <array>
#include <filesystem>
#include <fstream>

#include "basic/Files.h"
#include "basic/Text.h"
#include "db/drivers/jet/AccessTwin.h"

namespace lodex {
namespace {

bool isSqliteFile(std::string_view path) {
  constexpr std::string_view mark("SQLite format 3\0", 16);
  const std::filesystem::path native = nativePath(path);
  std::error_code failed;
  // Reading a pipe would take its text away.
  if (!std::filesystem::is_regular_file(native, failed)) return false;
  std::array<char, mark.size()> start{};
  std::ifstream(native, std::ios::binary).read(start.data(), start.size());
  return std::string_view(start.data(), start.size()) == mark;
}

}  // namespace

bool isDatabaseFile(std::string_view path) {
  return toUpper(path).ends_with("MDB") || isAccessFile(path) || isSqliteFile(path);
}

void openDatabase(Session& session, Connection& connection, std::string_view path) {
  connection.Open(ConnectionString(path, "", ""), {session.record.UserIni, session.record.MainIni});
  for (const std::string& warning : connection.Warnings()) {
    session.log.LisaaLog(warning, LogKind::Both);
  }
  if (!connection.Warnings().empty()) session.log.show();
}

}  // namespace lodex
