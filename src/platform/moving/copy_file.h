// Copying one file.
#pragma once

#include "platform/moving/metadata.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Copies data and metadata of `from` into the new, empty, writable file `to`, and makes sure that `from` is
// in the state of `recorded` from beginning to end. `sync` puts the copy on the disk; without it SyncCopies
// does.
Result CopyFileContent(Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to,
                       bool sync);

// Puts on the disk what has been copied for a move into the folder and below.
Result SyncCopies(OpenEntry folder);

}  // namespace quendle::platform
