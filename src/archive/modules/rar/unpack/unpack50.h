// Unpacking versions 5.0 and 7.0: blocks of Huffman codes for literals, matches and filters.
#pragma once

#include <array>
#include <cstdint>

#include "archive/modules/lz/huffman_code.h"
#include "archive/modules/rar/unpack/unpacker.h"

namespace quendle::modules {

class Unpack50 final : public Unpacker {
 private:
  // What matches may repeat of those before them.
  struct Recent {
    std::array<std::uint64_t, 4> distances{};  // the last one first; 0: there was none
    std::uint32_t length = 0;                  // of the last; 0: there was none
  };

  void BeginEntry(const PackedEntry& entry) override;
  Step Decode(std::uint64_t until) override;

  Step BeginBlock();
  bool ReadCodes();
  Step DecodeSymbols(std::uint64_t until);
  Step ReadFilter();
  unsigned DecodeMany(std::uint64_t until);
  template <typename Bits, typename Output>
  bool DecodeMatch(unsigned symbol, Bits* bits, Recent* recent, Output* output) const;
  template <typename Bits>
  std::uint64_t DecodeDistance(Bits* bits) const;

  bool has_far_distances_ = false;
  bool has_codes_ = false;
  bool is_last_block_ = false;
  std::uint64_t block_end_ = 0;  // a position of bits_
  Recent recent_;
  HuffmanCode main_;
  HuffmanCode distances_;
  HuffmanCode low_distances_;
  HuffmanCode repeat_lengths_;
};

}  // namespace quendle::modules
