#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "platform/process/quiet_errors.h"

namespace quendle::platform {

QuietErrors::QuietErrors() : kept_(-1) {
  static const int nowhere = _open("NUL", _O_WRONLY | _O_BINARY | _O_NOINHERIT);
  _lock_file(stderr);
  std::fflush(stderr);
  if (nowhere != -1) kept_ = _dup(_fileno(stderr));
  if (kept_ != -1) _dup2(nowhere, _fileno(stderr));
}

QuietErrors::~QuietErrors() {
  std::fflush(stderr);
  if (kept_ != -1) {
    _dup2(kept_, _fileno(stderr));
    _close(kept_);
  }
  _unlock_file(stderr);
}

}  // namespace quendle::platform
