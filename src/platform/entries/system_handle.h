// An open file or folder that closes itself: a descriptor, or a HANDLE on Windows.
#pragma once

#include <cstdint>
#include <utility>

namespace quendle::platform {

class SystemHandle {
 public:
  SystemHandle() = default;
  explicit SystemHandle(std::intptr_t handle) : handle_(handle) {}
  ~SystemHandle() { Close(); }
  SystemHandle(SystemHandle&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
  SystemHandle& operator=(SystemHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  bool ok() const { return handle_ != kNone; }
  std::intptr_t get() const { return handle_; }

  // False, with the system's error set, when the file system reports a late write error.
  bool Close();

 private:
  static constexpr std::intptr_t kNone = -1;

  std::intptr_t handle_ = kNone;
};

}  // namespace quendle::platform
