#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/unpack/unpack15.h"
#include "archive/modules/rar/unpack/unpack20.h"

#include <gtest/gtest.h>

#include "support/rar_encoder.h"

namespace quendle::modules {
namespace {

using test::PackedBits, test::UnpackAll;

// Any bits are packed data; these are no particular ones.
std::string Noise(std::uint32_t seed, std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) {
    seed = seed * 1664525 + 1013904223;
    bytes += static_cast<char>(seed >> 24);
  }
  return bytes;
}

// A window full of zeros, so that matches may reach far.
PackedBits Zeros15() {
  PackedBits bits;
  bits.Put(1, 5);  // flags for literals
  unsigned average = 0x3500;
  for (unsigned made = 0; made < 66024; ++made) {
    const bool in_run = made >= 24;
    if (!in_run && made % 8 == 0 && made > 0) bits.Put(0, 5);  // the same flags
    bits.Put(in_run ? 1 : 0, average >= 0xE00 ? 5 : 4);
    average -= average >> 8;
  }
  return bits;
}

struct Row {
  std::string packed;
  std::size_t size;
  bool is_solid;
  std::uint32_t sum;  // which another program's decoder found right, too
};

void ExpectSums(Unpacker* unpacker, std::initializer_list<Row> rows) {
  for (const auto& row : rows) {
    const auto [bytes, status] = UnpackAll(unpacker, row.packed, {row.size, row.is_solid});
    EXPECT_EQ(status, ReadStatus::kEnd) << row.size;
    EXPECT_EQ(bytes.size(), row.size);
    EXPECT_EQ(Crc32(bytes), row.sum) << row.size;
  }
}

GTEST_TEST(RarUnpack15, UnpacksEveryKindOfSymbol) {
  PackedBits with_far_matches = Zeros15();
  with_far_matches.Put(1, 5).Put(1, 5);         // the run ends; flags for short matches
  with_far_matches.Put(0x8FFF, 16);             // from now on there is one more selector
  with_far_matches.Put(0xB, 4).Put(0, 3 + 15);  // which is this
  with_far_matches.Put(0xA, 4).Put(0, 5);       // a near one
  with_far_matches.Put(0xB, 4).Put(0, 3 + 15);
  Unpack15 unpacker;
  ExpectSums(&unpacker,
             {{Zeros15().Bytes() + Noise(2, 40000), 86104, false, 0x3D638084},
              {Noise(2, 40000), 20045, true, 0x27D0033B},
              {with_far_matches.Bytes() + Noise(3, 40000), 86126, false, 0xA8CF27BD},
              {Noise(0, 40000), 20001, true, 0x3B513B32},
              {Zeros15().Bytes() + std::string(400, '\xFF') + Noise(6, 40000), 100115, false, 0x3522CC60},
              {Zeros15().Bytes(), 66024, false, 0x3EA64F4B},
              {Noise(1, 40000), 20218, true, 0xBEFBB58A}});
}

using Lengths =
    std::initializer_list<std::pair<unsigned, unsigned>>;  // how many symbols have codes of that length

constexpr Lengths kPlain = {{298, 9}, {48, 6}, {28, 5}};  // codes are symbols
constexpr Lengths kComplete = {{215, 8}, {54, 9}, {1, 0}, {28, 9}, {16, 5}, {32, 6}, {4, 4}, {24, 5}};

// New codes of matches, or with a sound's `channels`.
void PutCodes(PackedBits* bits, Lengths lengths, unsigned channels = 0) {
  bits->Put(channels > 0 ? 2 : 0, 2);
  if (channels > 0) bits->Put(channels - 1, 2);
  for (int i = 0; i < 19; ++i) bits->Put(5, 4);
  for (unsigned i = 0; i < std::max(channels, 1U); ++i)
    for (const auto& [symbols, length] : lengths)
      for (unsigned j = 0; j < symbols; ++j) bits->Put(length, 5);
}

PackedBits Matches(Lengths lengths, std::initializer_list<unsigned> symbols) {
  PackedBits bits;
  PutCodes(&bits, lengths);
  for (const unsigned symbol : symbols) bits.Put(symbol, 9);
  return bits;
}

GTEST_TEST(RarUnpack20, UnpacksMatchesAtAllDistances) {
  // Noise, repeated until it fills the window, and the shortest match as each of the last four.
  PackedBits bits = Matches(kComplete, {});
  for (const char c : Noise(1, 300)) bits.Put(static_cast<std::uint8_t>(c) % 215U, 8);
  for (int i = 0; i < 4100; ++i) bits.Put(511, 9).Put(31, 5).Put(14, 5).Put(40, 6);
  for (int i = 0; i < 4; ++i) bits.Put(215 + 261, 9).Put(2, 2);
  Unpack20 unpacker;
  ExpectSums(&unpacker, {{bits.Bytes() + Noise(5, 60000), 1200002, false, 0x5F7B5069},
                         {Noise(6, 60000), 200071, true, 0x9255F068}});
}

GTEST_TEST(RarUnpack20, UnpacksSounds) {
  const auto packed = [](unsigned channels, std::uint32_t seed) {
    PackedBits bits;
    PutCodes(&bits, {{256, 8}, {1, 0}}, channels);
    for (int i = 0; i < 4500; ++i) bits.Put(i / 3 % 2 == 0 ? 40 : 216, 8);
    for (const char c : Noise(seed, 3000)) bits.Put(static_cast<std::uint8_t>(c), 8);
    return bits.Bytes();
  };
  Unpack20 unpacker;
  ExpectSums(&unpacker, {{packed(1, 1), 7500, false, 0xDE123467},
                         {Noise(2, 3000), 3000, true, 0xF3451FAD},
                         {packed(3, 3), 7500, false, 0xBAB03FE5},
                         {Noise(2, 2000), 2000, true, 0x625B25A6}});
}

// Behind an entry there may be the codes that a solid one begins with.
GTEST_TEST(RarUnpack20, ReadsCodesBehindAnEntry) {
  PackedBits changed = Matches(kPlain, {'a', 'b', 269});
  changed.Put(1, 2);
  for (int i = 0; i < 19; ++i) changed.Put(5, 4);
  for (int i = 0; i < 298 + 48 + 28; ++i) changed.Put(i == 'a' ? 8 : 7, 5);  // modulo 16, more than before
  PackedBits in_runs = Matches(kPlain, {'a', 'b', 269});
  in_runs.Put(0b1000, 4);
  for (int i = 0; i < 19; ++i) in_runs.Put(5, 4);
  in_runs.Put(18, 5).Put(117, 7).Put(17, 5).Put(7, 3);  // none for 138 symbols,
  in_runs.Put(2, 5).Put(16, 5).Put(0, 2);               // two bits for four,
  in_runs.Put(18, 5).Put(127, 7);                       // none for more than there are
  static constexpr Lengths kSound = {{255, 8}, {2, 9}};
  PackedBits fewer_channels;
  PutCodes(&fewer_channels, kSound, 3);
  fewer_channels.Put(256 - 'a', 8).Put(256 - 'b', 8).Put(511, 9);
  PutCodes(&fewer_channels, kSound, 1);
  const std::string cut = changed.Bytes().substr(0, changed.Bytes().size() - 1);
  const struct {
    const char* what;
    std::string first;
    PackedBits second;
    std::string text;
  } rows[] = {{"changed", changed.Bytes(), PackedBits().Put(0, 3), "aaa"},
              {"of a sound, in runs", in_runs.Bytes(), PackedBits().Put(0b00011011, 8), "\x76\xEB\x5F\xD2"},
              {"of fewer channels", fewer_channels.Bytes(), PackedBits().Put(256 - 2, 8), "c"},
              {"cut off", cut, PackedBits().Put('c', 9), "c"},
              {"none", Matches(kPlain, {'a', 'b'}).Bytes(), PackedBits().Put('c', 9), "c"}};
  for (const auto& row : rows) {
    Unpack20 unpacker;
    EXPECT_EQ(UnpackAll(&unpacker, row.first, {2}).first, "ab") << row.what;
    EXPECT_EQ(UnpackAll(&unpacker, row.second.Bytes(), {row.text.size(), true}).first, row.text) << row.what;
  }
}

GTEST_TEST(RarUnpackOld, SaysWhatIsDamaged) {
  PackedBits too_many;
  PutCodes(&too_many, {{298, 8}, {48, 6}, {28, 5}});
  PackedBits repeats_nothing = PackedBits().Put(0, 2);
  for (int i = 0; i < 19; ++i) repeats_nothing.Put(5, 4);
  repeats_nothing.Put(16, 5);
  const struct {
    const char* what;
    std::string packed;
  } rows[] = {{"no codes", ""},
              {"too many codes", too_many.Bytes()},
              {"the length before the first", repeats_nothing.Bytes()},
              {"a literal's code", Matches(kPlain, {'a', 511}).Bytes()},
              {"a distance's code", Matches(kPlain, {'a', 270}).Put(63, 6).Bytes()},
              {"a length's code", Matches(kPlain, {'a', 261}).Put(0, 2).Put(257, 9).Put(31, 5).Bytes()},
              {"the last match, of none", Matches(kPlain, {'a', 256}).Bytes()},
              {"in front of the first byte", Matches(kPlain, {'a', 261}).Put(1, 2).Bytes()}};
  for (const auto& row : rows) {
    Unpack20 unpacker;
    const std::string packed = row.packed + std::string(row.packed.empty() ? 0 : 100, '\0');
    EXPECT_EQ(UnpackAll(&unpacker, packed, {50}).second, ReadStatus::kFailed) << row.what;
  }
  const std::string whole = Matches(kPlain, {'a', 'b', 'c', 'd', 270}).Put(0, 6).Put('e', 9).Bytes();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    Unpack20 unpacker;
    EXPECT_EQ(UnpackAll(&unpacker, whole.substr(0, size), {8}).second, ReadStatus::kFailed) << size;
  }
  Unpack15 unpacker15;
  EXPECT_EQ(UnpackAll(&unpacker15, std::string(9, '\0'), {8}).second, ReadStatus::kFailed) << "of nothing";
  EXPECT_EQ(UnpackAll(&unpacker15, Zeros15().Bytes(), {70000}).second, ReadStatus::kFailed) << "too little";
}

}  // namespace
}  // namespace quendle::modules
