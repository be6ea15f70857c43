#include <gtest/gtest.h>

#include <bit>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/modules/rar/unpack/unpack29.h"
#include "support/rar_encoder.h"
#include "support/rar_filters.h"

namespace quendle::modules {
namespace {

using test::FromHex;
using test::kCallsProgram;
using test::PackedBits;
using test::PutBytes;
using test::Record;
using test::UnpackAll;

// Writes blocks whose codes have 9 bits for the main alphabet, 6 for distances, and 5 for low ones and for lengths.
class Blocks {
 public:
  // Begins one, with codes of its own or those that the last one had.
  Blocks& Begin(bool keeps = false) {
    bits_.Align();
    bits_.Put(keeps ? 1 : 0, 2);
    const auto length = [keeps](unsigned bits) { return keeps ? 0 : bits; };
    bits_.PutLengths({{299, length(9)}, {60, length(6)}, {17, length(5)}, {28, length(5)}});
    return *this;
  }
  Blocks& Bits(std::uint64_t value, unsigned count) {
    bits_.Put(value, count);
    return *this;
  }
  Blocks& Bytes(std::string_view bytes) {
    bits_.Align();
    PutBytes(bytes, &bits_);
    return *this;
  }
  Blocks& Symbol(unsigned symbol) { return Bits(symbol, 9); }
  Blocks& Text(std::string_view text) {
    for (const char c : text) Symbol(static_cast<unsigned char>(c));
    return *this;
  }
  // A low distance of 16: the last one, and then 15 times more none is said.
  Blocks& Match(std::uint32_t distance, std::uint32_t length, std::optional<unsigned> low = {}) {
    Length(length - 3 - (distance >= 0x2000) - (distance >= 0x40000), 271, 9);
    const std::uint32_t value = distance - 1;
    if (value < 4) return Bits(value, 6);
    const auto width = static_cast<unsigned>(std::bit_width(value));
    const bool is_far = value >= 1U << 20;
    const unsigned extra = is_far ? 18 : std::min(width - 2, 16U);
    const unsigned slot = is_far              ? 48 + ((value - (1U << 20)) >> 18)
                          : value >= 1U << 17 ? 34 + ((value - (1U << 17)) >> 16)
                                              : 2 * extra + 2 + (value >> extra & 1);
    Bits(slot, 6);
    if (extra < 4) return Bits(value, extra);
    Bits(value >> 4, extra - 4);
    return low == 0U ? *this : Bits(low.value_or(value & 15), 5);
  }
  Blocks& Recent(unsigned age, std::uint32_t length) {
    Symbol(259 + age);
    return Length(length - 2, 0, 5);
  }
  Blocks& Filter(unsigned flags, std::string_view record) {
    Symbol(257).Bits(flags, 8);
    const unsigned size = flags & 7;
    if (size > 5) Bits(record.size() - (size == 6 ? 7 : 0), size == 6 ? 8 : 16);
    PutBytes(record, &bits_);
    return *this;
  }
  // Ends a block: 1 another one follows, 0 and 1 also, but in the next entry, 0 and 0 none does.
  Blocks& End(unsigned value = 0, unsigned count = 2) { return Symbol(256).Bits(value, count); }

  const std::string& Made() const { return bits_.Bytes(); }

