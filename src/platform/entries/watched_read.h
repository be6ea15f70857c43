// What was seen of a file while it was read.
#pragma once

#include <chrono>
#include <string>

#include "platform/entries/entry_status.h"
#include "reasons/result.h"

namespace quendle::platform {

struct WatchedRead {
  EntryStatus before;  // the first byte was read
  EntryStatus after;   // the last one
  // Who had it open for writing in between. Asked only of a file that was changed lately.
  enum class Writers { kUnknown, kNone, kSome };
  Writers writers = Writers::kUnknown;
};

// Had a file with this stamp been left alone for so long at that moment that nobody was about to write more of it, and
// that another content would have another stamp?
bool IsLeftAlone(const EntryTime& stamp, std::chrono::system_clock::time_point when);

// As ReadWholeFile, but after a failure the bytes may be some of the file. `watched` may be null.
Result ReadRegularFile(const std::string& path, std::string* bytes, WatchedRead* watched);

inline std::chrono::system_clock::duration AgeOf(const EntryTime& stamp,
                                                 std::chrono::system_clock::time_point now) {
  using std::chrono::duration_cast;
  return now.time_since_epoch() - std::chrono::seconds(stamp.seconds) -
         duration_cast<std::chrono::system_clock::duration>(std::chrono::nanoseconds(stamp.nanoseconds));
}

// Who writes a file may be kept from the processor in the midst of it, on a busy machine for long. But network
// file systems may call every file written, and must not be believed for longer than who reads waits.
inline bool IsChangedLately(const EntryStatus& status) {
  return std::chrono::abs(AgeOf(status.change_time, std::chrono::system_clock::now())) <
         std::chrono::milliseconds(900);
}

}  // namespace quendle::platform
