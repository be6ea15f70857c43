// Reading RAR 1.5 to 4 archives: the headers say what there is, a library unpacks it.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// By either library. Contents are checked against the headers' checksums whatever the library says
// of them: one of the libraries unpacks what is solid wrongly, and does not notice.
std::unique_ptr<EntryReader> OpenRarByUnarr(const ArchiveInput& input, const ReaderOptions& options,
                                            Reason* reason);
std::unique_ptr<EntryReader> OpenRarByLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                                 Reason* reason);

}  // namespace quendle::modules
