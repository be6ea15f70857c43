#include "archive/modules/rar/rar_family.h"
#include "archive/modules/common/unarr_reader.h"

#include "support/lzh_cab_rar.h"

namespace quendle::modules {
namespace {

using test::RarEntry, test::StoredRar, test::StoredRar5;

constexpr unsigned kEncrypted = 0x04;
constexpr unsigned kFolder = 0xE0;
constexpr unsigned kUnicode = 0x200;
constexpr unsigned kUnix = 3;

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kRarFamily, bytes).Text();
}

GTEST_TEST(Rar, ReadsNamesAndKinds) {
  const struct {
    const char* what;
    RarEntry entry;
    const char* text;
  } rows[] = {
      {"5C in a character", {"\x83\x5C\\\x95\x5C.txt", "1"}, "ソ/表.txt=1"},
      {"UTF-8", {"é", "1", kUnicode}, "é=1"},
      // Pairs of bits: low byte alone, with the common high byte, both bytes, copied from the other name.
      {"UTF-16", {std::string("?b?cde\0\x30\x1B\x42\x62\x00\x97\x01", 14), "1", kUnicode}, "Bぢ需cde=1"},
      {"UTF-16, shifted", {std::string("123\0\x04\xC0\x81\x0F", 8), "1", kUnicode}, "р\u0441т=1"},
      {"folder", {"d\\e", "", kFolder}, "d/e/"},
      {"link", {"a", "../b", 0, kUnix, 0120777}, "a>../b"},
      {"encrypted", {"a", "1", kEncrypted}, "a!it is encrypted, which is not supported for RAR"},
      {"empty", {"a", ""}, "a="},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(StoredRar({row.entry})), row.text) << row.what;
  EXPECT_EQ(Text(StoredRar({}, 0x80)), "!its list of names is encrypted, which is not supported");
  EXPECT_EQ(Text(test::kRar5Signature + test::Rar5Block(std::string("\x04\0\0\0\x0F", 5))),
            "!its list of names is encrypted, which is not supported");
  std::string damaged = StoredRar({{"a", "first"}, {"dir", "", kFolder}, {"b", "second"}});
  damaged[20 + 32] ^= 1;
  EXPECT_EQ(Text(damaged), "!the archive is cut off, or damaged, in a header") << "in a name";
}

// Each version had its own idea of what a block's checksum is over; what is over nothing may be a file.
GTEST_TEST(Rar, PassesOverOldBlocksWholeByTheirChecksumsOnly) {
  const auto block = [](unsigned type, std::size_t size, std::size_t summed,
                        const std::string& content = "") {
    std::string bytes = test::RarBlock(type, content.empty() ? 0 : 0x8000,
                                       test::Number(content.size(), 4) + std::string(size - 11, 'x'));
    const std::string of = (bytes + content).substr(2, summed - 2);
    test::Patch(&bytes, 0, Crc32(of) & 0xFFFF, 2);
    return bytes + content;
  };
  const struct {
    const char* what;
    std::string bytes;
    bool holds;
  } rows[] = {
      {"comment", block(0x75, 20, 13), true},
      {"extra information", block(0x76, 20, 14), true},
      {"owner", block(0x77, 14, 14, "owner"), true},
      {"owner, summed with content", block(0x77, 14, 19, "owner"), true},
      {"recovery record", block(0x78, 26, 26, "record"), true},
      {"signature", block(0x79, 20, 15), true},
      {"any, summed as a whole", block(0x75, 20, 20), true},
      {"of another version", block(0x78, 26, 20), false},
      {"of another version, with content", block(0x76, 14, 19, "owner"), false},
  };
  const std::string before = StoredRar({{"a", "1"}});
  const std::string file = test::RarFileBlock({"b", "2"});
  for (const auto& row : rows) {
    const std::string bytes =
        before.substr(0, before.size() - 7) + row.bytes + file + before.substr(before.size() - 7);
    // libarchive lists what is behind them, and does not unpack it.
    const std::string text = HasUnarr() || !row.holds ? Text(bytes) : Text(bytes).substr(0, 5);
    EXPECT_EQ(text, !row.holds   ? "a=1!the archive is cut off, or damaged, in a header"
                    : HasUnarr() ? "a=1 b=2"
                                 : "a=1 b")
        << row.what;
  }
  // A comment behind the salt, and times of which the second one has seconds of its own.
  RarEntry commented = {"a", "1", 0x1408, 2, 0x20, "", std::string("saltsalt\0\xB9\1\2\3SECS\1comment", 25)};
  std::string bytes = StoredRar({commented});
  test::Patch(&bytes, 20, Crc32(bytes.substr(22, 32 + 1 + 8 + 2 + 3 + 5 - 2)) & 0xFFFF, 2);
  EXPECT_EQ(Text(bytes).substr(0, HasUnarr() ? 9 : 1), HasUnarr() ? "a=1" : "a");
}

