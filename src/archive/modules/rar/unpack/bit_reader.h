// The bits of packed bytes, the highest of each byte first. Behind their end come zeros, so that who decodes may look
// further than what is left; what was taken from there is told by IsPastEnd.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "archive/modules/rar/unpack/packed_source.h"

namespace quendle::modules {

class BitReader {
 public:
  // Begins at the first bit of `source`, which outlives the reading. Null: there are no bytes.
  void Begin(PackedSource* source);

  // The next `count` bits, 1 to 32, as a number; they stay where they are.
  std::uint32_t Peek(unsigned count) {
    Need(count);
    return static_cast<std::uint32_t>(bits_ >> (64 - count));
  }

  // Passes over bits that were looked at: not more than the last Peek had.
  void Skip(unsigned count) {
    bits_ <<= count;
    available_ -= count;
  }

  // The next `count` bits, 0 to 32, as a number, and goes behind them.
  std::uint32_t Take(unsigned count) {
    Need(count);
    const auto value = static_cast<std::uint32_t>(bits_ >> 1 >> (63 - count));
    Skip(count);
    return value;
  }

  std::uint8_t TakeByte() { return static_cast<std::uint8_t>(Take(8)); }

  // Goes to the next whole byte, if it is not at one.
  void AlignToByte() { Skip(available_ % 8); }

  // Bits taken since Begin.
  std::uint64_t Position() const { return 8 * (before_ + next_) - available_; }

  // Were bits taken that are not there?
  bool IsPastEnd() const { return available_ < missing_; }

 private:
  void Need(unsigned count) {
    if (available_ < count) Refill();
  }

  // Makes 56 bits or more available.
  void Refill() {
    if (end_ - next_ < sizeof(bits_)) return RefillSlowly();
    std::uint64_t word = 0;
    std::memcpy(&word, buffer_.data() + next_, sizeof(word));
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    // What does not fit is taken again the next time: the same bits at the same place.
    bits_ |= word >> available_;
    next_ += (63 - available_) / 8;
    available_ |= 56;
  }
  void RefillSlowly();

  static constexpr std::size_t kBufferSize = 64U << 10;

  PackedSource* source_ = nullptr;
  std::uint64_t bits_ = 0;  // the highest ones are next
  unsigned available_ = 0;  // of them, and whole bytes of the buffer
  unsigned missing_ = 0;    // of those that came from behind the end
  std::size_t next_ = 0;    // in the buffer
  std::size_t end_ = 0;
  std::uint64_t before_ = 0;  // bytes in front of the buffer
  std::array<std::uint8_t, kBufferSize> buffer_;
};

}  // namespace quendle::modules
