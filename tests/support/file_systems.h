// Places to test in, and what they are.
#pragma once

#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "support/picture.h"

namespace quendle::test {

inline struct stat StatusOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status;
}

// The top folder of another file system than the temporary folder's, in which everybody may write (some tests
// are somebody else for a while), or empty when this machine has none.
inline std::string OtherFileSystem() {
  const dev_t usual = StatusOf(std::filesystem::temp_directory_path().string()).st_dev;
  for (const char* folder : {"/dev/shm", "/tmp", "/run"}) {
    const struct stat status = StatusOf(folder);
    const struct stat above = StatusOf(std::string(folder) + "/..");
    if ((status.st_mode & S_IWOTH) != 0 && status.st_dev != usual && status.st_dev != above.st_dev)
      return folder;
  }
  return "";
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
