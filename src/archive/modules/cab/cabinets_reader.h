// Reading several cabinets that stand in one file and are no set.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// The entries of the cabinet that the input begins with, then those of the others (NextCabinet), as of one archive.
std::unique_ptr<EntryReader> OpenCabinets(const ArchiveInput& input, const ReaderOptions& options,
                                          Reason* reason);

}  // namespace quendle::modules
