#include "gui/shell/SingleInstance.h"

#include <QLocalSocket>

namespace lodex {
namespace {

constexpr int patience = 300;          // milliseconds
constexpr qint64 longestText = 65536;  // a path and a word

// Each user has an own instance.
QString serverName() {
  return QStringLiteral("lodexgeo-") +
         QString::fromUtf8(qgetenv("USER").isEmpty() ? qgetenv("LOGNAME") : qgetenv("USER"));
}

bool connectTo(QLocalSocket& socket) {
  socket.connectToServer(serverName());
  return socket.waitForConnected(patience);
}

}  // namespace

SingleInstance::SingleInstance() {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, [this] {
    QLocalSocket* socket = server_.nextPendingConnection();
    connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
      const QString text = QString::fromUtf8(socket->read(longestText));
      socket->deleteLater();
      if (!text.isEmpty()) Q_EMIT received(text);
    });
  });
}

bool SingleInstance::otherRuns() const {
  if (server_.isListening()) return false;
  QLocalSocket socket;
  return connectTo(socket);
}

bool SingleInstance::send(const QString& text) {
  QLocalSocket socket;
  if (!connectTo(socket)) return false;
  socket.write(text.toUtf8());
  const bool sent = socket.waitForBytesWritten(patience);
  socket.disconnectFromServer();
  return sent;
}

void SingleInstance::listen() {
  if (server_.isListening() || otherRuns()) return;
  QLocalServer::removeServer(serverName());  // what a crashed process left
  server_.listen(serverName());
}

}  // namespace lodex
