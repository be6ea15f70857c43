// Places to test in, and pictures of what is there.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "support/temp_folder.h"

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

// Every entry below the folder, hidden ones too, with enough about it to notice any change of content.
inline std::map<std::string, std::string> Picture(const std::string& folder) {
  namespace fs = std::filesystem;
  std::map<std::string, std::string> picture;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    const fs::path& path = entry.path();
    std::string& what = picture[path.lexically_relative(folder).string()];
    if (entry.is_symlink()) {
      what = "link to " + fs::read_symlink(path).string();
    } else if (entry.is_directory()) {
      what = "folder";
    } else if (entry.is_regular_file()) {
      std::string bytes(entry.file_size(), 0);
      std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
      what = bytes.size() < 100
                 ? "file " + bytes
                 : std::to_string(bytes.size()) + " " + std::to_string(std::hash<std::string>{}(bytes));
    } else {
      what = "other";
    }
  }
  return picture;
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
