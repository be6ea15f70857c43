#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/services/known_folders.h"

#include "platform/text/wide_win32.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

GTEST_TEST(KnownFolders, AreAbsoluteAndEndWithTheirName) {
  for (const std::string& folder : {CurrentFolder(), ExecutableFolder(), TemporaryFolder(), SettingsRoot(),
                                    StateFolder(), DownloadFolder()}) {
    EXPECT_TRUE(folder.size() > 3 && folder[1] == ':' && folder.back() != '\\') << folder;
    EXPECT_EQ(SystemPath(folder), L"\\\\?\\" + WideFromText(folder));
  }
  EXPECT_NE(SettingsRoot(), StateFolder());
  ASSERT_EQ(LibraryFolders().size(), 2U);
  EXPECT_TRUE(std::filesystem::exists(LibraryFolders()[1] + "\\kernel32.dll")) << LibraryFolders()[1];
  EXPECT_TRUE(std::filesystem::exists(ExecutableFolder()));
}

GTEST_TEST(KnownFolders, TheTemporaryOneIsSpelledOut) {
  const test::TempFolder folder;
  const std::string spelled = folder / "long folder name.ext";
  std::filesystem::create_directory(spelled);
  wchar_t short_path[MAX_PATH];
  ASSERT_GT(GetShortPathNameW(WideFromText(spelled).c_str(), short_path, MAX_PATH), 0U);
  for (const std::string& value : {spelled, spelled + "\\", TextFromWide(short_path)}) {
    const test::ScopedVariable variable("TMP", value);
    EXPECT_EQ(TemporaryFolder(), spelled) << value;
  }
}

GTEST_TEST(KnownFolders, VariablesHaveEveryCharacter) {
  const std::string value = "é表😀" + std::string(2 * MAX_PATH, 'x');
  SetEnvironmentVariableW(L"QUENDLE_TEST", WideFromText(value).c_str());
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), value);
  SetEnvironmentVariableW(L"QUENDLE_TEST", L"");
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), std::nullopt);
  SetEnvironmentVariableW(L"QUENDLE_TEST", nullptr);
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), std::nullopt);
}

}  // namespace
}  // namespace quendle::platform
