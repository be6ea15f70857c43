// Failures that the system reported.
#pragma once

#include <string>

#include "reasons/result.h"

namespace quendle::platform {

// `error` is errno on POSIX and GetLastError on Windows. The reason
// has the system's own words. This is the only place that turns system codes into Codes and reasons.
Result SystemFailure(int error, std::string path);

// The same for the error that the calling thread met last.
Result LastSystemFailure(std::string path);

}  // namespace quendle::platform
