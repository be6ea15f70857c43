// What the windows call actions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "settings/action_steps.h"

namespace quendle {

// "解凍", "移動", "コピー"
std::string StepName(StepKind kind);

// The steps of an action, `between` them; empty when it has none.
//   (3, "+") => "解凍+移動"
std::string ActionText(std::int16_t action, std::string_view between);

}  // namespace quendle
