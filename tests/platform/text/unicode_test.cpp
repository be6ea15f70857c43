#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

GTEST_TEST(Unicode, TakesValidSequencesAndSingleBytesOtherwise) {
  const struct {
    std::string text;
    bool valid;
    char32_t code_point;
    std::size_t taken;
  } rows[] = {
      {"a", true, 'a', 1},
      {"\0b"s, true, 0, 1},
      {"\u07FFx", true, 0x7FF, 2},
      {"表x", true, 0x8868, 3},
      {"\U0010FFFFx", true, 0x10FFFF, 4},
      {"\x80", false, 0x80, 1},
      {"\xC0\xAF", false, 0xC0, 1},          // overlong "/"
      {"\xE0\x80\xAF", false, 0xE0, 1},      // overlong "/"
      {"\xED\xA0\x80", false, 0xED, 1},      // surrogate
      {"\xF4\x90\x80\x80", false, 0xF4, 1},  // above U+10FFFF
      {"\xE8\xA1", false, 0xE8, 1},          // cut short
  };
  for (const auto& row : rows) {
    std::string_view rest = row.text;
    char32_t code_point = 0;
    EXPECT_EQ(TakeCodePoint(&rest, &code_point), row.valid) << row.text;
    EXPECT_EQ(code_point, row.code_point) << row.text;
    EXPECT_EQ(row.text.size() - rest.size(), row.taken) << row.text;
    EXPECT_EQ(IsUtf8(row.text), row.valid) << row.text;
  }
  EXPECT_TRUE(IsUtf8(""));
}

GTEST_TEST(Unicode, ReplacesInvalidBytesForShowing) {
  EXPECT_EQ(WithReplacementCharacters("a\xFF.txt"), "a\uFFFD.txt");
  EXPECT_EQ(WithReplacementCharacters("\xE8\xA1表"), "\uFFFD\uFFFD表");
}

GTEST_TEST(Unicode, UpperCaseIsSimpleAndKeepsInvalidBytes) {
  const struct {
    std::string text;
    std::string upper;
  } rows[] = {
      {"readme.txt", "README.TXT"}, {"ｆｕｌｌ", "ＦＵＬＬ"}, {"ж", "Ж"}, {"ⅲ", "Ⅲ"}, {"aソz{`", "AソZ{`"},
      {"a\xFFz", "A\xFFZ"},         {"straße", "STRAßE"},     {"é", "É"}, {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(UpperCase(row.text), row.upper);
}

GTEST_TEST(Unicode, Utf16GoesBothWays) {
  const struct {
    std::string text;
    std::string bytes;
  } rows[] = {
      {"a\0表"s, "a\0\0\0\x68\x88"s}, {"😀", "\x3D\xD8\x00\xDE"s}, {"\uFEFF[", "\xFF\xFE[\0"s}, {"", ""}};
  for (const auto& row : rows) {
    EXPECT_EQ(ToUtf16Le(row.text), row.bytes) << row.text;
    EXPECT_EQ(FromUtf16Le(row.bytes), row.text) << row.text;
  }
  EXPECT_EQ(FromUtf16Le("\x3D\xD8X\0\x00\xDEY"s), "\uFFFDX\uFFFD")
      << "lone halves, and half a unit at the end";
  EXPECT_EQ(FromUtf16Le("\x3D\xD8"s), "\uFFFD");
}

GTEST_TEST(Unicode, EndsThatFitTheTerminal) {
  const struct {
    const char* text;
    int columns;
    const char* end;
  } rows[] = {{"report.txt", 4, ".txt"},
              {"report.txt", 10, "report.txt"},
              {"日本", 3, "本"},
              {"日本", 4, "日本"},
              {"a", 0, ""}};
  for (const auto& row : rows) EXPECT_EQ(EndOfColumns(row.text, row.columns), row.end) << row.text;
}

}  // namespace
}  // namespace quendle::platform
