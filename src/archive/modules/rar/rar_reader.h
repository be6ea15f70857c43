// Reading RAR archives: the headers say what there is, a library unpacks it.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// RAR 1.5 to 4 by either library. Contents are checked against the headers' checksums whatever the library says
// of them: one of the libraries unpacks what is solid wrongly, and does not notice.
std::unique_ptr<EntryReader> OpenRarByUnarr(const ArchiveInput& input, const ReaderOptions& options,
                                            Reason* reason);
std::unique_ptr<EntryReader> OpenRarByLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                                 Reason* reason);

// RAR 5. The library takes an archive that is cut off between two entries for a whole one; this does not.
std::unique_ptr<EntryReader> OpenRar5(const ArchiveInput& input, const ReaderOptions& options,
                                      Reason* reason);

}  // namespace quendle::modules
