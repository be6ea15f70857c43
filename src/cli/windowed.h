// The front of a run with windows.
#pragma once

#include "cli/options.h"

namespace quendle {

// Works through at most ten paths of `options`, in windows where the user is to be asked. Where another copy with the same
// settings is running, that one comes to the front and nothing is done here. Returns the exit status of RunUnattended.
int RunWindowed(const Options& options);

}  // namespace quendle
