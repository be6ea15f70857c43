#include "settings/modOpenFile.h"

#include <regex>
#include <set>

#include "support/temp_folder.h"

namespace quendle {
namespace {

using namespace std::string_literals;

const std::string kMarkedA = "\xFF\xFE\x61\0"s;  // "a" in UTF-16 behind its mark

GTEST_TEST(ReadTextFile, DetectsUtf16ByTheFirstByte) {
  const test::TempFolder folder;
  const struct {
    std::string bytes, text;
    bool read_as_unicode, is_unicode;
  } rows[] = {
      {"a\r\n\x95\x5C\xFD", "a\r\n表\uEFFD", false, false},
      {kMarkedA, "\uFEFFa", true, true},
      {"\xFF\xFE", "", true, true},
      {"\xFF\xFE\x61", "\uFEFF", true, true},
      {"\xFE\xFF\0a"s, "\uFFFE\u6100", true, true},
      {"\xFEq", "", true, true},
      {"\xFF", "", false, true},
      {"\xEF\xBB\xBF\xC3\xA9\xC3", "\uFEFFé\uFFFD", false, false},
      {"", "", false, false},
      {"a\xFF\xFE", "a\uEFFF\uEFFE", false, false},
  };
  for (const auto& row : rows) {
    const std::string path = folder / "a.txt";
    test::WriteFile(path, row.bytes);
    bool is_unicode = !row.read_as_unicode;
    EXPECT_EQ(ReadTextFile(path, &is_unicode), row.text) << testing::PrintToString(row.bytes);
    EXPECT_EQ(is_unicode, row.read_as_unicode) << testing::PrintToString(row.bytes);
    EXPECT_EQ(IsUnicodeFile(path), row.is_unicode) << testing::PrintToString(row.bytes);
  }
  for (const std::string& path : {folder.path(), folder / "missing"}) {
    bool is_unicode = true;
    EXPECT_EQ(ReadTextFile(path, &is_unicode), "") << path;
    EXPECT_FALSE(is_unicode) << path;
    EXPECT_FALSE(IsUnicodeFile(path)) << path;
  }
}

GTEST_TEST(WriteTextFile, ReplacesPrintsAndAppends) {
  const test::TempFolder folder;
  const std::string path = folder / "a.txt";
  const char* const kMissing = "<missing>";
  const struct {
    std::string before, text;
    std::int16_t mode;
    bool as_unicode;
    std::string after;
  } rows[] = {
      {"old and longer", "表", 0, false, "\x95\x5C"},
      {"old", "", 0, true, ""},
      {kMissing, "", 0, false, ""},
      {kMissing, "a表", 0, true, kMarkedA + "\x68\x88"},
      {"old", "\uFEFFa", 0, true, kMarkedA},
      {"old", "é", 0, false, "\xFF\xFE\xE9\0"s},
      {"old", "\uFEFFé", 0, false, "\xEF\xBB\xBF\xC3\xA9"},  // as it was read from UTF-8
      {"\xEF\xBB\xBFx\xC3", "é", 2, true, "\xEF\xBB\xBFx\xC3\xC3\xA9\r\n"},
      {"old", "\uEFFF", 0, false, "\xFF\xFE\xFF\xEF"},  // as the byte FF it would be read as UTF-16
      {"old", "a\uEFFF", 0, false, "a\xFF"},
      {"old", "a", 1, true, "a\r\n"},
      {kMissing, "", 1, false, "\r\n"},
      {"old", "é", 1, false, "\xFF\xFE\xE9\0\r\0\n\0"s},
      {"old", "a", 2, true, "olda\r\n"},
      {"x\xFD", "表", 2, false, "x\xFD\x95\x5C\r\n"},
      {"\xFF\xFEx\0"s, "a", 2, false, "\xFF\xFEx\0a\0"s},
      {"", "a", 2, true, kMarkedA},
      {kMissing, "a", 2, true, kMarkedA},
      {"\xFF\xFEx\0y"s, "a", 2, false, "\xFF\xFEx\0a\0"s},  // half a unit would shift all that follows
      {"\xFF", "a", 2, false, kMarkedA},
      {kMissing, "a", 2, false, "a\r\n"},
      {kMissing, "\uEFFF", 2, false, "\xFF\xFE\xFF\xEF\r\0\n\0"s},
      {"\x95", "\\", 2, false, "\xFF\xFE\x95\xEF\\\0\r\0\n\0"s},  // together they would be a character
      {"\x95\x5C\xFD", "é", 2, false, "\xFF\xFE\x68\x88\xFD\xEF\xE9\0\r\0\n\0"s},
  };
  for (const auto& row : rows) {
    fs::remove(path);
    if (row.before != kMissing) test::WriteFile(path, row.before);
    platform::Result why = platform::Failure(platform::Code::kFailed, "", Reason("not set"));
    EXPECT_EQ(WriteTextFile(path, row.text, row.mode, row.as_unicode, &why),
              row.mode == 0 && row.text.empty())
        << row.text;
    EXPECT_TRUE(why.ok()) << row.text;
    EXPECT_EQ(test::ReadFile(path), row.after) << row.text;
  }
}

GTEST_TEST(WriteTextFile, TellsWhyItFailed) {
  const test::TempFolder folder;
  const struct {
    std::string path;
    std::int16_t mode;
    platform::Code code;
  } rows[] = {
      {folder.path(), 0, platform::Code::kIsFolder},     {folder.path(), 1, platform::Code::kIsFolder},
      {folder.path(), 2, platform::Code::kIsFolder},     {folder / "none/a", 0, platform::Code::kNotFound},
      {folder / "none/a", 2, platform::Code::kNotFound}, {folder / "a", 3, platform::Code::kRefused},
  };
  for (const auto& row : rows) {
    platform::Result why;
    EXPECT_FALSE(WriteTextFile(row.path, "", row.mode, false, &why)) << row.path << row.mode;
    EXPECT_EQ(why.code, row.code) << row.path << row.mode;
  }
}

GTEST_TEST(GetTempFilePath, MakesOrNamesAFreeFile) {
  const test::TempFolder folder;
  std::set<std::string> made;
  for (int i = 0; i < 20; ++i) made.insert(GetTempFilePath(true, folder.path()));
  EXPECT_EQ(made.size(), 20U);
  for (const std::string& path : made) EXPECT_EQ(fs::path(path).parent_path(), folder.path());
  for (const std::string& path : made) EXPECT_EQ(fs::file_size(path), 0U) << path;

  const std::regex form("[1-9a-f][0-9a-f]{0,3}\\.tmp");
  for (int i = 0; i < 200; ++i) {
    const std::string path = GetTempFilePath(false, folder.path());
    ASSERT_EQ(path.substr(0, path.rfind(test::kSeparator)), folder.path());
    ASSERT_TRUE(std::regex_match(path.substr(folder.path().size() + 1), form)) << path;
  }
  EXPECT_EQ(GetTempFilePath(true, folder / "none"), "");
  const std::string elsewhere = GetTempFilePath(true, "");
  EXPECT_EQ(fs::path(elsewhere).parent_path() / "", fs::temp_directory_path() / "");
  EXPECT_TRUE(fs::remove(elsewhere));
}

}  // namespace
}  // namespace quendle
