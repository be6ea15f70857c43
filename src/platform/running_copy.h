// Which copy of the program is the first, and asking that one for its window.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/result.h"

namespace quendle::platform {

// Held by the first copy as long as it lives. Copies of different users never meet, nor do those with different keys.
// What a copy that crashed has left behind does not count.
//
// POSIX: a lock and a socket, named by a hash of the key, in the session's runtime folder; without one that is
// this user's alone in a folder "quendle-UID" of the temporary folder, which is made 0700 and refused when it
// is anybody else's or open to others.
class RunningCopy {
 public:
  // True with `*copy` set: this is the first one. True with null: another one is running; it has been asked to show its
  // window. A failure means that nobody can tell.
  static Result Claim(const std::string& key, std::unique_ptr<RunningCopy>* copy);
  ~RunningCopy();
  RunningCopy(const RunningCopy&) = delete;
  RunningCopy& operator=(const RunningCopy&) = delete;

  // What becomes readable when another copy asks for the window: a file descriptor; -1 where the system brings windows
  // to the front by itself.
  std::intptr_t WaitHandle() const;

  // Has another copy asked since the last call? Never waits. Requests are taken only from processes of the same user.
  bool TakeRequest() const;

 private:
  struct State;
  explicit RunningCopy(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace quendle::platform
