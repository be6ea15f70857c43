// Keeping a library from the error stream.
#pragma once

namespace quendle::platform {

// While it lives, what this thread writes to the error stream is lost, and other threads wait with what they write to it
// (by the C library's functions), so that nothing of theirs is lost with it. For the calls of a library that prints on its
// own account what is told as a reason anyway. Where the stream cannot be put aside it stays as it is.
class QuietErrors {
 public:
  QuietErrors();
  ~QuietErrors();
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  int kept_;  // the stream's own descriptor; -1: it was not put aside
};

}  // namespace quendle::platform
