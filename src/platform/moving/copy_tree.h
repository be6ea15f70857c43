// Copying a folder with all it holds.
#pragma once

#include <string>

#include "platform/moving/source_tree.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Copies what the tree holds, and the metadata of its top, into `staging`, an existing empty folder. Failures
// name paths below `destination`, where the copy is meant to go. What a move copied is on the disk
// afterwards.
Result CopyTree(Transfer& transfer, const SourceTree& tree, const std::string& staging,
                const std::string& destination);

}  // namespace quendle::platform
