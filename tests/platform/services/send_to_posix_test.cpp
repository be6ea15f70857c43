#include "platform/services/send_to.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/recorder.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

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
  for (const auto& entry : std::filesystem::recursive_directory_iterator(home / "data")) {
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
  std::filesystem::create_directories(home / "Thunar/sendto");
  const std::string taken = home / "Thunar/sendto/quendle.desktop";
  std::ofstream(taken) << "mine";
  const Result added = AddToSendTo("/opt/quendle");
  EXPECT_EQ(added.code, Code::kExists);
  EXPECT_EQ(added.path, taken);
  EXPECT_TRUE(RemoveFromSendTo().ok());
  EXPECT_EQ(test::ReadFile(taken), "mine");
}

}  // namespace
}  // namespace quendle::platform
