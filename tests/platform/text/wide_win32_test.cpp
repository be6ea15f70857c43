#include "platform/text/wide_win32.h"

#include "support/outcome.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

GTEST_TEST(Wide, EveryNameComesBackTheSame) {
  for (const wchar_t* name :
       {L"", L"a", L"表示.txt", L"\U0001F600", L"\xD800", L"a\xDC00\xD800x", L"\xFFFD\xEF80"}) {
    EXPECT_EQ(WideFromText(TextFromWide(name)), name) << TextFromWide(name);
  }
  EXPECT_EQ(WideFromText("a\xFF\xE8\xA1"), L"a\xFFFD\xFFFD\xFFFD");
}

GTEST_TEST(Wide, SystemPathsAreAbsoluteAndNotRewritten) {
  const test::TempFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  const std::string here = "\\\\?\\" + folder.path();
  const std::string drive = folder.path().substr(0, 2);
  const struct {
    std::string path, system_path;
  } rows[] = {
      {"C:\\a/b", "\\\\?\\C:\\a\\b"},
      {"C:/a//b/", "\\\\?\\C:\\a\\b"},
      {"C:\\a\\..\\..\\b\\.", "\\\\?\\C:\\b"},
      {"C:\\con\\a.\\b ", "\\\\?\\C:\\con\\a.\\b "},
      {"\\\\server\\share\\a", "\\\\?\\UNC\\server\\share\\a"},
      {"//server/share/../a", "\\\\?\\UNC\\server\\share\\a"},
      {"\\\\?\\C:\\a/..", "\\\\?\\C:\\a/.."},
      {"//?/Volume{1}/a", "\\\\?\\Volume{1}\\a"},
      {"\\\\.\\pipe\\x", "\\\\.\\pipe\\x"},
      {"a.", here + "\\a."},
      {".\\a\\..\\b ", here + "\\b "},
      {".", here},
      {drive + "nul", here + "\\nul"},
      {"\\a.", "\\\\?\\" + drive + "\\a."},
  };
  for (const auto& row : rows) EXPECT_EQ(TextFromWide(SystemPath(row.path)), row.system_path) << row.path;
  fs::current_path(before);
}

GTEST_TEST(Wide, SystemPathsBecomeTheUsualOnes) {
  const struct {
    const wchar_t* system_path;
    const char* path;
  } rows[] = {
      {L"\\\\?\\C:\\a ", "C:\\a "},
      {L"\\\\?\\UNC\\server\\share", "\\\\server\\share"},
      {L"\\\\?\\Volume{1}\\a", "\\\\?\\Volume{1}\\a"},
      {L"C:\\a", "C:\\a"},
  };
  for (const auto& row : rows) EXPECT_EQ(TextFromSystemPath(row.system_path), row.path);
}

GTEST_TEST(Wide, PathsForOtherProgramsMeanTheSameToThem) {
  for (const std::string& path :
       {std::string("C:\\a/../b c"), std::string("\\\\server\\share\\a"), std::string("C:\\")}) {
    std::wstring shell_path;
    EXPECT_TRUE(ToShellPath(path, &shell_path).ok()) << path;
    EXPECT_EQ(WithoutPrefix(SystemPath(path)), shell_path);
  }
  for (const std::string& path : {std::string("C:\\a."), std::string("C:\\a \\b "), std::string("C:\\a\\nul"),
                                  "C:\\" + std::string(300, 'a')}) {
    std::wstring shell_path;
    EXPECT_TRUE(test::Fails(ToShellPath(path, &shell_path), Code::kRefused, path));
  }
}

}  // namespace
}  // namespace quendle::platform
