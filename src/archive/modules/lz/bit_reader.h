// The bits of packed bytes, the highest of each byte first. Behind their end come zeros, so that who decodes may look
// further than what is left; what was taken from there is told by IsPastEnd.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "archive/modules/lz/bit_cursor.h"
#include "archive/modules/lz/packed_source.h"

namespace quendle::modules {

class BitReader {
 public:
  BitReader() { Begin(nullptr); }
  BitReader(const BitReader&) = delete;
  BitReader& operator=(const BitReader&) = delete;

  // Begins at the first bit of `source`, which outlives the reading. Null: there are no bytes.
  void Begin(PackedSource* source);

  // Makes 56 bits or more available at once, for code that is for a BitCursor, too. Else nobody needs to call it.
  void Refill() { Need(56); }

  // The next `count` bits, 1 to 32, as a number; they stay where they are.
  std::uint32_t Peek(unsigned count) {
    Need(count);
    return cursor_.Peek(count);
  }

  // Passes over bits that were looked at: not more than the last Peek had.
  void Skip(unsigned count) { cursor_.Skip(count); }

  // The next `count` bits, 0 to 32, as a number, and goes behind them.
  std::uint32_t Take(unsigned count) {
    Need(count);
    return cursor_.Take(count);
  }

  // The same for 0 to 56 bits.
  std::uint64_t TakeLong(unsigned count) {
    Need(count);
    return cursor_.TakeLong(count);
  }

  std::uint8_t TakeByte() { return static_cast<std::uint8_t>(Take(8)); }

  // Goes to the next whole byte, if it is not at one.
  void AlignToByte() { Skip(cursor_.available_ % 8); }

  // Bits taken since Begin.
  std::uint64_t Position() const { return 8 * (before_ + Next()) - cursor_.available_; }

  // Were bits taken that are not there?
  bool IsPastEnd() const { return cursor_.available_ < missing_; }

  // A cursor at this place, which is far from its end as long as it is from what the reader has at hand, and from the bit
  // at position `end`. Nothing else is done with the reader until the cursor is given back.
  BitCursor Lend(std::uint64_t end) const;
  void TakeBack(const BitCursor& cursor) { cursor_ = cursor; }

 private:
  void Need(unsigned count) {
    if (cursor_.available_ >= count) return;
    if (end_ - Next() < sizeof(std::uint64_t)) return RefillSlowly();
    cursor_.Refill();
  }
  void RefillSlowly();

  // The byte of the buffer that the cursor takes next.
  std::size_t Next() const { return static_cast<std::size_t>(cursor_.next_ - buffer_.data()); }

  static constexpr std::size_t kBufferSize = 64U << 10;

  PackedSource* source_ = nullptr;
  std::uint64_t before_ = 0;  // bytes in front of the buffer
  std::size_t end_ = 0;       // of its bytes
  unsigned missing_ = 0;      // bits that came from behind the end
  BitCursor cursor_;
  std::array<std::uint8_t, kBufferSize> buffer_;
};

}  // namespace quendle::modules
