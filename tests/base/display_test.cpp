#include "base/display.h"

namespace quendle {
namespace {

constexpr PathStyle kWindows = PathStyle::kWindows;
constexpr PathStyle kPosix = PathStyle::kPosix;

// Backslashes of Windows stand: a path must come back as it was typed, "C:\new" among them.
GTEST_TEST(Display, NamesCannotDeceive) {
  const struct {
    PathStyle style;
    std::string name;
    const char* shown;
  } rows[] = {
      {kPosix, "表\\x41", "表\\\\x41"},
      {kPosix, "a\xFF\\", "a\\xFF\\\\"},
      {kPosix, "a\nb\t\x1b[1m", "a\\nb\\t\\u{1B}[1m"},
      {kPosix, "x\u202Etxt.exe", "x\\u{202E}txt.exe"},
      {kPosix, "\\u{7F}\\xFF\r\x01", "\\\\u{7F}\\\\xFF\\r\\u{1}"},
      {kPosix, "a\u2028b\u0085", "a\\u{2028}b\\u{85}"},
      {kWindows, "C:\\new\\x41\\u{7F}", "C:\\new\\x41\\u{7F}"},
      {kWindows, "\\\\server\\a\\", "\\\\server\\a\\"},
      {kWindows, "x\u202Etxt.exe\n", "x‹202E›txt.exe‹A›"},
      {kWindows, "a\xED\xA0\x80", "a‹xED›‹xA0›‹x80›"},
      {kWindows, "‹A›", "‹2039›A›"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ForDisplay(row.name, row.style), row.shown);
    EXPECT_EQ(FromDisplay(row.shown, row.style), row.name);
  }
  EXPECT_EQ(WithEscapedBytes("表\\x41\n\u202E\xFF"), "表\\\\x41\n\u202E\\xFF");
}

GTEST_TEST(Display, WhatNoNameIsShownAsStands) {
  for (const std::string shown :
       {"a\\q", "a\\", "\\x4", "\\x41", "\\xff", "\\xG0", "\\u{41}", "\\u{7f}", "\\u{07F}", "\\u{7F",
        "\\u{110000}", "\\u{D800}", "\\u{", "\\u{0}", "a\nb"}) {
    EXPECT_EQ(FromDisplay(shown, kPosix), shown);
  }
  for (const std::string shown : {"‹", "‹›", "‹x›", "‹41›", "‹0A›", "‹xFFF›", "‹110000›", "‹0›", "a›"}) {
    EXPECT_EQ(FromDisplay(shown, kWindows), shown);
  }
  EXPECT_EQ(FromDisplay("\\\\xFF\\xFF\\q\\n", kPosix), "\\xFF\xFF\\q\n");
}

}  // namespace
}  // namespace quendle
