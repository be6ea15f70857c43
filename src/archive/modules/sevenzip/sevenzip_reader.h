// Reading 7Z archives by 7-Zip's library.
#pragma once

#include <memory>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// What the library unpacks on its way to a wanted entry is passed over; contents of a solid block come in one pass.
std::unique_ptr<ArchiveReader> OpenSevenZip(const ArchiveInput& input, const ReaderOptions& options,
                                            Reason* reason);

}  // namespace quendle::modules
