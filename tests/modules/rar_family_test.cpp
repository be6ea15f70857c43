#include "archive/modules/rar/rar_family.h"

#include <nettle/aes.h>
#include <nettle/cbc.h>

#include "archive/modules/rar/ciphers/cipher15.h"
#include "archive/modules/rar/ciphers/rar3_key.h"
#include "archive/modules/rar/ciphers/rar5_key.h"
#include "archive/modules/rar/ciphers/rotating_sum.h"
#include "support/lzh_cab_rar.h"
#include "support/rar_encoder.h"

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
      {"pipe", {"a", "", 0, kUnix, 0010644}, "a"},
      {"empty", {"a", ""}, "a="},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(StoredRar({row.entry})), row.text) << row.what;
}

// RAR 1.3 and 1.4, whose headers have no checksums.
GTEST_TEST(Rar, ReadsTheOldestHeaders) {
  using test::Number;
  const auto file = [](const std::string& name, const std::string& content, unsigned attributes = 0x20) {
    RotatingSum sum;
    sum.Add(content);
    return Number(content.size(), 4) + Number(content.size(), 4) + Number(sum.Value(), 2) +
           Number(21 + name.size(), 2) + Number(test::kDosTime, 4) + Number(attributes, 1) + Number(0, 1) +
           Number(2, 1) + Number(name.size(), 1) + Number(0, 1) + name + content;
  };
  const std::string head = "RE~^" + Number(7, 2) + Number(0x80, 1);
  const std::string whole = head + file("A.TXT", "first") + file("D", "", 0x10) + file("B", "second");
  EXPECT_EQ(Text(whole), "A.TXT=first D/ B=second");
  EXPECT_EQ(Text(whole.substr(0, whole.size() - 1)), "A.TXT=first D/!the archive is cut off");
  std::string damaged = whole;
  damaged[head.size() + 28] ^= 1;
  EXPECT_EQ(Text(damaged), "A.TXT!its checksum does not agree D/ B=second");
  EXPECT_EQ(Text("RE~^ is how this text begins"), "!no archive");
}

GTEST_TEST(Rar, GivesWhatIsWholeInDamagedArchives) {
  const std::string four = StoredRar({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  const std::size_t second = 20 + 34;
  const std::string five = test::kRar5Signature + test::Rar5Block(std::string("\1\0\0", 3)) +
                           Rar5Entry("a", "1") + Rar5Entry("b", "2") + Rar5Entry("c", "3") +
                           test::Rar5Block(std::string("\5\0\0", 3));
  const std::size_t second5 = 16 + Rar5Entry("a", "1").size();
  const std::string in_header = "!the archive is cut off, or damaged, in a header";
  const struct {
    const char* what;
    const std::string& whole;
    std::size_t at;  // of a damaged byte, or where it is cut off
    bool is_cut;
    std::string text;
  } rows[] = {
      {"a name", four, second + 32, false, "a=1 c=3" + in_header},
      {"its type", four, second + 2, false, "a=1 c=3" + in_header},
      {"a content", four, second + 33, false, "a=1 b!its checksum does not agree c=3"},
      {"the last block", four, four.size() - 5, false, "a=1 b=2 c=3" + in_header},
      {"cut off in a header", four, second + 20, true, "a=1" + in_header},
      {"cut off in a content", four, second + 33, true, "a=1 b!0 bytes came out of 1!the archive is cut off"},
      {"cut off between files", four, second, true, "a=1"},
      {"the last file's end", four, four.size() - 7, true,
       "a=1 b=2 c=3!the archive is cut off: its last block is missing"},
      {"a name, RAR 5", five, second5 + 16, false, "a=1 c=3" + in_header},
      {"a content, RAR 5", five, second5 + Rar5Entry("b", "2").size() - 1, false,
       "a=1 b!its checksum does not agree c=3"},
      {"cut off between files, RAR 5", five, second5, true, "a=1" + in_header},
  };
  for (const auto& row : rows) {
    std::string bytes = row.is_cut ? row.whole.substr(0, row.at) : row.whole;
    if (!row.is_cut) bytes[row.at] ^= 1;
    EXPECT_EQ(Text(bytes), row.text) << row.what;
  }
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
    EXPECT_EQ(Text(bytes), row.holds ? "a=1 b=2" : "a=1 b=2!the archive is cut off, or damaged, in a header")
        << row.what;
  }
  // A comment behind the salt, and times of which the second one has seconds of its own.
  RarEntry commented = {"a", "1", 0x1408, 2, 0x20, "", std::string("saltsalt\0\xB9\1\2\3SECS\1comment", 25)};
  std::string bytes = StoredRar({commented});
  test::Patch(&bytes, 20, Crc32(bytes.substr(22, 32 + 1 + 8 + 2 + 3 + 5 - 2)) & 0xFFFF, 2);
  EXPECT_EQ(Text(bytes), "a=1");
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
  const std::vector<std::string> programs = {"MZ" + new_ones[0], new_ones[1], new_ones[2]};
  const struct {
    const char* what;
    std::vector<const char*> names;
    const std::vector<std::string>& volumes;
    const char* text;
  } rows[] = {
      {"old names", {"a.rar", "a.r00", "a.r01"}, old_ones, "a=0123456789 b=1"},
      {"RAR 5", {"a.part01.rar", "a.part02.rar", "a.part03.rar"}, new_ones, "a=0123456789"},
      {"behind a program", {"a.part1.exe", "a.part2.rar", "a.part3.rar"}, programs, "a=0123456789"},
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
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(read(i), row.text) << i;
      } else if (missing > 0) {
        EXPECT_EQ(read(0), "a!a part of it is in a volume that is not there!the volume " + path(missing) +
                               " is missing");
      } else {
        EXPECT_EQ(read(1),
                  "!the archive begins in " + test::FsPath(path(0)).replace_extension(".rar").string());
      }
    }
  }
}