// What a RAR 5 archive has of one file, or of one that has the content of `source`, by a redirection of that kind.
std::string Rar5Entry(const std::string& name, const std::string& content, const std::string& source = "",
                      unsigned kind = 4) {
  using test::Number;
  const std::string record = "\5" + Number(kind, 1) + Number(0, 1) + Number(source.size(), 1) + source;
  const std::string extra = source.empty() ? "" : Number(record.size(), 1) + record;
  return test::Rar5Block(
      Number(2, 1) + Number(extra.empty() ? 2 : 3, 1) + (extra.empty() ? "" : Number(extra.size(), 1)) +
          Number(content.size(), 1) + Number(4, 1) + Number(content.size(), 1) + Number(0x20, 1) +
          Number(Crc32(content), 4) + Number(0, 1) + Number(0, 1) + Number(name.size(), 1) + name + extra,
      content);
}

GTEST_TEST(Rar, GivesLinksAndCopiesTheContentOfEarlierFiles) {
  const auto text = [](const std::string& entries) {
    return Text(test::kRar5Signature + test::Rar5Block(std::string("\1\0\0", 3)) + entries +
                test::Rar5Block(std::string("\5\0\0", 3)));
  };
  const std::string a = Rar5Entry("a", "1");
  const std::string b = Rar5Entry("b", "2");
  const std::string missing = "!the file whose content it has, a, is not in front of it in the archive";
  const struct {
    const char* what;
    std::string entries;
    std::string text;
  } rows[] = {
      {"hard link", a + Rar5Entry("l", "", "a"), "a=1 l=1"},
      {"copy", a + Rar5Entry("l", "", "a", 5), "a=1 l=1"},
      {"in the order of the sources", a + b + Rar5Entry("l", "", "b") + Rar5Entry("m", "", "a", 5),
       "a=1 b=2 m=1 l=2"},
      {"of one source, and of a link", a + Rar5Entry("l", "", "a") + Rar5Entry("m", "", "l") + b,
       "a=1 b=2 l=1 m=1"},
      {"the last of that name", a + Rar5Entry("a", "3") + Rar5Entry("l", "", "a"), "a=1 a=3 l=3"},
      {"a later one", Rar5Entry("l", "", "a") + a, "a=1 l" + missing},
      {"itself", Rar5Entry("a", "", "a", 5), "a" + missing},
  };
  for (const auto& row : rows) EXPECT_EQ(text(row.entries), row.text) << row.what;
  std::string many;
  for (int i = 0; i < 200; ++i) many += Rar5Entry("x", "");
  many += a;
  for (int i = 0; i < 200; ++i) many += Rar5Entry("l", "", "a");
  unsigned reads = 0;
  const InterruptibleReads counted([&] { return ++reads < 5'000; });
  EXPECT_TRUE(text(many).ends_with(" l=1 l=1 l=1")) << "not read anew for each";
}

GTEST_TEST(Rar, TellsTimesAndModes) {
  // One more second and 0x030201 times 100 nanoseconds.
  const auto read = test::UnpackBytes(
      kRarFamily,
      StoredRar({{"a", "1"}, {"b", "1", 0x1000, kUnix, 0100755, "", std::string("\0\xF0\1\2\3", 5)}}));
  ASSERT_EQ(read.entries.size(), 2U) << read.problem;
  const platform::EntryAttributes& plain = read.entries[0].entry.attributes;
  const platform::EntryAttributes& exact = read.entries[1].entry.attributes;
  EXPECT_EQ(exact.write_time->seconds, plain.write_time->seconds + 1);
  EXPECT_EQ(exact.write_time->nanoseconds, 0x030201 * 100);
  EXPECT_FALSE(plain.executable);
  EXPECT_TRUE(exact.executable);
}

GTEST_TEST(Rar, ReadsVolumesWhenAllAreThere) {
  const std::string whole = "0123456789";
  const auto part = [&](std::size_t from, std::size_t to, unsigned flags) {
    return RarEntry{"a", whole.substr(from, to - from), flags, 2, 0x20, whole};
  };
  const std::vector<std::string> old_ones = {StoredRar({part(0, 4, 2)}, 0x101, true),
                                             StoredRar({part(4, 7, 3)}, 1, true),
                                             StoredRar({part(7, 10, 1), {"b", "1"}}, 1)};
  const std::vector<std::string> new_ones = {StoredRar5("a", whole.substr(0, 4), whole, 0, true),
                                             StoredRar5("a", whole.substr(4, 3), whole, 1, true),
                                             StoredRar5("a", whole.substr(7), whole, 2)};
  const struct {
    const char* what;
    std::vector<const char*> names;
    const std::vector<std::string>& volumes;
    const char* text;
  } rows[] = {
      {"old names", {"a.rar", "a.r00", "a.r01"}, old_ones, "a=0123456789 b=1"},
      {"RAR 5", {"a.part01.rar", "a.part02.rar", "a.part03.rar"}, new_ones, "a=0123456789"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    for (std::size_t missing = 0; missing <= 3; ++missing) {
      const test::TempFolder folder;
      const auto path = [&](std::size_t i) { return folder / row.names[i]; };
      for (std::size_t i = 0; i < 3; ++i)
        if (i != missing) test::WriteFile(path(i), row.volumes[i]);
      const auto read = [&](std::size_t i) { return test::Unpack(kRarFamily, path(i)).Text(); };
      if (missing == 3) {
        EXPECT_EQ(read(0), row.text);
        EXPECT_EQ(read(1), "!the archive begins in " + path(0));
      } else if (missing > 0) {
        EXPECT_EQ(read(0), "!the volume " + path(missing) + " is missing");
      }
    }
  }
}

}  // namespace
}  // namespace quendle::modules
