// What a ZIP archive holds by its local headers, for one whose central directory is missing or misleads.
#pragma once

#include "archive/modules/common/archive_input.h"
#include "archive/modules/zip/zip_directory.h"

namespace quendle::modules {

// Goes from the first byte of the archive from each local header over the content to the next one, as far as they
// stand directly behind each other and the contents are whole. Sizes and checksums that follow a content are
// found by it, with and without their signature, in 32 and 64 bits. `directory->position` is the first byte behind.
// Fails when the input cannot be read or has more entries than memory is spent on; no entry at all is no failure.
platform::Result WalkLocalHeaders(const ArchiveInput& input, ZipDirectory* directory);

// Puts the headers of the central directory that stands at `directory->position` in the place of the entries that
// WalkLocalHeaders found, with the positions of those. False, and they stay what they are, when there is no
// directory or it does not list just these: the same names, sizes and checksums, and as many as the record behind it counts.
// `*behind` is the first byte behind what was read. The entries are in no order then.
bool TakeDirectoryBehind(const ArchiveInput& input, ZipDirectory* directory, std::uint64_t* behind);

}  // namespace quendle::modules
