#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/input_file.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {

Result InputFile::Open(const std::string& path, std::unique_ptr<InputFile>* file) {
  // Opening a pipe would wait for somebody to write into it.
  Descriptor opened(Retried([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  if (!opened.ok()) return LastSystemFailure(path);
  struct stat status;
  if (fstat(opened.get(), &status) != 0) return LastSystemFailure(path);
  if (S_ISDIR(status.st_mode)) return Failure(Code::kIsFolder, path, why::kThisIsFolder);
  if (!S_ISREG(status.st_mode)) return Failure(Code::kRefused, path, why::kNotRegular);
  std::string identity;
  for (const auto part :
       {static_cast<long long>(status.st_dev), static_cast<long long>(status.st_ino),
        static_cast<long long>(status.st_size), static_cast<long long>(status.st_ctim.tv_sec),
        static_cast<long long>(status.st_ctim.tv_nsec)}) {
    identity += std::to_string(part) + "/";
  }
  file->reset(
      new InputFile(path, opened.Release(), static_cast<std::uint64_t>(status.st_size), std::move(identity)));
  return Success();
}

InputFile::InputFile(std::string path, std::intptr_t handle, std::uint64_t size, std::string identity)
    : path_(std::move(path)), handle_(handle), size_(size), identity_(std::move(identity)) {}

InputFile::~InputFile() {
  close(static_cast<int>(handle_));
}

Result InputFile::ReadAt(std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) const {
  *got = 0;
  while (*got < size) {
    const ssize_t n = Retried([&] {
      return pread(static_cast<int>(handle_), static_cast<char*>(buffer) + *got, size - *got,
                   static_cast<off_t>(position + *got));
    });
    if (n < 0) return LastSystemFailure(path_);
    if (n == 0) break;
    *got += static_cast<std::size_t>(n);
  }
  return Success();
}

}  // namespace quendle::platform
