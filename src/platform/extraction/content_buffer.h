// Bytes whose number is known before they come. They are not set to anything first.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace quendle::platform {

class ContentBuffer {
 public:
  ContentBuffer() = default;
  explicit ContentBuffer(std::size_t size)
      : bytes_(std::make_unique_for_overwrite<char[]>(size)), size_(size) {}

  static ContentBuffer CopyOf(std::string_view bytes) {
    ContentBuffer copy(bytes.size());
    std::memcpy(copy.Data(), bytes.data(), bytes.size());
    return copy;
  }

  char* Data() { return bytes_.get(); }
  // Empty once it was moved from.
  std::string_view View() const { return {bytes_.get(), bytes_ ? size_ : 0}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace quendle::platform
