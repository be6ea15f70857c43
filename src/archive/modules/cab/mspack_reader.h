// Reading cabinets by libmspack.
#pragma once

#include <memory>
#include <string>

#include "archive/modules/common/entry_reader.h"

namespace quendle::modules {

// The volumes of the input are the cabinets of a set, in their order.
std::unique_ptr<EntryReader> OpenMspack(const ArchiveInput& input, const ReaderOptions& options,
                                        Reason* reason);

// Is it one cabinet of its own, whole, packed by MSZIP only, with its files behind each other in the order in which
// they are listed? Any reader of cabinets has to understand that.
bool IsPlainCabinet(const ArchiveInput& input);

}  // namespace quendle::modules
