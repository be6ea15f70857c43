#include "archive/modules/rar/packed_content.h"

#include <algorithm>

namespace quendle::modules {

// As many as asked for, unless the parts end or one cannot be read.
std::size_t PackedContent::ReadParts(std::uint8_t* buffer, std::size_t size) {
  std::size_t sum = 0;
  while (sum < size && part_ < parts_.size() && problem_.empty()) {
    const RarPart& part = parts_[part_];
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size - sum, part.size - position_));
    std::size_t got = 0;
    const platform::Result result = input_.ReadAt(part.position + position_, buffer + sum, wanted, &got);
    if (!result.ok()) problem_ = result.reason;
    sum += got;
    position_ += got;
    if (got < wanted && problem_.empty()) problem_ = why::kCutOff;
    if (position_ < part.size) continue;
    ++part_;
    position_ = 0;
  }
  return sum;
}

// Whole blocks only: what is left of one at the end belongs to nothing.
std::size_t PackedContent::ReadBlocks(std::uint8_t* buffer, std::size_t size) {
  const std::size_t block = cipher_->BlockSize();
  const std::size_t got = ReadParts(buffer, size);
  const std::size_t whole = got - got % block;
  cipher_->Decrypt(buffer, whole);
  return whole;
}

std::size_t PackedContent::Read(std::uint8_t* buffer, std::size_t size) {
  if (!cipher_) return ReadParts(buffer, size);
  const std::size_t block = cipher_->BlockSize();
  if (block_.empty() && size >= block) return ReadBlocks(buffer, size - size % block);
  if (block_.empty()) {
    block_.resize(block);
    block_.resize(ReadBlocks(block_.data(), block));
  }
  const std::size_t taken = std::min(size, block_.size());
  std::copy_n(block_.begin(), taken, buffer);
  block_.erase(block_.begin(), block_.begin() + static_cast<std::ptrdiff_t>(taken));
  return taken;
}

}  // namespace quendle::modules
