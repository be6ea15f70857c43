// What this process asks of file systems, so that a test can have it fail, or do something at that moment as another
// process would.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace quendle::test {

inline constexpr const char* kDiskCalls[] = {"open", "make",      "stat", "list",   "read",  "write",
                                             "sync", "attribute", "link", "rename", "unlink"};

// While it lives it sees the calls of all threads, but not those that its actions make.
class FailingDisk {
 public:
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  // The `nth` call of that kind, 1 for the next one, that has `part` in its entry of calls() fails.
  void Fail(const std::string& call, unsigned nth, int error, const std::string& part = "") {
    rules_.push_back({call + " ", nth, error, [] {}, part});
  }
  void Before(const std::string& call, unsigned nth, std::function<void()> act,
              const std::string& part = "") {
    rules_.push_back({call + " ", nth, 0, std::move(act), part});
  }

  // The clock that stamps files advances by as many nanoseconds at a time; not more than a second.
  long clock_step = 1;

  // All calls so far: "rename /a > /b", "sync /a".
  const std::vector<std::string>& calls() const { return calls_; }
  // The last one that was made to fail; empty when none was.
  const std::string& failed() const { return failed_; }

  // 0, or the error that the call is to fail with.
  int Meet(const std::string& call);

 private:
  struct Rule {
    std::string call;
    unsigned left;
    int error;
    std::function<void()> act;
    std::string part;
  };

  std::mutex mutex_;
  std::vector<Rule> rules_;
  std::vector<std::string> calls_;
  std::string failed_;
};

}  // namespace quendle::test
