#include "archive/modules/lzh/lh3_symbols.h"

#include <functional>
#include <numeric>

namespace quendle::modules {
namespace {

// Reads how long the code of each symbol is. When the first three have 1 bit each, which no code has, there is only
// one symbol, of which the number follows.
void ReadCode(BitReader* bits, std::size_t symbols, unsigned symbol_bits,
              const std::function<std::uint8_t()>& read_length, CanonicalCode* code) {
  std::vector<std::uint8_t> lengths(symbols);
  for (std::size_t i = 0; i < symbols; ++i) {
    lengths[i] = read_length();
    if (i == 2 && lengths[0] == 1 && lengths[1] == 1 && lengths[2] == 1) {
      return code->AssignOnly(bits->Take(symbol_bits));
    }
  }
  code->Assign(lengths);
}

// The fixed code of positions: the first one has 2 bits, the two behind it 4, the next three 5 ...
const std::array<std::uint8_t, kPositionCodes>& FixedPositionLengths() {
  static const auto lengths = [] {
    constexpr std::size_t kEnds[] = {0, 0, 1, 1, 3, 6, 13, 31, 78, kPositionCodes};  // behind those of n bits
    std::array<std::uint8_t, kPositionCodes> made{};
    for (std::size_t length = 2; length < std::size(kEnds); ++length) {
      for (std::size_t i = kEnds[length - 1]; i < kEnds[length]; ++i)
        made[i] = static_cast<std::uint8_t>(length);
    }
    return made;
  }();
  return lengths;
}

}  // namespace

void CanonicalCode::Assign(std::span<const std::uint8_t> lengths) {
  counts_ = {};
  symbols_.clear();
  for (std::size_t length = 1; length <= kMostBits; ++length) {
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
      if (lengths[symbol] != length) continue;
      ++counts_[length];
      symbols_.push_back(static_cast<unsigned>(symbol));
    }
  }
}

void CanonicalCode::AssignOnly(unsigned symbol) {
  counts_ = {1};
  symbols_ = {symbol};
}

unsigned CanonicalCode::Next(BitReader* bits) const {
  unsigned code = 0;
  unsigned first = 0;  // code of this length
  std::size_t index = 0;
  for (std::size_t length = 0; length <= kMostBits; ++length) {
    if (length > 0) code = code << 1 | bits->Take(1);
    if (code - first < counts_[length]) return symbols_[index + (code - first)];
    index += counts_[length];
    first = (first + counts_[length]) << 1;
  }
  return kNone;
}

void Lh3Symbols::BeginBlock() {
  constexpr unsigned kBlock = 1U << 16;
  left_in_block_ = bits_.Take(16);
  if (left_in_block_ == 0) left_in_block_ = kBlock;
  const auto code_length = [this] {
    return static_cast<std::uint8_t>(bits_.Take(1) != 0 ? bits_.Take(4) + 1 : 0);
  };
  ReadCode(&bits_, kWindowCodes, 9, code_length, &codes_);
  if (bits_.Take(1) == 0) return positions_.Assign(FixedPositionLengths());
  const auto position_length = [this] { return static_cast<std::uint8_t>(bits_.Take(4)); };
  ReadCode(&bits_, kPositionCodes, 7, position_length, &positions_);
}

unsigned Lh3Symbols::NextCode() {
  if (left_in_block_ == 0) BeginBlock();
  --left_in_block_;
  const unsigned code = codes_.Next(&bits_);
  if (code >= kWindowCodes) is_valid_ = false;
  return code == kWindowCodes - 1 ? code + bits_.Take(8) : code;
}

unsigned Lh3Symbols::NextPosition(std::uint64_t /*made*/) {
  const unsigned high = positions_.Next(&bits_);
  if (high >= kPositionCodes) is_valid_ = false;
  return high << 6 | bits_.Take(6);
}

}  // namespace quendle::modules
