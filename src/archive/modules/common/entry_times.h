// The forms in which archives keep times.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/extraction/extraction_folder.h"

namespace quendle::modules {

// Date in the upper 16 bits, time in the lower ones, by the clock of whoever reads it. Nothing for what is no
// date.
std::optional<platform::EntryTime> TimeFromDos(std::uint32_t date_and_time);

// Units of 100 nanoseconds since 1601, UTC.
platform::EntryTime TimeFromNtfs(std::uint64_t units);

}  // namespace quendle::modules
