#include "files/clsFileVer.h"
#include "platform/services/find_version.h"

#include "support/temp_folder.h"
#include "support/version_images.h"

namespace quendle {
namespace {

constexpr platform::VersionNumbers kVersion = {2, 56, 0, 65535};
constexpr const char* kText = "2.56.0.65535";

struct Images {
  std::vector<std::string> files = {test::PeFile(32, kVersion), test::PeFile(64, kVersion)};
  Images() {
    for (const int bits : {32, 64}) {
      for (const bool big_endian : {false, true}) files.push_back(test::ElfFile(bits, big_endian, kVersion));
    }
  }
};

std::optional<platform::VersionNumbers> VersionOf(std::string_view bytes) {
  return platform::FindVersion([&](std::uint64_t position, std::size_t size) -> std::optional<std::string> {
    if (position > bytes.size() || size > bytes.size() - position) return std::nullopt;
    return std::string(bytes.substr(position, size));
  });
}

GTEST_TEST(FileVer, KeepsTheNumbersOfTheLastFileThatHadSome) {
  const test::TempFolder folder;
  test::WriteFile(folder / "text", "MZ, but no program");
  clsFileVer version;
  version.pFileName(folder / "text");
  EXPECT_EQ(version.pVersionMajor() + version.pVersionMinor() + version.pVersionRevision(), 0);
  EXPECT_EQ(version.pVersionBuild(), "0");
  for (const std::string& image : Images().files) {
    test::WriteFile(folder / "image", image);
    version.pFileName(folder / "image");
    EXPECT_EQ(version.pVersionFull(), kText);
  }
  for (const char* name : {"text", "gone", ""}) {
    version.pFileName(folder / name);
    EXPECT_EQ(version.pFileName(), folder / name);
    EXPECT_EQ(version.pVersionFull(), "") << name;
    EXPECT_EQ(version.pVersionMajor(), 2);
    EXPECT_EQ(version.pVersionMinor(), 56);
    EXPECT_EQ(version.pVersionRevision(), 0);
    EXPECT_EQ(version.pVersionBuild(), "65535");
  }
}

GTEST_TEST(FileVer, ModulesCarryTheirVersion) {
  const test::TempFolder folder;
  clsFileVer version;
  version.pFileName(QUENDLE_MODULE);
  EXPECT_EQ(version.pVersionFull(), QUENDLE_MODULE_VERSION);
  const std::string stripped = folder / "stripped.so";
  const std::string command = "strip -o '" + stripped + "' '" QUENDLE_MODULE "'";
  if (std::system(command.c_str()) != 0) GTEST_SKIP() << "there is no strip";
  version.pFileName(stripped);
  EXPECT_EQ(version.pVersionFull(), QUENDLE_MODULE_VERSION);
}

GTEST_TEST(FileVer, CutFilesHaveNone) {
  for (const std::string& image : Images().files) {
    EXPECT_EQ(VersionOf(image), kVersion);
    for (std::size_t size = 0; size < image.size(); ++size) {
      EXPECT_FALSE(VersionOf(std::string_view(image).substr(0, size))) << size << " of " << image.size();
    }
  }
}

GTEST_TEST(FileVer, HostileResourcesAndSections) {
  using namespace test;
  const std::string pe = PeFile(32, kVersion);
  const std::string elf = ElfFile(64, false, kVersion);
  const std::size_t table = elf.size() - 3 * 64;
  const struct {
    const std::string& good;
    const char* name;
    std::size_t position;
    std::string bytes;
  } rows[] = {
      {pe, "headers over each other", 60, ImageBytes().Add(4, {0}).Bytes()},
      {pe, "headers behind the end", 60, "\xFF\xFF\xFF\xFF"},
      {pe, "all sections there can be", kPeStart + 6, "\xFF\xFF"},
      {pe, "no optional header", kPeStart + 20, std::string(2, '\0')},
      {pe, "of neither kind", kPeStart + 24, "\x07\x01"},
      {pe, "two data directories", kPeStart + 24 + 92, "\x02"},
      {pe, "resources nowhere", kPeStart + 24 + 112, std::string(4, '\0')},
      {pe, "resources at the end of all addresses", kPeStart + 24 + 112, "\xFF\xFF\xFF\xFF"},
      {pe, "section at the end of all files", kPeStart + 24 + 224 + 40 + 20, "\xFF\xFF\xFF\xFF"},
      {pe, "more types than bytes", kPeTypes + 12, "\xFF\xFF\xFF\xFF"},
      {pe, "type that is no directory", kPeTypes + 31, std::string(1, '\0')},
      {pe, "names that are the types", kPeTypes + 28, std::string(1, '\0')},
      {pe, "languages that are the names", kPeNames + 20, std::string(1, '\x20')},
      {pe, "languages that are themselves", kPeLanguages + 20, ImageBytes().Add(4, {0x80000038}).Bytes()},
      {pe, "no language", kPeLanguages + 14, std::string(1, '\0')},
      {pe, "data at the end of all addresses", kPeLanguages + 20, "\xFF\xFF\xFF\x7F"},
      {pe, "version at the end of all addresses", kPeData, "\xFF\xFF\xFF\xFF"},
      {pe, "version of no size", kPeData + 4, std::string(1, '\x5B')},
      {pe, "another key", kPeVersion + 6, "W"},
      {pe, "no record", kPeVersion + 2, std::string(1, '\x33')},
      {pe, "another record", kPeVersion + 40, "\xBE"},
      {elf, "table behind the end", 47, "\xFF"},
      {elf, "entries that lie over each other", 58, "\x08"},
      {elf, "all sections there can be", 60, "\xFF\xFF"},
      {elf, "names of no section", 62, "\xFF\xFF"},
      {elf, "names at the end of all files", table + 64 + 24, std::string(8, '\xFF')},
      {elf, "name behind the names", table + 128, "\xFF\xFF\xFF\xFF"},
      {elf, "section without bytes in the file", table + 128 + 4, "\x08"},
      {elf, "section at the end of all files", table + 128 + 24, std::string(8, '\xFF')},
      {elf, "section smaller than the record", table + 128 + 32, "\x33"},
  };
  for (const auto& row : rows) {
    std::string image = row.good;
    ASSERT_NE(image.substr(row.position, row.bytes.size()), row.bytes) << row.name;
    image.replace(row.position, row.bytes.size(), row.bytes);
    EXPECT_FALSE(VersionOf(image)) << row.name;
  }
}

// Holes of a terabyte take no room, and must take no time.
GTEST_TEST(FileVer, HugeFilesAreNotReadWhole) {
  const test::TempFolder folder;
  test::WriteFile(folder / "huge", test::PeFile(64, kVersion));
  std::error_code failed;
  fs::resize_file(folder / "huge", std::uintmax_t{1} << 40, failed);
  if (failed) GTEST_SKIP() << "no files of that size here";
  clsFileVer version;
  version.pFileName(folder / "huge");
  EXPECT_EQ(version.pVersionFull(), kText);
}

}  // namespace
}  // namespace quendle
