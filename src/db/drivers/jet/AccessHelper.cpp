#include "db/drivers/jet/AccessHelper.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "basic/Error.h"
#include "basic/Text.h"

extern char** environ;

namespace lodex {

namespace {

constexpr size_t kMostText = 64 * 1024;

class Pipe {
 public:
  Pipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw Error("No pipe can be opened");
    read_ = ends[0];
    write_ = ends[1];
  }
  ~Pipe() {
    closeRead();
    closeWrite();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  int readEnd() const { return read_; }
  int writeEnd() const { return write_; }
  void closeRead() { closeOne(read_); }
  void closeWrite() { closeOne(write_); }

 private:
  static void closeOne(int& end) {
    if (end >= 0) ::close(end);
    end = -1;
  }
  int read_ = -1;
  int write_ = -1;
};

pid_t start(const std::string& program, const std::vector<std::string>& arguments, int output,
            int errors) {
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  pid_t child = -1;
  const int failed =
      ::posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failed) {
    throw Error("The program " + program + " cannot be started: " + std::strerror(failed));
  }
  return child;
}

// Takes what is in a pipe; false at its end. Text beyond a limit is dropped.
bool drain(int from, std::string* text) {
  std::array<char, 4096> piece;
  const ssize_t count = ::read(from, piece.data(), piece.size());
  if (count < 0) return errno == EINTR;
  if (text && text->size() < kMostText) text->append(piece.data(), static_cast<size_t>(count));
  return count > 0;
}

// Reads both pipes to their ends; false when nothing came for too long.
bool follow(Pipe& output, Pipe& errors, int patience, std::string& text) {
  while (output.readEnd() >= 0 || errors.readEnd() >= 0) {
    std::array<pollfd, 2> ends{pollfd{output.readEnd(), POLLIN, 0},
                               pollfd{errors.readEnd(), POLLIN, 0}};
    const int ready = ::poll(ends.data(), ends.size(), patience);
    if (ready == 0) return false;
    if (ready < 0 && errno != EINTR) return false;
    if (ready > 0 && ends[0].revents && !drain(output.readEnd(), nullptr)) output.closeRead();
    if (ready > 0 && ends[1].revents && !drain(errors.readEnd(), &text)) errors.closeRead();
  }
  return true;
}

}  // namespace

HelperRun runHelper(const std::string& program, const std::vector<std::string>& arguments,
                    int patience) {
  Pipe output;
  Pipe errors;
  const pid_t child = start(program, arguments, output.writeEnd(), errors.writeEnd());
  output.closeWrite();
  errors.closeWrite();
  HelperRun run;
  std::string text;
  run.stalled = !follow(output, errors, patience, text);
  if (run.stalled) ::kill(child, SIGKILL);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!run.stalled && WIFEXITED(status)) run.status = WEXITSTATUS(status);
  for (std::string& line : split(text, "\n")) {
    if (!line.empty()) run.lines.push_back(std::move(line));
  }
  return run;
}

}  // namespace lodex
