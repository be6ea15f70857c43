#include "archive/modules/common/volumes.h"

#include <filesystem>

#include "support/temp_folder.h"

namespace quendle::modules {
namespace {

GTEST_TEST(Volumes, SetsAreFoundByName) {
  using Names = std::vector<std::string>;
  struct Row {
    Names there;  // besides the one given
    std::string given;
    Names files;
    std::string first;  // empty: the one given
    std::string missing;
  };
  const Row rows[] = {
      {{}, "a.lzh", {"a.lzh"}, "", ""},
      {{"a.part1.rar"}, "a.part0.rar", {"a.part0.rar"}, "", "a.part0.r00"},
      {{}, "a.part20240101.rar", {"a.part20240101.rar"}, "", "a.part20240101.r00"},
      {{"a.7z.001"}, "a.7z.000", {"a.7z.000"}, "", ""},
      {{"a.001"}, "a.002", {"a.002"}, "", ""},
      {{".7z"}, "noextension", {"noextension"}, "", ""},

      {{"a.part2.rar", "a.part3.rar", "b.part4.rar"},
       "a.part1.rar",
       {"a.part1.rar", "a.part2.rar", "a.part3.rar"},
       "",
       "a.part4.rar"},
      {{"a.part10.rar"}, "a.part1.rar", {"a.part1.rar"}, "", "a.part2.rar"},
      {{"a.part1.rar"}, "a.part10.rar", {"a.part1.rar"}, "a.part1.rar", "a.part2.rar"},
      {{"a.part1.rar", "a.part01.rar", "a.part02.rar"},
       "a.part10.rar",
       {"a.part01.rar", "a.part02.rar"},
       "a.part01.rar",
       "a.part03.rar"},
      {{"a.part2.rar", "a.part02.rar"}, "a.part01.rar", {"a.part01.rar", "a.part02.rar"}, "", "a.part03.rar"},
      {{"a.part3.rar"}, "a.part2.rar", {"a.part2.rar"}, "a.part1.rar", "a.part1.rar"},
      {{"A.Part2.RAR"}, "a.part1.rar", {"a.part1.rar", "A.Part2.RAR"}, "", "a.part3.rar"},
      {{"A.PART2.RAR", "a.part2.rar", "A.part1.rar"},
       "a.part1.rar",
       {"a.part1.rar", "a.part2.rar"},
       "",
       "a.part3.rar"},
      {{"表.PART1.rar"}, "表.part2.rar", {"表.PART1.rar", "表.part2.rar"}, "表.PART1.rar", "表.part3.rar"},

      {{"a.zip", "ab.r00"}, "a.rar", {"a.rar"}, "", "a.r00"},
      {{"A.R00", "a.r01", "a.r03"}, "a.rar", {"a.rar", "A.R00", "a.r01"}, "", "a.r02"},
      {{"a.rar", "a.r00"}, "a.r01", {"a.rar", "a.r00", "a.r01"}, "a.rar", "a.r02"},
      {{"a.rar"}, "A.S00", {"a.rar"}, "a.rar", "A.R00"},
      {{}, "a.r00", {"a.r00"}, "a.rar", "a.rar"},

      {{"a.7z.002", "a.zip.003"}, "a.7z.001", {"a.7z.001", "a.7z.002"}, "", "a.7z.003"},

      {{}, "a.zip", {"a.zip"}, "", "a.z01"},
      {{"a.Z01", "a.z02"}, "a.zip", {"a.Z01", "a.z02", "a.zip"}, "", "a.z03"},
      {{"a.z01", "a.z03"}, "a.zip", {"a.z01", "a.zip"}, "", "a.z02"},
      {{"a.z02"}, "a.z01", {"a.z01", "a.z02"}, "a.zip", "a.zip"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.given);
    const test::TempFolder folder;
    test::WriteFile(folder / row.given, "");
    for (const std::string& name : row.there) test::WriteFile(folder / name, "");
    const auto made = std::filesystem::directory_iterator(folder.path());
    if (std::distance(begin(made), end(made)) <= std::ssize(row.there)) continue;  // case does not count here
    std::unique_ptr<platform::InputFile> file;
    ASSERT_TRUE(platform::InputFile::Open(folder / row.given, &file).ok());
    const VolumeSet set = FindVolumes(std::move(file));
    const auto path = [&](const std::string& name) { return name.empty() ? "" : folder / name; };
    Names files;
    for (const auto& found : set.files) files.push_back(found->Path().substr(folder.path().size() + 1));
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
  std::unique_ptr<platform::InputFile> file;
  ASSERT_TRUE(platform::InputFile::Open(folder / "a.rar", &file).ok());
  const VolumeSet set = FindVolumes(std::move(file));
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
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  std::unique_ptr<platform::InputFile> file;
  ASSERT_TRUE(platform::InputFile::Open("a.rar", &file).ok());
  EXPECT_EQ(FindVolumes(std::move(file)).files.size(), 2U);
  std::filesystem::current_path(here);
}

}  // namespace
}  // namespace quendle::modules
