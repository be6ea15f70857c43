#include <gtest/gtest.h>

#include <bit>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "archive/modules/rar/unpack/unpack50.h"
#include "support/rar_encoder.h"

namespace quendle::modules {
namespace {

using test::PackedBits;
using test::UnpackAll;

constexpr std::uint64_t kWindow = 4'096;

// Writes blocks whose codes have 9 bits for the main alphabet, 7 for distances, 4 for low ones and 6 for lengths.
class Blocks {
 public:
  explicit Blocks(unsigned distances = 64) : distances_(distances) {}

  Blocks& Codes() {
    has_codes_ = true;
    bits_.PutLengths({{306, 9}, {distances_, 7}, {16, 4}, {44, 6}});
    return *this;
  }
  Blocks& Symbol(unsigned symbol) {
    bits_.Put(symbol, 9);
    return *this;
  }
  Blocks& Text(std::string_view text) {
    for (const char c : text) Symbol(static_cast<unsigned char>(c));
    return *this;
  }
  Blocks& Match(std::uint64_t distance, std::uint32_t length) {
    length -= (distance > 0x100) + (distance > 0x2000) + (distance > 0x40000);
    Length(length, 262, 9);
    if (distance <= 4) return Bits(distance - 1, 7);
    const std::uint64_t value = distance - 1;
    const auto extra = static_cast<unsigned>(std::bit_width(value)) - 2;
    bits_.Put(2 * extra + 2 + (value >> extra & 1), 7);
    if (extra < 4) return Bits(value, extra);
    bits_.Put(value >> 4, extra - 4);
    return Bits(value, 4);
  }
  Blocks& Recent(unsigned place, std::uint32_t length) {
    Symbol(258 + place);
    return Length(length, 0, 6);
  }
  Blocks& Filter(std::uint32_t start, std::uint32_t length, unsigned type) {
    Symbol(256).Bits(3, 2);
    for (unsigned i = 0; i < 4; ++i) Bits(start >> 8 * i, 8);
    Bits(2, 2);
    for (unsigned i = 0; i < 3; ++i) Bits(length >> 8 * i, 8);
    return Bits(type, 3);
  }
  Blocks& Bits(std::uint64_t value, unsigned count) {
    bits_.Put(value, count);
    return *this;
  }

  // Ends a block.
  Blocks& End(bool is_last = true) {
    const std::size_t size = bits_.Bytes().size();
    const auto flags =
        static_cast<char>((bits_.Size() + 7) % 8 | 2 << 3 | (is_last ? 0x40 : 0) | (has_codes_ ? 0x80 : 0));
    const std::string sizes = {static_cast<char>(size), static_cast<char>(size >> 8),
                               static_cast<char>(size >> 16)};
    made_ += flags;
    made_ += static_cast<char>(0x5A ^ flags ^ sizes[0] ^ sizes[1] ^ sizes[2]);
    made_ += sizes + bits_.Bytes();
    bits_ = {};
    has_codes_ = false;
    return *this;
  }
  Blocks& Change(std::size_t at, int by) {
    made_.at(at) = static_cast<char>(made_[at] ^ by);
    return *this;
  }
  const std::string& Made() const { return made_; }

 private:
  Blocks& Length(std::uint32_t length, unsigned first_symbol, unsigned bits) {
    const std::uint32_t value = length - 2;
    if (value < 8) return Bits(first_symbol + value, bits);
    const auto extra = static_cast<unsigned>(std::bit_width(value)) - 3;
    return Bits(first_symbol + 4 * extra + 4 + (value >> extra & 3), bits).Bits(value, extra);
  }

