#include "archive/modules/common/volumes.h"

#include <sstream>

#include "support/archives.h"
#include "support/picture.h"

namespace quendle::modules {
namespace {

GTEST_TEST(Volumes, SetsAreFoundByName) {
  const struct {
    std::string there;  // besides the one given
    std::string given, files;
    std::string first;  // empty: the one given
    std::string missing;
  } rows[] = {
      {"", "a.lzh", "a.lzh", "", ""},
      {"a.part1.rar", "a.part0.rar", "a.part0.rar", "", "a.part0.r00"},
      {"", "a.part20240101.rar", "a.part20240101.rar", "", "a.part20240101.r00"},
      {"a.7z.001", "a.7z.000", "a.7z.000", "", ""},
      {"a.001", "a.002", "a.002", "", ""},
      {".7z", "noextension", "noextension", "", ""},

      {"a.part2.rar a.part3.rar b.part4.rar", "a.part1.rar", "a.part1.rar a.part2.rar a.part3.rar", "",
       "a.part4.rar"},
      {"a.part10.rar", "a.part1.rar", "a.part1.rar", "", "a.part2.rar"},
      {"a.part1.rar", "a.part10.rar", "a.part1.rar", "a.part1.rar", "a.part2.rar"},
      {"a.part1.rar a.part01.rar a.part02.rar", "a.part10.rar", "a.part01.rar a.part02.rar", "a.part01.rar",
       "a.part03.rar"},
      {"a.part2.rar a.part02.rar", "a.part01.rar", "a.part01.rar a.part02.rar", "", "a.part03.rar"},
      {"a.part3.rar", "a.part2.rar", "a.part2.rar", "a.part1.rar", "a.part1.rar"},
      {"A.Part2.RAR", "a.part1.rar", "a.part1.rar A.Part2.RAR", "", "a.part3.rar"},
      {"A.PART2.RAR a.part2.rar A.part1.rar", "a.part1.rar", "a.part1.rar a.part2.rar", "", "a.part3.rar"},
      {"表.PART1.rar", "表.part2.rar", "表.PART1.rar 表.part2.rar", "表.PART1.rar", "表.part3.rar"},

      {"a.zip ab.r00", "a.rar", "a.rar", "", "a.r00"},
      {"A.R00 a.r01 a.r03", "a.rar", "a.rar A.R00 a.r01", "", "a.r02"},
      {"a.rar a.r00", "a.r01", "a.rar a.r00 a.r01", "a.rar", "a.r02"},
      {"a.rar", "A.S00", "a.rar", "a.rar", "A.R00"},
      {"", "a.r00", "a.r00", "a.rar", "a.rar"},

      {"a.7z.002 a.zip.003", "a.7z.001", "a.7z.001 a.7z.002", "", "a.7z.003"},

      {"", "a.zip", "a.zip", "", "a.z01"},
      {"a.Z01 a.z02", "a.zip", "a.Z01 a.z02 a.zip", "", "a.z03"},
      {"a.z01 a.z03", "a.zip", "a.z01 a.zip", "", "a.z02"},
      {"a.z02", "a.z01", "a.z01 a.z02", "a.zip", "a.zip"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.given);
    const test::TempFolder folder;
    test::WriteFile(folder / row.given, "");
    std::istringstream others(row.there);
    std::size_t count = 1;
    for (std::string name; others >> name; ++count) test::WriteFile(folder / name, "");
    if (test::Picture(folder.path()).size() < count) continue;  // case does not count here
    const VolumeSet set = FindVolumes(test::Opened(folder / row.given));
    const auto path = [&](const std::string& name) { return name.empty() ? "" : folder / name; };
    std::string files;
    for (const auto& found : set.files)
      files.append(files.empty() ? "" : " ").append(test::TextOf(test::FsPath(found->Path()).filename()));
    EXPECT_EQ(files, row.files);
    EXPECT_EQ(set.is_first, row.first.empty());
    EXPECT_EQ(set.first_path, path(row.first));
    EXPECT_EQ(set.missing_path, path(row.missing));
  }
}

GTEST_TEST(Volumes, LettersGoOnBehindANumberOf99) {
  const test::TempFolder folder;
  for (int number = 0; number < 200; ++number) {
    const std::string name = std::to_string(100 + number % 100).replace(0, 1, number < 100 ? "a.r" : "a.s");
    test::WriteFile(folder / name, "");
  }
  test::WriteFile(folder / "a.rar", "");
  const VolumeSet set = FindVolumes(test::Opened(folder / "a.rar"));
  ASSERT_EQ(set.files.size(), 201U);
  EXPECT_EQ(set.files[100]->Path(), folder / "a.r99");
  EXPECT_EQ(set.files[101]->Path(), folder / "a.s00");
  EXPECT_EQ(set.missing_path, folder / "a.t00");
}

// The program may be started in the archive's folder.
GTEST_TEST(Volumes, BareNamesAreOfTheCurrentFolder) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.rar", "");
  test::WriteFile(folder / "a.r00", "");
  const fs::path here = fs::current_path();
  fs::current_path(folder.path());
  EXPECT_EQ(FindVolumes(test::Opened("a.rar")).files.size(), 2U);
  fs::current_path(here);
}

}  // namespace
}  // namespace quendle::modules
