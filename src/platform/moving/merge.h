// Two folders that become one.
#pragma once

#include <string>

#include "platform/entries/entry_status.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Would moving or copying the folder `source` onto `destination`, which may not exist, meet an entry that is
// there already and is not a folder on both sides?
bool FoldersCollide(const std::string& source, const std::string& destination);

// Places what the folder `source` holds in the existing folder `destination`. Entries that cannot go there
// are counted in the transfer's leftovers; other failures, and a cancel, end it.
Result MergeFolders(Transfer& transfer, const std::string& source, const EntryStatus& status,
                    const std::string& destination, const EntryStatus& existing);

}  // namespace quendle::platform
