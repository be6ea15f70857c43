// Reading RAR archives of all generations.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// `input` holds the archive's volumes from the first one on. Null, with the reason, for what is no archive. In a damaged
// archive entries that are whole are given, and in the end what is wrong.
std::unique_ptr<ArchiveReader> OpenRar(const ArchiveInput& input, const ReaderOptions& options,
                                       Reason* reason);

}  // namespace quendle::modules
