// How blocks of versions 2.9 and 5.0 say the lengths of their codes.
#pragma once

#include <cstdint>
#include <span>

#include "archive/modules/lz/bit_reader.h"

namespace quendle::modules {

// Reads the lengths of a block's codes, of all its alphabets behind each other. In: what each is added to modulo 16,
// in 2.9 the length it had in the block before, in 5.0 always 0. False: they are damaged.
bool ReadCodeLengths(BitReader* bits, std::span<std::uint8_t> lengths);

}  // namespace quendle::modules
