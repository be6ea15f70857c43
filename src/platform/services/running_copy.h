// Which copy of the program is the first, and asking that one for its window.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/services/left_paths.h"
#include "reasons/result.h"

namespace quendle::platform {

// Held by the first copy as long as it lives. Copies of different users never meet, nor do those with different keys.
// What a copy that crashed has left behind does not count.
//
// POSIX: a lock and a socket, named by a hash of the key, in the session's runtime folder; without one that is
// this user's alone in a folder "quendle-UID" of the temporary folder, which is made 0700 and refused when it
// is anybody else's or open to others.
//
// Windows: an event of the session, named by a hash of the user and the key. Copies in different sessions do not meet.
class RunningCopy {
 public:
  // True with `*copy` set: this is the first one. True with null: another one is running; it has been asked to show its
  // window, and told of `paths`, which are done by nobody. A failure means that nobody can tell. Windows: a window of it
  // that is there has also been brought to the front, restored if it was an icon, which only a program that the user has
  // just started may do; and when the system lets no request through because the other one runs with more rights, that is
  // a failure.
  static Result Claim(const std::string& key, const std::vector<std::string>& paths,
                      std::unique_ptr<RunningCopy>* copy);
  ~RunningCopy();
  RunningCopy(const RunningCopy&) = delete;
  RunningCopy& operator=(const RunningCopy&) = delete;

  // What becomes readable when another copy asks for the window: a file descriptor. Windows: the HANDLE of an event that
  // is set then, and until the request is taken.
  std::intptr_t WaitHandle() const;

  // Has another copy asked since the last call? Never waits. Requests are taken only from processes of the same user.
  bool TakeRequest();

  // What the copies whose requests were taken were started with, since the last call.
  LeftPaths TakeLeftPaths();

 private:
  struct State;
  explicit RunningCopy(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace quendle::platform
