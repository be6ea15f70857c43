// Packed data of RAR for a test. All symbols of an alphabet have codes of one length, so that a symbol's code is its
// number.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::test {

class PackedBits {
 public:
  PackedBits& Put(std::uint64_t value, unsigned count) {
    while (count-- > 0) {
      if (used_ % 8 == 0) bytes_.push_back('\0');
      if ((value >> count & 1) != 0) bytes_.back() = static_cast<char>(bytes_.back() | 0x80 >> used_ % 8);
      ++used_;
    }
    return *this;
  }

  void Align() { used_ = 8 * bytes_.size(); }

  // The lengths of codes, as 2.9 has them for new ones and 5.0 always: of each alphabet how many symbols and bits.
  void PutLengths(std::initializer_list<std::pair<unsigned, unsigned>> alphabets) {
    for (unsigned i = 0; i < 20; ++i) Put(5, 4);
    for (const auto& [symbols, length] : alphabets)
      for (unsigned i = 0; i < symbols; ++i) Put(length, 5);
  }

  std::size_t Size() const { return used_; }  // in bits
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  std::size_t used_ = 0;
};

// Gives `step` bytes at once.
class StringSource final : public modules::PackedSource {
 public:
  explicit StringSource(std::string_view bytes, std::size_t step = 1U << 20) : bytes_(bytes), step_(step) {}

  std::size_t Read(std::uint8_t* buffer, std::size_t size) override {
    const std::size_t count =
        bytes_.substr(0, std::min(size, step_)).copy(reinterpret_cast<char*>(buffer), size);
    bytes_.remove_prefix(count);
    return count;
  }
  const Reason& Problem() const override { return problem; }

  Reason problem;

 private:
  std::string_view bytes_;
  std::size_t step_;
};

// What is unpacked from an entry, and how that ended.
inline std::pair<std::string, modules::ReadStatus> UnpackAll(modules::Unpacker* unpacker,
                                                             std::string_view packed,
                                                             const modules::PackedEntry& entry,
                                                             std::size_t step = 1U << 20) {
  StringSource source(packed, step);
  unpacker->Begin(&source, entry);
  std::string all;
  std::string_view piece;
  modules::ReadStatus status;
  while ((status = unpacker->Read(&piece)) == modules::ReadStatus::kOk) all.append(piece);
  return {all, status};
}

}  // namespace quendle::test
