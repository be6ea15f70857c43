// Numbers in what is unpacked, their lowest byte first.
#pragma once

#include <cstdint>

namespace quendle::modules {

// The number in the first `size` bytes, 4 at most.
inline std::uint32_t LoadNumber(const std::uint8_t* from, unsigned size) {
  std::uint32_t value = 0;
  for (unsigned i = 0; i < size; ++i) value |= std::uint32_t{from[i]} << (8 * i);
  return value;
}

// Makes the first `size` bytes the lowest ones of `value`.
inline void StoreNumber(std::uint32_t value, unsigned size, std::uint8_t* to) {
  for (unsigned i = 0; i < size; ++i) to[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// 0x7F ⇒ 127, 0x80 ⇒ -128
inline int SignedByte(std::uint8_t byte) {
  return byte < 0x80 ? byte : byte - 0x100;
}

}  // namespace quendle::modules
