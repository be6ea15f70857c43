// What can be done with a file, as the key Action of the settings has it: a number from 0 to 7, of which each bit is a
// step.
#pragma once

#include <cstdint>

namespace quendle {

enum class StepKind : std::int16_t { kExtract = 1, kMove = 2, kCopy = 4 };

// In the order in which users see them, which is not that in which they are done.
inline constexpr StepKind kStepKinds[] = {StepKind::kExtract, StepKind::kMove, StepKind::kCopy};

inline constexpr std::int16_t kNoSteps = 0;
inline constexpr std::int16_t kAllSteps = 7;

constexpr bool Includes(std::int16_t action, StepKind kind) {
  return (action & static_cast<std::int16_t>(kind)) != 0;
}

// The action with that step, or without it.
constexpr std::int16_t WithStep(std::int16_t action, StepKind kind, bool is_on = true) {
  const auto bit = static_cast<std::int16_t>(kind);
  return static_cast<std::int16_t>(is_on ? action | bit : action & ~bit);
}

}  // namespace quendle
