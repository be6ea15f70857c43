// Getting one entry to a place that has been decided on.
#pragma once

#include <string>

#include "platform/entries/entry_status.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Moves or copies the entry, in the state of `status`, to `destination`, which is free or, with `replaced`,
// that existing file. After a failure both sides are as they were, unless the reason says otherwise.
Result BringEntry(Transfer& transfer, const std::string& source, const EntryStatus& status,
                  const std::string& destination, const EntryStatus* replaced);

}  // namespace quendle::platform
