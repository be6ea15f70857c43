// While a window's command runs.
#pragma once

namespace quendle {

// Other windows open and events are handled while a command runs: as long as the flag of its window is set no second one
// may begin, and the window may not go.
class Busy {
 public:
  explicit Busy(bool* flag) : flag_(flag) { *flag_ = true; }
  ~Busy() { *flag_ = false; }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  bool* flag_;
};

}  // namespace quendle
