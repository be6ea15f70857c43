// Renaming between open folders, and syncing one.
#pragma once

#include <string>

#include "reasons/result.h"

namespace quendle::platform {

// As the one of platform/entries/renaming.h.
int RenameWithoutReplacing(int from_folder, const char* from, int to_folder, const char* to);

// An open folder is called `shown` in failures.
Result SyncOpenFolder(int folder, const std::string& shown);

}  // namespace quendle::platform
