#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "basic/Findings.h"
#include "db/Servers.h"

namespace lodex {

class Driver;

/// What a driver needs to know of the database that it opens.
struct DatabaseSource {
  std::string name;  // a path, the name of a service or a connection text
  std::string user;
  std::string password;
  ServerIni servers;
};

/// A kind of database. A new kind is a row of the table in DatabaseKinds.cpp and a driver
/// (db/Driver.h).
struct DatabaseKind {
  /// The "Provider" of its connection strings; "" where the name is a connection string itself.
  std::string_view provider;
  bool isServer = false;
  /// Whether a name is of this kind: a file by its content, a server by the form of its name.
  bool (*recognises)(std::string_view name) = nullptr;
  /// Opens a database that is there. Adds to `found` what the user should know of the opening.
  std::unique_ptr<Driver> (*open)(const DatabaseSource& source, Findings& found) = nullptr;
};

/// The kind of the database that a name means. An existing file wins over words in its path
/// and is detected from its content. A name without a file is a service ("LAB.ORA"), a connection
/// text ("Driver=...;Servername=..." or "DSN=..."), or else a file that is yet to be made.
const DatabaseKind& kindOf(std::string_view name);

/// The kind for a connection string of Connection::Open, given its provider and the name of its
/// database. Throws Error for a provider that nobody knows.
const DatabaseKind& kindFor(std::string_view provider, std::string_view name);

/// True when the name is that of a server and not of a file.
bool namesServer(std::string_view name);

/// True when the name is that of a database and not of a sheet: a server, a file that is one by its
/// content, and any that is called .mdb.
bool namesDatabase(std::string_view name);

/// Makes an empty database file. Throws FileError if there is a file already.
void createDatabase(std::string_view path);

/// Makes an empty database file unless there is a file, or the name is that of a server.
void ensureDatabase(std::string_view name);

}  // namespace lodex
