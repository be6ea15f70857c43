// The header of a cabinet: how large it is, and which cabinets stand before and behind it in its set. Positions and numbers
// are as the public description of the format, MS-CAB, has them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

struct CabHeader {
  std::uint64_t size = 0;
  std::uint64_t set = 0;          // the same number for all of the set
  std::uint64_t index = 0;        // of the cabinet in the set, from 0
  std::uint64_t folders = 0;      // where the first folder's description stands in the cabinet
  std::uint64_t files = 0;        // and the first file's
  std::uint64_t first_block = 0;  // and the first folder's data
  std::size_t folder_count = 0;
  std::size_t file_count = 0;
  std::size_t folder_reserve = 0;  // bytes behind each folder's description that mean nothing here
  std::size_t block_reserve = 0;   // and behind each block's header
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
