#include "archive/modules/sevenzip/sevenzip_family.h"

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

}  // namespace
}  // namespace quendle::modules
