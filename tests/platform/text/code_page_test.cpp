#include "platform/text/code_page.h"

#include <optional>

#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

GTEST_TEST(CodePage, DecodesAndEncodes) {
  const struct {
    std::string bytes;
    std::string text;
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

}  // namespace
}  // namespace quendle::platform
