#include "db/Connection.h"

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Driver.h"
#include "db/Errors.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

constexpr int kBusyTimeout = 3000;

void refuseZeroCharacter(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    throw Error("A database statement cannot hold a character of code 0", dberror::BadArgument);
  }
}

// All between "Password=" and the data source, so that a password may hold a ";".
std::string_view passwordIn(std::string_view connectionString) {
  constexpr std::string_view kStart = ";Password=";
  const size_t start = connectionString.find(kStart);
  const size_t end = connectionString.rfind(";Data Source=");
  if (start == std::string_view::npos || end == std::string_view::npos || end < start) return {};
  const size_t from = start + kStart.size();
  return connectionString.substr(from, end - from);
}

}  // namespace

std::string ConnectionString(std::string_view path, std::string_view user,
                             std::string_view password) {
  const DatabaseKind& kind = kindOf(path);
  if (kind.provider.empty()) return withLogin(path, user, password);
  const std::string start = "Provider=" + std::string(kind.provider);
  if (!kind.isServer) return start + ";Data Source=" + std::string(path);
  return start + ";User ID=" + std::string(user) + ";Password=" + std::string(password) +
         ";Data Source=" + std::string(path.substr(0, path.size() - 4));
}

std::string connectionItem(std::string_view connectionString, std::string_view key) {
  size_t start = 0;
  while (start < connectionString.size()) {
    size_t end = connectionString.find(';', start);
    if (end == std::string_view::npos) end = connectionString.size();
    const std::string_view piece = connectionString.substr(start, end - start);
    const size_t equals = piece.find('=');
    if (equals != std::string_view::npos) {
      const std::string_view name = trimBlanks(piece.substr(0, equals));
      const bool isSource = equalsNoCase(name, "Data Source");
      if (equalsNoCase(name, key)) {
        return std::string(isSource ? connectionString.substr(start + equals + 1)
                                    : piece.substr(equals + 1));
      }
      if (isSource) break;
    }
    start = end + 1;
  }
  return {};
}

std::string quoteName(std::string_view name) {
  refuseZeroCharacter(name);
  if (name.find(']') == std::string_view::npos) return "[" + std::string(name) + "]";
  return "`" + replaceAll(name, "`", "``") + "`";
}

std::string quoteText(std::string_view text) {
  refuseZeroCharacter(text);
  return "'" + replaceAll(text, "'", "''") + "'";
}

Connection::Connection() = default;
Connection::~Connection() = default;
Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&&) noexcept = default;

void Connection::Open(std::string_view connectionString, const ServerIni& servers) {
  if (driver_) throw Error("The connection is open already", dberror::ObjectOpen);
  noticed_.clear();
  const std::string provider = connectionItem(connectionString, "Provider");
  DatabaseSource source;
  source.servers = servers;
  if (provider.empty()) {
    source.name = connectionString;
  } else {
    source.name = connectionItem(connectionString, "Data Source");
    source.user = connectionItem(connectionString, "User ID");
    source.password = passwordIn(connectionString);
  }
  driver_ = kindFor(provider, source.name).open(source, noticed_);
  driver_->busyTimeout(kBusyTimeout);
}

void Connection::Close() {
  driver_.reset();
}

Driver& Connection::driver() const {
  if (!driver_) throw Error("The connection is closed", dberror::ObjectClosed);
  return *driver_;
}

std::string Connection::File() const {
  return driver().file();
}

bool Connection::IsReadOnly() const {
  return driver().isReadOnly();
}

std::int64_t Connection::Execute(std::string_view sql, const std::vector<FieldValue>& parameters) {
  return driver().execute(sql, parameters);
}

std::unique_ptr<Recordset> Connection::OpenRecordset(std::string_view sql, CursorKind cursor,
                                                     const std::vector<FieldValue>& parameters) {
  return std::make_unique<Recordset>(driver().query(sql, parameters), cursor);
}

std::unique_ptr<Recordset> Connection::OpenSchema(SchemaKind kind) {
  return std::make_unique<Recordset>(driver().schema(kind), CursorKind::Client);
}

void Connection::BeginTrans() {
  driver().begin();
}

void Connection::CommitTrans() {
  driver().commit();
}

void Connection::RollbackTrans() {
  driver().rollback();
}

void Connection::BusyTimeout(int milliseconds) {
  driver().busyTimeout(milliseconds);
}

Transaction::~Transaction() {
  if (!connection_ || !connection_->IsOpen()) return;
  try {
    connection_->RollbackTrans();
  } catch (const Error&) {
    // A failed statement may have ended the transaction already; nothing is left to undo.
  }
}

void Transaction::commit() {
  connection_->CommitTrans();
  connection_ = nullptr;
}

}  // namespace lodex
