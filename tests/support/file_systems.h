// Places to test in, and what they are.
#pragma once

#include <filesystem>
#include <string>

#include <sys/stat.h>

#include "support/picture.h"

namespace quendle::test {

// The top folder of another file system than the temporary folder's, in which everybody may write (some tests
// are somebody else for a while), or empty when this machine has none.
#ifdef _WIN32
inline std::string OtherFileSystem() {
  constexpr char kOfWinesHost[] = "Z:\\dev\\shm";
  return fs::is_directory(kOfWinesHost) ? kOfWinesHost : "";
}
#else
inline std::string OtherFileSystem() {
  const auto status_of = [](const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status;
  };
  const dev_t usual = status_of(fs::temp_directory_path().string()).st_dev;
  for (const char* folder : {"/dev/shm", "/tmp", "/run"}) {
    const struct stat status = status_of(folder);
    const struct stat above = status_of(std::string(folder) + "/..");
    if ((status.st_mode & S_IWOTH) != 0 && status.st_dev != usual && status.st_dev != above.st_dev)
      return folder;
  }
  return "";
}
#endif

// A symbolic link, a pipe; false where the system or the library makes none.
inline bool MakeLink(const std::string& target, const std::string& path) {
  std::error_code error;
  fs::create_symlink(FsPath(target), FsPath(path), error);
  return !error;
}
#ifdef _WIN32
inline bool MakePipe(const std::string& /*path*/) {
  return false;
}
#else
inline bool MakePipe(const std::string& path) {
  return mkfifo(path.c_str(), 0666) == 0;
}
#endif

}  // namespace quendle::test
