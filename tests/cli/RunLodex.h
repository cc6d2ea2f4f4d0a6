#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace lodex {

struct CommandRun {
  int status = -1;
  std::string text;
};

/// Runs a command line of the shell and reads its standard output.
inline CommandRun runShell(const std::string& line) {
  CommandRun run;
  FILE* pipe = ::popen(line.c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  while (const size_t got = std::fread(buffer, 1, sizeof buffer, pipe)) {
    run.text.append(buffer, got);
  }
  run.status = WEXITSTATUS(::pclose(pipe));
  return run;
}

/// Runs `lodex` with the arguments, as a shell would take them, and reads its standard output.
inline CommandRun runLodex(const std::string& arguments) {
  return runShell(std::string(LODEX_BIN_DIR) + "/lodex " + arguments);
}

/// The same with a signal that is there as soon as the command catches it, so that nothing depends
/// on how fast it works; gives what goes to standard error.
inline CommandRun runInterrupted(const std::string& arguments, int signal) {
  CommandRun run;
  int ends[2];
  if (::pipe(ends) != 0) return run;
  const std::string line = std::string("exec ") + LODEX_BIN_DIR + "/lodex " + arguments;
  const pid_t child = ::fork();
  if (child == 0) {
    // The signal waits, blocked, until the command looks for interrupts.
    sigset_t waiting;
    ::sigemptyset(&waiting);
    ::sigaddset(&waiting, signal);
    ::sigprocmask(SIG_BLOCK, &waiting, nullptr);
    ::signal(signal, SIG_DFL);
    ::kill(::getpid(), signal);
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
    ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(ends[1]);
  char buffer[4096];
  for (ssize_t got = 0; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;) {
    run.text.append(buffer, static_cast<size_t>(got));
  }
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return run;
}

}  // namespace lodex
