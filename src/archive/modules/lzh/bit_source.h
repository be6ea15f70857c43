// The bits of packed data, the highest of a byte first.
#pragma once

#include <cstdint>

#include "archive/modules/lzh/packed_bytes.h"

namespace quendle::modules {

class BitSource {
 public:
  explicit BitSource(PackedBytes* packed) : packed_(packed) {}

  // The next `count` bits, 16 at most, as a number. Behind the end they are zero.
  unsigned Take(unsigned count) {
    while (available_ < count) {
      char byte = 0;
      if (packed_->ReadFew(&byte, 1) == 0) is_past_end_ = true;
      bits_ = bits_ << 8 | static_cast<unsigned char>(byte);
      available_ += 8;
    }
    available_ -= count;
    return bits_ >> available_ & ((1U << count) - 1);
  }

  // Have bits been taken that are not there?
  bool IsPastEnd() const { return is_past_end_; }

 private:
  PackedBytes* packed_;
  std::uint32_t bits_ = 0;  // the lowest `available_` ones are still to be taken
  unsigned available_ = 0;
  bool is_past_end_ = false;
};

}  // namespace quendle::modules
