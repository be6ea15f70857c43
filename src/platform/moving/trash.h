// The trash: that of freedesktop.org, or the recycle bin on Windows.
#pragma once

#include <string>

#include "platform/entries/entry_status.h"
#include "reasons/result.h"

namespace quendle::platform {

// Where an entry went, and what has to be undone to bring it back.
struct TrashedEntry {
  std::string original;  // empty: nothing went there
  std::string file;      // on Windows only the recycle bin itself knows
  std::string info;
  EntryId id;
};

// Puts the entry into the trash of its own file system. On failure it is where it was.
Result TrashEntry(const std::string& path, TrashedEntry* trashed);

// Brings it back to where it was, unless that name has been taken meanwhile or something else is in the trash
// in its place. On Windows always a failure: only the user gets things out of the recycle bin.
Result RestoreTrashed(const TrashedEntry& trashed);

}  // namespace quendle::platform
