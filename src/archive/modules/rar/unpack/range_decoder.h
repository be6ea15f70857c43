// The range decoder below PPM: a 32-bit one without carries. Who codes a symbol divides the range by the total of a
// context's frequencies, and narrows it to the symbol's share.
#pragma once

#include <cstdint>

#include "archive/modules/lz/bit_reader.h"

namespace quendle::modules {

class RangeDecoder {
 public:
  // Begins at the next byte of `bits`, which outlives the decoding. All further bytes are taken from there, each when
  // it is needed: once a symbol is decoded the reader stands behind the last byte of it.
  void Begin(BitReader* bits) {
    bits_ = bits;
    low_ = 0;
    range_ = 0xFFFFFFFF;
    above_low_ = bits->Take(32);
  }

  // Divides the range into `total` shares and says which of them is coded. `total`: none, the data are damaged; nothing
  // has changed and nothing may be taken.
  std::uint32_t Share(std::uint32_t total) {
    if (total == 0 || total > range_) return total;
    const std::uint32_t size = range_ / total;
    const std::uint32_t share = above_low_ / size;
    if (share >= total) return total;
    range_ = size;
    return share;
  }

  // Behind Share, which said one of them: goes on within `size` (not 0) shares from `start` on.
  void Take(std::uint32_t start, std::uint32_t size) { Narrow(start * range_, size * range_); }

  // One of two symbols, the first of which has `share` (neither 0 nor all) of 2^14.
  bool TakeFirst(std::uint32_t share) {
    range_ >>= kBinaryBits;
    const std::uint32_t first = share * range_;
    const bool is_first = above_low_ < first;
    if (is_first) {
      Narrow(0, first);
    } else {
      Narrow(first, (range_ << kBinaryBits) - first);
    }
    return is_first;
  }
  static constexpr unsigned kBinaryBits = 14;

  // Were bytes taken that are not there?
  bool IsPastEnd() const { return bits_->IsPastEnd(); }

 private:
  static constexpr std::uint32_t kTop = 1U << 24;
  static constexpr std::uint32_t kBottom = 1U << 15;

  // Shifts out the highest bytes while they are settled. Where the range is short and lies across a border, it is cut at
  // the border. It is
  // never 0, as something is left this side of the border.
  void Narrow(std::uint32_t start, std::uint32_t size) {
    low_ += start;
    above_low_ -= start;
    range_ = size;
    while (true) {
      if ((low_ ^ (low_ + range_)) >= kTop) {
        if (range_ >= kBottom) return;
        range_ = (0 - low_) & (kBottom - 1);
      }
      above_low_ = above_low_ << 8 | bits_->TakeByte();
      low_ <<= 8;
      range_ <<= 8;
    }
  }

  BitReader* bits_ = nullptr;
  std::uint32_t low_ = 0;
  std::uint32_t range_ = 0;
  std::uint32_t above_low_ = 0;  // where in the range the code is
};

}  // namespace quendle::modules
