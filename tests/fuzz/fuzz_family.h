// Reads whole archives as a run does: found, listed, and unpacked to the end by every engine of the family.
#pragma once

#include <cstddef>
#include <cstdint>

#include "archive/modules/common/family.h"

namespace quendle::modules {

// Aborts when an engine calls an entry complete that is not as long as it says, or fails without a reason.
void ReadEverything(const Family& family, const std::uint8_t* data, std::size_t size);

}  // namespace quendle::modules