 private:
  Blocks& Length(std::uint32_t value, unsigned first_symbol, unsigned bits) {
    if (value < 8) return Bits(first_symbol + value, bits);
    const auto extra = static_cast<unsigned>(std::bit_width(value)) - 3;
    return Bits(first_symbol + 4 * extra + 4 + (value >> extra & 3), bits).Bits(value, extra);
  }
  PackedBits bits_;
};

// All slots of lengths and distances, in several blocks and packed bytes that come in pieces of any size, over the end
// of the window; against a copy of all that was made.
GTEST_TEST(Unpack29, RepeatsByAllLengthsAndDistances) {
  Blocks blocks;
  std::string all;
  std::vector<std::size_t> recent(4);
  const auto repeat = [&](std::size_t distance, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) all.push_back(all[all.size() - distance]);
  };
  const auto match = [&](std::uint32_t distance, std::uint32_t length, std::optional<unsigned> low = {}) {
    blocks.Match(distance, length, low);
    recent.insert(recent.begin(), distance);
    repeat(distance, length);
  };
  const auto same_lows = [&](std::uint32_t low, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) match(97 + 16 * i + low, 5, i == 0 ? 16 : 0);
  };
  blocks.Begin();
  for (std::uint32_t i = 0; all.size() < 6'000'000; ++i) {
    for (std::uint32_t k = 0; k < 20; ++k) {
      all.push_back(static_cast<char>(i * 31 + k * 7 + (i >> 8)));
      blocks.Symbol(static_cast<unsigned char>(all.back()));
    }
    const auto longest = static_cast<std::uint32_t>(std::min<std::size_t>(all.size() - 16, 4U << 20));
    match(std::min(1 + (i * 2'654'435'761U >> (i % 32)), longest), 5 + (i * 40'503U >> 3) % 254);
    if (i % 3 == 0) {
      constexpr unsigned kShort[] = {0, 4, 8, 16, 32, 64, 128, 192};
      const unsigned slot = i / 3 % 8;
      blocks.Symbol(258).Symbol(263 + slot).Bits(i % 4, slot < 2 ? 2 : std::min(slot + 1, 6U));
      repeat(recent[0], 5 + (i * 40'503U >> 3) % 254);
      recent.insert(recent.begin(), kShort[slot] + i % 4 + 1);
      repeat(recent[0], 2);
    }
    for (const unsigned age : {i % 4, 3 - i % 4}) {
      if (i < 4) break;
      blocks.Recent(age, 2 + i % 256);
      std::rotate(recent.begin(), recent.begin() + age, recent.begin() + age + 1);
      repeat(recent[0], 2 + i % 256);
    }
    if (i % 700 == 99) {
      match(40, 3);
      same_lows(7, 16);
      match(0x2000, 6);
    }
    if (i % 700 == 699) {
      match(std::min(0x40000U, longest), 6);
      blocks.End(1, 1).Begin(i % 1'400 == 699);
      same_lows(0, 9);
      blocks.End(1, 1).Begin();
    }
  }
  blocks.End();
  for (const std::size_t step : {1U << 20, 333U}) {
    const auto [content, status] =
        UnpackAll(std::make_unique<Unpack29>().get(), blocks.Made(), {all.size()}, step);
    EXPECT_EQ(status, ReadStatus::kEnd);
    EXPECT_TRUE(content == all) << step;
  }
}

// Made by an encoder that shares the model. The first one, behind "one two three four five six seven ": a match, "!", a
// run, the escape character itself, a filter that adds 1 to the first of the next four bytes, the end of a block.
const std::string kPpmFirst = FromHex(
    "6f02297be8ba83b9a5c509261ef2350c7bed5889939feb1a77415a4bd4bca419"
    "594cbd02525af288739d02c86c00ceb49f5f8200");
const std::string kPpmSecond = FromHex("aedb48cc85e0");         // "one two " and the end of the entry
const std::string kPpmThird = FromHex("b93942c3568d98c1a600");  // "three ", a match, the end; escape FF

// A block of PPM, and the beginning of one of the other kind.
Blocks PpmBlock() {
  return std::move(Blocks().Bytes(std::string("\xE7\0\x02", 3)).Bytes(kPpmFirst).Begin());
}

const std::string kCall("\xE8\x15\0\0\0", 5);

GTEST_TEST(Unpack29, GoesOnInSolidEntriesWithWhatTheOneBeforeLeft) {
  struct Case {
    const char* name;
    std::vector<std::string> packed;
    std::vector<std::string> contents;
  };
  const auto begun = [](std::string_view text) { return std::move(Blocks().Begin().Text(text)); };
  const std::string letters = "xabcdefghijklmnopq1yabcdefghijklmnopq2";
  const std::string sevens = "one two three four five six seven ";
  const Case cases[] = {
      {"codes",
       {begun("abc").End(0).Made(), Blocks().Text("d").Match(4, 5).Recent(0, 3).End().Made()},
       {"abc", "dabcdabcd"}},
      {"distances",
       {begun("abc").Match(2, 4).End(1).Made(), Blocks().Begin(true).Recent(0, 3).End().Made()},
       {"abcbcbc", "bcb"}},
      {"programs",
       {Blocks().Begin().Filter(0xA6, Record({0, 0, 5, 53}, kCallsProgram)).Text(kCall).End().Made(),
        Blocks().Text("abc").Filter(0x07, Record({2})).Text("de" + kCall).End().Made()},
       {"\xE8\x14" + std::string(3, '\0'), "abcde\xE8\x0F" + std::string(3, '\0')}},
      {"no mark", {begun("abc").Made(), Blocks().Text("de").End().Made()}, {"abc", "de"}},
      {"PPM without a mark",
       {std::string("\xE7\0\x02", 3) + kPpmFirst.substr(0, 6), begun("abc").Made()},
       {"one", "abc"}},
      {"PPM by many bytes",
       {std::string("\xF0\0\x02", 3) +
        FromHex("77e79d8bd46bf9eeda2d8e603a8cfa4fbe05e86efc4116be216282da9d5400")},
       {letters + letters}},
      {"PPM",
       {PpmBlock().Text("lz").End(1, 1).Bytes("\x80" + kPpmSecond).Made(),
        Blocks().Bytes("\xC0\xFF" + kPpmThird).Made()},
       {sevens + sevens + "o!!!!!!!!!!!\x02mzone two ", "three e e e e e e e e e e e e e e e e "}},
      // Made by RAR 3: a block of PPM, and one without anything.
      {"packer's", {FromHex("a71854135e84bd0c7527f03b61dc527690120d00bf8867f6a9ffd4")}, {"Testing 123\n"}},
  };
  for (const auto& [name, packed, contents] : cases) {
    const auto unpacker = std::make_unique<Unpack29>();
    for (std::size_t i = 0; i < packed.size(); ++i) {
      const auto [content, status] = UnpackAll(unpacker.get(), packed[i], {contents[i].size(), i > 0});
      EXPECT_EQ(content, contents[i]) << name << i;
      EXPECT_EQ(status, ReadStatus::kEnd) << name << i;
    }
  }
}

// Nothing of the entry before it is left to one that is not solid.
GTEST_TEST(Unpack29, TakesOnlyWhatPackersMake) {
  struct Case {
    const char* name;
    std::string packed;
    std::string content;  // empty: damaged
    bool has_size = true;
  };
  const auto begun = [] { return std::move(Blocks().Begin()); };
  Blocks far = begun().Text("a");
  for (int i = 0; i < 300; ++i) far.Match(1, 256);
  PackedBits crowded;
  crowded.Put(0, 2);
  crowded.PutLengths({{299, 8}, {60, 6}, {17, 5}, {28, 5}});
  const Case cases[] = {
      {"last match before any", begun().Symbol(258).Text("abc").End().Made(), "abc"},
      {"no mark", begun().Text("abc").Made(), "abc"},
      {"match beyond the end", begun().Text("a").Match(1, 5).End().Made(), "aaa"},
      {"size not known", begun().Text("abcd").End().Made(), "abcd", false},
      {"neither size nor mark", begun().Text("abc").Made(), "", false},
      {"more than its size", begun().Text("abcd").End().Made(), ""},
      {"less than its size", begun().Text("ab").Made(), ""},
      {"nothing to repeat", begun().Match(1, 3).End().Made(), ""},
      {"too far back", begun().Text("ab").Match(3, 3).End().Made(), ""},
      {"no recent distance", begun().Text("a").Recent(0, 2).End().Made(), ""},
      {"no symbol", begun().Symbol(299).Text("abc").End().Made(), ""},
      {"no distance", begun().Text("a").Symbol(271).Bits(60, 6).Bits(0, 20).Made(), ""},
      {"no low distance", far.Symbol(271).Bits(10, 6).Bits(17, 5).End().Made(), "", false},
      {"no length", begun().Text("a").Match(1, 3).Symbol(259).Bits(28, 5).End().Made(), "", false},
      {"codes of another", Blocks().Text("abc").End().Made(), ""},
      {"lengths of another", Blocks().Begin(true).Text("abc").End().Made(), ""},
      {"too many codes", crowded.Bytes(), ""},
      {"model of another", Blocks().Bytes("\x80" + kPpmSecond).Made(), "", false},
      {"program of another", begun().Filter(0x27, Record({0, 3})).Text("abc").End().Made(), ""},
      {"filter without an end",
       begun().Filter(0xA7, Record({0, 1, 9, 53}, kCallsProgram)).Text("abc").End().Made(), ""},
  };
  const auto unpacker = std::make_unique<Unpack29>();
  const std::string before =
      PpmBlock().Filter(0xA7, Record({0, 9, 5, 53}, kCallsProgram)).Text("lz").Match(1, 20).End().Made();
  for (const auto& [name, packed, content, has_size] : cases) {
    ASSERT_EQ(UnpackAll(unpacker.get(), before, {}).second, ReadStatus::kEnd);
    PackedEntry entry;
    if (has_size) entry.size = 3;
    const auto [unpacked, status] = UnpackAll(unpacker.get(), packed, entry);
    EXPECT_EQ(status, content.empty() ? ReadStatus::kFailed : ReadStatus::kEnd) << name;
    EXPECT_TRUE(content.empty() || unpacked == content) << name;
  }
}

}  // namespace
}  // namespace quendle::modules
