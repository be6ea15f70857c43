// Removing an entry for good.
#pragma once

#include <string>

#include "platform/transfer_posix.h"

namespace quendle::platform {

// Removes the entry with all it holds, in whatever folders the names lead to at that moment: links are
// removed, not followed, and other file systems mounted below are not entered. Stops at the first failure.
Result RemoveTree(Transfer& transfer, const std::string& path);

// The same for something half-made that nobody else knows of, whatever rights it has by now. Nobody is asked.
void DiscardTree(const std::string& path);

}  // namespace quendle::platform
