#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace lodex {

struct CommandRun {
  int status = -1;
  std::string text;
};

/// Runs `lodex` with the arguments, as a shell would take them, and reads its standard output.
inline CommandRun runLodex(const std::string& arguments) {
  CommandRun outcome;
  FILE* pipe = ::popen((std::string(LODEX_BIN_DIR) + "/lodex " + arguments).c_str(), "r");
  if (!pipe) return outcome;
  char buffer[4096];
  while (const size_t got = std::fread(buffer, 1, sizeof buffer, pipe)) {
    outcome.text.append(buffer, got);
  }
  outcome.status = WEXITSTATUS(::pclose(pipe));
  return outcome;
}

}  // namespace lodex
