// The memory of the machine.
#pragma once

#include <cstdint>

namespace quendle::platform {

// Bytes that can be had now without other programs losing theirs. The largest number when the system does not say.
std::uint64_t AvailableMemory();

}  // namespace quendle::platform
