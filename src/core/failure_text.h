// What the user is told when the actions for a path failed.
#pragma once

#include <string>
#include <vector>

#include "core/clsMover.h"

namespace quendle {

// Several lines, "\r\n" between them, in the language of the windows: the path, each step that was not done with its
// destination, and why. Names are shown as by ForDisplay. Empty when each step was done, or was left undone
// because the user said so.
std::string FailureText(const std::string& path, const std::vector<ActionStep>& steps);

}  // namespace quendle
