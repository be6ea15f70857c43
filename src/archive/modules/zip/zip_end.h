// The end of a ZIP archive, which says where its central directory is.
#pragma once

#include <cstdint>

#include "archive/modules/common/archive_input.h"
#include "reasons/result.h"

namespace quendle::modules {

// Where the directory is.
struct ZipEnd {
  std::uint64_t directory = 0;  // its first byte
  std::uint64_t directory_size = 0;
  std::uint64_t entries = 0;
  bool counts_modulo_65536 = false;
  std::uint64_t front = 0;    // bytes before the archive: positions in it count from there
  std::uint64_t volumes = 1;  // of the whole set; when the input has fewer, nothing else is known
};

// Finds the directory from the end of the input. Bytes in front of the archive are only taken for such when
// they begin with a program; an archive cut off behind another one stored in it is not taken for that one.
platform::Result FindZipEnd(const ArchiveInput& input, ZipEnd* end);

}  // namespace quendle::modules