GTEST_TEST(Rar, NamesTheVolumeThatIsDamaged) {
  const test::TempFolder folder;
  std::string first = StoredRar5("a", "0123", "01234567", 0, true);
  first[first.find("0123")] ^= 1;
  test::WriteFile(folder / "a.part1.rar", first);
  test::WriteFile(folder / "a.part2.rar", StoredRar5("a", "4567", "01234567", 1));
  EXPECT_EQ(test::Unpack(kRarFamily, folder / "a.part2.rar").Text(),
            "a!its part in the volume " + (folder / "a.part1.rar") + " is damaged");
  test::WriteFile(folder / "a.part2.rar", StoredRar5("a", "4567", "01234567", 2));
  EXPECT_EQ(test::Unpack(kRarFamily, folder / "a.part1.rar").Text(),
            "a!a part of it is in a volume that is not there!" + (folder / "a.part2.rar") +
                " is no volume of this archive");
}

const std::string kSalt = "saltsalt";

// With AES-128, up to whole blocks.
std::string Encrypted3(std::string bytes, const std::string& password,
                       LongPasswords way = LongPasswords::kChanging) {
  const auto key = DeriveRar3Key(password, kSalt, way, [] { return true; });
  bytes.resize((bytes.size() + 15) / 16 * 16);
  struct CBC_CTX(aes128_ctx, AES_BLOCK_SIZE) context;
  aes128_set_encrypt_key(&context.ctx, key->key.data());
  CBC_SET_IV(&context, key->iv.data());
  auto* const data = reinterpret_cast<std::uint8_t*>(bytes.data());
  CBC_ENCRYPT(&context, aes128_encrypt, bytes.size(), data, data);
  return bytes;
}