  unsigned distances_;
  bool has_codes_ = false;
  PackedBits bits_;
  std::string made_;
};

// All slots of lengths and distances, in several blocks and packed bytes that come in pieces of any size, over the end
// of a window; against a copy of all that was made.
GTEST_TEST(Unpack50, RepeatsByAllLengthsAndDistances) {
  for (const unsigned distances : {64U, 80U}) {
    Blocks blocks(distances);
    std::string all;
    const auto repeat = [&all](std::size_t distance, std::size_t length) {
      for (std::size_t i = 0; i < length; ++i) all.push_back(all[all.size() - distance]);
    };
    const std::vector<std::size_t> edges = {2, 0x100, 0x101, 0x2000, 0x2001, 0x40000, 0x40001};
    blocks.Codes();
    for (std::uint32_t i = 0; all.size() < 5'000'000; ++i) {
      for (std::uint32_t k = 0; k <= i % 5; ++k) {
        all.push_back(static_cast<char>(i * 31 + k * 7));
        blocks.Symbol(static_cast<unsigned char>(all.back()));
      }
      const std::uint64_t distance =
          std::min<std::uint64_t>({1 + (i * 2'654'435'761U >> (i % 32)), all.size(), 400'000});
      const std::uint32_t length = 5 + (i * 40'503U >> 3) % (i % 7 == 0 ? 4'093 : 29);
      blocks.Match(distance, length);
      repeat(distance, length);
      if (i % 3 == 0) {
        const std::size_t edge = std::min(edges[i / 3 % edges.size()], all.size() + length);
        blocks.Symbol(257).Match(edge, 4'096).Recent(1, 5).Recent(1, 3'000).Symbol(257);
        repeat(distance, length);
        repeat(edge, 4'096);
        repeat(distance, 5);
        repeat(edge, 3'000);
        repeat(edge, 3'000);
      }
      if (i % 1'000 == 999) blocks.End(false);
      if (i % 2'000 == 1'999) blocks.Codes();
    }
    blocks.End();
    for (const std::size_t step : {1U << 20, 333U}) {
      const auto unpacker = std::make_unique<Unpack50>();
      const auto [content, status] =
          UnpackAll(unpacker.get(), blocks.Made(), {all.size(), false, 400'000, distances == 80}, step);
      EXPECT_EQ(status, ReadStatus::kEnd);
      EXPECT_TRUE(content == all) << distances << ' ' << step;
    }
  }
}

GTEST_TEST(Unpack50, TakesOnlyWhatPackersMake) {
  const auto codes = [] { return std::move(Blocks().Codes()); };
  const std::string filler(1'000, 'x');
  Blocks far(80);
  far.Codes().Text(filler);
  const struct {
    const char* name;
    Blocks blocks;
    std::optional<std::uint64_t> size;
    std::string content = {};  // empty: fails
    bool is_far = false;
  } rows[] = {
      {"no size, up to the last block", codes().Text("abc").End(), {}, "abc"},
      {"two blocks", codes().Text("ab").End(false).Text("c").End(), 3, "abc"},
      {"nothing in the last block", codes().Text("abc").End(false).Codes().End(), 3, "abc"},
      {"no last block, but all of it", codes().Text("abc").End(false), 3, "abc"},
      {"no last block", codes().Text("abc").End(false), {}},
      {"a match longer than the rest", codes().Text("ab").Match(2, 50).End(), 5, "ababa"},
      {"more than its size", codes().Text(filler).End(), 3},
      {"less than its size", codes().Text("ab").End(false), 3},
      {"the check byte", codes().Text("abc").End().Change(1, 1), 3},
      {"four bytes of size", Blocks().Bits(0, 8).Codes().Text("abc").End().Change(0, 8).Change(1, 8), 3},
      {"nothing in a block", codes().Text("ab").End(false).End(false).Text("c").End(), 3},
      {"a symbol over the block's end", codes().Text("abcd").End().Change(0, 1).Change(1, 1), 4},
      {"the first block without codes", Blocks().Text("abc").End(), 3},
      {"codes that do not fit", codes().End().Change(6, 0x44), 3},
      {"a symbol that has no code", codes().Text("ab").Symbol(306).Text(filler).End(), {}},
      {"beyond the front", codes().Text("ab").Match(3, 4'000).Text(filler).End(), {}},
      {"the furthest", far.Symbol(262).Bits(78, 7).Bits(0, 38).Text(filler).End(), {}, {}, true},
      {"out of reach",
       codes().Text("a").Match(1, 4'000).Match(1, 4'000).Match(4'097, 9).Text(filler).End(),
       {}},
      {"a distance that has no code", codes().Symbol(262).Bits(64, 7).Text(filler).End(), {}},
      {"a length that has no code",
       codes().Text("a").Match(1, 2).Symbol(258).Bits(44, 6).Text(filler).End(),
       {}},
      {"a distance that was never", codes().Text("ab").Recent(3, 500).Text(filler).End(), {}},
      {"the last match before any", codes().Symbol(257).Text("abc").End(), 3, "abc"},
      {"a filter of too little", codes().Filter(0, 3, 1).Text("abcd").End(), 4},
      {"a filter of too much", codes().Filter(9, (4U << 20) + 1, 1).Text("abcd").End(), 4},
      {"a filter over the end", codes().Filter(0, 5, 1).Text("abcd").End(), 4},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const auto unpacker = std::make_unique<Unpack50>();
    const auto [content, status] =
        UnpackAll(unpacker.get(), row.blocks.Made(), {row.size, false, kWindow, row.is_far});
    EXPECT_EQ(status, row.content.empty() ? ReadStatus::kFailed : ReadStatus::kEnd);
    EXPECT_TRUE(row.content.empty() || content == row.content) << content;
    EXPECT_EQ(unpacker->Problem().empty(), status == ReadStatus::kEnd);
  }
  const auto unpacker = std::make_unique<Unpack50>();
  const Blocks unknown = codes().Filter(0, 4, 5).Text("abcd").End();
  EXPECT_EQ(UnpackAll(unpacker.get(), unknown.Made(), {4, false, kWindow, false}).second,
            ReadStatus::kUnsupported);
}

GTEST_TEST(Unpack50, SolidEntriesGoOnWithWhatWasBefore) {
  const auto unpacker = std::make_unique<Unpack50>();
  const auto unpack = [&unpacker](const Blocks& blocks, std::uint64_t size, bool is_solid,
                                  std::uint64_t window) {
    return UnpackAll(unpacker.get(), blocks.Made(), {size, is_solid, window, false});
  };
  using Result = std::pair<std::string, ReadStatus>;
  EXPECT_EQ(unpack(Blocks().Codes().Text("abc").Match(3, 6).End(), 9, false, 4),
            (Result{"abcabcabc", ReadStatus::kEnd}));
  EXPECT_EQ(unpack(Blocks().Symbol(257).Recent(0, 4).End(), 10, true, kWindow),
            (Result{"abcabcabca", ReadStatus::kEnd}));
  EXPECT_EQ(unpack(Blocks().Match(19, 3).End(), 3, true, kWindow), (Result{"abc", ReadStatus::kEnd}));
  const std::string text(20, 'a');
  EXPECT_EQ(unpack(Blocks().Codes().Text(text).Symbol(257).End(), 20, false, kWindow),
            (Result{text, ReadStatus::kEnd}));
  for (const auto& blocks : {Blocks().Text("a").End(), Blocks().Codes().Text("a").Recent(0, 2).End(),
                             Blocks().Codes().Text("a").Match(2, 2).End()})
    EXPECT_EQ(unpack(blocks, 3, false, kWindow).second, ReadStatus::kFailed);
}

GTEST_TEST(Unpack50, FiltersCountFromTheEntryAndNotFromTheWindow) {
  const std::string call("\xE8\x15\0\0\0", 5);
  const auto unpacker = std::make_unique<Unpack50>();
  for (const bool is_solid : {false, true}) {
    // The match repeats what was not yet filtered.
    Blocks blocks;
    blocks.Codes().Text("0").Filter(1, 5, 1).Filter(6, 5, 2).Text("1").Text(call).Text({"\xE9\x15\0\0\0", 5});
    blocks.Match(10, 5)
        .Filter(0, 4, 3)
        .Text({"\x06\0\0\xEB", 4})
        .Filter(0, 4, 0)
        .Bits(1, 5)
        .Text("\xFF\xFF\x9C\xFE");
    const auto [content, status] =
        UnpackAll(unpacker.get(), blocks.End().Made(), {25, is_solid, kWindow, false});
    EXPECT_EQ(status, ReadStatus::kEnd);
    EXPECT_EQ(content, std::string("01\xE8\x12\0\0\0\xE9\x0D\0\0\0", 12) + call +
                           std::string("\x02\0\0\xEB\x01\x64\x02\x66", 8));
  }
}

}  // namespace
}  // namespace quendle::modules
