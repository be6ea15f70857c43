// Copying one file or one link.
#pragma once

#include <string>

#include "platform/metadata_posix.h"
#include "platform/transfer_posix.h"

namespace quendle::platform {

// Copies data and metadata of `from` into the new, empty, writable file `to`, and makes sure that `from` is
// in the state of `recorded` from beginning to end. `sync` puts the copy on the disk.
Result CopyFileContent(Transfer& transfer, OpenEntry from, const struct stat& recorded, OpenEntry to,
                       bool sync);

// Reads a link that must still be in the state of `recorded`.
Result ReadLink(int folder, const char* name, const std::string& shown, const struct stat& recorded,
                std::string* target);

inline Result SourceChanged(const std::string& path) {
  return Failure(Code::kFailed, path, "the source changed meanwhile");
}

}  // namespace quendle::platform
