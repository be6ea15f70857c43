#include "platform/entries/paths.h"
#include "platform/moving/merge.h"

#include "platform/services/known_folders.h"
#include "support/file_systems.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

using test::Native;

const bool kIsWindows = test::kSeparator != '/';
const std::string kProgram = kIsWindows ? "tool.exe" : "tool";

GTEST_TEST(LongPath, ResolvesDots) {
  const test::TempFolder folder;
  const std::string& root = folder.path();
  test::WriteFile(folder / "Docs/表 Report.txt", "x");
  const std::string top = test::TextOf(fs::path(root).root_path());
  const struct {
    std::string path;
    std::string expected;
  } rows[] = {
      {folder / "Docs/表 Report.txt", folder / "Docs/表 Report.txt"},
      {folder / "/Docs///", folder / "Docs"},
      {folder / "Docs/./../Docs/表 Report.txt", folder / "Docs/表 Report.txt"},
      {folder / "docs/none", ""},
      {folder / "none/../Docs/none", ""},
      {top, top},
      {top + "..", top},
      {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path;
  EXPECT_EQ(LongPath("."), CurrentFolder());
}

GTEST_TEST(SearchPath, SkipsTheCurrentFolderAndWhatCannotRun) {
  const test::TempFolder folder;
  test::WriteFile(folder / ("good/" + kProgram), "x");
  fs::permissions(folder / ("good/" + kProgram), fs::perms::owner_all);
  test::WriteFile(folder / ("locked/" + kProgram), "x");
  const std::string locked = folder / (kIsWindows ? "none" : "locked");  // rights do not count there
  fs::create_directories(folder / ("folder/" + kProgram));
  std::string list = ".";
  for (const std::string& entry :
       {std::string(), std::string("relative"), folder / "folder", locked, folder / "good"})
    list += (kIsWindows ? ";" : ":") + entry;
  const test::ScopedVariable path("PATH", list);
  EXPECT_EQ(FindOnSearchPath("tool"), folder / ("good/" + kProgram));
  EXPECT_EQ(FindOnSearchPath("other"), "");
}

GTEST_TEST(Paths, TellWhatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "d/e/f", "x");
  EXPECT_TRUE(IsFolder(folder / "d") && IsFolder(folder / "d/") && !IsFolder(folder / "d/e/f"));
  EXPECT_TRUE(IsTaken(folder / "d/e/f") && !IsTaken(folder / "d/none"));
  EXPECT_EQ(MakeFolder(folder / "d").code, Code::kExists);
  EXPECT_EQ(RemoveEmptyFolder(folder / "d/e").code, Code::kExists);
  EXPECT_FALSE(RemoveEmptyFolder(folder / "d/e/f").ok());
  EXPECT_FALSE(RemoveFile(folder / "d/e").ok());

  test::WriteFile(folder / "other/e/g", "x");
  EXPECT_FALSE(FoldersCollide(folder / "d", folder / "other"));
  test::WriteFile(folder / "other/e/f", "x");
  EXPECT_TRUE(FoldersCollide(folder / "d", folder / "other"));
  EXPECT_FALSE(FoldersCollide(folder / "d", folder / "none"));

  std::string temporary;
  ASSERT_TRUE(MakeTemporaryFile(folder / "d", &temporary).ok());
  EXPECT_TRUE(RemoveFile(temporary).ok());
  EXPECT_FALSE(IsTaken(temporary));
}

GTEST_TEST(CheckPlace, LooksAtTheNearestFolderThatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "file", "x");
  EXPECT_TRUE(CheckPlace(folder / "new").ok());
  EXPECT_TRUE(CheckPlace(folder / "new/deep/表").ok());
  EXPECT_TRUE(CheckPlace(folder / "file").ok());
  const Result below_file = CheckPlace(folder / "file/new");
  EXPECT_EQ(below_file.code, Code::kNotFolder);
  EXPECT_EQ(below_file.path, folder / "file");
  EXPECT_FALSE(CheckPlace(folder / std::string(256, 'n')).ok());
}

GTEST_TEST(CheckNoLinks, FindsALinkOnTheWay) {
  const test::TempFolder folder;
  fs::create_directories(folder / "d/e");
  EXPECT_TRUE(CheckNoLinks(folder.path(), Native("d/e/none")).ok());
  if (!test::MakeLink(folder / "d", folder / "link")) GTEST_SKIP() << "no links can be made here";
  const Result result = CheckNoLinks(folder.path(), Native("link/e"));
  EXPECT_EQ(result.code, Code::kRefused);
  EXPECT_EQ(result.path, folder / "link");
}

}  // namespace
}  // namespace quendle::platform
