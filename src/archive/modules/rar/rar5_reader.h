// Reading RAR 5 archives.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// The library takes an archive that is cut off between two entries for a whole one; this does not. Hard links, and files
// of which the archive has the content once only, are files with that content; they come behind all others.
std::unique_ptr<EntryReader> OpenRar5(const ArchiveInput& input, const ReaderOptions& options,
                                      Reason* reason);

}  // namespace quendle::modules
