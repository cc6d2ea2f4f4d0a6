#include "cli/ConsoleJob.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "basic/Text.h"
#include "session/Session.h"

namespace lodex {
namespace {

constexpr int barWidth = 24;
constexpr std::chrono::milliseconds pause{100};  // between two updates of the bar

volatile sig_atomic_t wasInterrupted = 0;

void noteInterrupt(int) {
  wasInterrupted = 1;
}

void catchInterrupts() {
  wasInterrupted = 0;
  struct sigaction once {};
  once.sa_handler = noteInterrupt;
  // A second one ends the program even where the job does not look for the first.
  once.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (const int number : {SIGINT, SIGTERM}) {
    struct sigaction present {};
    ::sigaction(number, nullptr, &present);
    // A program that was started with the signal ignored should not react to it.
    if (present.sa_handler == SIG_IGN) continue;
    ::sigaction(number, &once, nullptr);
    // Some programs leave signals blocked in those they start.
    sigset_t caught;
    ::sigemptyset(&caught);
    ::sigaddset(&caught, number);
    ::sigprocmask(SIG_UNBLOCK, &caught, nullptr);
  }
}

void leaveInterrupts() {
  for (const int number : {SIGINT, SIGTERM}) {
    struct sigaction present {};
    ::sigaction(number, nullptr, &present);
    if (present.sa_handler == noteInterrupt) ::signal(number, SIG_DFL);
  }
  wasInterrupted = 0;
}

size_t terminalWidth() {
  constexpr size_t usual = 80;
  winsize size{};
  const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : usual;
}

}  // namespace

ConsoleJob::ConsoleJob(std::ostream& err) : err_(err), terminal_(::isatty(STDERR_FILENO) == 1) {
  catchInterrupts();
}

ConsoleJob::~ConsoleJob() {
  leaveInterrupts();
  if (shown_) err_ << "\r\033[K" << std::flush;
}

void ConsoleJob::show(std::string_view text, int step, int steps) {
  const auto now = std::chrono::steady_clock::now();
  if (!terminal_ || steps < 1 || now < next_) return;
  next_ = now + pause;
  shown_ = true;
  const double done = std::clamp((step - 1.0) / steps, 0.0, 1.0);
  const auto filled = static_cast<size_t>(done * barWidth);
  std::u32string line =
      decodeUtf8("[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "] " +
                 std::to_string(static_cast<int>(done * 100)) + " % ");
  line += decodeUtf8(text);
  line.resize(std::min(line.size(), terminalWidth() - 1));
  err_ << '\r' << encodeUtf8(line) << "\033[K" << std::flush;
}

bool ConsoleJob::interrupted() {
  return wasInterrupted != 0;
}

void ConsoleEvents::pump() {
  if (!ConsoleJob::interrupted()) return;
  progress_.AbortFlag = true;
  if (answered_) return;
  answered_ = true;
  err_ << "\nlodex: stopping, what is finished is kept; Ctrl-C again ends at once" << std::endl;
}

void ConsoleJob::follow(Session& session) {
  following_ = session.progress.bar.onChange([this, &session] {
    Progress& progress = session.progress;
    if (progress.bar.value() == 0) return;  // the end of a job
    show(progress.txtInfo.caption(), progress.bar.value(), progress.bar.maximum());
  });
}

std::unique_ptr<ConsoleJob> followProgress(Session& session, std::ostream& err) {
  auto job = std::make_unique<ConsoleJob>(err);
  job->follow(session);
  return job;
}

}  // namespace lodex
