#include "archive/modules/lzh/lh2_symbols.h"

namespace quendle::modules {

unsigned Lh2Symbols::NextCode() {
  const unsigned code = codes_.Next(&bits_);
  return code == kWindowCodes - 1 ? code + bits_.Take(8) : code;
}

unsigned Lh2Symbols::NextPosition(std::uint64_t made) {
  for (; known_positions_ < kPositionCodes && made > 64 * known_positions_; ++known_positions_) {
    positions_.AddSymbol();
  }
  const unsigned high = positions_.Next(&bits_);
  return high << 6 | bits_.Take(6);
}

}  // namespace quendle::modules
