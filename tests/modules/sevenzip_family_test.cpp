#include "archive/modules/sevenzip/sevenzip_family.h"

#include <filesystem>

#include "support/archives.h"
#include "support/temp_folder.h"

namespace quendle::modules {
namespace {

using test::Number;
using test::Pack;
using test::Unpack;

std::string Text(const std::string& bytes) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.7z", bytes);
  return Unpack(kSevenZipFamily, folder / "a.7z").Text();
}

const std::vector<test::PackedEntry> kEntries = {{"表/a", std::string(300, 'a')}, {"ｶﾅ\\b", "2"}, {"empty"}};
const std::string kText = "表/a=" + std::string(300, 'a') + " ｶﾅ/b=2 empty=";

GTEST_TEST(SevenZip, ReadsMethods) {
  for (const char* method : {"store", "deflate", "bzip2", "lzma1", "lzma2", "ppmd"}) {
    SCOPED_TRACE(method);
    const std::string bytes = Pack("7zip", std::string("compression=") + method, kEntries);
    EXPECT_EQ(Text(bytes), kText);
    EXPECT_EQ(Text(std::string("MZ").append(3000, 'x').append("7z\xBC\xAF\x27\x1C").append(bytes)), kText);
  }
  EXPECT_EQ(Text("a text about 7z\xBC\xAF\x27\x1C"), "!no archive");
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

GTEST_TEST(SevenZip, CutOffAnywhereIsNoticed) {
  const std::string bytes = Pack("7zip", "compression=lzma1", kEntries);
  for (std::size_t size = 6; size < bytes.size(); ++size) {
    const std::string text = Text(bytes.substr(0, size));
    ASSERT_EQ(text, size < 32 ? "!its start header is damaged or cut off"
                              : "!the archive is cut off: its end is missing")
        << size;
  }
}

GTEST_TEST(SevenZip, ReadsVolumes) {
  const test::TempFolder folder;
  const std::string bytes = Pack("7zip", "compression=store", kEntries);
  for (int i = 0; i < 3; ++i) {
    test::WriteFile(folder / ("a.7z.00" + std::to_string(i + 1)),
                    bytes.substr(i * 100U, i < 2 ? 100 : bytes.npos));
  }
  EXPECT_EQ(Unpack(kSevenZipFamily, folder / "a.7z.001").Text(), kText);
  EXPECT_EQ(Unpack(kSevenZipFamily, folder / "a.7z.003").Text(),
            "!the archive begins in " + (folder / "a.7z.001"));
  for (const char* gone : {"a.7z.003", "a.7z.002"}) {
    std::filesystem::remove(folder / gone);
    EXPECT_EQ(Unpack(kSevenZipFamily, folder / "a.7z.001").Text(),
              "!the volume " + (folder / gone) + " is missing");
  }
}

GTEST_TEST(SevenZip, SaysThatEncryptedHeadersAreNotSupported) {
  const std::string packed(16, 'x');
  // One stream of 16 bytes, one folder with one coder: AES, with one byte of properties.
  const std::string end = "\x17\x06" + Number(0, 1) + "\x01\x09\x10" + Number(0, 1) + "\x07\x0B\x01" +
                          Number(0, 1) + "\x01\x24\x06\xF1\x07\x01\x01" + Number(0, 1) + "\x0C\x10" +
                          Number(0, 2);
  const std::string start = Number(packed.size(), 8) + Number(end.size(), 8) + Number(Crc32(end), 4);
  const std::string text =
      Text("7z\xBC\xAF\x27\x1C" + Number(0x400, 2) + Number(Crc32(start), 4) + start + packed + end);
  EXPECT_NE(text.find("encryption is not supported"), text.npos) << text;
}

GTEST_TEST(SevenZip, DamageOfAnyByteNeverChangesContent) {
  for (const char* method : {"compression=store", "compression=lzma1"}) {
    const std::string good = Pack("7zip", method, kEntries);
    const test::TempFolder folder;
    for (std::size_t i = 0; i < good.size(); ++i) {
      std::string bytes = good;
      bytes[i] = static_cast<char>(bytes[i] ^ 0x55);
      test::WriteFile(folder / "a.7z", bytes);
      for (const auto& read : Unpack(kSevenZipFamily, folder / "a.7z").entries) {
        if (!read.problem.empty()) continue;
        ASSERT_TRUE(read.content.empty() || read.content == "2" || read.content == std::string(300, 'a'))
            << i;
      }
    }
  }
}

}  // namespace
}  // namespace quendle::modules
