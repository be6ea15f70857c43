// How long nobody looks at the user's input while files are moved, copied and deleted, and how soon a cancel is carried
// out:
//
//   operation_gaps [--cancel MS] (move | copy | delete) SOURCE DESTINATION ...
//
// The operations are done one after the other. Each is to take at least that long when it is to be cancelled. A
// deletion has "-" for a destination.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "platform/moving/file_operation.h"

namespace {

using namespace quendle::platform;  // NOLINT: there is nothing else here
using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

class Watch : public FileOperationObserver {
 public:
  explicit Watch(std::optional<double> cancel_after) : cancel_after_(cancel_after) {}

  bool MustStayResponsive() const override { return true; }
  Answer OnOverwrite(const FileSide&, const FileSide&) override { return Answer::kNo; }
  bool OnProgress(const FileProgress& progress) override {
    Look(progress.bytes_done);
    if (!cancelled_at_ && cancel_after_ && Milliseconds(last_ - begin_) >= *cancel_after_)
      cancelled_at_ = last_;
    return !cancelled_at_;
  }

  void Print(const char* kind, const char* source, const Result& result) {
    Look(bytes_);
    std::printf("%-6s %-30s %-9s %8.1f ms, %4u looks, longest gap %6.1f ms at %llu MiB", kind, source,
                result.ok()                       ? "done"
                : result.code == Code::kCancelled ? "cancelled"
                                                  : "failed",
                Milliseconds(last_ - begin_), looks_, Milliseconds(longest_),
                static_cast<unsigned long long>(longest_at_ >> 20));
    if (cancelled_at_) std::printf(", %.1f ms after the cancel", Milliseconds(last_ - *cancelled_at_));
    std::printf("\n");
  }

 private:
  void Look(std::uint64_t bytes) {
    const Clock::time_point now = Clock::now();
    if (now - last_ > longest_) {
      longest_ = now - last_;
      longest_at_ = bytes_;
    }
    last_ = now;
    bytes_ = bytes;
    ++looks_;
  }

  const std::optional<double> cancel_after_;
  const Clock::time_point begin_ = Clock::now();
  Clock::time_point last_ = begin_;
  Clock::duration longest_{};
  std::uint64_t longest_at_ = 0;
  std::uint64_t bytes_ = 0;
  unsigned looks_ = 0;
  std::optional<Clock::time_point> cancelled_at_;
};

}  // namespace

int main(int count, char** words) {
  int next = 1;
  std::optional<double> cancel_after;
  if (count > 2 && words[1] == std::string("--cancel")) {
    cancel_after = std::atof(words[2]);
    next = 3;
  }
  for (; next + 2 < count; next += 3) {
    const std::string kind = words[next];
    Watch watch(cancel_after);
    const Result result = kind == "delete" ? DeleteEntry(words[next + 1], {}, &watch)
                                           : (kind == "move" ? MoveEntry : CopyEntry)(
                                                 words[next + 1], words[next + 2], {}, &watch);
    watch.Print(words[next], words[next + 1], result);
  }
  return next == count ? EXIT_SUCCESS : EXIT_FAILURE;
}
