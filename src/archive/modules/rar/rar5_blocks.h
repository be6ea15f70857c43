// The blocks of RAR 5 archives.
#pragma once

#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

// Is the block behind the signature the one that archives begin with?
bool BeginsRar5(const ArchiveInput& input, std::uint64_t begin);

// Goes through the blocks from behind the signature to the end.
void ReadRar5Blocks(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarArchive* archive);

}  // namespace quendle::modules
