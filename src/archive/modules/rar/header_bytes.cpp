#include "archive/modules/rar/header_bytes.h"

#include <algorithm>
#include <utility>

namespace quendle::modules {
namespace {

constexpr std::size_t kBlock = 16;  // of the ciphers
constexpr std::size_t kFirstRead =
    4096;  // enough for nearly all headers, and for several where contents are small

constexpr std::uint64_t ToWholeBlocks(std::uint64_t size) {
  return (size + kBlock - 1) / kBlock * kBlock;
}

bool ReadAll(const ArchiveInput& input, std::uint64_t position, char* bytes, std::size_t size) {
  std::size_t got = 0;
  return input.ReadAt(position, bytes, size, &got).ok() && got == size;
}

}  // namespace

void HeaderBytes::Encrypt(std::size_t prefix, MakeCipher make_cipher) {
  prefix_ = prefix;
  make_cipher_ = std::move(make_cipher);
}

bool HeaderBytes::Begin(std::uint64_t position) {
  const bool is_read = !AreEncrypted() && position >= position_ && position - position_ < bytes_.size();
  bytes_.erase(0, is_read ? static_cast<std::size_t>(position - position_) : std::string::npos);
  position_ = position;
  if (position >= end_) return false;
  if (!AreEncrypted()) return true;
  if (end_ - position < prefix_) return false;
  std::string prefix(prefix_, '\0');
  if (!ReadAll(input_, position, prefix.data(), prefix_)) return false;
  position_ += prefix_;
  cipher_ = make_cipher_(prefix);
  return cipher_ != nullptr;
}

bool HeaderBytes::Read(std::size_t size) {
  const std::size_t old_size = bytes_.size();
  if (old_size >= size) return true;
  std::uint64_t room = end_ - position_;
  if (AreEncrypted()) room -= room % kBlock;
  if (room < size) return false;
  const auto all = static_cast<std::size_t>(std::min(room, ToWholeBlocks(std::max(size, kFirstRead))));
  bytes_.resize(all);
  char* const added = bytes_.data() + old_size;
  if (!ReadAll(input_, position_ + old_size, added, all - old_size)) {
    bytes_.resize(old_size);
    return false;
  }
  if (AreEncrypted()) cipher_->Decrypt(reinterpret_cast<std::uint8_t*>(added), all - old_size);
  return true;
}

std::uint64_t HeaderBytes::EndOf(std::size_t size) const {
  return position_ + (AreEncrypted() ? ToWholeBlocks(size) : size);
}

}  // namespace quendle::modules
