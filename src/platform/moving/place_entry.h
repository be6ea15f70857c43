// Deciding what a move or copy to a path means, given what is there.
#pragma once

#include <string>

#include "platform/entries/entry_status.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Is there a folder, or a link to one?
bool LeadsToFolder(const std::string& path);

Result PlaceEntry(Transfer& transfer, const std::string& source, const std::string& destination);

// What leftovers mean for the whole operation.
Result LeftoverResult(const Leftovers& leftovers, const std::string& destination);

}  // namespace quendle::platform
