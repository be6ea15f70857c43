#include "archive/modules/lz/huffman_code.h"

#include <algorithm>

namespace quendle::modules {

bool HuffmanCode::Build(std::span<const std::uint8_t> lengths) {
  std::array<std::uint32_t, kLongest + 1> counts{};
  for (const std::uint8_t length : lengths) ++counts[length];
  counts[0] = 0;
  quick_.fill(0);
  symbols_.clear();
  std::uint32_t code = 0;  // with zeros appended
  std::uint32_t used = 0;
  std::array<std::uint32_t, kLongest + 1> places{};
  for (unsigned length = 1; length <= kLongest; ++length) {
    firsts_[length] = places[length] = used;
    used += counts[length];
    code += counts[length] << (kLongest - length);
    ends_[length] = code;
  }
  if (code > 1U << kLongest) {
    ends_.fill(0);
    return false;
  }
  symbols_.resize(used);
  for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
    const unsigned length = lengths[symbol];
    if (length == 0) continue;
    const std::uint32_t place = places[length]++;
    symbols_[place] = static_cast<std::uint16_t>(symbol);
    if (length > kQuickBits) continue;
    const std::uint32_t first = ends_[length - 1] >> (kLongest - kQuickBits);
    const std::size_t span = std::size_t{1} << (kQuickBits - length);
    std::fill_n(quick_.data() + first + (place - firsts_[length]) * span, span,
                static_cast<std::uint16_t>(symbol << kLengthBits | length));
  }
  return true;
}

unsigned HuffmanCode::FindLong(std::uint32_t next) const {
  for (unsigned length = kQuickBits + 1; length <= kLongest; ++length) {
    if (next >= ends_[length]) continue;
    const unsigned symbol = symbols_[firsts_[length] + ((next - ends_[length - 1]) >> (kLongest - length))];
    return symbol << kLengthBits | length;
  }
  return kNone << kLengthBits;
}

}  // namespace quendle::modules
