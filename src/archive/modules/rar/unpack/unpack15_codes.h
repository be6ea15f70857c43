// The codes of RAR 1.3 to 1.5. None is packed with the data: some never change, others begin alike for all data and
// follow how often each byte comes.
#pragma once

#include <array>
#include <cstdint>

#include "archive/modules/lz/bit_reader.h"
#include "archive/modules/lz/huffman_code.h"

namespace quendle::modules {

// Of symbols from 0 on; complete, thus Decode finds one in any bits.
struct FixedCodes15 {
  // Symbols 0 to 256. The first is best for small ones, the last for ones of any size.
  std::array<HuffmanCode, 5> values;
  // Symbols 0 to 255, of lengths of matches.
  HuffmanCode short_lengths;
  HuffmanCode long_lengths;

  FixedCodes15();
};

// What kind of short match comes: 0 to 14. `tends_high`: the small ones among 0 to 8 are rare, which have another code then.
// `has_14`: it may come; before, its code is one of another.
unsigned TakeSelector(bool tends_high, bool has_14, BitReader* bits);

// All bytes in an order that changes: what is used moves up, in front of all that were used as often.
class MoveUpList {
 public:
  enum Order : std::uint8_t { kRising, kFalling };

  // The bytes in their order: 0 1 2 ..., or 0 255 254 ...
  explicit MoveUpList(Order order = kRising);

  // The byte at `place`, 0 to 255, which moves up. At `most` uses of one, 8 to 255, all begin to be counted anew.
  std::uint8_t Use(unsigned place, unsigned most);

  // Begins to count anew: those in front as if they had been used before.
  void Recount();

 private:
  std::array<std::uint16_t, 256> values_;  // the byte, and below it how often it was used
  // By number of uses: the place of the first value that was used so often.
  std::array<std::uint8_t, 256> firsts_{};
};

}  // namespace quendle::modules
