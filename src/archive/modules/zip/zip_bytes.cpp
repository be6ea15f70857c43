#include "archive/modules/zip/zip_bytes.h"

#include <algorithm>

namespace quendle::modules {

std::string_view ZipBytes::At(std::uint64_t position, std::size_t size) {
  if (position >= input_.Size()) return {};
  size = static_cast<std::size_t>(std::min<std::uint64_t>(size, input_.Size() - position));
  if (position < begin_ || position - begin_ > buffer_.size() ||
      size > buffer_.size() - static_cast<std::size_t>(position - begin_)) {
    begin_ = position;
    buffer_.resize(std::max(size, block_));
    std::size_t got = 0;
    if (platform::Result read = input_.ReadAt(position, buffer_.data(), buffer_.size(), &got); !read.ok()) {
      result_ = std::move(read);
      got = 0;
    }
    buffer_.resize(got);
  }
  return std::string_view(buffer_).substr(static_cast<std::size_t>(position - begin_), size);
}

}  // namespace quendle::modules
