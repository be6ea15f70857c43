#include "archive/modules/lzh/lzh_family.h"

#include <ctime>

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
      {"comment of 2,000 bytes", 1, {"a", "1", "-lh0-", {Extension(0x3F, std::string(2000, 'c'))}}, "a=1"},
      {"comment, level 2", 2, Extended({Extension(0x3F, std::string(9000, 'c')), Extension(1, "a")}), "a=1"},
      {"empty", 0, {"a", ""}, "a="},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(StoredLzh(row.level, {row.entry})), row.text) << row.what;
}

GTEST_TEST(Lzh, TellsHowItEndsBehindADamagedEntry) {
  std::string bytes = test::LzhHeaderAndContent(0, {"a", "1"});
  bytes.back() = '2';
  const std::string text = Text(bytes + "\x20 no header");
  EXPECT_TRUE(text.starts_with("a!") && text.ends_with("!" + English(why::kCutOffInHeader))) << text;
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
    // Windows knows the zones of its own only.
    if (test::kSeparator != '/' && row.seconds == kNoon) continue;
    const auto read = test::UnpackBytes(kLzhFamily, StoredLzh(row.level, {row.entry}));
    ASSERT_EQ(read.entries.size(), 1U) << read.problem;
    const platform::EntryAttributes& attributes = read.entries[0].entry.attributes;
    EXPECT_EQ(attributes.write_time->seconds, row.seconds);
    EXPECT_EQ(attributes.write_time->nanoseconds, row.nanoseconds);
    EXPECT_EQ(attributes.executable, row.executable);
  }
}

// The two kinds of symbols that -lh2- and -lh3- make content of. Spaces are in front of it.
class Content {
 public:
  void Add(const std::string& bytes) { bytes_ += bytes; }
  void Repeat(std::size_t back, std::size_t count) {
    while (count-- > 0) bytes_ += bytes_[bytes_.size() - back];
  }
  std::string Get() const { return bytes_.substr(kSpaces); }

 private:
  static constexpr std::size_t kSpaces = 8192;
  std::string bytes_ = std::string(kSpaces, ' ');
};

std::string FromHex(std::string_view digits) {
  std::string bytes;
  for (; digits.size() > 1; digits.remove_prefix(2)) {
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(0, 2)), nullptr, 16));
  }
  return bytes;
}

const std::string kFox = "The quick brown fox jumps over the lazy dog. ";

