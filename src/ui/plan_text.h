// The line of the action window that says what OK will do.
#pragma once

#include <string>
#include <vector>

#include "core/clsMover.h"

namespace quendle {

// One line for each step, "\n" between them, in the language of the windows; names as by ForDisplay.
//   => "移動 → /texts/report_20031107.txt"
std::string PlanText(const std::vector<ActionStep>& steps);

}  // namespace quendle
