#include "files/modBrowseDir.h"

#include "support/temp_folder.h"

namespace quendle {
namespace {

GTEST_TEST(ModBrowseDir, TheNearestFolderThatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a b/file", "x");
  const std::string there = folder / "a b";
  const struct {
    std::string proposed;
    std::string expected;
  } rows[] = {
      {there, there + "/"},
      {there + "/", there + "/"},
      {there + "/c/d/e", there + "/"},
      {there + "//c//d", there + "/"},
      {there + "/file/x", there + "/"},
      {test::Rooted("/"), test::Rooted("/")},
      {test::Rooted("/none-of-that-name/b/c"), ""},
      {"none-of-that-name/b", ""},
      {"", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(PickerStartFolder(test::Native(row.proposed)), test::Native(row.expected)) << row.proposed;
  }
}

}  // namespace
}  // namespace quendle
