// The headers of RAR 1.3 and 1.4 archives, which have no checksums of their own.
#pragma once

#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

// Is that a header of such an archive? `begin` is that of its signature, which is short and stands in other files too.
bool BeginsRar13(const ArchiveInput& input, std::uint64_t begin);

// Adds what the headers say. Nothing further is read when there is a problem.
void ReadRar13Headers(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end, RarArchive* archive);

}  // namespace quendle::modules
