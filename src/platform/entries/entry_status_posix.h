// The system's own record of an entry, as the rest of the room knows it.
#pragma once

#include <sys/stat.h>

#include "platform/entries/entry_status.h"

namespace quendle::platform {

EntryStatus StatusFrom(const struct stat& entry);

inline timespec SystemTime(const EntryTime& time) {
  return {time.seconds, time.nanoseconds};
}

}  // namespace quendle::platform
