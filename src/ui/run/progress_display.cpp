#include "ui/run/progress_display.h"

#include <QApplication>
#include <QEventLoop>

namespace quendle {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kQuietTime{1};
// Reports come every 20 milliseconds, so that a window that skipped one of them would lag by 40.
constexpr milliseconds kBetweenEvents{15};
constexpr milliseconds kBetweenUpdates{50};

constexpr seconds kRateTime{4};
constexpr milliseconds kBetweenSamples{200};
constexpr milliseconds kShortestRateTime{500};

}  // namespace

void TransferRate::Add(ProgressClock::time_point now, std::uint64_t bytes_done) {
  if (bytes_done < last_.bytes_done) samples_.clear();  // another part of the work counts from the beginning
  last_ = {now, bytes_done};
  if (samples_.empty() || now - samples_.back().time >= kBetweenSamples) samples_.push_back(last_);
  while (now - samples_.front().time > kRateTime && samples_.size() > 1) samples_.pop_front();
}

std::optional<double> TransferRate::BytesPerSecond() const {
  if (samples_.empty() || last_.time - samples_.front().time < kShortestRateTime) return std::nullopt;
  const std::chrono::duration<double> time = last_.time - samples_.front().time;
  return static_cast<double>(last_.bytes_done - samples_.front().bytes_done) / time.count();
}

bool ProgressDisplay::Report(const platform::FileProgress& progress, bool simple) {
  const ProgressClock::time_point now = now_() - waited_;
  if (!is_running_) {
    begun_ = now;
    is_running_ = true;
  } else if (now - processed_ < kBetweenEvents) {
    return window_ == nullptr || !window_->is_cancelled();
  }
  rate_.Add(now, progress.bytes_done);
  if (now - begun_ >= kQuietTime) Show(progress, simple, now);
  QCoreApplication::processEvents(window_ == nullptr ? QEventLoop::ExcludeUserInputEvents
                                                     : QEventLoop::AllEvents);
  processed_ = now_() - waited_;
  return window_ == nullptr || !window_->is_cancelled();
}

void ProgressDisplay::Show(const platform::FileProgress& progress, bool simple,
                           ProgressClock::time_point now) {
  const bool opens = window_ == nullptr;
  if (!opens && now - updated_ < kBetweenUpdates) return;
  if (opens) window_ = new frmProgress(QApplication::activeWindow());
  window_->Update(progress, rate_.BytesPerSecond(), simple);
  if (opens) window_->show();
  updated_ = now;
}

void ProgressDisplay::End() {
  delete window_;
  is_running_ = false;
  waited_ = {};
  rate_ = {};
}

}  // namespace quendle
