#include "archive/modules/rar/rar_family.h"

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
