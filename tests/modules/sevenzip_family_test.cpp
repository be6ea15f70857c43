#include "archive/modules/sevenzip/sevenzip_family.h"

#include "archive/modules/common/listing.h"
#include "support/archives.h"

namespace quendle::modules {
namespace {

using test::Number, test::Pack, test::Unpack;

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kSevenZipFamily, bytes).Text();
}

const std::vector<test::PackedEntry> kEntries = {{"表/a", std::string(300, 'a')}, {"ｶﾅ\\b", "2"}, {"empty"}};
const std::string kText = "表/a=" + std::string(300, 'a') + " ｶﾅ/b=2 empty=";

GTEST_TEST(SevenZip, ReadsMethods) {
  for (const char* method : {"store", "deflate", "bzip2", "lzma1", "lzma2", "ppmd"}) {
    EXPECT_EQ(Text(Pack("7zip", std::string("compression=") + method, kEntries)), kText) << method;
  }
}

GTEST_TEST(SevenZip, TellsKindsTimesAndModes) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.7z", Pack("7zip", "",
                                        {{"tool", "1", AE_IFREG | 0755, 1'600'000'000, 123'456'700},
                                         {"plain", "2"},
                                         {"folder", "", AE_IFDIR | 0755},
                                         {"link", "表/tool", AE_IFLNK | 0777}}));
  const auto read = Unpack(kSevenZipFamily, folder / "a.7z");
  ASSERT_EQ(read.entries.size(), 4U) << read.problem;
  for (const auto& [entry, content, problem] : read.entries) {
    EXPECT_EQ(problem, "");
    EXPECT_EQ(entry.link_target, entry.path == "link" ? "表/tool" : "");
    EXPECT_EQ(entry.kind == EntryKind::kFolder, entry.path == "folder/");
    EXPECT_EQ(entry.attributes.executable, entry.path == "tool") << entry.path;
    EXPECT_EQ(entry.attributes.write_time->nanoseconds, entry.path == "tool" ? 123'456'700 : 0);
    EXPECT_EQ(entry.attributes.write_time->seconds, 1'600'000'000);
  }
}

// An archive of a packed stream that unpacks to `size` bytes by one coder, whose number and properties are `coder`. It is
// the list of entries when `is_list`, and otherwise the content of one file.
std::string OneCoder(const std::string& packed, const std::string& coder, std::uint64_t size,
                     std::uint64_t crc, bool is_list, const std::string& name = "f") {
  const auto wide = [](std::uint64_t value) { return "\xFF" + Number(value, 8); };
  const std::string names = Number(0, 1) + platform::ToUtf16Le(name) + Number(0, 2);
  const std::string streams = "\x06" + Number(0, 1) + "\x01\x09" + wide(packed.size()) + Number(0, 1) +
                              "\x07\x0B\x01" + Number(0, 1) + "\x01" + coder + "\x0C" + wide(size) +
                              "\x0A\x01" + Number(crc, 4) + Number(0, 1) +
                              (is_list ? "" : "\x08" + Number(0, 1));
  const std::string end = is_list ? "\x17" + streams + Number(0, 1)
                                  : "\x01\x04" + streams + Number(0, 1) + "\x05\x01\x11" +
                                        Number(names.size(), 1) + names + Number(0, 2);
  const std::string start = Number(packed.size(), 8) + Number(end.size(), 8) + Number(Crc32(end), 4);
  return "7z\xBC\xAF\x27\x1C" + Number(0x400, 2) + Number(Crc32(start), 4) + start + packed + end;
}

GTEST_TEST(SevenZip, ReadsZstandard) {
  // A frame of one block that is stored.
  const std::string frame =
      Number(0xFD2FB528, 4) + Number(5 << 8 | 0x20, 2) + Number(5 << 3 | 1, 3) + "hello";
  const std::string coder = "\x24\x04\xF7\x11\x01\x05" + Number(0x30501, 5);
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hello"), false)), "f=hello");
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hello"), false, "")), "a=hello") << "by the archive's name";
  const std::string cut = frame.substr(0, frame.size() - 1);
  EXPECT_EQ(Text(OneCoder(cut, coder, 5, Crc32("hello"), false)), "f!its packed data is damaged");
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hallo"), false)), "f!its checksum does not agree");
  EXPECT_EQ(Text(OneCoder(frame, "\x04\x04\xF7\x11\x77", 5, 0, false)),
            "f!it is packed as 04F71177, which is not supported");
}

