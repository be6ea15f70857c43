// The end of a run with windows: what it did not get to.
#pragma once

#include "cli/lazy_windows.h"
#include "core/untold_paths.h"
#include "platform/services/running_copy.h"

namespace quendle {

// Shows them in a message, together with those of copies that were started meanwhile; `copy` may be null. Shows no
// window for nothing, and none to a user who wants the program to stop.
void TellUntold(UntoldPaths untold, platform::RunningCopy* copy, LazyWindows* windows);

}  // namespace quendle
