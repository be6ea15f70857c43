// Reading ZIP archives: the directory says what there is, libarchive unpacks it.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Damage to one entry leaves the others readable. Volumes and positions are as the directory counts them.
std::unique_ptr<EntryReader> OpenZip(const ArchiveInput& input, const ReaderOptions& options, Reason* reason);

}  // namespace quendle::modules
