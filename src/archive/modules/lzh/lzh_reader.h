// Reading LZH archives.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// Headers and names are read here, since lhasa would cut names in a code page at bytes that are parts of characters;
// contents are unpacked by whatever knows their method (see unpacker.h). Files of the classic Mac OS come without
// the MacBinary around them.
std::unique_ptr<EntryReader> OpenLzh(const ArchiveInput& input, const ReaderOptions& options, Reason* reason);

}  // namespace quendle::modules
