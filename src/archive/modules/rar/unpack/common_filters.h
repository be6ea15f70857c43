// The filters that versions 2.9 and 5.0 have in common, and the one that 5.0 added.
#pragma once

#include <cstdint>
#include <vector>

#include "archive/modules/rar/unpack/filter_queue.h"

namespace quendle::modules {

// Of samples with several channels: the channels lie one behind the other, and each byte says how much less it is than
// the one before it in its channel.
//   two channels: FF FF 9C FE ⇒ 01 64 02 66
class DeltaFilter final : public Filter {
 public:
  // Fails when there are no channels. More than there are bytes are as good as that many.
  explicit DeltaFilter(std::uint32_t channels) : channels_(channels) {}
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;

 private:
  std::uint32_t channels_;
};

// Of programs for x86: a call (E8) has the address in its entry that it leads to, instead of how far that is behind it.
//   E8 at position 100h: E8 15 01 00 00 ⇒ E8 14 00 00 00
class X86Filter final : public Filter {
 public:
  // Up to where positions are counted before they begin again.
  enum class Positions : std::uint32_t { k32Bits = 0xFFFFFFFF, k24Bits = 0xFFFFFF };

  // `with_jumps`: jumps (E9), too. 2.9 has positions of 32 bits, 5.0 of 24.
  X86Filter(bool with_jumps, Positions positions)
      : opcode_mask_(with_jumps ? 0xFE : 0xFF), position_mask_(static_cast<std::uint32_t>(positions)) {}
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;

 private:
  std::uint8_t opcode_mask_;
  std::uint32_t position_mask_;
};

// Of programs for ARM: a BL that is always taken has the address in its entry, in words, instead of how far that is.
//   at position 100h: 45 00 00 EB ⇒ 05 00 00 EB
class ArmFilter final : public Filter {
 public:
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override;
};

}  // namespace quendle::modules
