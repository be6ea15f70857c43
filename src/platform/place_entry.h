// Deciding what a move or copy to a path means, given what is there.
#pragma once

#include <string>

#include "platform/entry_status.h"
#include "platform/transfer.h"

namespace quendle::platform {

// Is there a folder, or a link to one?
bool LeadsToFolder(const std::string& path);

Result PlaceEntry(Transfer& transfer, const std::string& source, const std::string& destination);

// Places what the folder `source` holds in the existing folder `destination`. Entries that cannot go there
// are counted in the transfer's leftovers; other failures, and a cancel, end it.
Result MergeFolders(Transfer& transfer, const std::string& source, const EntryStatus& status,
                    const std::string& destination, const EntryStatus& existing);

// What leftovers mean for the whole operation.
Result LeftoverResult(const Leftovers& leftovers, const std::string& destination);

}  // namespace quendle::platform
