#include "platform/moving/own_thread.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/process/undone_at_exit.h"

namespace quendle::platform {
namespace {

constexpr std::chrono::milliseconds kBetweenReports{20};

class OwnThreads final : private FileOperationObserver {
 public:
  explicit OwnThreads(FileOperationObserver* observer) : observer_(observer) {}
  ~OwnThreads() override { End(); }
  OwnThreads(const OwnThreads&) = delete;
  OwnThreads& operator=(const OwnThreads&) = delete;

  void Do(unsigned count, const SharedWork& work) {
    Start(count, work);
    if (threads_.empty()) return work(observer_);
    LookAfterThem();
    End();
    if (fault_) std::rethrow_exception(fault_);
  }

  // The work is cancelled, unless it is done, and has ended afterwards.
  void End() {
    {
      const std::lock_guard lock(mutex_);
      is_left_ = true;
      changed_.notify_all();
    }
    for (std::thread& thread : threads_) {
      if (thread.joinable()) thread.join();
    }
  }

 private:
  using Request = std::function<void()>;

  // On the threads of the work.

  void Work(const SharedWork& work) {
    std::exception_ptr fault;
    try {
      work(this);
    } catch (...) {
      fault = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    if (fault) fault_ = fault;
    --working_;
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
    changed_.wait(lock, [&] { return request_ == nullptr || is_left_; });
    if (is_left_) return;
    request_ = &request;
    changed_.notify_all();
    changed_.wait(lock, [&] { return request_ != &request || is_left_; });
  }

  // On the calling thread.

  void Start(unsigned count, const SharedWork& work) {
    const std::lock_guard lock(mutex_);
    threads_.reserve(count);
    try {
      for (; working_ < count; ++working_) threads_.emplace_back([&] { Work(work); });
    } catch (const std::system_error&) {  // those that there are do it
    }
  }

  void LookAfterThem() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait_for(lock, kBetweenReports, [&] { return working_ == 0 || request_ != nullptr; });
      if (working_ == 0) return;
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

  FileOperationObserver* const observer_;
  FileProgress progress_;
  bool is_cancelled_ = false;

  std::mutex mutex_;
  std::condition_variable changed_;
  const Request* request_ = nullptr;  // for the calling thread to do
  bool is_left_ = false;              // nobody does any more
  unsigned working_ = 0;

  std::exception_ptr fault_;
  std::vector<std::thread> threads_;
};

class EndedAtExit final : private UndoneAtExit {
 public:
  explicit EndedAtExit(OwnThreads* threads) : threads_(threads) {}

 private:
  void UndoAtExit() override { threads_->End(); }

  OwnThreads* const threads_;
};

}  // namespace

Result DoOnOwnThread(FileOperationObserver* observer, const ObservedWork& work) {
  // They outlive the threads also when the observer throws.
  Result result;
  const SharedWork shared = [&](FileOperationObserver* told) { result = work(told); };
  OwnThreads threads(observer);
  const EndedAtExit at_exit(&threads);
  threads.Do(1, shared);
  return result;
}

void DoOnThreads(unsigned count, FileOperationObserver* observer, const SharedWork& work) {
  OwnThreads(observer).Do(count, work);
}

}  // namespace quendle::platform