GTEST_TEST(Rar, OpensWhatIsEncrypted) {
  const auto file = [](const std::string& name, const std::string& content, const std::string& encrypted,
                       unsigned version) {
    RarEntry entry = {name, encrypted, kEncrypted | (version == 29 ? 0x400U : 0U), 2, 0x20, content};
    if (version == 29) entry.behind_name = kSalt;
    std::string block = test::RarFileBlock(entry);
    block.resize(block.size() - encrypted.size());
    test::Patch(&block, 24, version, 1);
    test::Patch(&block, 0, Crc32(block.substr(2)) & 0xFFFF, 2);
    return block;
  };
  const std::string main = test::RarBlock(0x73, 0, test::Number(0, 6));
  const std::string end = test::RarBlock(0x7B, 0x4000, "");
  const std::string content = Encrypted3("content", "表");
  const std::string aes = test::kRar4Signature + main + file("a", "content", content, 29) + content + end;
  const std::string names = test::kRar4Signature + test::RarBlock(0x73, 0x80, test::Number(0, 6)) + kSalt +
                            Encrypted3(file("a", "content", content, 29), "表") + content + kSalt +
                            Encrypted3(end, "表");
  std::string stream = "content";
  MakeCipher15("\x95\x5C")->Decrypt(reinterpret_cast<std::uint8_t*>(stream.data()), stream.size());
  const std::string old = test::kRar4Signature + main + file("a", "content", stream, 15) + stream;
  const std::string many(40, 'p');
  const std::string plain = Encrypted3("content", many, LongPasswords::kPlain);
  const std::string other = test::kRar4Signature + main + file("a", "content", plain, 29) + plain + end;
  const std::string changing = Encrypted3("content", many);
  const std::string usual = test::kRar4Signature + main + file("a", "content", changing, 29) + changing + end;
  const struct {
    const char* what;
    const std::string& bytes;
    std::vector<std::string> passwords;
    const char* text;
  } rows[] = {
      {"a long password", usual, {many}, "a=content"},
      {"a long password, the other way", other, {many}, "a=content"},
      {"AES", aes, {}, "a!it is encrypted and no password was given"},
      {"AES", aes, {"wrong"}, "a!the password is wrong or the data is damaged: its checksum does not agree"},
      {"AES", aes, {"wrong", "表"}, "a=content"},
      {"names", names, {}, "!it is encrypted and no password was given"},
      {"names", names, {"wrong"}, "!no password given opens it"},
      {"names", names, {"wrong", "表"}, "a=content"},
      {"version 1.5, in CP932", old, {"wrong", "表"}, "a=content"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(test::UnpackBytes(kRarFamily, row.bytes, row.passwords).Text(), row.text) << row.what;
  std::string damaged = names;
  damaged[damaged.size() - 40] ^= 1;
  EXPECT_EQ(test::UnpackBytes(kRarFamily, damaged, {"表"}).Text(), "a!its checksum does not agree")
      << "the password is known to be right";
}

// An entry of RAR 5, packed as one block: bytes, and then so many from four bytes back.
std::string PackedEntry5(const std::string& name, const std::string& bytes, unsigned repeated,
                         const std::string& content) {
  test::PackedBits bits;
  bits.PutLengths({{306, 9}, {64, 7}, {16, 4}, {44, 6}});
  for (const char c : bytes) bits.Put(static_cast<unsigned char>(c), 9);
  if (repeated > 0) bits.Put(262 + repeated - 2, 9).Put(3, 7);
  const std::string& packed = bits.Bytes();
  const auto flags = static_cast<unsigned>((bits.Size() + 7) % 8 + 0xC8);
  const unsigned low = packed.size() & 0xFF;
  const auto high = static_cast<unsigned>(packed.size() >> 8);
  const std::string block = test::Number(flags, 1) + test::Number(0x5A ^ flags ^ low ^ high, 1) +
                            test::Number(packed.size(), 2) + packed;
  const std::string size = {static_cast<char>(block.size() % 0x80 + 0x80),
                            static_cast<char>(block.size() >> 7)};
  // Method 3, solid behind the first.
  const std::string packing = repeated > 0 ? "\xC0\x03" : "\x80\x03";
  return test::Rar5Block(test::Number(2, 1) + test::Number(2, 1) + size + test::Number(4, 1) +
                             test::Number(content.size(), 1) + test::Number(0x20, 1) +
                             test::Number(Crc32(content), 4) + packing + test::Number(0, 1) +
                             test::Number(name.size(), 1) + name,
                         block);
}

// Wants one entry only.
class OnlySink final : public EntrySink {
 public:
  explicit OnlySink(std::string path) : path_(std::move(path)) {}
  bool Wants(const Entry& entry) override { return entry.path == path_; }
  bool GoesOn() override { return true; }
  bool Begin(Entry entry, bool is_wanted) override {
    text += (text.empty() ? "" : " ") + entry.path + (is_wanted ? "=" : "");
    return true;
  }
  Wish Content(std::string_view piece) override {
    text += piece;
    return Wish::kMore;
  }
  bool End(ReadStatus status, const Reason&) override {
    EXPECT_EQ(status, ReadStatus::kEnd);
    return true;
  }
  std::string text;

 private:
  const std::string path_;
};

// The cipher and the packed data go on from one volume to the next, wherever it was cut.
GTEST_TEST(Rar, DecryptsOverVolumes) {
  const std::string whole = "a content of more than two blocks, which is 60 bytes long...";
  const std::string packed = Encrypted3(whole, "right");
  const test::TempFolder folder;
  const auto part = [&](std::size_t from, std::size_t to, unsigned flags) {
    return RarEntry{"a", packed.substr(from, to - from), flags | 0x404U, 2, 0x20, whole, kSalt};
  };
  test::WriteFile(folder / "a.rar", StoredRar({part(0, 21, 2)}, 0x101, true));
  test::WriteFile(folder / "a.r00", StoredRar({part(21, 23, 3)}, 1, true));
  test::WriteFile(folder / "a.r01", StoredRar({part(23, packed.size(), 1)}, 1));
  EXPECT_EQ(test::Unpack(kRarFamily, folder / "a.rar", {"right"}).Text(), "a=" + whole);
}

GTEST_TEST(Rar, UnpacksWhatSolidEntriesGoOnWith) {
  const std::string bytes = test::kRar5Signature + test::Rar5Block(std::string("\1\0\4", 3)) +
                            PackedEntry5("a", "abcd", 0, "abcd") + Rar5Entry("s", "stored") +
                            PackedEntry5("b", "e", 3, "ebcd") + PackedEntry5("c", "f", 3, "fbcd") +
                            test::Rar5Block(std::string("\5\0\0", 3));
  EXPECT_EQ(Text(bytes), "a=abcd s=stored b=ebcd c=fbcd");
  const test::TempFolder folder;
  test::WriteFile(folder / "a", bytes);
  const ArchiveInput input(test::Opened(folder / "a"), 0);
  for (const auto& [path, text] : {std::pair{"c", "a s b c=fbcd"}, std::pair{"b", "a s b=ebcd c"}}) {
    Reason reason;
    OnlySink sink(path);
    kRarFamily.engines(input).front().open(input, {"", [] { return std::nullopt; }}, &reason)->Unpack(&sink);
    EXPECT_EQ(sink.text, text);
  }
}

}  // namespace
}  // namespace quendle::modules
