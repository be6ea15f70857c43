#include "archive/modules/zip/zip_family.h"

#include <ctime>
#include <filesystem>

#include "modules/unpack_bytes.h"

namespace quendle::modules {
namespace {

using test::Number;
using test::Pack;
using test::StoredZip;
using test::Unpack;

const std::string kProgram = "MZ" + std::string(5000, 'x') + "PK\3\4PK\1\2";

std::string UnicodePath(const std::string& raw, const std::string& name) {
  const std::string field = Number(1, 1) + Number(Crc32(raw), 4) + name;
  return Number(0x7075, 2) + Number(field.size(), 2) + field;
}

std::string Text(const std::string& bytes, const std::vector<std::string>& passwords = {},
                 const std::string& charset = "") {
  return test::UnpackBytes(kZipFamily, bytes, passwords, charset).Text();
}

GTEST_TEST(Zip, IsFoundWhereItIsOne) {
  const std::string inner = StoredZip({{"inner", "1"}});
  const struct {
    const char* what;
    std::string bytes;
    std::string text;
  } rows[] = {
      {"whole", StoredZip({{"a", "1"}, {"d/", ""}, {"d/b", "2"}}), "a=1 d/ d/b=2"},
      {"empty", StoredZip({}), ""},
      {"counting the program", StoredZip({{"a", "1"}}, kProgram, true), "a=1"},
      {"an archive in it behind a program", StoredZip({{"in.zip", inner}, {"a", "1"}}, kProgram),
       "in.zip=" + inner + " a=1"},
      {"a set that is one file", StoredZip({{"a", "1"}}, "PK00"), "a=1"},
      {"with the longest comment", StoredZip({{"a", "1"}}, "", false, std::string(0xFFFF, 'c')), "a=1"},
      {"with another in the comment", StoredZip({{"a", "1"}}, "", false, inner), "a=1"},
      {"with bytes behind it", StoredZip({{"a", "1"}}) + std::string(9000, 'x'), "a=1"},
      {"text", "PK is what ZIP archives begin with", "!no archive"},
      {"nothing", "", "!no archive"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Text(row.bytes), row.text);
  }
}

GTEST_TEST(Zip, DecodesNames) {
  const struct {
    test::StoredEntry entry;
    const char* charset;
    const char* text;
  } rows[] = {
      {{"\x83\x5C\\\x95\x5C.txt", "1"}, "", "ソ/表.txt=1"},
      {{"caf\xC3\xA9", "1", 1U << 11}, "CP437", "café=1"},
      {{"caf\xC3\xA9", "1"}, "CP437", "caf├⌐=1"},
      {{"a.txt", "1", 0, UnicodePath("a.txt", "表.txt")}, "CP437", "表.txt=1"},
      {{"b.txt", "1", 0, UnicodePath("a.txt", "表.txt")}, "", "b.txt=1"},  // renamed by who does not know it
      {{"../\x95\x5C\\..", "1"}, "", "../表/..=1"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Text(StoredZip({row.entry}), {}, row.charset), row.text);
  }
}

GTEST_TEST(Zip, TellsKindsTimesAndModes) {
  const test::TempFolder folder;
  const unsigned unix_made = 3U << 8;
  const std::string unix_time = Number(0x5455, 2) + Number(5, 2) + Number(1, 1) + Number(1'600'000'001, 4);
  const std::string ntfs_time =
      Number(0x000A, 2) + Number(32, 2) + Number(0, 4) + Number(1, 2) + Number(24, 2) +
      Number((1'600'000'002 + 11'644'473'600ULL) * 10'000'000 + 5, 8) + Number(0, 8) + Number(0, 8);
  test::WriteFile(folder / "a.zip", StoredZip({
                                        {"tool", "1", 0, unix_time, unix_made, 0100755U << 16},
                                        {"plain", "2", 0, ntfs_time + unix_time, unix_made, 0100644U << 16},
                                        {"dos", "3", 0, "", 0, 0100755U << 16},
                                        {"link", "表/tool", 0, "", unix_made, 0120777U << 16},
                                        {"pipe", "", 0, "", unix_made, 0010644U << 16},
                                        {"folder", "", 0, "", 0, 0x10},
                                    }));
  const auto read = Unpack(kZipFamily, folder / "a.zip");
  EXPECT_EQ(read.Text(), "tool=1 plain=2 dos=3 link>表/tool pipe folder/");
  ASSERT_EQ(read.entries.size(), 6U);
  const auto& attributes = [&](std::size_t i) { return read.entries[i].entry.attributes; };
  EXPECT_TRUE(attributes(0).executable);
  EXPECT_FALSE(attributes(1).executable);
  EXPECT_FALSE(attributes(2).executable);
  EXPECT_EQ(attributes(0).write_time->seconds, 1'600'000'001);
  EXPECT_EQ(attributes(1).write_time->seconds, 1'600'000'002);
  EXPECT_EQ(attributes(1).write_time->nanoseconds, 500);
  const std::time_t local = attributes(2).write_time->seconds;
  EXPECT_EQ(std::localtime(&local)->tm_hour, 12);
  EXPECT_EQ(read.entries[4].entry.kind, EntryKind::kOther);
}

GTEST_TEST(Zip, ReadsMethodsAndPasswords) {
  const std::vector<test::PackedEntry> entries = {{"a", std::string(300'000, 'a')}, {"b", "b"}};
  const std::string all = "a=" + std::string(300'000, 'a') + " b=b";
  for (const char* method : {"compression=deflate", "compression=store"}) {
    EXPECT_EQ(Text(Pack("zip", method, entries)), all) << method;
    for (const char* encryption : {"traditional", "aes128", "aes256"}) {
      SCOPED_TRACE(encryption);
      const std::string bytes =
          Pack("zip", std::string(method) + ",encryption=" + encryption, entries, "secret");
      ASSERT_FALSE(bytes.empty());
      EXPECT_EQ(Text(bytes, {"secret"}), all);
      EXPECT_EQ(Text(bytes, {"secret", "wrong"}), all);
      EXPECT_EQ(Text(bytes),
                "a!it is encrypted and no password was given b!it is encrypted and no password was given");
      const std::string wrong = Text(bytes, {"wrong"});
      EXPECT_NE(wrong.find("a!"), wrong.npos);
      EXPECT_NE(wrong.find("b!"), wrong.npos);
    }
  }
  const std::string aes = Pack("zip", "encryption=aes256", entries, "secret");
  EXPECT_EQ(Text(aes, {"wrong", "secret"}), all);
  EXPECT_EQ(Text(aes, {"wrong"}), "a!no password given opens it b!no password given opens it");
}

GTEST_TEST(Zip, ReadsVolumes) {
  const test::TempFolder folder;
  const std::string whole = StoredZip({{"a", std::string(100, 'a')}, {"b", "2"}});
  const std::string all = "a=" + std::string(100, 'a') + " b=2";
  // Positions count from the beginning of the volume.
  std::string set =
      StoredZip({{"a", std::string(100, 'a')}, {"b", "2", 0, "", 0, 0, 1, 80}}, "PK\7\x8", true);
  const std::size_t end = set.size() - 22;
  test::Patch(&set, end + 4, 0x00010001, 4);
  test::Patch(&set, end + 16, set.find("PK\1\2") - 80, 4);
  test::WriteFile(folder / "set.z01", set.substr(0, 80));
  test::WriteFile(folder / "set.zip", set.substr(80));
  EXPECT_EQ(Unpack(kZipFamily, folder / "set.zip").Text(), all);
  EXPECT_EQ(Unpack(kZipFamily, folder / "set.z01").Text(), "!the archive begins in " + (folder / "set.zip"));
  std::filesystem::remove(folder / "set.z01");
  EXPECT_EQ(Unpack(kZipFamily, folder / "set.zip").Text(),
            "!the volume " + (folder / "set.z01") + " is missing");

  // A file beside a whole archive is none of its volumes.
  test::WriteFile(folder / "own.z01", "something else");
  test::WriteFile(folder / "own.zip", whole);
  EXPECT_EQ(Unpack(kZipFamily, folder / "own.zip").Text(), all);
}

}  // namespace
}  // namespace quendle::modules
