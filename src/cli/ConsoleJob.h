#pragma once

#include <chrono>
#include <iosfwd>
#include <memory>
#include <string_view>

#include "form/EventPump.h"
#include "form/Observers.h"

namespace lodex {

class Progress;
class Session;

/// A long job of a command: a bar on standard error where that is a terminal, and a way to end the
/// job early. While the job lives, the first Ctrl-C (or request to terminate) only marks it as
/// interrupted; the next one ends the program as usual. There is one job at a time.
class ConsoleJob {
 public:
  explicit ConsoleJob(std::ostream& err);
  /// Takes the bar away and gives Ctrl-C its usual meaning back.
  ~ConsoleJob();
  ConsoleJob(const ConsoleJob&) = delete;
  ConsoleJob& operator=(const ConsoleJob&) = delete;

  /// Shows how far the job is: `step` of `steps`, from 1.
  void show(std::string_view text, int step, int steps);
  static bool interrupted();
  /// Shows the session's progress bar.
  void follow(Session& session);

 private:
  std::ostream& err_;
  bool terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_;
  Subscription following_;
};

/// The events of a session without a screen: an interrupt of the job at hand is a press of Abort,
/// and is answered at once on standard error.
class ConsoleEvents : public EventPump {
 public:
  ConsoleEvents(std::ostream& err, Progress& progress) : err_(err), progress_(progress) {}
  void pump() override;

 private:
  std::ostream& err_;
  Progress& progress_;
  bool answered_ = false;
};

/// A job that follows the session's progress until the result goes.
std::unique_ptr<ConsoleJob> followProgress(Session& session, std::ostream& err);

}  // namespace lodex