// 33,000 equal repetitions, so that both codes are halved once.
GTEST_TEST(Lzh, UnpacksAdaptiveCodes) {
  Content content;
  content.Add("abc");
  content.Repeat(3, 9);
  content.Add(kFox);
  for (const auto& [back, count] : {std::pair<std::size_t, std::size_t>{45, 200},
                                    {100, 4},
                                    {100, 4},
                                    {2, 3},
                                    {100, 4},
                                    {2, 3},
                                    {1, 32},
                                    {7, 31}}) {
    content.Repeat(back, count);
  }
  content.Add("Pack my box");
  content.Repeat(70, 9);
  content.Repeat(200, 12);
  content.Add("xyz");
  content.Repeat(3, 99'000);
  content.Repeat(8192, 40);
  content.Repeat(5000, 3);
  content.Add(kFox.substr(0, 20));
  for (const auto& [back, count] : {std::pair<std::size_t, std::size_t>{20, 20}, {4100, 5}, {2, 256}})
    content.Repeat(back, count);
  const std::string packed =
      FromHex(
          "252627c40b782dc10c1614f90d4e4b77cbf6380d8cceccb295691e672ed6313437bf19d6ce9de71b573030e13e3dc0a3"
          "195fca84b5161591db51ee80d4473706dc02009b1852c50d49e55dce84998718a6963c68f79402a01520a00a00a00a00"
          "a70a70a70a909e13c2784f09e13c2784f0a2144288530a614c298530942509425094250942509c2709c2709c2709c270"
          "9c2709c2709c2709c2709c2709c290a4290a429088442211088442211088442211088442211088442211088442211088"
          "4422110884422110884422130984c26130984c26130984c26130984c26130984c26130984c26130984c26130b85c2e17"
          "0b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2"
          "e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b85c2e170b8"
          "5c2e170b85c2e170b85c2e") +
      std::string(128, '\x12') + std::string(32'650, '\x16') +
      FromHex("13502003fb08ed069b799b52d76136daccdb4d26169d6ccdbd646caa30a622020d878208");
  const LzhEntry entry{"a", content.Get(), "-lh2-", {}, test::kDosTime, "", 'U', packed};
  EXPECT_EQ(Text(StoredLzh(0, {entry})), "a=" + content.Get());
  const LzhEntry cut{"a", content.Get(), "-lh2-", {}, test::kDosTime, "", 'U', packed.substr(0, 20'000)};
  EXPECT_TRUE(Text(StoredLzh(0, {cut})).starts_with("a!")) << "ends without end";
}

// Four blocks: with codes of their own, with the fixed one of positions, and with a single byte or position.
GTEST_TEST(Lzh, UnpacksStaticCodes) {
  Content content;
  content.Add(kFox);
  for (const auto& [back, count] : {std::pair<std::size_t, std::size_t>{45, 200},
                                    {1, 33},
                                    {8192, 31},
                                    {300, 4},
                                    {70, 3},
                                    {100, 5},
                                    {8000, 6},
                                    {1500, 7},
                                    {700, 8},
                                    {20, 3}}) {
    content.Repeat(back, count);
  }
  content.Add(kFox.substr(0, 8) + "aaaaaaaa");
  for (int i = 0; i < 5; ++i) content.Repeat(9, 4);
  std::string packed = FromHex(
      "00320000000088002a000000000a80056b5aceb5a56b5ad6b3ad695ad2b5a52800000000000000000000000000000000"
      "0a50000000a5244004000000000000000000000000000000000000000000000000000000000000000000000000000000"
      "0000000000000000000000000000000000000000000056b10edda61b17b57fe4c95e6aee3af05f91a7ac437ba30315ce"
      "c2b505950100a7fceae48a001a0000000130000000000001300026993980989800000000000000000000000000000000"
      "0134e5290000003d231fcfcd46d45df09bd4b66dc0004421030c44400002c21080c4440104104100");
  const LzhEntry entry{"a", content.Get(), "-lh3-", {}, test::kDosTime, "", 'U', packed};
  EXPECT_EQ(Text(StoredLzh(0, {entry})), "a=" + content.Get());
}

// The header of a file that is called "a", and the forks behind it.
std::string MacBinary(const std::string& data, const std::string& resource, std::uint32_t changed) {
  const auto big_endian = [](std::uint64_t number) {
    const std::string bytes = Number(number, 4);
    return std::string(bytes.rbegin(), bytes.rend());
  };
  std::string bytes = std::string("\0\1a", 3).append(80, '\0') + big_endian(data.size()) +
                      big_endian(resource.size()) + big_endian(0) + big_endian(changed);
  for (const std::string& fork : {data, resource}) {
    bytes.resize((bytes.size() + 127) / 128 * 128);
    bytes += fork;
  }
  bytes.resize((bytes.size() + 127) / 128 * 128);
  return bytes;
}

GTEST_TEST(Lzh, TakesFilesOutOfMacBinary) {
  constexpr std::uint32_t kPacked = 1'335'000'000;
  constexpr std::uint32_t kChanged = kPacked + 2'082'844'800U + 14 * 3600;  // by a clock far east
  const std::string both = MacBinary("data", "resource", kChanged);
  const std::string data = MacBinary("data", "", kChanged);
  const std::string old = MacBinary("data", "", kChanged - 3 * 86'400);
  const struct {
    const char* what;
    std::string name;
    std::string content;
    char system;
    std::string file;
  } rows[] = {
      {"data", "a", data, 'm', "data"},
      {"more than a piece", "a", MacBinary(std::string(600'001, 'x'), "", kChanged), 'm',
       std::string(600'001, 'x')},
      {"resources", "a", MacBinary("", "resource", kChanged), 'm', "resource"},
      {"nothing", "a", MacBinary("", "", kChanged), 'm', ""},
      {"both", "a", both, 'm', both},
      {"of another file", "b", data, 'm', data},
      {"of another time", "a", old, 'm', old},
      {"of another system", "a", data, 'U', data},
      {"more behind it", "a", data + std::string(128, 'x'), 'm', data + std::string(128, 'x')},
      {"too short", "a", data.substr(0, 127), 'm', data.substr(0, 127)},
  };
  for (const auto& row : rows) {
    const LzhEntry entry{"", row.content, "-lh0-", {Extension(1, row.name)}, kPacked, "", row.system};
    const auto read = test::UnpackBytes(kLzhFamily, StoredLzh(2, {entry}));
    EXPECT_EQ(read.Text(), row.name + "=" + row.file) << row.what;
    ASSERT_EQ(read.entries.size(), 1U) << row.what;
    EXPECT_EQ(read.entries[0].entry.size, row.file.size()) << row.what;
  }
  std::string damaged = StoredLzh(2, {{"", data, "-lh0-", {Extension(1, "a")}, kPacked, "", 'm'}});
  damaged[damaged.size() - 2] ^= 1;
  EXPECT_EQ(Text(damaged), "a!its checksum does not agree") << "behind the fork";
}

// What some packers do otherwise.
GTEST_TEST(Lzh, HeadersOfOtherMakers) {
  const LzhEntry of_os9{"", "1", "-lh0-", {Extension(1, "a"), Extension(0x50, Number(0x27, 2))}, 1, "", 'K'};
  std::string bytes = test::LzhHeaderAndContent(2, of_os9);
  EXPECT_EQ(Text(bytes + '\0'), "a=1") << "its size counts itself";
  test::Patch(&bytes, 0, LittleEndian(bytes, 0, 2) - 2, 2);
  const auto read = test::UnpackBytes(kLzhFamily, bytes);
  EXPECT_EQ(read.Text(), "a=1") << "its size does not";
  EXPECT_FALSE(read.entries[0].entry.attributes.executable) << "OS-9 has other bits";

  bytes = test::LzhHeaderAndContent(0, {"a", "1"});
  bytes[0] = static_cast<char>(bytes[0] - 2);
  bytes[1] = static_cast<char>(bytes[1] - bytes[23] - bytes[24]);
  bytes.erase(23, 2);
  EXPECT_EQ(Text(bytes + '\0'), "a=1") << "no checksum of the content";
  const std::string other = test::LzhHeaderAndContent(0, {"b", "2", "-sw1-"});
  EXPECT_EQ(Text(bytes + other), "a=1 b!it is packed as -sw1-, which is not supported");
}

// Thousands of places that might be headers, each looked at for long, would take minutes.
GTEST_TEST(Lzh, IsFoundBehindManyMarks) {
  std::string program = "MZ";
  for (int i = 0; i < 9'000; ++i) program += "-lh5-";
  const std::clock_t begin = std::clock();
  EXPECT_EQ(Text(program + StoredLzh(1, {{"a", "1"}})), "a=1");
  EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC);
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

  const std::string folder = test::LzhHeaderAndContent(0, {"d", "12345", "-lhd-"});
  EXPECT_EQ(Text(folder.substr(0, folder.size() - 1)), "d/!the archive is cut off: its end is missing");
  const std::string sizes = Number(1, 4) + Number(1, 4) + Number(0, 4);
  const std::string too_small = Number(4, 2) + "-lh0-" + sizes + " \3" + Number(0, 2) + "U" + Number(30, 4);
  EXPECT_EQ(Text(test::LzhHeaderAndContent(0, {"a", "1"}) + too_small + Number(0, 2) + std::string(50, 'x')),
            "a=1!the archive is cut off, or damaged, in a header");

  // What is damaged may begin with a zero, or lead to one.
  const std::string second = test::LzhHeaderAndContent(2, Extended({Extension(1, "b")}));
  const std::string zero = test::LzhHeaderAndContent(0, {"a", "1"}) + '\0';
  for (const std::string& bytes : {zero + second.substr(1), zero + "junk" + second}) {
    const std::string text = Text(bytes + '\0');
    EXPECT_TRUE(text.ends_with("!the archive is cut off, or damaged, in a header")) << text;
  }
  EXPECT_EQ(Text(zero + std::string(99, '\0') + "a-lh--b"), "a=1");
}

}  // namespace
}  // namespace quendle::modules
