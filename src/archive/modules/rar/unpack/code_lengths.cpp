#include "archive/modules/rar/unpack/code_lengths.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "archive/modules/lz/huffman_code.h"

namespace quendle::modules {
namespace {

// The code that the lengths themselves are written in; 15 stands in front of a number of zeros.
bool ReadLengthCode(BitReader* bits, HuffmanCode* code) {
  std::array<std::uint8_t, 20> lengths{};
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    lengths[i] = static_cast<std::uint8_t>(bits->Take(4));
    if (lengths[i] != 15) continue;
    const unsigned zeros = bits->Take(4);
    if (zeros == 0) continue;
    lengths[i] = 0;
    i += zeros + 1;  // more than there is room for are cut
  }
  return code->Build(lengths);
}

}  // namespace

bool ReadCodeLengths(BitReader* bits, std::span<std::uint8_t> lengths) {
  enum : unsigned { kRepeat = 16, kRepeatLong, kZeros, kZerosLong, kSymbols };
  HuffmanCode code;
  if (!ReadLengthCode(bits, &code)) return false;
  for (std::size_t i = 0; i < lengths.size();) {
    const unsigned symbol = code.Decode(bits);
    if (symbol >= kSymbols) return false;
    if (symbol < kRepeat) {
      lengths[i] = static_cast<std::uint8_t>((lengths[i] + symbol) & 0xF);
      ++i;
      continue;
    }
    const bool is_long = symbol == kRepeatLong || symbol == kZerosLong;
    const std::size_t run = is_long ? 11 + bits->Take(7) : 3 + bits->Take(3);
    const bool repeats = symbol < kZeros;
    if (repeats && i == 0) return false;
    const std::size_t end = std::min(i + run, lengths.size());
    std::fill(lengths.begin() + static_cast<std::ptrdiff_t>(i),
              lengths.begin() + static_cast<std::ptrdiff_t>(end), repeats ? lengths[i - 1] : std::uint8_t{0});
    i = end;
  }
  return true;
}

}  // namespace quendle::modules
