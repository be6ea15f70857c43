#include "platform/profile.h"
#include "platform/profile_lines.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

GTEST_TEST(ProfileLines, SplitsAtOneSeparator) {
  const struct {
    std::string text;
    std::vector<std::string_view> lines;
  } rows[] = {
      {"a\r\nb\r\n", {"a", "b", ""}}, {"a\nb\r\nc", {"a\nb", "c"}},     {"", {""}},         {"a", {"a"}},
      {"a\nb", {"a", "b"}},           {"a\rb\nc\r", {"a", "b\nc", ""}}, {"\r\n", {"", ""}},
  };
  for (const auto& row : rows) EXPECT_EQ(SplitProfileLines(row.text), row.lines) << row.text;
}

GTEST_TEST(ProfileLines, HeadersAreNotTrimmed) {
  for (const char* header : {"[a]", "[]", "[a]]", "[ソ]", "[[a]"})
    EXPECT_TRUE(IsHeaderLine(header)) << header;
  for (const char* other : {" [a]", "[a] ", "[", "]", "", "[a", ";[a]"})
    EXPECT_FALSE(IsHeaderLine(other)) << other;
  EXPECT_EQ(HeaderName("[ a]]"), " a]");
  EXPECT_EQ(HeaderName("[]"), "");
}

GTEST_TEST(ReadProfile, FindsKeys) {
  const test::TempFolder folder;
  const auto read = [](const std::string& file, const std::string& section, const std::string& key) {
    return ReadProfileString(file, section, key, "<none>", 1024);
  };
  const struct {
    std::string bytes;
    std::string section;
    std::string key;
    std::string value;
  } rows[] = {
      {"[a]\r\nk=v\r\n", "a", "k", "v"},
      {"[a]\r\nk=v", "A", "K", "v"},
      {"[a]\nk=v\n[b]\nk=w\n", "b", "k", "w"},
      {"[a]\rk=v\r", "a", "k", "v"},
      {"[a]\r\nx=1\nk=v\r\n", "a", "k", "<none>"},  // glued to the line before
      {"[a]\r\n \tk\t = \t v w \t\r\n", "a", "k", "v w"},
      {"[a]\r\nk=\" v \"\r\n", "a", "k", " v "},
      {"[a]\r\nk='v'\r\n", "a", "k", "v"},
      {"[a]\r\nk=\"v'\r\n", "a", "k", "\"v'"},
      {"[a]\r\nk=\"\"v\"\"\r\n", "a", "k", "\"v\""},
      {"[a]\r\nk=\"\r\n", "a", "k", "\""},
      {"[a]\r\nk=\r\n", "a", "k", ""},
      {"[a]\r\nk==v=\r\n", "a", "k", "=v="},
      {"[a]\r\nk=v ; w\r\n", "a", "k", "v ; w"},
      {"[a]\r\n;k=v\r\n", "a", ";k", "<none>"},
      {"[a]\r\n \t;k=v\r\n", "a", ";k", "<none>"},
      {"[a]\r\nk=1\r\nK=2\r\n", "a", "k", "1"},
      {"[a]\r\n[A]\r\nk=2\r\n", "a", "k", "<none>"},  // the first section wins though it has no such key
      {"k=0\r\n[a]\r\n", "a", "k", "<none>"},
      {" [a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[ a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[]\r\nk=v\r\n", "", "k", "v"},
      {"[a]", "a", "k", "<none>"},
      {"[a]\r\nk=v\0w\r\n"s, "a", "k", "v"},
      {"[a]\r\n\0k=v\r\nk=w\r\n"s, "a", "k", "w"},
      {"[\x83\x5C\x83\x5D]\r\n\x95\x5C=\x81\x5B\x81\x5D\r\n", "ソゾ", "表", "ー‐"},
      {"[x\x81\x5D\r\nk=v\r\n", "x", "k", "<none>"},  // ends in "]" as a byte, not as a character
      {"[\x82\x86\x84\x71]\r\nk=v\r\n", "ＦБ", "k", "v"},
      {"[a]\r\n\xFF=\x80\r\n", "a", "\uEFFF", "\uEF80"},
      {"\xFF\xFE[\0a\0]\0\n\0k\0=\0\x3D\xD8\x00\xDE"s, "a", "k", "😀"},
      {"\xFE\xFF\0[\0a\0]\0\r\0\n\0k\0=\0v"s, "a", "k", "<none>"},
      {"\xFF", "a", "k", "<none>"},
      {"", "a", "k", "<none>"},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const std::string file = folder / std::to_string(i);
    test::WriteFile(file, rows[i].bytes);
    EXPECT_EQ(read(file, rows[i].section, rows[i].key), rows[i].value) << rows[i].bytes;
  }
  EXPECT_EQ(read(folder.path(), "a", "k"), "<none>");
  EXPECT_EQ(read(folder / "missing", "a", "k"), "<none>");
  EXPECT_EQ(ReadProfileString(folder / "missing", "a", "k", " d \t", 1024), " d");
}

}  // namespace
}  // namespace quendle::platform
