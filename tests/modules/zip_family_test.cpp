#include <ctime>

#include "archive/modules/zip/zip_family.h"
#include "archive/modules/zip/zip_reader.h"
#include "archive/modules/zip/zip_sevenzip.h"
#include "support/archives.h"

namespace quendle::modules {
namespace {

using test::Number, test::Pack, test::Patch, test::StoredZip, test::Unpack;

const std::string kProgram = "MZ" + std::string(5000, 'x') + "PK\3\4PK\1\2";

std::string UnicodePath(const std::string& raw, const std::string& name) {
  const std::string field = Number(1, 1) + Number(Crc32(raw), 4) + name;
  return Number(0x7075, 2) + Number(field.size(), 2) + field;
}

std::string Text(const std::string& bytes, const std::vector<std::string>& passwords = {},
                 const std::string& charset = "") {
  return test::UnpackBytes(kZipFamily, bytes, passwords, charset).Text();
}

const std::string kMissing = "!the central directory is missing: the file is truncated or no ZIP archive";

std::string Found(int entries) {
  return "; its " + std::to_string(entries) +
         " entries were found by their own headers, and more may be lost";
}

// With another byte at the `index`-th of the first local header.
std::string Altered(std::string bytes, std::size_t index) {
  return bytes.replace(bytes.find("PK\3\4\x14") + index, 1, "?");
}

std::string CutBehind(const std::string& bytes, const std::string& part) {
  return bytes.substr(0, bytes.find(part) + part.size());
}

// Entries without a directory, whose sizes are in descriptors behind their contents.
std::string Streamed(const std::vector<test::StoredEntry>& entries, bool is_signed, int width) {
  std::string bytes;
  for (const auto& entry : entries) {
    const auto& [name, content] = std::pair(entry.name, entry.content);
    bytes += "PK\3\4" + Number(20, 2) + Number(8, 2) + Number(0, 2) + Number(0x5A8F6000, 4) + Number(0, 12) +
             Number(name.size(), 4) + name + content + (is_signed ? "PK\7\x8" : "") +
             Number(Crc32(content), 4) + Number(content.size(), width) + Number(content.size(), width);
  }
  return bytes;
}

GTEST_TEST(Zip, IsFoundWhereItIsOne) {
  const std::string inner = StoredZip({{"inner", "1"}});
  const struct {
    const char* what;
    std::string bytes, text;
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
      {"far from the end", StoredZip({{"a", "1"}}) + std::string(200'000, 'x'), "a=1"},
      {"behind other bytes", " " + StoredZip({{"a", "1"}}, std::string(9000, 'x')) + "x", "a=1"},
      {"counting other bytes", StoredZip({{"a", "1"}}, "text", true), "a=1"},
      {"counting bytes that are gone", StoredZip({{"a", "1"}}, "text", true).substr(4), "a=1"},
      {"counting more bytes than there are", StoredZip({{"a", "1"}}, "text", true).substr(2), "a=1"},
      {"renamed behind other bytes", "text" + Altered(StoredZip({{"a", "1"}}), 30), "!no archive"},
      {"in another kind of archive", StoredZip({{"a", "1"}}, "Rar!\x1A\7"), "!no archive"},
      {"empty behind other bytes", StoredZip({}, "text"), "!no archive"},
      {"empty, counting other bytes", StoredZip({}, "text", true), "!no archive"},
      {"bytes that seem to be of a set",
       std::string(60, 'x') + "PK\5\6" + Number(0x50005, 6) + Number(1, 2) + Number(50, 4) + Number(0, 6),
       "!no archive"},
      {"in one whose end is missing", CutBehind(StoredZip({{"in.zip", inner}}), inner),
       "in.zip=" + inner + kMissing + Found(1)},
      {"in one behind a program", CutBehind(StoredZip({{"in.zip", inner}}, kProgram), inner), "!no archive"},
      {"in front of another", StoredZip({{"a", "1"}}) + inner,
       "a=1!another ZIP archive stands behind this one and was not read"},
      {"in front of another, far away", StoredZip({{"a", "1"}}) + std::string(200'000, 'x') + inner,
       "a=1!another ZIP archive stands behind this one and was not read"},
      {"text", "PK is what ZIP archives begin with", "!no archive"},
      {"nothing", "", "!no archive"},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(row.bytes), row.text) << row.what;
}

GTEST_TEST(Zip, DecodesNames) {
  const struct {
    test::StoredEntry entry;
    const char *charset, *text;
  } rows[] = {
      {{"\x83\x5C\\\x95\x5C.txt", "1"}, "", "ソ/表.txt=1"},
      {{"caf\xC3\xA9", "1", 1U << 11}, "CP437", "café=1"},
      {{"caf\xC3\xA9", "1"}, "CP437", "caf├⌐=1"},
      {{"a.txt", "1", 0, UnicodePath("a.txt", "表.txt")}, "CP437", "表.txt=1"},
      {{"b.txt", "1", 0, UnicodePath("a.txt", "表.txt")}, "", "b.txt=1"},  // renamed by who does not know it
      {{"../\x95\x5C\\..", "1"}, "", "../表/..=1"},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(StoredZip({row.entry}), {}, row.charset), row.text);
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
                                        {"pipe", "4", 0, "", unix_made, 0010644U << 16},
                                        {"device", "", 0, "", unix_made, 0020644U << 16},
                                        {"folder", "", 0, "", 0, 0x10},
                                    }));
  const auto read = Unpack(kZipFamily, folder / "a.zip");
  EXPECT_EQ(read.Text(), "tool=1 plain=2 dos=3 link>表/tool pipe=4 device folder/");
  ASSERT_EQ(read.entries.size(), 7U);
  const auto& attributes = [&](std::size_t i) { return read.entries[i].entry.attributes; };
  EXPECT_TRUE(attributes(0).executable);
  EXPECT_FALSE(attributes(1).executable);
  EXPECT_FALSE(attributes(2).executable);
  EXPECT_EQ(attributes(0).write_time->seconds, 1'600'000'001);
  EXPECT_EQ(attributes(1).write_time->seconds, 1'600'000'002);
  EXPECT_EQ(attributes(1).write_time->nanoseconds, 500);
  const std::time_t local = attributes(2).write_time->seconds;
  EXPECT_EQ(std::localtime(&local)->tm_hour, 12);
  EXPECT_EQ(read.entries[5].entry.kind, EntryKind::kOther);
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
  fs::remove(folder / "set.z01");
  EXPECT_EQ(Unpack(kZipFamily, folder / "set.zip").Text(),
            "!the volume " + (folder / "set.z01") + " is missing");

  // A file beside a whole archive is none of its volumes.
  test::WriteFile(folder / "own.z01", "something else");
  test::WriteFile(folder / "own.zip", whole);
  EXPECT_EQ(Unpack(kZipFamily, folder / "own.zip").Text(), all);
}

// The entries of the directory and the record behind them, as in the archives below.
std::size_t Header(const std::string& bytes, int index) {
  std::size_t position = bytes.find("PK\1\2");
  while (index-- > 0) position = bytes.find("PK\1\2", position + 1);
  return position;
}

struct Wrong {
  std::size_t position;
  std::uint64_t value;
  int width;
};

GTEST_TEST(ZipDamage, OfTheDirectoryIsMadeUpForByTheLocalHeaders) {
  const std::string good = StoredZip({{"a", "12345678"}, {"b", "2"}});
  const std::string whole = "a=12345678 b=2";
  const std::string shares = "!the archive is damaged or made to deceive: its entries share the same bytes";
  const std::string damaged = whole + "!the central directory is damaged: ";
  const std::size_t end = good.size() - 22;
  const struct {
    const char* what;
    std::vector<Wrong> wrong;
    std::string text;
  } rows[] = {
      {"the same entry twice", {{Header(good, 1) + 42, 0, 4}, {Header(good, 1) + 46, 'a', 1}}, shares},
      {"an entry in another's content",
       {{Header(good, 1) + 42, 33, 4}, {Header(good, 1) + 16, 0, 4}},
       shares},
      {"content that reaches into the next entry", {{Header(good, 0) + 20, 9, 4}}, shares},
      {"content that reaches into the directory", {{Header(good, 1) + 20, 2, 4}}, shares},
      {"content without end", {{Header(good, 1) + 20, 0xFFFFFFFE, 4}}, shares},
      {"only the position is another's", {{Header(good, 1) + 42, 0, 4}}, whole},
      {"an entry behind the end", {{Header(good, 1) + 42, 0x7FFFFFFF, 4}}, whole},
      {"wide numbers that are missing", {{Header(good, 1) + 42, 0xFFFFFFFF, 4}}, whole},
      {"nowhere, and of another size",
       {{Header(good, 1) + 42, 0x7FFFFFFF, 4}, {Header(good, 1) + 24, 2, 4}},
       damaged + "an entry is nowhere in the file" + Found(2)},
      {"nowhere, and of another checksum",
       {{Header(good, 1) + 42, 0x7FFFFFFF, 4}, {Header(good, 1) + 16, 2, 4}},
       damaged + "an entry is nowhere in the file" + Found(2)},
      {"too many entries", {{end + 10, 60'000, 2}}, damaged + "2 entries are there of 60000" + Found(2)},
      {"too few entries", {{end + 10, 1, 2}}, damaged + "2 entries are there of 1" + Found(2)},
      {"a name without end",
       {{Header(good, 1) + 28, 0xFFFF, 2}},
       damaged + "its last entry is cut off" + Found(2)},
      {"another signature", {{Header(good, 1), 0, 4}}, damaged + "1 entries are there of 2" + Found(2)},
      {"no first entry", {{Header(good, 0), 0, 4}}, whole + kMissing + Found(2)},
      {"a directory that is too large", {{end + 12, 0x10000000, 4}}, whole},
      {"a directory elsewhere", {{end + 16, 0x10000000, 4}}, whole},
      {"neither size nor position", {{end + 12, 0, 8}}, whole},
      {"neither, and another count", {{end + 12, 0, 8}, {end + 10, 3, 2}}, whole + kMissing + Found(2)},
      {"nothing in it", {{end + 10, 0, 8}, {end + 16, end, 4}}, whole + kMissing + Found(2)},
      {"a comment that is cut off", {{end + 20, 1, 2}}, whole},
  };
  ASSERT_EQ(Text(good), whole);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::string bytes = good;
    for (const Wrong& wrong : row.wrong) Patch(&bytes, wrong.position, wrong.value, wrong.width);
    EXPECT_EQ(Text(bytes), row.text);
  }
}

// As one packer does: the positions do not count what follows the contents.
GTEST_TEST(ZipDamage, OfPositionsIsMadeUpFor) {
  const std::vector<test::StoredEntry> entries = {{"a", "1"}, {"b", "2"}};
  const std::string contents = Streamed(entries, true, 4);
  const std::string stored = StoredZip(entries);
  std::string bytes = contents + stored.substr(Header(stored, 0));
  EXPECT_EQ(Text(bytes), "a=1 b=2");
  Patch(&bytes, bytes.size() - 6, contents.size(), 4);  // but where the directory is
  EXPECT_EQ(Text(bytes), "a=1 b=2");
}

GTEST_TEST(ZipDamage, WithoutADirectoryEntriesAreFound) {
  // Contents are archives of their own, which end as the entry itself does.
  const std::string inner = Streamed({{"inner", "1"}}, true, 4) + Streamed({{"more", "2"}}, false, 4);
  for (const bool is_signed : {true, false}) {
    for (const int width : {4, 8}) {
      SCOPED_TRACE(std::to_string(width) + (is_signed ? " signed" : ""));
      const std::string two = Streamed({{"a", inner}, {"e", ""}}, is_signed, width);
      const std::string three = two + Streamed({{"c", std::string(65'535, 'P')}}, is_signed, width);
      const std::string text = "a=" + inner + " e=";
      EXPECT_EQ(Text(three), text + " c=" + std::string(65'535, 'P') + kMissing + Found(3));
      EXPECT_EQ(Text(three.substr(0, three.size() - 1)), text + kMissing + Found(2));
      EXPECT_EQ(Text(two + StoredZip({{"f/", "", 8}, {"c", "3"}}).substr(0, 70)),
                text + " f/ c=3" + kMissing + Found(4));
    }
  }
}

GTEST_TEST(ZipDamage, OfOneEntryLeavesTheOthers) {
  const std::string good = StoredZip({{"a", "12345678"}, {"b", "2"}});
  const struct {
    const char* what;
    std::size_t position;
    std::uint64_t value;
    int width;
    bool in_first;
  } rows[] = {
      {"content", 31, 'x', 1, true},
      {"checksum in the directory", Header(good, 0) + 16, 1, 4, true},
      {"larger in the directory", Header(good, 0) + 24, 9, 4, true},
      {"smaller in the directory", Header(good, 0) + 24, 7, 4, true},
      {"unknown method", 8, 77, 2, true},
      {"second local signature", good.find("PK\3\4", 1) + 2, 0, 2, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::string bytes = good;
    Patch(&bytes, row.position, row.value, row.width);
    const std::string text = Text(bytes);
    EXPECT_EQ(text.find("a=12345678") == text.npos, row.in_first) << text;
    EXPECT_EQ(text.find("a!") == text.npos, !row.in_first) << text;
    EXPECT_EQ(text.find("b=2") == text.npos, !row.in_first) << text;
    EXPECT_EQ(text.find("b!") == text.npos, row.in_first) << text;
  }
  EXPECT_EQ(Text(StoredZip({{"a", "1", 0, "", 0, 0x10}, {"b", "", 0, "", 0, 0x10}})), "a=1 b/");
  // The local header of a streamed entry has neither checksum nor sizes; the directory's was overwritten by zeros.
  std::string streamed = StoredZip({{"a", "", 8}});
  Patch(&streamed, 8, 8, 2);
  EXPECT_EQ(Text(streamed), "a!its list of entries is damaged");
  const std::string text = Text(Altered(StoredZip({{"a", "1"}, {"b", "2"}}, kProgram), 0));
  EXPECT_TRUE(text.starts_with("a!") && text.ends_with(" b=2")) << text;
}

// The library cannot go on behind packed content that makes no sense; the entries behind it are read still.
GTEST_TEST(ZipDamage, IsLeftBehindInEachOfManyEntries) {
  std::vector<test::PackedEntry> entries;
  for (int i = 0; i < 600; ++i) entries.push_back({std::to_string(i), std::string(2000, 'a')});
  std::string bytes = Pack("zip", "compression=deflate", entries);
  for (std::size_t local = bytes.find("PK\3\4"), i = 0; local != bytes.npos;
       local = bytes.find("PK\3\4", local + 1)) {
    const std::size_t content = local + 30 + bytes[local + 26] + bytes[local + 28];
    if (i++ % 2 == 0) Patch(&bytes, content, 0xFFFF, 2);
  }
  const auto read = test::UnpackBytes(kZipFamily, bytes);
  ASSERT_EQ(read.entries.size(), 600U);
  for (std::size_t i = 0; i < 600; ++i) {
    ASSERT_EQ(read.entries[i].problem.empty(), i % 2 == 1) << i << read.entries[i].problem;
    ASSERT_EQ(read.entries[i].content == entries[i].content, i % 2 == 1) << i;
  }
}

GTEST_TEST(ZipDamage, WideRecordsMayLie) {
  const auto wide = [](std::uint64_t count, std::uint64_t size, std::uint64_t offset, std::uint64_t record) {
    std::string bytes = StoredZip({{"a", "1"}});
    const std::size_t end = bytes.size() - 22;
    Patch(&bytes, end + 10, 0xFFFF, 2);
    bytes.insert(end, "PK\6\6" + Number(44, 8) + Number(45, 4) + Number(0, 8) + Number(count, 8) +
                          Number(count, 8) + Number(size, 8) + Number(offset, 8) + "PK\6\7" + Number(0, 4) +
                          Number(record, 8) + Number(1, 4));
    return bytes;
  };
  const std::uint64_t size = 47;
  const std::uint64_t offset = 32;
  EXPECT_EQ(Text(wide(1, size, offset, offset + size)), "a=1");
  EXPECT_EQ(Text(wide(1, size, offset, UINT64_MAX)), "a=1");  // it is right before the locator all the same
  for (const std::uint64_t lie : {std::uint64_t{0}, std::uint64_t{46}, std::uint64_t{48},
                                  std::uint64_t{1} << 62, UINT64_MAX - 40, UINT64_MAX}) {
    EXPECT_EQ(Text(wide(lie, size, offset, offset + size)).substr(0, 30), "a=1!the central directory is d")
        << lie;
    EXPECT_EQ(Text(wide(1, lie, offset, offset + size)), "a=1") << lie;
    EXPECT_EQ(Text(wide(1, size, lie, offset + size)), "a=1") << lie;
  }
}

GTEST_TEST(ZipDamage, SaysThatTheDirectoryIsEncrypted) {
  std::string bytes = StoredZip({{"a", "1"}});
  const std::size_t end = bytes.size() - 22;
  Patch(&bytes, end + 10, 0xFFFF, 2);
  bytes.insert(end, "PK\6\6" + Number(44 + 28, 8) + Number(62, 4) + Number(0, 8) + Number(1, 8) +
                        Number(1, 8) + Number(47, 8) + Number(32, 8) + Number(8, 2) + Number(47, 8) +
                        Number(47, 8) + Number(0x660E, 2) + Number(0, 8) + "PK\6\7" + Number(0, 4) +
                        Number(end, 8) + Number(1, 4));
  Patch(&bytes, Header(bytes, 0), 0x12345678, 4);
  EXPECT_EQ(Text(bytes), "!the central directory is encrypted, which is not supported for ZIP");
}

std::string TextBy(const Engine& engine, const std::string& path, const std::string& password) {
  Passwords passwords(
      [asked = false, &password]() mutable {
        return std::exchange(asked, true) ? std::nullopt : std::optional(password);
      },
      PasswordForm::kText);
  return test::UnpackBy(engine, ArchiveInput(test::Opened(path), 0), "", &passwords).Text();
}

const Engine kLibarchive = {"libarchive", &OpenZip};
const Engine kSevenZip = {"7-Zip", &OpenZipBySevenZip};

// A text of 140 bytes as 7-Zip 26.02 packed it: by LZMA, encrypted by AES-256 with "right".
GTEST_TEST(Zip, PasswordsOfMethodsThatLibarchiveDoesNotEncrypt) {
  const std::string zip = test::FromHex(
      "504b03043f00030063000000210000000000380000008c00000005000b00612e7478740199070002004145030e00e97e17a8"
      "533f064f2fbab6292c9139c634efe0db072af787d91139db1bece7d960f02afa45048784513581379f305d837098ec842e81"
      "ace0504b01023f033f00030063000000210000000000380000008c00000005000b000000000000002080a48100000000612e"
      "7478740199070002004145030e00504b050600000000010001003e000000660000000000");
  const test::TempFolder folder;
  test::WriteFile(folder / "a", zip);
  std::string text;
  for (int i = 0; i < 20; ++i) text += "hello, ";
  EXPECT_EQ(TextBy(kLibarchive, folder / "a", "right"), "a.txt!it is packed as lzma, which is not supported");
  EXPECT_EQ(TextBy(kSevenZip, folder / "a", "right"), "a.txt=" + text);
  EXPECT_EQ(TextBy(kSevenZip, folder / "a", "wrong"), "a.txt!no password given opens it");
}

// A password's bytes are those of the packer's encoding, whichever that was.
GTEST_TEST(Zip, PasswordsThatAreNotAscii) {
  const test::TempFolder folder;
  const std::string whole = "a=" + std::string(50, 'a');
  for (const char* method : {"encryption=zipcrypt", "encryption=aes256"}) {
    for (const char* bytes : {"表", "\x95\x5C"}) {
      const std::string zip = Pack("zip", method, {{"a", std::string(50, 'a')}}, bytes);
      EXPECT_EQ(test::UnpackBytes(kZipFamily, zip, {"x", "表"}).Text(), whole) << method;
      // 7-Zip's library takes the bytes of one encoding: UTF-8, or on Windows those of the code page.
      if ((bytes[0] == '\xE8') != (test::kSeparator == '/')) continue;
      test::WriteFile(folder / "a", zip);
      EXPECT_EQ(TextBy(kSevenZip, folder / "a", bytes), whole) << method;
    }
  }
}

}  // namespace
}  // namespace quendle::modules
