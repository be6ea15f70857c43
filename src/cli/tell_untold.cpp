#include "cli/tell_untold.h"

#include "platform/process/process.h"

namespace quendle {

// Whoever has dropped files on an icon does not see the terminal. More of them may come while the message is there.
void TellUntold(UntoldPaths untold, platform::RunningCopy* copy, LazyWindows* windows) {
  while (!platform::InterruptRequested()) {
    if (copy != nullptr) {
      (void)copy->TakeRequest();
      untold.left = copy->TakeLeftPaths();
    }
    if (untold.IsEmpty() || windows->Get() == nullptr) return;
    windows->ShowMessage(UserInterface::MessageKind::kExclamation, MessageOf(untold));
    untold = {};
  }
}

}  // namespace quendle
