// The symbols of -lh3-.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "archive/modules/lz/bit_reader.h"
#include "archive/modules/lzh/window_unpacker.h"

namespace quendle::modules {

// A Huffman code that is known by how many bits each symbol has.
class CanonicalCode {
 public:
  // Of `lengths[n]` bits for symbol n, 16 at most; 0: it does not occur. Codes of equal length ascend with the
  // symbols, and longer ones are above shorter ones.
  void Assign(std::span<const std::uint8_t> lengths);
  // Of one symbol, which takes no bits.
  void AssignOnly(unsigned symbol);

  // The next symbol; kNone when the bits stand for none.
  static constexpr unsigned kNone = 0xFFFF;
  unsigned Next(BitReader* bits) const;

 private:
  static constexpr std::size_t kMostBits = 16;

  std::array<unsigned, kMostBits + 1> counts_{};  // of symbols by length
  std::vector<unsigned> symbols_;                 // by length
};

// Blocks of at most 65,536 codes, each with two codes of its own in front: one for the 286 window codes, and one
// for the position codes, for which there is a fixed one, too.
class Lh3Symbols final : public WindowSymbols {
 public:
  explicit Lh3Symbols(PackedBytes* packed) { bits_.Begin(packed); }

  unsigned NextCode() override;
  unsigned NextPosition(std::uint64_t made) override;
  bool ok() const override { return is_valid_ && !bits_.IsPastEnd(); }

 private:
  void BeginBlock();

  BitReader bits_;
  CanonicalCode codes_;
  CanonicalCode positions_;
  unsigned left_in_block_ = 0;
  bool is_valid_ = true;
};

}  // namespace quendle::modules
