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

// The first whole cabinet from `begin` on that is a file of its own, or stands in what is not known to be another archive
// (FindSignature). Its header has to hold in full: in the beginning of a file "MSCF" says enough, in the middle of one it
// may be a word.
std::optional<std::uint64_t> NextCabinet(const ArchiveInput& input, std::uint64_t begin);

}  // namespace quendle::modules
