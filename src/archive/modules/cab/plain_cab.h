// Reading plain cabinets by libarchive, which unpacks MSZIP a third faster than libmspack does.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// For cabinets of which IsPlainCabinet holds. The entries are the ones that libmspack lists; behind the first
// content that is not as it should be all is kUnsupported, so that libmspack has its say.
std::unique_ptr<EntryReader> OpenPlainCab(const ArchiveInput& input, const ReaderOptions& options,
                                          Reason* reason);

}  // namespace quendle::modules
