// Reading cabinets by libmspack.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// The volumes of the input are the cabinets of a set, in their order.
std::unique_ptr<EntryReader> OpenMspack(const ArchiveInput& input, const ReaderOptions& options,
                                        Reason* reason);

}  // namespace quendle::modules
