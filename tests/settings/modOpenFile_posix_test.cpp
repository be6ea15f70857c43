#include <sys/resource.h>

#include "platform/ini/profile.h"
#include "platform/text/code_page.h"
#include "settings/modOpenFile.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

// Where the converter's module is missing, which few open files simulate: then it cannot be loaded.
void WriteWithoutConverter() {
  const test::TempFolder folder;
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const rlimit few{0, usual.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  const bool is_missing = platform::TextFromAnsi("\x95\x5C") != "表" && !platform::AnsiFromText("表");
  setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_TRUE(is_missing);
  const std::string path = folder / "a.ini";
  const std::string bytes = "[a]\r\n\x95\x5C=1\r\n";
  test::WriteFile(path, bytes);
  bool is_unicode = false;
  const std::string text = ReadTextFile(path, &is_unicode);
  platform::Result results[3];
  WriteTextFile(path, text + "é", kReplaceText, false, &results[0]);
  WriteTextFile(path, "é", kAppendText, false, &results[1]);
  results[2] = platform::WriteProfileString(path, "a", "k", "é");
  for (const platform::Result& result : results) {
    EXPECT_EQ(result.code, platform::Code::kRefused);
    EXPECT_EQ(result.path, path);
    EXPECT_EQ(result.reason, "the converter for the code page is not installed");
  }
  EXPECT_EQ(test::ReadFile(path), bytes);
  EXPECT_TRUE(platform::WriteProfileString(path, "a", "k", "v").ok());
  EXPECT_EQ(test::ReadFile(path), bytes + "k=v\r\n");
  test::WriteFile(path, "");
  EXPECT_TRUE(platform::WriteProfileString(path, "a", "k", "表").ok());
  EXPECT_EQ(platform::ReadProfileString(path, "a", "k", "", 99), "表");
  std::exit(testing::Test::HasFailure() ? 1 : 0);
}

GTEST_TEST(WriteTextFile, SparesWhatCannotBeDecoded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process of its own, which has loaded no converter yet
  EXPECT_EXIT(WriteWithoutConverter(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quendle
