// The bits of a filter's record or program in RAR 2.9, the highest of each byte first, and the numbers written in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quendle::modules {

class RecordBits {
 public:
  // `bytes` outlive the reading.
  explicit RecordBits(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  // The next `count` bits, 0 to 32, as a number. Behind the end there are zeros.
  std::uint32_t Take(unsigned count) {
    std::uint32_t value = 0;
    for (; count > 0; --count, ++position_) value = value << 1 | Bit();
    return value;
  }

  // A number of one of four lengths, which its first two bits tell.
  //   00 0101 ⇒ 5    01 0101 0110 ⇒ 56h    01 0000 11111111 ⇒ FFFFFFFFh    10 and 16 bits    11 and 32 bits
  std::uint32_t TakeNumber() {
    const std::uint32_t kind = Take(2);
    if (kind == 0) return Take(4);
    if (kind > 1) return Take(kind == 2 ? 16 : 32);
    const std::uint32_t high = Take(4);
    return high == 0 ? 0xFFFFFF00 | Take(8) : high << 4 | Take(4);
  }

  // Does no byte begin here or further on?
  bool IsAtEnd() const { return position_ / 8 >= bytes_.size(); }

  // Were bits taken that are not there?
  bool IsPastEnd() const { return position_ > 8 * bytes_.size(); }

 private:
  std::uint32_t Bit() const {
    return IsAtEnd() ? 0 : std::uint32_t{bytes_[position_ / 8]} >> (7 - position_ % 8) & 1;
  }

  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;  // in bits
};

}  // namespace quendle::modules
