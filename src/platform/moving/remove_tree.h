// Removing an entry for good.
#pragma once

#include <string>

#include "platform/entries/open_folder.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// Removes the entry with all it holds, in whatever folders the names lead to at that moment: links are
// removed, not followed, and other file systems mounted below are not entered. Stops at the first failure.
Result RemoveTree(Transfer& transfer, const std::string& path);

// The same for something half-made that nobody else knows of, whatever rights it has by now. Nobody is asked.
void DiscardTree(const OpenFolder& folder, const std::string& name);

}  // namespace quendle::platform
