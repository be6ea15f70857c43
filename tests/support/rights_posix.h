// Rights and other records that POSIX keeps of entries.
#pragma once

#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace quendle::test {

inline struct stat StatusOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status;
}

// Root may write everywhere; while this lives the process is somebody else if it can be.
class WithoutPrivileges {
 public:
  WithoutPrivileges() : former_(geteuid()) {
    if (former_ == 0 && seteuid(kNobody) != 0) former_ = kNobody;
  }
  ~WithoutPrivileges() {
    if (former_ == 0) (void)!seteuid(0);
  }
  WithoutPrivileges(const WithoutPrivileges&) = delete;
  WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
  uid_t former_;
};

}  // namespace quendle::test
