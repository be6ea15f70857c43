// Keeps the windows alive during long operations, and shows how far those are when they take their time.
#pragma once

#include <QPointer>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

#include "platform/moving/file_operation.h"
#include "ui/windows/frmProgress.h"

namespace quendle {

using ProgressClock = std::chrono::steady_clock;

// How fast an operation has been in its last few seconds.
class TransferRate {
 public:
  void Add(ProgressClock::time_point now, std::uint64_t bytes_done);

  // Nothing as long as too little is known.
  std::optional<double> BytesPerSecond() const;

 private:
  struct Sample {
    ProgressClock::time_point time;
    std::uint64_t bytes_done;
  };
  std::deque<Sample> samples_;  // oldest first
  Sample last_{};
};

class ProgressDisplay {
 public:
  // `begin`: of an operation that was running before there were windows.
  ProgressDisplay(std::function<ProgressClock::time_point()> now,
                  const std::optional<ProgressClock::time_point>& begin)
      : now_(std::move(now)), is_running_(begin.has_value()) {
    if (begin) begun_ = *begin;
  }
  ~ProgressDisplay() { End(); }
  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

  // To be called as often as anybody likes; most calls only look at the clock. Processes events: until the
  // window opens, which is one second after the first report, nothing that the user does reaches a window.
  // False once the user has cancelled.
  bool Report(const platform::FileProgress& progress, bool simple);

  // The operation is over; the next report begins another.
  void End();

  // Between these two the operation waits for the user, which is none of its own time.
  void Pause() { paused_at_ = now_(); }
  void Resume() { waited_ += now_() - paused_at_; }

  QWidget* Window() const { return window_; }  // null when there is none

 private:
  void Show(const platform::FileProgress& progress, bool simple, ProgressClock::time_point now);

  std::function<ProgressClock::time_point()> now_;
  bool is_running_ = false;
  ProgressClock::time_point begun_;
  ProgressClock::time_point processed_;
  ProgressClock::time_point updated_;
  ProgressClock::time_point paused_at_;
  ProgressClock::duration waited_{};
  TransferRate rate_;
  QPointer<frmProgress> window_;
};

}  // namespace quendle
