#include "platform/entries/durable_file.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/entries/watched_read.h"

namespace quendle::platform {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::system_clock;

constexpr auto kLongestWait = 1s;  // beyond the first time that the file might have been left alone
constexpr Clock::duration kLongestPause = 50ms;

// For how long a file with this stamp has to be left alone. The clock that stamps files advances in steps of
// up to 16 ms, and who empties a file to write it anew takes a moment. FAT keeps whole, even seconds: so may
// any file without nanoseconds.
Clock::duration QuietTime(const EntryTime& stamp) {
  return stamp.nanoseconds == 0 ? 2500ms : 25ms;
}

// What is missing of it at that moment, nothing or less when the file has been left alone. A stamp far in the
// future says that the clock was set back since.
Clock::duration MissingQuiet(const EntryTime& stamp, Clock::time_point now) {
  const Clock::duration age = AgeOf(stamp, now);
  const Clock::duration quiet = QuietTime(stamp);
  return age < -quiet ? Clock::duration::zero() : quiet - age;
}

// Nobody wrote while it was read, and it was not the half of what somebody is about to write: known of a file that
// nobody had open to write, unless it is empty, as one that somebody has emptied and is about to open again. Else taken
// for granted of one that has been left alone.
bool IsSure(const WatchedRead& watched, Clock::duration missing_quiet, std::size_t bytes_read) {
  if (!IsUnchanged(watched.before, watched.after) || bytes_read != watched.before.size) return false;
  if (watched.writers == WatchedRead::Writers::kSome) return false;
  return missing_quiet <= 0s || (watched.writers == WatchedRead::Writers::kNone && bytes_read > 0);
}

Result ReadWatched(const std::string& path, std::string* bytes, WatchedRead* watched) {
  Result result = ReadRegularFile(path, bytes, watched);
  if (!result.ok()) bytes->clear();
  return result;
}

// Nothing of that name, or a link that leads nowhere? Success when there is something by now.
Result WhatIsMissing(const std::string& path, const Result& not_found) {
  EntryStatus status;
  Result named = ReadStatus(path, &status);
  if (named.code == Code::kNotFound) return not_found;
  if (!named.ok() || !status.is_link()) return named;
  return Failure(Code::kFailed, path, why::kLinkNowhere);
}

}  // namespace

bool IsLeftAlone(const EntryTime& stamp, Clock::time_point when) {
  return MissingQuiet(stamp, when) <= 0s;
}

Result ReadWholeFile(const std::string& path, std::string* bytes) {
  return ReadWatched(path, bytes, nullptr);
}

Result ReadSettledFile(const std::string& path, std::string* bytes, EntryStatus* status) {
  const auto begin = std::chrono::steady_clock::now();
  while (true) {
    WatchedRead watched;
    const Clock::time_point now = Clock::now();
    Result result = ReadWatched(path, bytes, &watched);
    const bool is_there = result.code != Code::kNotFound;
    if (!is_there) result = WhatIsMissing(path, result);
    if (!result.ok()) return result;
    const EntryTime& stamp = watched.before.change_time;
    const Clock::duration missing = MissingQuiet(stamp, now);
    if (is_there && IsSure(watched, missing, bytes->size())) {
      if (status != nullptr) *status = watched.before;
      return result;
    }
    bytes->clear();
    if (std::chrono::steady_clock::now() - begin > QuietTime(stamp) + kLongestWait)
      return Failure(Code::kFailed, path, why::kBeingChanged);
    // A writer may be through in no time; an unknown one has to leave the file alone.
    const bool is_unknown = watched.writers == WatchedRead::Writers::kUnknown;
    std::this_thread::sleep_for(std::clamp<Clock::duration>(is_unknown ? missing : 0s, 200us, kLongestPause));
  }
}

}  // namespace quendle::platform
