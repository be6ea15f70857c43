// Streams: what a file has besides its content, under names of its own.
#pragma once

#include <string>

#include "platform/text/wide_win32.h"

namespace quendle::platform {

// Gives the new file or folder `to` the named streams of `from`, both open, unless its file system has none.
// The paths are for failures.
Result CopyStreams(HANDLE from, const std::string& from_path, HANDLE to, const std::string& to_path);

}  // namespace quendle::platform
