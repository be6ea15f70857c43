// An open file that closes itself.
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

#include "platform/entries/system_handle.h"

namespace quendle::platform {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }

  bool ok() const { return fd_ >= 0; }
  int get() const { return fd_; }

  // The file stays open, and somebody else closes it.
  int Release() { return std::exchange(fd_, -1); }

  // False, with errno set, when the file system reports a late write error. Linux has closed the file all the
  // same.
  bool Close() { return fd_ < 0 || close(Release()) == 0 || errno == EINTR; }

 private:
  int fd_ = -1;
};

inline int FdOf(const SystemHandle& handle) {
  return static_cast<int>(handle.get());
}

// Repeats a system call for as long as signals interrupt it.
template <typename Call>
auto Retried(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace quendle::platform
