// Reading RAR archives of all generations.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// `input` holds the archive's volumes from the first one on. Never null: what is wrong,
// also with a password, is told behind the entries that there are.
std::unique_ptr<ArchiveReader> OpenRar(const ArchiveInput& input, const ReaderOptions& options,
                                       Reason* reason);

}  // namespace quendle::modules
