// BLAKE2sp, the checksum that RAR 5 has for entries beside CRC-32 or in its place.
#pragma once

#include <blake2.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quendle::modules {

// Blocks of 64 bytes are dealt out to eight BLAKE2s sums in turn, and a ninth is that of their values. The sums are
// those of libb2. Its BLAKE2sp is not taken: where it was built with OpenMP it starts a thread for each sum, and
// leaves sums out when it gets fewer.
class Blake2sp {
 public:
  using Digest = std::array<std::uint8_t, BLAKE2S_OUTBYTES>;

  Blake2sp();
  void Add(std::string_view bytes);

  // Of all that was added.
  Digest Value() const;

 private:
  static constexpr std::size_t kLeaves = 8;

  std::array<blake2s_state, kLeaves> leaves_;
  std::size_t position_ = 0;  // in the eight blocks at hand
};

}  // namespace quendle::modules
