#include "base/modString.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

GTEST_TEST(ModString, ExistenceOfLinksAndPrograms) {
  const test::TempFolder folder;
  std::filesystem::create_symlink("nowhere", folder / "dangling");
  std::filesystem::create_directory_symlink(folder.path(), folder / "link");
  const struct {
    std::string path;
    bool file;
    bool is_folder;
  } rows[] = {{folder / "link", false, true}, {folder / "dangling", true, false}, {"sh", true, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(FileExists(row.path), row.file) << row.path;
    EXPECT_EQ(FolderExists(row.path), row.is_folder) << row.path;
  }
}

}  // namespace
}  // namespace quendle
