#include "platform/entries/paths.h"
#include "platform/services/known_folders.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

using test::ScopedVariable;

GTEST_TEST(LongPath, KeepsLinksAndBlanks) {
  const test::TempFolder folder;
  const std::string root = fs::canonical(folder.path()).string();
  test::WriteFile(root + "/Docs/ Report.txt ", "x");
  fs::create_directory_symlink(root + "/Docs", root + "/link");
  const struct {
    std::string path;
    std::string expected;
  } rows[] = {
      {root + "/Docs/ Report.txt ", root + "/Docs/ Report.txt "},
      {root + "/link", root + "/link"},
      {root + "/link/ Report.txt ", root + "/link/ Report.txt "},
      {root + "/link/..", root},  // the parent of what the link names
  };
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path;
  fs::rename(root + "/Docs", root + "/Old");
  EXPECT_EQ(LongPath(root + "/Docs/ Report.txt "), "");
  for (const char* name : {"/Docs/ Report.txt ", "/Docs/sub/ Report.txt "}) test::WriteFile(root + name, "y");
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path << " made anew";
  fs::remove(root + "/link");
  fs::create_directory_symlink(root + "/Docs/sub", root + "/link");
  EXPECT_EQ(LongPath(root + "/link/../sub"), root + "/Docs/sub");
  EXPECT_EQ(LongPath(root + "/link/ Report.txt "), root + "/link/ Report.txt ");
  fs::create_hard_link(root + "/Docs/ Report.txt ", root + "/Docs/ REPORT.TXT ");
  EXPECT_EQ(LongPath(root + "/Docs/ Report.txt "), root + "/Docs/ Report.txt ") << "two names of one file";
}

GTEST_TEST(KnownFolders, FollowTheUsersSession) {
  const test::TempFolder home;
  const ScopedVariable home_variable("HOME", home.path());
  const ScopedVariable config("XDG_CONFIG_HOME", "relative");
  EXPECT_EQ(SettingsRoot(), home / ".config");
  EXPECT_EQ(DownloadFolder(), home.path());
  fs::create_directory(home / "Downloads");
  EXPECT_EQ(DownloadFolder(), home / "Downloads");
  test::WriteFile(home / ".config/user-dirs.dirs", "# comment\nXDG_DOWNLOAD_DIR=\"$HOME/ダウンロード\"\n");
  EXPECT_EQ(DownloadFolder(), home / "ダウンロード");
  test::WriteFile(home / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOMEX/x\"\n");
  EXPECT_EQ(DownloadFolder(), home / "Downloads");
  const ScopedVariable absolute("XDG_CONFIG_HOME", "/etc/xdg/");
  EXPECT_EQ(SettingsRoot(), "/etc/xdg");
}

}  // namespace
}  // namespace quendle::platform
