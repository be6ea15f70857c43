// What the symbols of lengths and distances stand for in the LZ data of RAR 2.0 to 4.x.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "archive/modules/lz/bit_reader.h"

namespace quendle::modules {

// A symbol's values: `base` plus the number that the next `bits` bits are.
struct LzSlot {
  std::uint32_t base;
  std::uint8_t bits;
};

inline std::uint32_t TakeValue(const LzSlot& slot, BitReader* bits) {
  return slot.base + bits->Take(slot.bits);
}

// Slots without gaps: each begins where the one before it ends.
template <std::size_t kCount>
constexpr std::array<LzSlot, kCount> LzSlots(std::size_t (*bits_of)(std::size_t)) {
  std::array<LzSlot, kCount> slots{};
  std::uint32_t base = 0;
  for (std::size_t i = 0; i < kCount; ++i) {
    slots[i] = {base, static_cast<std::uint8_t>(bits_of(i))};
    base += 1U << slots[i].bits;
  }
  return slots;
}

inline constexpr auto kLengthSlots = LzSlots<28>([](std::size_t i) { return i < 8 ? 0 : i / 4 - 1; });

// RAR 2.0 has the first 48.
inline constexpr auto kDistanceSlots = LzSlots<60>([](std::size_t i) {
  return i < 4 ? 0 : i < 34 ? i / 2 - 1 : i < 48 ? std::size_t{16} : 18;
});

// Distances of matches of two bytes.
inline constexpr auto kShortDistanceSlots =
    LzSlots<8>([](std::size_t i) { return std::clamp<std::size_t>(i + 1, 2, 6); });

static_assert(kLengthSlots.back().base == 224 && kDistanceSlots[47].base == 983040);
static_assert(kDistanceSlots.back().base == 3932160 && kShortDistanceSlots.back().base == 192);

}  // namespace quendle::modules
