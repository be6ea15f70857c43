// The names in an open folder.
#pragma once

#include <string>
#include <vector>

#include "platform/result.h"

namespace quendle::platform {

// All names but "." and "..". `folder` stays open and is at its end afterwards; `shown` is its path for
// failures.
Result ListFolder(int folder, const std::string& shown, std::vector<std::string>* names);

}  // namespace quendle::platform
