// Archives that are stored in other archives.
#pragma once

#include <cstdint>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

// Does what stands at `position` lie in a 7Z, CAB or RAR archive that a program in front of it has behind itself? Then that
// one is meant: what is stored in it without being packed is an entry of its.
bool LiesInOtherArchive(const ArchiveInput& input, std::uint64_t position);

}  // namespace quendle::modules
