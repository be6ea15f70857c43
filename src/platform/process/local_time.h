// The local clock.
#pragma once

#include <cstdint>
#include <ctime>

namespace quendle::platform {

// What the local clock shows, or showed, that many seconds after the beginning of 1970 UTC. False for times
// that no calendar has.
bool ToLocalTime(std::int64_t seconds, std::tm* local);

// A time on the local clock: seconds since 1970, counted as if that clock showed UTC.
std::int64_t SecondsOfLocalClock(std::int64_t seconds);

}  // namespace quendle::platform
