#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "platform/process/quiet_errors.h"

namespace quendle::platform {

QuietErrors::QuietErrors() : kept_(-1) {
  static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  flockfile(stderr);
  std::fflush(stderr);
  if (nowhere != -1) kept_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (kept_ != -1) dup2(nowhere, STDERR_FILENO);
}

QuietErrors::~QuietErrors() {
  std::fflush(stderr);
  if (kept_ != -1) {
    dup2(kept_, STDERR_FILENO);
    close(kept_);
  }
  funlockfile(stderr);
}

}  // namespace quendle::platform
