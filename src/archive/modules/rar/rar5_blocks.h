// The blocks of RAR 5 and 7 archives, behind their signature.
#pragma once

#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

// Is that the first block of an archive, whole by its checksum?
bool BeginsRar5(const ArchiveInput& input, std::uint64_t begin);

// Adds what the blocks from there on say. Nothing further is read when there is a problem. Copies of headers that are
// there for quick listing are not looked at: they could say something else.
void ReadRar5Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarKeys* keys,
                    RarArchive* archive);

}  // namespace quendle::modules