// A few bytes may claim a list of any size.
GTEST_TEST(SevenZip, ListsThatWouldFillTheMemoryAreRefused) {
  const std::string lzma = "\x23\x03\x01\x01\x05\x5D" + Number(1 << 20, 4);
  const std::string packed(16, '\0');
  EXPECT_EQ(Text(OneCoder(packed, lzma, 33U << 20, 0, true)),
            "!its list of entries would take 33 MB of memory, which is more than any real archive has");
  EXPECT_EQ(Text(OneCoder(packed, lzma, 31U << 20, 0, true)), "!its list of entries is damaged");

  // A list may be long, and the number in it may be any.
  const auto packed_list = [](const std::string& list) {
    return OneCoder(list, "\x01" + Number(0, 1), list.size(), Crc32(list), true);
  };
  const auto list_of = [](std::uint64_t count) {
    return "\x01\x05\xF0" + Number(count, 4) + "\x0E\x01\x80\x0F\x01\x80\x11\x05" + Number(0, 1) +
           Number('f', 4) + "\x19\xFF" + Number(2U << 20, 8) + std::string(2U << 20, '\0') + Number(0, 2);
  };
  EXPECT_EQ(Text(packed_list(list_of(1))), "f=");
  EXPECT_EQ(Text(packed_list(list_of(4'000'001))), "!there are too many entries");
}

// As 7-Zip 26.02 wrote them: a file with its name encrypted by "ひみつ", and two with their contents by "右right".
const std::string kLockedNames = test::FromHex(
    "377abcaf271c000471d4844d80000000000000002e000000000000009ff0a38af1b998e6c73d847abbb5e0f568243491a754"
    "9bb86e7ced06d256c5ef052e9f1c8540b59a8fac29c8888df6911728d3bf54e33f8f56f2410685377c6b602addd7b241b4d3"
    "7f48affdd155cd675167469a1a87b21a2bfdcbbafbfae49759f1f0a3b8cfd94f2a8f41e20953b61c849477a630f84fb28dde"
    "18c7cf1cf806d073651a17062001096000070b0100012406f1070112530fb4555c4d03c5473e00686ddfe8ffeed70c560a01"
    "d904c0620000");
const std::string kLockedContents = test::FromHex(
    "377abcaf271c000400666b968600000000000000200000000000000057cf1875e59b9b3f673e08d88a084e9b85a75a2d863b"
    "297e74ad7c6779b13eaf152ba85b0000813307ae0fd00eb03c9f39109c9fa6d533dab22eb0dd8b5328d2e5774ee5df541efb"
    "64424dfe97fb7d8d1f578d07c9aebebadedf5f39e7668a89d98c646c753cf8bb0f10fff70a3997ca60a1ac1fcec0be6ba1b0"
    "f73cd81a3fee85087b3f18d8e7f5cc0017062001096600070b01000123030101055d001000000c760a01fc38abdf0000");

GTEST_TEST(SevenZip, Passwords) {
  const std::string none = "it is encrypted and no password was given";
  const std::string wrong = "the password is wrong or the data is damaged: its packed data is damaged";
  std::string damaged = kLockedContents;
  damaged[40] ^= 1;
  const struct {
    const std::string& bytes;
    std::vector<std::string> passwords;
    std::string text;
  } rows[] = {
      {kLockedNames, {}, "!" + none},
      {kLockedNames, {"himitsu"}, "!no password given opens it"},
      {kLockedNames, {"himitsu", "ひみつ"}, "a.txt=hello, hello, hello"},
      {kLockedContents, {}, "a.txt!" + none + " b.txt!" + none},
      {kLockedContents, {"right"}, "a.txt!" + wrong + " b.txt!" + wrong},
      {kLockedContents, {"right", "右right"}, "a.txt=hello, hello, hello b.txt=second"},
      {damaged, {"右right"}, "a.txt!" + wrong + " b.txt!" + wrong},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(test::UnpackBytes(kSevenZipFamily, row.bytes, row.passwords).Text(), row.text)
        << row.passwords.size();
  }
}

// One that was needed for the list is tried first for the contents.
GTEST_TEST(SevenZip, ThePasswordOfTheListIsKept) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.7z", kLockedNames);
  int asked = 0;
  Reason reason;
  const auto archive = ListArchive(
      kSevenZipFamily, ArchiveInput(test::Opened(folder / "a.7z"), 0), "",
      [&asked] { return std::optional<std::string>(asked++ == 0 ? "x" : "ひみつ"); }, &reason);
  ASSERT_TRUE(archive) << reason;
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(archive->password, "ひみつ");
}

}  // namespace
}  // namespace quendle::modules
