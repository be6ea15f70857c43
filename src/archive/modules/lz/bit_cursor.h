// A place in packed bytes, for the hot loops: nothing points to it, so that the compiler keeps it in registers.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quendle::modules {

class BitCursor {
 public:
  // How far a loop may go between two looks at IsFarFromEnd, in bits, and in how many bytes that and a Refill lie.
  static constexpr unsigned kMostAtOnce = 128;
  static constexpr std::size_t kMargin = 32;

  // May kMostAtOnce bits be taken?
  bool IsFarFromEnd() const { return next_ < limit_; }

  // Makes 56 bits or more available.
  void Refill() {
    std::uint64_t word = 0;
    std::memcpy(&word, next_, sizeof(word));
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    // What does not fit is taken again the next time: the same bits at the same place.
    bits_ |= word >> available_;
    next_ += (63 - available_) / 8;
    available_ |= 56;
  }

  // These are for bits that a Refill has made available. The next `count` of them, 1 to 32, as a number:
  std::uint32_t Peek(unsigned count) const { return static_cast<std::uint32_t>(bits_ >> (64 - count)); }

  void Skip(unsigned count) {
    bits_ <<= count;
    available_ -= count;
  }

  // The next `count` bits, 0 to 56, as a number, and goes behind them.
  std::uint64_t TakeLong(unsigned count) {
    const std::uint64_t value = bits_ >> 1 >> (63 - count);
    Skip(count);
    return value;
  }
  std::uint32_t Take(unsigned count) { return static_cast<std::uint32_t>(TakeLong(count)); }

 private:
  friend class BitReader;

  std::uint64_t bits_ = 0;  // the highest ones are next
  unsigned available_ = 0;  // of them
  const std::uint8_t* next_ = nullptr;
  const std::uint8_t* limit_ = nullptr;
};

}  // namespace quendle::modules
