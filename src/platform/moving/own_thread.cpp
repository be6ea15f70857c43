#include "platform/moving/own_thread.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "platform/process/undone_at_exit.h"

namespace quendle::platform {
namespace {

constexpr std::chrono::milliseconds kBetweenReports{20};

class OwnThread final : private FileOperationObserver, private UndoneAtExit {
 public:
  explicit OwnThread(FileOperationObserver* observer) : observer_(observer) {}
  ~OwnThread() override { End(); }
  OwnThread(const OwnThread&) = delete;
  OwnThread& operator=(const OwnThread&) = delete;

  Result Do(const ObservedWork& work) {
    try {
      thread_ = std::thread([&] { Work(work); });
    } catch (const std::system_error&) {  // there are too many of them
      return work(observer_);
    }
    LookAfterIt();
    End();
    if (fault_) std::rethrow_exception(fault_);
    return result_;
  }

 private:
  using Request = std::function<void()>;

  // On the thread of the work.

  void Work(const ObservedWork& work) {
    try {
      result_ = work(this);
    } catch (...) {
      fault_ = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    is_done_ = true;
    changed_.notify_all();
  }

  bool MustStayResponsive() const override { return false; }

  bool OnProgress(const FileProgress& progress) override {
    bool goes_on = false;
    Ask([&] {
      progress_ = progress;
      goes_on = Report();
    });
    return goes_on;
  }

  Answer OnOverwrite(const FileSide& existing, const FileSide& incoming) override {
    Answer answer = Answer::kCancel;
    Ask([&] {
      if (!is_cancelled_) answer = observer_->OnOverwrite(existing, incoming);
    });
    return answer;
  }

  // Does nothing when there is nobody any more.
  void Ask(const Request& request) {
    std::unique_lock lock(mutex_);
    request_ = &request;
    changed_.notify_all();
    changed_.wait(lock, [&] { return request_ == nullptr || is_left_; });
  }

  // On the calling thread.

  void LookAfterIt() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait_for(lock, kBetweenReports, [&] { return is_done_ || request_ != nullptr; });
      if (is_done_) return;
      const Request* const request = request_;
      lock.unlock();
      request != nullptr ? (*request)() : (void)Report();
      lock.lock();
      if (request == nullptr) continue;
      request_ = nullptr;
      changed_.notify_all();
    }
  }

  bool Report() {
    if (!observer_->OnProgress(progress_)) is_cancelled_ = true;
    return !is_cancelled_;
  }

  void End() {
    {
      const std::lock_guard lock(mutex_);
      is_left_ = true;
      changed_.notify_all();
    }
    if (thread_.joinable()) thread_.join();
  }

  void UndoAtExit() override { End(); }

  FileOperationObserver* const observer_;
  FileProgress progress_;
  bool is_cancelled_ = false;

  std::mutex mutex_;
  std::condition_variable changed_;
  const Request* request_ = nullptr;  // for the calling thread to do
  bool is_left_ = false;              // nobody does any more
  bool is_done_ = false;

  Result result_;
  std::exception_ptr fault_;
  std::thread thread_;
};

}  // namespace

Result DoOnOwnThread(FileOperationObserver* observer, const ObservedWork& work) {
  return OwnThread(observer).Do(work);
}

}  // namespace quendle::platform
