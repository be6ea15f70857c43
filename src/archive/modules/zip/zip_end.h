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
  // What is to be added to the positions that the archive says: bytes that came in front of it since they were
  // written, or, below 0, that went.
  std::int64_t shift = 0;
  std::uint64_t volumes = 1;  // of the whole set; when the input has fewer, nothing else is known
  // The input begins with a ZIP archive, from which this directory does not count. It is that of another one,
  // stored in the first or standing behind it, or its positions are wrong.
  bool is_misplaced = false;
};

// Finds the directory from the end of the input. An archive in the comment of another one is not taken for that
// one, and an empty archive is only found where the input begins. Bytes in front may be of any kind.
platform::Result FindZipEnd(const ArchiveInput& input, ZipEnd* end);

// Does the input begin as an archive does, also one in several volumes and an empty one?
bool BeginsLikeZip(const ArchiveInput& input);

}  // namespace quendle::modules
