// lodex-jet: copies an Access file into a new SQLite file, as a process of its own with limits on
// what it may use, since Access files come from anywhere and may be damaged. Dots on standard
// output show that it goes on. What it noticed is in the new file; the reason of a failure is the
// last line on standard error.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "db/drivers/jet/AccessCopy.h"

namespace {

constexpr rlim_t kMemory = rlim_t{1} << 30;
constexpr rlim_t kLeastOutput = rlim_t{256} << 20;
// Text of one byte a character takes up to three, and indexes come on top; what grows more is a
// file that refers to the same memo again and again.
constexpr rlim_t kGrowth = 16;

void limit(int resource, rlim_t most) {
  const rlimit value{most, most};
  ::setrlimit(resource, &value);
}

void limitMyself(const char* source) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::signal(SIGXFSZ, SIG_IGN);  // a full file is then an error of the write
  limit(RLIMIT_CORE, 0);
  std::error_code failed;
  const auto size = std::filesystem::file_size(source, failed);
  limit(RLIMIT_FSIZE, kLeastOutput + (failed ? 0 : size * kGrowth));
#if !defined(__SANITIZE_ADDRESS__)
  limit(RLIMIT_AS, kMemory);
#endif
}

void showProgress() {
  if (::write(STDOUT_FILENO, ".", 1) < 0) ::_exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: lodex-jet ACCESS-FILE NEW-SQLITE-FILE" << std::endl;
    return 2;
  }
  limitMyself(argv[1]);
  try {
    lodex::copyAccessFile(argv[1], argv[2], showProgress);
    return 0;
  } catch (const std::bad_alloc&) {
    std::cerr << "it needs more memory than a sound file would" << std::endl;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << std::endl;
  }
  return 1;
}
