// The header of a cabinet: how large it is, and which cabinets stand before and behind it in its set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

struct CabHeader {
  std::uint64_t size = 0;
  std::uint64_t set = 0;    // the same number for all of the set
  std::uint64_t index = 0;  // of the cabinet in the set, from 0
  std::string previous;     // raw names of files; empty: there is none
  std::string next;
};

std::optional<CabHeader> ReadCabHeader(const ArchiveInput& input, std::uint64_t position);

}  // namespace quendle::modules
