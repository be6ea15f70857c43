#include "archive/modules/lzh/lzh_family.h"

#include "support/lzh_cab_rar.h"
#include "support/scoped_variable.h"

namespace quendle::modules {
namespace {

using test::LzhEntry, test::Number, test::StoredLzh;

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kLzhFamily, bytes).Text();
}

std::string Extension(int type, const std::string& data) {
  return Number(static_cast<unsigned>(type), 1) + data;
}

LzhEntry Extended(std::vector<std::string> extensions, std::uint32_t time = test::kDosTime) {
  return {"a", "1", "-lh0-", std::move(extensions), time};
}

GTEST_TEST(Lzh, ReadsNamesOfAllLevels) {
  const std::string wide("\x42\x30\xFF\xFF", 4);
  const struct {
    const char* what;
    int level;
    LzhEntry entry;
    const char* text;
  } rows[] = {
      {"5C in a character", 0, {"\x83\x5C\\\x95\x5C.txt", "1"}, "ソ/表.txt=1"},
      {"kana, FF between", 0, {"\xCA\xDD\xFF\xB6.txt", "1"}, "ﾊﾝ/ｶ.txt=1"},
      {"comment behind the name", 0, {std::string("a\0b", 3), "1"}, "a=1"},
      {"level 1", 1, {"\x94\x5C.txt", "1"}, "能.txt=1"},
      {"level 1, folder", 1, {"\x95\x5C", "1", "-lh0-", {Extension(2, "d\xFF\x83\x5C\xFF")}}, "d/ソ/表=1"},
      {"level 2", 2, Extended({Extension(1, "\x95\x5C"), Extension(2, "d\xFF")}), "d/表=1"},
      {"folder without an end", 2, Extended({Extension(1, "a"), Extension(2, "d")}), "d/a=1"},
      {"says UTF-8", 2, Extended({Extension(1, "é"), Extension(0x46, Number(65001, 4))}), "é=1"},
      {"says Cyrillic", 2, Extended({Extension(1, "\xE6"), Extension(0x46, Number(1251, 4))}), "ж=1"},
      {"UTF-16", 2, Extended({Extension(0x44, {'b', 0}), Extension(0x45, wide)}), "あ/b=1"},
      {"folder", 1, {"", "", "-lhd-", {Extension(2, "d\xFF")}}, "d/"},
      {"link", 1, {"a|../b", "", "-lhd-", {Extension(0x50, Number(0120777, 2))}}, "a>../b"},
      {"bar in a folder's name", 1, {"a|b", "", "-lhd-"}, "a|b/"},
      {"stored by LArc", 0, {"a", "1", "-lz4-"}, "a=1"},
      {"unknown method", 0, {"a", "1", "-lh9-"}, "a!it is packed as -lh9-, which is not supported"},
      {"empty", 0, {"a", ""}, "a="},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(StoredLzh(row.level, {row.entry})), row.text) << row.what;
}

GTEST_TEST(Lzh, TellsTimesAndModes) {
  const test::TimeZone japan("JST-9");
  constexpr std::int64_t kNoon = 1'744'686'000;  // 2025-04-15 12:00:00 in Japan
  const std::string ntfs = Extension(
      0x41, Number(0, 8) + Number((1'000'000'000ULL + 11'644'473'600) * 10'000'000 + 5, 8) + Number(0, 8));
  const std::string unix_area =
      Number('U', 1) + Number(0, 1) + Number(1'000'000'001, 4) + Number(0755, 2) + Number(0, 4);
  const struct {
    const char* what;
    int level;
    LzhEntry entry;
    std::int64_t seconds;
    std::int32_t nanoseconds;
    bool executable;
  } rows[] = {
      {"local time", 0, {"a"}, kNoon, 0, false},
      {"local time, level 1", 1, {"a"}, kNoon, 0, false},
      {"Unix, level 0", 0, {"a", "", "-lh0-", {}, 0, unix_area}, 1'000'000'001, 0, true},
      {"Unix, level 2", 2, Extended({Extension(1, "a"), Extension(0x50, Number(0100644, 2))}, 1'000'000'002),
       1'000'000'002, 0, false},
      {"Unix, level 1", 1, Extended({Extension(1, "a"), Extension(0x54, Number(1'000'000'003, 4)), ntfs}),
       1'000'000'003, 0, false},
      {"NTFS", 2, Extended({Extension(1, "a"), ntfs}, 1), 1'000'000'000, 500, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const auto read = test::UnpackBytes(kLzhFamily, StoredLzh(row.level, {row.entry}));
    ASSERT_EQ(read.entries.size(), 1U) << read.problem;
    const platform::EntryAttributes& attributes = read.entries[0].entry.attributes;
    EXPECT_EQ(attributes.write_time->seconds, row.seconds);
    EXPECT_EQ(attributes.write_time->nanoseconds, row.nanoseconds);
    EXPECT_EQ(attributes.executable, row.executable);
  }
}

GTEST_TEST(Lzh, DamageIsNoticed) {
  std::string damaged = StoredLzh(0, {{"a", "first"}, {"b", "second"}});
  damaged[damaged.find("first")] ^= 1;
  EXPECT_EQ(Text(damaged), "a!its checksum does not agree b=second");
  damaged = StoredLzh(1, {{"name", "content"}});
  damaged[22] ^= 1;
  EXPECT_EQ(Text(damaged), "!no archive") << "the sum over the header";
  std::string header =
      test::LzhHeaderAndContent(2, {"", "", "-lh0-", {Extension(0, Number(0, 2)), Extension(1, "a")}});
  test::Patch(&header, 27, test::Crc16(header), 2);
  EXPECT_EQ(Text(header + '\0'), "a=");
  header[32] ^= 1;
  EXPECT_EQ(Text(header + '\0'), "!no archive") << "the checksum of the header";
}

}  // namespace
}  // namespace quendle::modules
