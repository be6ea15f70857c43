// What this process asks of file systems, so that a test can have it fail, or do something at that moment as another
// process would.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace quendle::test {

enum class DiskCall { kOpen, kMake, kStat, kList, kRead, kWrite, kSync, kAttribute, kLink, kRename, kUnlink };

inline constexpr DiskCall kDiskCalls[] = {DiskCall::kOpen,   DiskCall::kMake,      DiskCall::kStat,
                                          DiskCall::kList,   DiskCall::kRead,      DiskCall::kWrite,
                                          DiskCall::kSync,   DiskCall::kAttribute, DiskCall::kLink,
                                          DiskCall::kRename, DiskCall::kUnlink};

const char* NameOf(DiskCall call);

// While it lives it sees the calls of the thread that made it, and only one may live at a time. What it does by
// itself, and what its actions do, is not seen.
class FailingDisk {
 public:
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  // The `nth` call, 1 for the next one, that has `part` in its entry of calls() fails.
  void Fail(DiskCall call, unsigned nth, int error, const std::string& part = "");
  void Before(DiskCall call, unsigned nth, std::function<void()> action, const std::string& part = "");

  // All calls so far: "rename /a > /b", "sync /a".
  const std::vector<std::string>& calls() const { return calls_; }
  // The last one that was made to fail; empty when none was.
  const std::string& failed() const { return failed_; }

  // For the calls themselves: 0 or the error to fail with.
  static int Meet(DiskCall call, const std::function<std::string()>& what);

 private:
  struct Rule {
    DiskCall call;
    unsigned left;
    int error;
    std::function<void()> action;
    std::string part;
  };

  int Follow(DiskCall call, const std::string& what);

  const std::thread::id thread_ = std::this_thread::get_id();
  std::vector<Rule> rules_;
  std::vector<std::string> calls_;
  std::string failed_;
  bool is_busy_ = false;
};

}  // namespace quendle::test
