// Reading ZIP archives by 7-Zip's library, which knows every method and every encryption that is in use.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// The directory says what there is. Each entry is shown to the library as an archive of its own, so that damage to
// others does not matter, nor where they are.
std::unique_ptr<ArchiveReader> OpenZipBySevenZip(const ArchiveInput& input, const ReaderOptions& options,
                                                 Reason* reason);

}  // namespace quendle::modules
