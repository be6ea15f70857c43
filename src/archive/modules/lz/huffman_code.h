// Canonical Huffman codes of up to 16 bits: shorter ones first, those of a length in the order of their symbols.
//   lengths 1 2 2 ⇒ symbol 0 is 0, symbol 1 is 10, symbol 2 is 11
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "archive/modules/lz/bit_reader.h"

namespace quendle::modules {

class HuffmanCode {
 public:
  static constexpr unsigned kLongest = 16;
  static constexpr unsigned kNone = 0xFFFF;

  // The lengths of the codes of all symbols, 2047 at most; 0: it has none. False, and no symbol has a code, when there
  // are more than there is room for. Codes may be left over, even all.
  bool Build(std::span<const std::uint8_t> lengths);

  // The next symbol, kNone for bits that no symbol has. `bits`: a BitReader, or a BitCursor with kLongest bits available.
  template <typename Bits>
  unsigned Decode(Bits* bits) const {
    const std::uint32_t next = bits->Peek(kLongest);
    const unsigned quick = quick_[next >> (kLongest - kQuickBits)];
    const unsigned found = quick != 0 ? quick : FindLong(next);
    bits->Skip(found & kLengthMask);
    return found >> kLengthBits;
  }

 private:
  static constexpr unsigned kQuickBits = 10;
  static constexpr unsigned kLengthBits = 5;
  static constexpr unsigned kLengthMask = (1U << kLengthBits) - 1;

  // What would be in quick_, were it for kLongest bits; kNone << kLengthBits for none.
  unsigned FindLong(std::uint32_t next) const;

  // By the next bits: a symbol, and in the lowest kLengthBits the length of its code. 0: the code is longer.
  std::array<std::uint16_t, 1U << kQuickBits> quick_{};
  // By length: behind the last code of it, with zeros appended to kLongest bits, and where its symbols begin.
  std::array<std::uint32_t, kLongest + 1> ends_{};
  std::array<std::uint32_t, kLongest + 1> firsts_{};
  std::vector<std::uint16_t> symbols_;  // that have codes, in the order of these
};

}  // namespace quendle::modules
