#pragma once

#include <string>
#include <vector>

namespace lodex {

/// How a run of a helper program ended. `status` is its exit status, -1 when it crashed, was killed
/// or made no progress for too long; `lines` what it wrote to standard error.
struct HelperRun {
  int status = -1;
  bool stalled = false;
  std::vector<std::string> lines;
};

/// Runs a program with arguments and waits for it. Anything that it writes to standard output
/// counts as progress; without any for `patience` milliseconds it is killed. Throws Error when the
/// program cannot be started.
HelperRun runHelper(const std::string& program, const std::vector<std::string>& arguments,
                    int patience);

}  // namespace lodex
