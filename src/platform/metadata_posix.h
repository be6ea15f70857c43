// What the file system knows about an entry besides its data.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/transfer_posix.h"

namespace quendle::platform {

// An open file or folder, and the path that failures name.
struct OpenEntry {
  int fd;
  const std::string& path;
};

// Gives `to` the owner, mode, times and extended attributes of `from`, as far as its file system can hold
// them. Owners are for moves; set-user-id and set-group-id bits only follow their owner.
Result CopyMetadata(const Transfer& transfer, OpenEntry from, const struct stat& recorded, OpenEntry to);

// The same for a new symbolic link, which has no mode and cannot be opened.
Result CopyLinkMetadata(const Transfer& transfer, const struct stat& recorded, int folder, const char* name,
                        const std::string& shown);

}  // namespace quendle::platform
