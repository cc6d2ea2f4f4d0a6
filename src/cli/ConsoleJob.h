#pragma once

#include <chrono>
#include <iosfwd>
#include <memory>
#include <string_view>

namespace lodex {

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
  bool interrupted() const;

 private:
  std::ostream& err_;
  bool terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_;
};

class Session;

/// A job that shows the session's progress bar and aborts its work when it is interrupted. It ends
/// when the result goes.
std::shared_ptr<ConsoleJob> followProgress(Session& session, std::ostream& err);

}  // namespace lodex
