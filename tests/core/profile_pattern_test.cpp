#include "core/profile_pattern.h"

#include "base/modString.h"
#include "base/regex.h"
#include "platform/text/unicode.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

GTEST_TEST(ProfilePattern, OfNames) {
  const std::pair<const char*, const char*> rows[] = {
      {"abc_01.zip", "abc_.*\\.zip"},
      {"abc01.zip", "abc.*\\.zip"},
      {"foo-bar_baz.zip", "foo-bar_.*\\.zip"},
      {"report.txt", "report.*\\.txt"},
      {"12345.zip", "1.*\\.zip"},
      {"my file 2.rar", "my file .*\\.rar"},
      {"README", "README.*"},
      {"x_y-z1.zip", "x_y-z.*\\.zip"},
      {"a_1_2.zip", "a_1_.*\\.zip"},
      {"_12.zip", "_.*\\.zip"},
      {"7", "7.*"},
      {".profile", ".*\\.profile"},
      {"a1.", "a.*"},
      {"v1.2.3.tar", "v1.2..*\\.tar"},
      {"写真12.JPG", "写真.*\\.JPG"},
      {"第２巻_01.zip", "第２巻_.*\\.zip"},
      {"ab\xFF_9.zip", "ab\uFFFD_.*\\.zip"},
  };
  const test::TempFolder folder;
  for (const auto& [name, expected] : rows) {
    SCOPED_TRACE(name);
    if (kHostStyle == PathStyle::kWindows && !platform::IsUtf8(name)) continue;  // names are text there
    test::WriteFile(folder / name, "");
    clsFileInfo target;
    ASSERT_TRUE(target.SetFilename(folder / name));
    const std::string pattern = MakePatternFromTarget(target);
    EXPECT_EQ(pattern, expected);
    EXPECT_EQ(Regex(pattern).MatchWhole(platform::WithReplacementCharacters(name)), RegexAnswer::kWhole);
  }
}

}  // namespace
}  // namespace quendle
