#pragma once

#include <QLocalServer>
#include <QObject>

namespace lodex {

/// Finds out whether the user runs the program already, and talks to that process.
class SingleInstance : public QObject {
  Q_OBJECT
 public:
  SingleInstance();

  /// True when another process answers.
  bool otherRuns() const;
  /// Sends a text to the other process: "raise", or "file;<path>". False when none answers.
  static bool send(const QString& text);
  /// Listens for such texts from now on, unless another process does.
  void listen();

 Q_SIGNALS:
  void received(const QString& text);

 private:
  QLocalServer server_;
};

}  // namespace lodex
