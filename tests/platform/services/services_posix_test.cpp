#include <gtest/gtest.h>
#include <fstream>

#include "platform/services/known_folders.h"
#include "platform/services/launch.h"
#include "platform/services/send_to.h"
#include "support/outcome.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

GTEST_TEST(KnownFolders, FollowTheUsersSession) {
  const test::TempFolder home;
  const test::ScopedVariable home_variable("HOME", home.path());
  const test::ScopedVariable config("XDG_CONFIG_HOME", "relative");
  EXPECT_EQ(SettingsRoot(), home / ".config");
  EXPECT_EQ(DownloadFolder(), home.path());
  fs::create_directory(home / "Downloads");
  EXPECT_EQ(DownloadFolder(), home / "Downloads");
  test::WriteFile(home / ".config/user-dirs.dirs", "# comment\nXDG_DOWNLOAD_DIR=\"$HOME/ダウンロード\"\n");
  EXPECT_EQ(DownloadFolder(), home / "ダウンロード");
  test::WriteFile(home / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOMEX/x\"\n");
  EXPECT_EQ(DownloadFolder(), home / "Downloads");
  const test::ScopedVariable absolute("XDG_CONFIG_HOME", "/etc/xdg/");
  EXPECT_EQ(SettingsRoot(), "/etc/xdg");
}

GTEST_TEST(Launch, StartsTheOpenerWithTheFileAsOneArgument) {
  const test::TempFolder folder;
  test::Recorder opener(folder / "bin/xdg-open");
  const std::string file = folder / "a b; $(touch x).txt";
  test::WriteFile(file, "x");
  const test::ScopedVariable path("PATH", folder / "bin" + ":/bin:/usr/bin");

  fs::create_directory_symlink(folder.path(), folder / "link");
  for (const std::string& untrusted : {folder.path(), folder / "bin", folder / "link"}) {
    EXPECT_FALSE(OpenWithDesktop(file, untrusted).ok()) << "an opener in the untrusted folder";
  }
  EXPECT_FALSE(OpenWithDesktop(folder / "none", "/nowhere").ok());
  ASSERT_TRUE(OpenWithDesktop(file, "/nowhere").ok());
  EXPECT_EQ(opener.Take(), "1\n" + file + "\n");
}

GTEST_TEST(SendTo, EntriesComeMoveAndGo) {
  const test::TempFolder home;
  const test::ScopedVariable variable("XDG_DATA_HOME", home / "data");
  test::Recorder lister(home / "bin/update-desktop-database");
  const test::ScopedVariable path("PATH", home / "bin:/bin:/usr/bin");
  const std::string renewed = "2\n-q\n" + home / "data/applications" + "\n";
  EXPECT_TRUE(RemoveFromSendTo().ok());
  EXPECT_EQ(lister.Take(), renewed);
  for (const char* program : {"/opt/quendle", "/usr/bin/quendle"}) {
    EXPECT_FALSE(IsInSendTo(program));
    ASSERT_TRUE(AddToSendTo(program).ok());
    EXPECT_EQ(lister.Take(), renewed);
    EXPECT_TRUE(IsInSendTo(program));
  }
  ASSERT_TRUE(RemoveFromSendTo().ok());
  EXPECT_EQ(lister.Take(), renewed);
  EXPECT_FALSE(IsInSendTo("/usr/bin/quendle"));
  for (const auto& entry : fs::recursive_directory_iterator(home / "data")) {
    EXPECT_TRUE(entry.is_directory()) << entry.path();
  }
}

GTEST_TEST(SendTo, CommandsAreQuotedAsDesktopEntriesAsk) {
  const struct {
    const char *program, *command;
  } rows[] = {
      {"/a b/quendle", "Exec=\"/a b/quendle\" %F\n"},
      {"/100%/\"q\"", "Exec=\"/100%%/\\\\\"q\\\\\"\" %F\n"},
      {"/$x/`y`", "Exec=\"/\\\\$x/\\\\`y\\\\`\" %F\n"},
      {"/a\\b", "Exec=\"/a\\\\\\\\b\" %F\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.program);
    const test::TempFolder home;
    const test::ScopedVariable variable("XDG_DATA_HOME", home.path());
    const test::ScopedVariable no_tools("PATH", home.path());  // which would go on in the folder
    ASSERT_TRUE(AddToSendTo(row.program).ok());
    for (const char* entry : {"applications", "Thunar/sendto", "kio/servicemenus"}) {
      const std::string text = test::ReadFile(home / (std::string(entry) + "/quendle.desktop"));
      EXPECT_NE(text.find(row.command), std::string::npos) << text;
    }
  }
  EXPECT_EQ(AddToSendTo("/a\nb").code, Code::kRefused);
}

GTEST_TEST(SendTo, WhatOthersHaveMadeStays) {
  const test::TempFolder home;
  const test::ScopedVariable variable("XDG_DATA_HOME", home.path());
  const test::ScopedVariable no_tools("PATH", home.path());
  fs::create_directories(home / "Thunar/sendto");
  const std::string taken = home / "Thunar/sendto/quendle.desktop";
  std::ofstream(taken) << "mine";
  EXPECT_TRUE(test::Fails(AddToSendTo("/opt/quendle"), Code::kExists, taken));
  EXPECT_TRUE(RemoveFromSendTo().ok());
  EXPECT_EQ(test::ReadFile(taken), "mine");
}

}  // namespace
}  // namespace quendle::platform
