// What is known of an entry besides its data.
#pragma once

#include <cstdint>
#include <string>

#include "platform/entries/open_folder.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

// An open file or folder, and the path that failures name.
struct OpenEntry {
  std::intptr_t handle;
  const std::string& path;
};

// Gives `to` the owner, mode, times and extended attributes of `from`, as far as its file system can hold
// them; on Windows attributes and times, since rights come from the folder. Owners are for moves; set-user-id
// and set-group-id bits only follow their owner.
Result CopyMetadata(const Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to);

// The same for a new link, which has no mode and cannot be opened.
Result CopyLinkMetadata(const Transfer& transfer, const EntryStatus& recorded, const OpenFolder& folder,
                        const std::string& name, const std::string& shown);

}  // namespace quendle::platform
