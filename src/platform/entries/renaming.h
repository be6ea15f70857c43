// Renaming. The functions answer 0 or the system's error, which SystemFailure understands.
#pragma once

#include <string>

#include "reasons/result.h"

namespace quendle::platform {

// Within a file system. The code of the failure is kExists when the new name is taken by anything.
int RenameWithoutReplacing(const std::string& from, const std::string& to);

// Replaces a file in one step.
int RenameReplacing(const std::string& from, const std::string& to);

// Two files change names, so that neither name is without a file at any moment.
int ExchangeNames(const std::string& a, const std::string& b);

bool MeansOtherFileSystem(int error);

// Can the file system not do at all what was asked?
bool MeansUnsupported(int error);

// Makes a rename in that folder last through a power failure.
Result SyncFolder(const std::string& folder);

}  // namespace quendle::platform
