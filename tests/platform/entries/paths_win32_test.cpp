#include "platform/entries/paths.h"
#include "platform/text/wide_win32.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

GTEST_TEST(LongPath, SpellsNamesAsTheirFoldersDo) {
  const test::TempFolder folder;
  const std::string spelled = folder / "A long folder/表 Report.TXT";
  test::WriteFile(spelled, "x");
  wchar_t short_path[MAX_PATH];
  ASSERT_GT(GetShortPathNameW(WideFromText(spelled).c_str(), short_path, MAX_PATH), 0U);
  const std::string lower = folder / "a LONG folder/表 report.txt";
  for (const std::string& path : {lower, TextFromWide(short_path), "\\\\?\\" + lower}) {
    EXPECT_EQ(LongPath(path), spelled) << path;
  }
  EXPECT_EQ(LongPath(folder / "A long*/表 Report.TXT"), "") << "a pattern is no name";
  EXPECT_EQ(LongPath(folder / "A long folder/表 Report.TX?"), "");
}

GTEST_TEST(CheckPlace, RefusesNewNamesThatOtherProgramsCannotUse) {
  const test::TempFolder folder;
  for (const char* name : {"con", "nul.txt", "a.", "a ", "a:b", "a?", "com1", "<a>"}) {
    const Result result = CheckPlace(folder / (std::string(name) + "\\x"));
    EXPECT_EQ(result.code, Code::kRefused) << name;
    EXPECT_NE(English(result.reason).find(name), std::string::npos) << result.reason;
  }
  EXPECT_EQ(CheckPlace("Q:\\a\\b").path, "Q:\\") << "a drive that is not there";
}

}  // namespace
}  // namespace quendle::platform
