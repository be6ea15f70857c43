#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "archive/modules/lz/huffman_code.h"
#include "archive/modules/lz/window.h"
#include "archive/modules/rar/unpack/code_lengths.h"
#include "archive/modules/rar/unpack/common_filters.h"
#include "support/rar_encoder.h"

namespace quendle::modules {
namespace {

using test::PackedBits;
using test::StringSource;

// Over the borders of what the reader has at hand, in any division, and by a cursor as far as that may go.
GTEST_TEST(BitReader, GivesAllBitsWhereverPiecesEnd) {
  PackedBits bits;
  for (std::uint64_t i = 0; bits.Bytes().size() < 200'000; ++i)
    bits.Put(i * 0x9E3779B97F4A7C15, static_cast<unsigned>(i % 57));
  bits.Align();
  const auto reader = std::make_unique<BitReader>();
  for (const std::size_t step : {1U, 7U, 65'536U, 1'000'000U}) {
    StringSource source(bits.Bytes(), step);
    reader->Begin(&source);
    for (std::uint64_t i = 0; reader->Position() + 56 <= bits.Size(); ++i) {
      const auto count = static_cast<unsigned>(i % 57);
      const std::uint64_t expected = i * 0x9E3779B97F4A7C15 & ((std::uint64_t{1} << count) - 1);
      BitCursor cursor = reader->Lend(i % 2 == 0 ? bits.Size() : 1'000'000);
      if (cursor.IsFarFromEnd()) {
        cursor.Refill();
        ASSERT_EQ(cursor.TakeLong(count), expected) << step << ' ' << i;
        reader->TakeBack(cursor);
      } else {
        ASSERT_EQ(reader->TakeLong(count), expected) << step << ' ' << i;
      }
    }
    EXPECT_FALSE(reader->IsPastEnd());
  }
}

GTEST_TEST(BitReader, EndsInZerosAndTellsWhenTheyAreTaken) {
  const auto reader = std::make_unique<BitReader>();
  StringSource source("\xFF\xFF\xFF", 2);
  reader->Begin(&source);
  EXPECT_EQ(reader->Take(12), 0xFFFU);
  EXPECT_EQ(reader->Peek(15), 0x7FF8U);
  reader->AlignToByte();
  EXPECT_EQ(reader->Position(), 16U);
  EXPECT_EQ(reader->Take(8), 0xFFU);
  EXPECT_FALSE(reader->IsPastEnd());
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(reader->Take(1), 0U);
    EXPECT_TRUE(reader->IsPastEnd()) << i;
    EXPECT_EQ(reader->Position(), 25U + static_cast<unsigned>(i));
  }
  // A cursor stays away from the end of the packed data, and of what it is lent for.
  const std::string zeros(100, '\0');
  StringSource more(zeros);
  reader->Begin(&more);
  reader->Peek(1);
  for (const std::uint64_t bytes : {0U, 39U, 40U, 1000U})
    EXPECT_EQ(reader->Lend(8 * bytes).IsFarFromEnd(), bytes > 39) << bytes;
  for (int i = 0; i < 70; ++i) reader->TakeByte();
  EXPECT_FALSE(reader->Lend(8000).IsFarFromEnd());
}

GTEST_TEST(HuffmanCode, DecodesWhatTheLengthsSay) {
  constexpr unsigned kNone = HuffmanCode::kNone;
  const std::vector<std::uint8_t> nothing(20, 0);
  std::vector<std::uint8_t> long_ones;
  for (std::uint8_t length = 1; length <= 15; ++length) long_ones.push_back(length);
  long_ones.push_back(15);
  const struct {
    const char* name;
    std::vector<std::uint8_t> lengths;
    std::uint32_t bits;  // 15 of them
    bool fits;
    unsigned symbol;
    std::uint64_t taken;
  } rows[] = {
      {"shorter ones first", {2, 1, 2}, 0b0'00000000000000, true, 1, 1},
      {"then by symbol", {2, 1, 2}, 0b10'0000000000000, true, 0, 2},
      {"the last", {2, 1, 2}, 0b11'0000000000000, true, 2, 2},
      {"the only one", {0, 0, 1}, 0b0'00000000000000, true, 2, 1},
      {"what no symbol has", {0, 0, 1}, 0b1'00000000000000, true, kNone, 15},
      {"none at all", nothing, 0, true, kNone, 15},
      {"ten bits", long_ones, 0b1111111110'00000, true, 9, 10},
      {"eleven bits", long_ones, 0b11111111110'0000, true, 10, 11},
      {"fifteen bits", long_ones, 0b111111111111110, true, 14, 15},
      {"the last of fifteen", long_ones, 0b111111111111111, true, 15, 15},
      {"a gap behind long ones", {12, 12}, 0b000000000010'000, true, kNone, 15},
      {"one too many", {1, 1, 15}, 0, false, kNone, 15},
      {"all of one bit", std::vector<std::uint8_t>(4095, 1), 0, false, kNone, 15},
  };
  const auto reader = std::make_unique<BitReader>();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    PackedBits bits;
    bits.Put(row.bits, 15);
    StringSource source(bits.Bytes());
    reader->Begin(&source);
    HuffmanCode code;
    ASSERT_TRUE(code.Build(std::vector<std::uint8_t>{1, 1}));
    EXPECT_EQ(code.Build(row.lengths), row.fits);
    EXPECT_EQ(code.Decode(reader.get()), row.symbol);
    EXPECT_TRUE(row.symbol == kNone || reader->Position() == row.taken);
  }
}

GTEST_TEST(CodeLengths, AreAddedRepeatedAndCut) {
  using Lengths = std::vector<std::uint8_t>;
  using Items = std::vector<std::pair<std::uint32_t, unsigned>>;
  // Symbols are themselves in 5 bits.
  const Items plain(20, {5, 4});
  // 15 stands for zeros, here of symbols 1 to 17, or for itself: symbol 18 is 0, 0 is 10, 19 is 11 and 13 zeros.
  const Items with_zeros = {{2, 4}, {15, 4}, {15, 4}, {1, 4}, {15, 4}, {0, 4}};
  const struct {
    const char* name;
    Items code;
    Items items;
    Lengths before;
    Lengths after;  // empty: damaged
  } rows[] = {
      {"added modulo 16", plain, {{3, 5}, {15, 5}, {0, 5}}, {0, 4, 7}, {3, 3, 7}},
      {"repeated", plain, {{3, 5}, {16, 5}, {1, 3}, {2, 5}}, {0, 9, 9, 9, 9, 0}, {3, 3, 3, 3, 3, 2}},
      {"often, and cut", plain, {{3, 5}, {17, 5}, {127, 7}}, Lengths(100, 0), Lengths(100, 3)},
      {"zeros", plain, {{18, 5}, {0, 3}, {1, 5}}, {9, 9, 9, 9}, {0, 0, 0, 10}},
      {"many zeros",
       with_zeros,
       {{2, 2}, {3, 2}, {0, 13}, {0, 7}, {2, 2}},
       Lengths(13, 5),
       {5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5}},
      {"nothing to repeat", plain, {{16, 5}, {0, 3}}, {0, 0, 0}, {}},
      {"no such symbol", plain, {{20, 5}}, {0}, {}},
  };
  for (const auto& row : rows) {
    PackedBits bits;
    for (const Items& items : {row.code, row.items})
      for (const auto& [value, count] : items) bits.Put(value, count);
    StringSource source(bits.Bytes());
    const auto reader = std::make_unique<BitReader>();
    reader->Begin(&source);
    Lengths lengths = row.before;
    ASSERT_EQ(ReadCodeLengths(reader.get(), lengths), !row.after.empty()) << row.name;
    EXPECT_TRUE(row.after.empty() || lengths == row.after) << row.name;
  }
}

// Against a copy of all that was ever written. The window grows after it began anew, so that some is lost.
GTEST_TEST(Window, RepeatsWhatIsInReachAndNothingElse) {
  constexpr std::uint64_t kSize = 100'000, kKept = kSize + (2U << 20);
  Window window;
  window.Reset(kSize);
  std::string all;
  std::uint64_t random = 1, lost = 0;
  const auto below = [&random](std::uint64_t end) {
    random = random * 6'364'136'223'846'793'005 + 1;
    return static_cast<std::size_t>((random >> 33) % end);
  };
  for (int round = 0; all.size() < 5'000'000; ++round) {
    const bool is_larger = all.size() > 2'500'000;
    if (is_larger && lost == 0) lost = all.size() - kKept;
    if (is_larger) window.Grow(4'000'000);
    ASSERT_TRUE(window.Reserve(20'000));
    const std::size_t before = all.size();
    window.Put(static_cast<std::uint8_t>(round));
    all.push_back(static_cast<char>(round));
    const std::uint64_t reach = std::min<std::uint64_t>(is_larger ? 4'000'000 : kSize, all.size() - lost);
    const std::size_t distance = 1 + below(round % 3 == 0 ? std::min<std::uint64_t>(20, reach) : reach);
    const std::size_t length = 1 + below(round % 5 == 0 ? 4'000 : 40);
    EXPECT_FALSE(window.Copy(0, 5) || window.Copy(reach + 1, 5) || window.Copy(~std::uint64_t{0}, 5))
        << round;
    WindowCursor cursor = window.Lend(10'000);
    if (round % 2 == 0 && cursor.HasRoom()) {
      EXPECT_FALSE(cursor.Copy(0, 5) || cursor.Copy(reach + 1, 5)) << round;
      ASSERT_TRUE(cursor.Copy(distance, length)) << round;
      window.TakeBack(cursor);
    } else {
      ASSERT_TRUE(window.Copy(distance, length)) << round;
    }
    for (std::size_t i = 0; i < length; ++i) all.push_back(all[all.size() - distance]);
    std::string made(window.Piece(before, all.size()));
    made += window.Piece(before + made.size(), all.size());
    ASSERT_EQ(made, all.substr(before)) << round;
  }
  EXPECT_EQ(window.Written(), all.size());
  EXPECT_FALSE(window.Lend(0).HasRoom());
  window.Reset(kSize);
  EXPECT_TRUE(window.Reserve(100) && !window.Copy(1, 1));
}

// Adds what it was made with to each byte.
class AddFilter final : public Filter {
 public:
  explicit AddFilter(int amount) : amount_(amount) {}
  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override {
    for (std::uint8_t& byte : *bytes)
      byte = static_cast<std::uint8_t>(byte + amount_ + static_cast<int>(position));
    return amount_ >= 0;
  }

 private:
  int amount_;
};

GTEST_TEST(FilterQueue, ChangesTheRangesOfFilters) {
  struct Range {
    std::uint64_t start;
    std::size_t length;
    int amount;
  };
  const struct {
    const char* name;
    std::vector<Range> ranges;
    std::string out;  // of ten times 'a', as far as it comes
    bool all_taken = true;
    bool passes = true;
    bool holds = false;
  } rows[] = {
      {"none", {}, "aaaaaaaaaa"},
      {"one", {{2, 3, 1}}, "aadddaaaaa"},
      {"in a chain", {{2, 3, 1}, {2, 3, 2}}, "aahhhaaaaa"},
      {"behind each other", {{2, 3, 1}, {5, 1, 1}}, "aadddgaaaa"},
      {"at the end", {{8, 2, 0}}, "aaaaaaaaii"},
      {"of nothing", {{2, 0, 1}, {2, 1, 1}}, "aadaaaaaaa"},
      {"not complete", {{8, 3, 0}}, "aaaaaaaa", true, true, true},
      {"not begun", {{20, 3, 0}}, "aaaaaaaaaa"},
      {"overlapping", {{2, 3, 1}, {4, 3, 1}}, "aadddaaaaa", false},
      {"longer from the same place", {{2, 3, 1}, {2, 4, 1}}, "aadddaaaaa", false},
      {"backwards", {{2, 3, 1}, {1, 1, 1}}, "aadddaaaaa", false},
      {"failing", {{2, 3, -1}}, "aa", true, false},
  };
  for (const auto& row : rows)
    for (const std::size_t step : {1U, 4U, 10U}) {
      SCOPED_TRACE(std::string(row.name).append(" by ").append(std::to_string(step)));
      FilterQueue queue;
      queue.Begin();
      bool all_taken = true;
      for (const Range& range : row.ranges)
        all_taken =
            queue.Add(range.start, range.length, std::make_unique<AddFilter>(range.amount)) && all_taken;
      EXPECT_EQ(all_taken, row.all_taken);
      std::string out;
      bool passes = true;
      const std::string content(10, 'a');
      for (std::size_t at = 0; at < content.size() && passes; at += step) {
        std::string_view raw = std::string_view(content).substr(at, step);
        std::string_view given;
        while (!raw.empty() && (passes = queue.Pass(&raw, &given))) out += given;
      }
      EXPECT_EQ(passes, row.passes);
      EXPECT_EQ(out, row.out);
      EXPECT_EQ(queue.IsHolding(), row.holds);
      EXPECT_EQ(queue.Add(1, 1, std::make_unique<AddFilter>(1)), false) << "what went out cannot be changed";
    }
}

GTEST_TEST(FilterQueue, TakesNoEndlessNumberOfFilters) {
  FilterQueue queue;
  queue.Begin();
  std::size_t taken = 0;
  while (taken < 10'000 && queue.Add(taken, 1, std::make_unique<AddFilter>(0))) ++taken;
  EXPECT_EQ(taken, 8192U);
  queue.Begin();
  for (taken = 0; taken < 100 && queue.Add(0, 4, std::make_unique<AddFilter>(0));) ++taken;
  EXPECT_EQ(taken, 8U) << "for one range";
}

GTEST_TEST(CommonFilters, ChangeBackWhatPackersChanged) {
  DeltaFilter two(2), many(0xFFFFFFFF), none(0);
  X86Filter e8(false, X86Filter::Positions::k24Bits), e8e9(true, X86Filter::Positions::k24Bits);
  X86Filter e8_of_29(false, X86Filter::Positions::k32Bits);
  ArmFilter arm;
  const struct {
    const char* name;
    Filter* filter;
    std::uint64_t position;
    std::vector<std::uint8_t> in;
    std::vector<std::uint8_t> out;  // empty: fails
  } rows[] = {
      {"delta", &two, 0, {0xFF, 0xFF, 0x9C, 0xFE}, {1, 0x64, 2, 0x66}},
      {"delta, an odd number", &two, 0, {0xFF, 0xFF, 0xFE, 0x9C, 0xFE}, {1, 0x64, 2, 0x66, 4}},
      {"delta, more channels than bytes", &many, 0, {0xFF, 0x9C}, {1, 0x64}},
      {"delta, no channels", &none, 0, {0xFF, 0x9C}, {}},
      {"E8", &e8, 0x100, {0xE8, 0x15, 1, 0, 0}, {0xE8, 0x14, 0, 0, 0}},
      {"E8, backwards", &e8, 0x100, {0, 0xE8, 0xFF, 0xFF, 0xFF, 0xFF}, {0, 0xE8, 0xFF, 0xFF, 0xFF, 0}},
      {"E8, before the front", &e8, 0, {0xE8, 0xF0, 0xFF, 0xFF, 0xFF}, {0xE8, 0xF0, 0xFF, 0xFF, 0xFF}},
      {"E8, too far", &e8, 0, {0xE8, 0, 0, 0, 1}, {0xE8, 0, 0, 0, 1}},
      {"E8, no whole address", &e8, 9, {0, 0xE8, 0x15, 1, 0}, {0, 0xE8, 0x15, 1, 0}},
      {"E8, E8 in an address", &e8, 0x100, {0xE8, 0xE9, 1, 0, 0, 0, 0}, {0xE8, 0xE8, 0, 0, 0, 0, 0}},
      {"E8, no jumps", &e8, 0x100, {0xE9, 0x15, 1, 0, 0}, {0xE9, 0x15, 1, 0, 0}},
      {"E8E9", &e8e9, 0x100, {0xE9, 0x15, 1, 0, 0}, {0xE9, 0x14, 0, 0, 0}},
      {"beyond 24 bits", &e8, 0x1000100, {0xE8, 0x15, 1, 0, 0}, {0xE8, 0x14, 0, 0, 0}},
      {"beyond 24 bits, 2.9", &e8_of_29, 0x1000100, {0xE8, 0x15, 1, 0, 0}, {0xE8, 0x14, 0, 0, 0xFF}},
      {"ARM", &arm, 0x104, {0x45, 0, 0, 0xEB, 0x43, 0, 0, 0xEB, 9}, {4, 0, 0, 0xEB, 1, 0, 0, 0xEB, 9}},
      {"ARM, nothing else",
       &arm,
       0x100,
       {0x45, 0, 0, 0xEA, 0x43, 0, 0xEB},
       {0x45, 0, 0, 0xEA, 0x43, 0, 0xEB}},
      {"ARM, backwards", &arm, 0x100, {1, 0, 0, 0xEB}, {0xC1, 0xFF, 0xFF, 0xEB}},
  };
  for (const auto& row : rows) {
    std::vector<std::uint8_t> bytes = row.in;
    ASSERT_EQ(row.filter->Run(row.position, &bytes), !row.out.empty()) << row.name;
    EXPECT_TRUE(row.out.empty() || bytes == row.out) << row.name;
  }
}

}  // namespace
}  // namespace quendle::modules
