#include "archive/modules/rar/unpack/unpack15_codes.h"

#include <initializer_list>
#include <string_view>
#include <vector>

namespace quendle::modules {
namespace {

struct SameLength {
  unsigned symbols;
  std::uint8_t length;
};

HuffmanCode CodeOf(std::initializer_list<SameLength> runs) {
  std::vector<std::uint8_t> lengths;
  for (const auto& run : runs) lengths.insert(lengths.end(), run.symbols, run.length);
  HuffmanCode code;
  static_cast<void>(code.Build(lengths));
  return code;
}

constexpr unsigned kLongestSelector = 8;

struct Selector {
  std::uint8_t symbol;
  std::uint8_t length;
};

// By the next bits.
using Selectors = std::array<Selector, 1U << kLongestSelector>;

// Where symbol 14 does not come, the bits of its code and of the one that differs only in the last are those of that one's
// symbol, one bit shorter.
constexpr Selectors SelectorsOf(std::array<std::string_view, 15> codes, bool has_14) {
  if (!has_14) {
    for (auto& code : codes)
      if (code == "1010") code = "101";
    codes[14] = {};
  }
  Selectors selectors{};
  for (std::size_t symbol = 0; symbol < codes.size(); ++symbol) {
    if (codes[symbol].empty()) continue;
    std::size_t first = 0;
    for (const char bit : codes[symbol]) first = 2 * first + (bit == '1' ? 1U : 0U);
    const std::size_t free = kLongestSelector - codes[symbol].size();
    for (std::size_t i = first << free; i < (first + 1) << free; ++i)
      selectors[i] = {static_cast<std::uint8_t>(symbol), static_cast<std::uint8_t>(codes[symbol].size())};
  }
  return selectors;
}

constexpr std::array<std::string_view, 15> kLowCodes = {"0",      "1010",    "1101",     "1110",     "11110",
                                                        "111110", "1111110", "11111110", "11111111", "1100",
                                                        "1000",   "10010",   "100110",   "100111",   "1011"};
constexpr std::array<std::string_view, 15> kHighCodes = {"00",   "010",   "011",    "1010",   "1101",
                                                         "1110", "11110", "111110", "111111", "1100",
                                                         "1000", "10010", "100110", "100111", "1011"};

constexpr std::array<std::array<Selectors, 2>, 2> kSelectors = {
    {{SelectorsOf(kLowCodes, false), SelectorsOf(kLowCodes, true)},
     {SelectorsOf(kHighCodes, false), SelectorsOf(kHighCodes, true)}}};

}  // namespace

FixedCodes15::FixedCodes15()
    : values{CodeOf({{8, 4}, {8, 5}, {8, 6}, {9, 7}, {224, 12}}),
             CodeOf({{4, 5}, {40, 6}, {16, 7}, {16, 8}, {4, 9}, {47, 11}, {130, 12}}),
             CodeOf({{2, 5}, {5, 6}, {46, 7}, {64, 8}, {116, 9}, {24, 10}}),
             CodeOf({{2, 6}, {14, 7}, {202, 8}, {33, 9}, {6, 10}}), CodeOf({{255, 8}, {2, 9}})},
      short_lengths(
          CodeOf({{2, 2}, {1, 3}, {2, 4}, {2, 5}, {4, 6}, {5, 7}, {4, 8}, {4, 9}, {8, 10}, {224, 12}})),
      long_lengths(
          CodeOf({{5, 3}, {2, 4}, {2, 5}, {4, 6}, {5, 7}, {4, 8}, {4, 9}, {8, 10}, {2, 11}, {220, 12}})) {}

unsigned TakeSelector(bool tends_high, bool has_14, BitReader* bits) {
  const Selector selector = kSelectors[tends_high][has_14][bits->Peek(kLongestSelector)];
  bits->Skip(selector.length);
  return selector.symbol;
}

MoveUpList::MoveUpList(Order order) {
  for (unsigned i = 0; i < values_.size(); ++i)
    values_[i] = static_cast<std::uint16_t>((order == kRising ? i : 256 - i) << 8);
}

std::uint8_t MoveUpList::Use(unsigned place, unsigned most) {
  if ((values_[place] & 0xFFU) >= most) Recount();
  const std::uint16_t value = values_[place];
  const unsigned first = firsts_[value & 0xFFU]++;
  values_[place] = values_[first];
  values_[first] = static_cast<std::uint16_t>(value + 1);
  return static_cast<std::uint8_t>(value >> 8);
}

void MoveUpList::Recount() {
  constexpr unsigned kGroup = 32;
  firsts_.fill(0);
  for (unsigned i = 0; i < values_.size(); ++i) {
    const unsigned uses = 7 - i / kGroup;
    values_[i] = static_cast<std::uint16_t>((values_[i] & 0xFF00U) | uses);
  }
  for (unsigned uses = 0; uses < 7; ++uses) firsts_[uses] = static_cast<std::uint8_t>((7 - uses) * kGroup);
}

}  // namespace quendle::modules
