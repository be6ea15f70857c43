// What the parts of one move, copy or deletion share: its options, its progress, and what its file systems
// turned out not to support.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/moving/file_operation.h"

namespace quendle::platform {

// Reports to the observer often enough to look alive and to cancel promptly, but not for every few bytes.
// All functions answer false when the user cancels.
class ProgressMeter {
 public:
  explicit ProgressMeter(FileOperationObserver* observer) : observer_(observer) {}

  // The bytes to come. Only the first call counts: whoever sees the whole operation calls before its parts
  // do.
  void Expect(std::uint64_t bytes) {
    if (!is_total_known_) progress_.bytes_total = bytes;
    is_total_known_ = true;
  }
  bool is_total_known() const { return is_total_known_; }

  // The first one is always reported.
  bool StartEntry(const std::string& path) {
    progress_.path = path;
    return Tick();
  }

  bool AddBytes(std::uint64_t bytes) {
    progress_.bytes_done += bytes;
    return progress_.bytes_done - bytes_reported_ < kStep ? Tick() : Report();
  }

  bool Tick() { return std::chrono::steady_clock::now() - last_ < kInterval || Report(); }

 private:
  static constexpr std::chrono::milliseconds kInterval{20};
  static constexpr std::uint64_t kStep = 16 << 20;  // a fast disk is not so far ahead of a cancel then

  bool Report() {
    const bool go_on = observer_->OnProgress(progress_);
    last_ = std::chrono::steady_clock::now();
    bytes_reported_ = progress_.bytes_done;
    return go_on;
  }

  FileOperationObserver* observer_;
  FileProgress progress_;
  bool is_total_known_ = false;
  std::uint64_t bytes_reported_ = 0;
  std::chrono::steady_clock::time_point last_;
};

// What the merge of two folders left in the source.
struct Leftovers {
  unsigned existing = 0;  // files whose names are taken
  unsigned others = 0;    // entries that cannot go there at all
  Result first_existing;
  Result first_other;

  unsigned count() const { return existing + others; }
};

struct Transfer {
  Transfer(bool is_move, const FileOperationOptions& how, FileOperationObserver* who)
      : moving(is_move), options(how), observer(who), meter(who) {}

  const bool moving;
  const FileOperationOptions& options;
  FileOperationObserver* const observer;
  ProgressMeter meter;

  Leftovers leftovers;

  // Cleared at the first sign to the contrary, so that ten thousand files do not ask ten thousand times.
  bool can_clone = true;
  bool can_copy_range = true;
  std::vector<char> buffer;  // allocated by the first copy that needs one
};

inline Result Cancelled(const std::string& path) {
  return Failure(Code::kCancelled, path, why::kCancelled);
}

inline Result AppearedMeanwhile(const std::string& path) {
  return Failure(Code::kExists, path, why::kAppeared);
}

}  // namespace quendle::platform
