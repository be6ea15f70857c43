// What is half done when the process ends by std::exit from deep inside an operation, where no destructor on the
// stack runs: a toolkit that loses its display ends the process so.
#pragma once

namespace quendle::platform {

// Used on one thread.
class UndoneAtExit {
 public:
  UndoneAtExit(const UndoneAtExit&) = delete;
  UndoneAtExit& operator=(const UndoneAtExit&) = delete;

 protected:
  UndoneAtExit();
  ~UndoneAtExit();

  // Called when the process exits while the object is alive, for the youngest object first.
  virtual void UndoAtExit() = 0;

 private:
  friend class AliveObjects;
};

}  // namespace quendle::platform
