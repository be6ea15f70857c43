// Reading LZH archives by lhasa.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Only the unpacking is lhasa's. Names come from the headers themselves, of which it would cut those in a code
// page at bytes that are parts of characters; and what is stored does not go through its decoder, which is slower
// than the disk.
std::unique_ptr<EntryReader> OpenLhasa(const ArchiveInput& input, const ReaderOptions& options,
                                       Reason* reason);

}  // namespace quendle::modules
