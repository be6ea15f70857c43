#include <optional>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

GTEST_TEST(CodePage, DecodesAndEncodes) {
  const struct {
    std::string bytes, text;
  } rows[] = {
      {"", ""},
      {"C:\\data", "C:\\data"},
      {"\x95\x5C", "表"},
      {"a\x83\x5C[\x81\x5B]\x8B\x40", "aソ[ー]機"},
      {"\xB1\xDF", "ｱﾟ"},
      {"\x87\x40\x81\x60", "①～"},
      {"\xF0\x40", "\uE000"},  // the user's own characters
      {"\xFF", "\uEFFF"},      // no character
      {"\x80\xA0\xFD", "\uEF80\uEFA0\uEFFD"},
      {"\x95", "\uEF95"},  // first half at the end
      {"\x95\r\n\x95", "\uEF95\r\n\uEF95"},
      {"\x81\x20x", "\uEF81 x"},  // second half out of range
      {"\x85\x40", "\uEF85@"},    // unassigned
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TextFromAnsi(row.bytes), row.text);
    EXPECT_EQ(AnsiFromText(row.text), row.bytes) << row.text;
  }
}

GTEST_TEST(CodePage, DecodesOtherEncodings) {
  const struct {
    std::string bytes, encoding;
    std::optional<std::string> text;
  } rows[] = {
      {"\x87\x40\x81\x60\\", "sjis", "①～\\"}, {"\x1B$B$\"", "ISO-2022-JP", "あ"},  // ends shifted,
      {"$\"", "ISO-2022-JP", "$\""},  // which the next text does not notice
      {"\xE9", "windows-1252", "é"},           {"\xFF", "CP932", std::nullopt},
      {"a", "no-such-thing", std::nullopt},    {"a", "UTF-8", "a"},
  };
  for (const auto& row : rows) EXPECT_EQ(TextFromEncoding(row.bytes, row.encoding), row.text) << row.encoding;
}

GTEST_TEST(CodePage, RefusesWhatWouldComeBackDifferent) {
  for (const char* text : {"é", "a\u00A5", "\u203E", "\u301C", "😀", "한", "\uFEFF", "表\xFF", "\uEF95\\"}) {
    EXPECT_EQ(AnsiFromText(text), std::nullopt) << text;
  }
}

GTEST_TEST(CodePage, EveryPairOfBytesComesBackAsTheSameText) {
  for (int first = 0; first < 0x100; ++first) {
    for (int second = 0; second < 0x100; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      const std::string text = TextFromAnsi(bytes);
      ASSERT_TRUE(IsUtf8(text)) << first << " " << second;
      const std::optional<std::string> back = AnsiFromText(text);
      ASSERT_TRUE(back) << first << " " << second;
      ASSERT_EQ(TextFromAnsi(*back), text) << first << " " << second;
    }
  }
}

GTEST_TEST(CodePage, LongTextOutgrowsTheConversionBuffer) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "x表\uEFFF";
  const std::optional<std::string> bytes = AnsiFromText(text);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->size(), 20000U);
  EXPECT_EQ(TextFromAnsi(*bytes), text);
}

GTEST_TEST(CodePage, CutsBetweenCharacters) {
  const struct {
    std::string text;
    std::size_t limit;
    std::string kept;
  } rows[] = {
      {"aソb", 2, "a"}, {"aソb", 3, "aソ"}, {"aソb", 4, "aソb"},           {"aソb", 0, ""},
      {"ｱｲ", 1, "ｱ"},   {"éa", 1, ""},      {"\uEFFF\uEF80", 1, "\uEFFF"}, {"abc", 99, "abc"},
      {"ﾟ｡", 2, "ﾟ｡"},  {"ﾠ", 1, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(CutToAnsiBytes(row.text, row.limit), row.kept) << row.text;
}

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
    std::string text, upper;
  } rows[] = {
      {"readme.txt", "README.TXT"}, {"ｆｕｌｌ", "ＦＵＬＬ"}, {"ж", "Ж"}, {"ⅲ", "Ⅲ"}, {"aソz{`", "AソZ{`"},
      {"a\xFFz", "A\xFFZ"},         {"straße", "STRAßE"},     {"é", "É"}, {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(UpperCase(row.text), row.upper);
  EXPECT_EQ(FoldedName("か\u3099/ß"), FoldedName("が/SS"));
  EXPECT_NE(FoldedName("か/x"), FoldedName("が/x"));
  EXPECT_EQ(FoldedName("\xFF"
                       "a"),
            "\xFF"
            "A");
}

GTEST_TEST(Unicode, Utf16GoesBothWays) {
  const struct {
    std::string text, bytes;
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
