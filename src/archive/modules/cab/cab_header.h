// The header of a cabinet: how large it is, and which cabinets stand before and behind it in its set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

struct CabHeader {
  std::uint64_t size = 0;
  std::uint64_t set = 0;           // the same number for all of the set
  std::uint64_t index = 0;         // of the cabinet in the set, from 0
  std::uint64_t first_block = 0;   // of the first folder's data, where it stands in the cabinet
  bool reserved_are_zero = false;  // what means nothing yet, flags too
  std::string previous;            // raw names of files; empty: there is none
  std::string next;
};

std::optional<CabHeader> ReadCabHeader(const ArchiveInput& input, std::uint64_t position);

// The first cabinet from `begin` on, there or behind a program or what is not known to be another archive (FindSignature).
// Its header has to hold in full, as "MSCF" alone may be a word. At 0, where nothing says yet that there are cabinets at
// all, it must not be cut off, either.
std::optional<std::uint64_t> NextCabinet(const ArchiveInput& input, std::uint64_t begin);

}  // namespace quendle::modules
