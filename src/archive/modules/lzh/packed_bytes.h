// The packed bytes of one entry, which its unpacker takes some at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/lz/packed_source.h"

namespace quendle::modules {

class PackedBytes final : public PackedSource {
 public:
  // `size` bytes of the input from `position` on; fewer when it ends before. The input outlives this object.
  PackedBytes(const ArchiveInput& input, std::uint64_t position, std::uint64_t size)
      : input_(input), position_(position), left_(size) {}

  std::size_t Read(std::uint8_t* buffer, std::size_t size) override {
    std::size_t got = 0;
    size = static_cast<std::size_t>(std::min<std::uint64_t>(size, left_));
    if (const platform::Result result = input_.ReadAt(position_, buffer, size, &got); !result.ok()) {
      problem_ = result.reason;
      left_ = 0;
      return 0;
    }
    position_ += got;
    left_ -= got;
    return got;
  }

  // The same through a buffer, for who takes few at a time.
  std::size_t ReadFew(char* bytes, std::size_t size) {
    if (used_ == buffer_.size()) {
      buffer_.resize(kBufferSize);
      buffer_.resize(Read(reinterpret_cast<std::uint8_t*>(buffer_.data()), buffer_.size()));
      used_ = 0;
    }
    const std::size_t taken = buffer_.copy(bytes, size, used_);
    used_ += taken;
    return taken;
  }

  const Reason& Problem() const override { return problem_; }

 private:
  static constexpr std::size_t kBufferSize = 64U << 10;

  const ArchiveInput& input_;
  std::uint64_t position_;
  std::uint64_t left_;
  std::string buffer_;
  std::size_t used_ = 0;
  Reason problem_;
};

}  // namespace quendle::modules
