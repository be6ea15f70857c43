// The unattended front: takes the paths one by one and prints a line for each.
#pragma once

#include "cli/options.h"

namespace quendle {

inline constexpr int kExitDone = 0;
inline constexpr int kExitUndone = 1;  // something failed, was missing or was left undone
inline constexpr int kExitUsage = 2;

// Runs --batch or --dry-run over all paths of `options`, or, when it asks for neither, over at most ten of
// them in place of the windows. Returns the exit status.
int RunUnattended(const Options& options);

}  // namespace quendle
