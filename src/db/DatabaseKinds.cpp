#include "db/DatabaseKinds.h"

#include <array>
#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/Driver.h"
#include "db/Errors.h"
#include "db/drivers/jet/AccessTwin.h"
#include "db/drivers/odbc/OdbcDriver.h"
#include "db/drivers/sqlite/SqliteDriver.h"

namespace lodex {

namespace {

constexpr std::string_view kFileProvider = "Microsoft.Jet.OLEDB.4.0";
constexpr std::string_view kServiceProvider = "MSDAORA";

std::unique_ptr<Driver> openEmbedded(const DatabaseSource& source, Findings&) {
  return openSqliteFile(source.name);
}

std::unique_ptr<Driver> openAccess(const DatabaseSource& source, Findings& found) {
  return openAccessTwin(source.name, found);
}

std::unique_ptr<Driver> openServer(const DatabaseSource& source, Findings&) {
  const ServerLogin login = serverLogin(source.servers, source.name, source.user, source.password);
  return openOdbc(login.shownName, login.connectionText);
}

// The first kind that recognises a name is its kind; files of no known kind, and those that are yet
// to be made, are of the last one.
constexpr std::array kKinds{
    DatabaseKind{kServiceProvider, true, namesService, openServer},
    DatabaseKind{"", true, isConnectionText, openServer},
    DatabaseKind{kFileProvider, false, isAccessFile, openAccess},
    DatabaseKind{kFileProvider, false, isSqliteFile, openEmbedded},
};

bool isFile(std::string_view name) {
  std::error_code failed;
  return std::filesystem::is_regular_file(nativePath(name), failed);
}

}  // namespace

const DatabaseKind& kindOf(std::string_view name) {
  const bool serversToo = !isFile(name);
  for (const DatabaseKind& kind : kKinds) {
    if ((serversToo || !kind.isServer) && kind.recognises(name)) return kind;
  }
  return kKinds.back();
}

const DatabaseKind& kindFor(std::string_view provider, std::string_view name) {
  if (equalsNoCase(provider, kFileProvider)) {
    const DatabaseKind& kind = kindOf(name);
    return kind.isServer ? kKinds.back() : kind;
  }
  for (const DatabaseKind& kind : kKinds) {
    const bool fits = kind.isServer && equalsNoCase(kind.provider, provider);
    if (fits && (!kind.provider.empty() || kind.recognises(name))) return kind;
  }
  throw Error("The connection text names no known provider: " + std::string(provider),
              dberror::BadArgument);
}

bool namesServer(std::string_view name) {
  return kindOf(name).isServer;
}

bool namesDatabase(std::string_view name) {
  return toUpper(name).ends_with("MDB") || kindOf(name).recognises(name);
}

void createDatabase(std::string_view path) {
  createSqliteFile(path);
}

void ensureDatabase(std::string_view name) {
  if (namesServer(name) || pathExists(name)) return;
  try {
    createDatabase(name);
  } catch (const FileError&) {
    if (!pathExists(name)) throw;  // else another program made it meanwhile
  }
}

}  // namespace lodex
