#include "base/display.h"

namespace quendle {
namespace {

GTEST_TEST(Display, NamesCannotDeceive) {
  const struct {
    std::string name;
    const char* shown;
    const char* in_json;  // where bytes are escaped
  } rows[] = {
      {"a.txt", "a.txt", "a.txt"},
      {"表\\x41", "表\\\\x41", "表\\\\x41"},
      {"a\xFF\\", "a\\xFF\\\\", "a\\xFF\\\\"},
      {"a\nb\t\x1b[1m", "a\\nb\\t\\u{1B}[1m", "a\nb\t\x1b[1m"},
      {"x\u202Etxt.exe", "x\\u{202E}txt.exe", "x\u202Etxt.exe"},
      {"\\u{7F}\\xFF\r\x01", "\\\\u{7F}\\\\xFF\\r\\u{1}", "\\\\u{7F}\\\\xFF\r\x01"},
      {"a\u2028b\u0085", "a\\u{2028}b\\u{85}", "a\u2028b\u0085"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ForDisplay(row.name, PathStyle::kPosix), row.shown);
    EXPECT_EQ(FromDisplay(row.shown, PathStyle::kPosix), row.name);
    EXPECT_EQ(WithEscapedBytes(row.name), row.in_json);
  }
}

GTEST_TEST(Display, WhatNoNameIsShownAsStands) {
  for (const std::string shown :
       {"a\\q", "a\\", "\\x4", "\\x41", "\\xff", "\\xG0", "\\u{41}", "\\u{7f}", "\\u{07F}", "\\u{7F",
        "\\u{110000}", "\\u{D800}", "\\u{", "\\u{0}", "a\nb"}) {
    EXPECT_EQ(FromDisplay(shown, PathStyle::kPosix), shown);
  }
  EXPECT_EQ(FromDisplay("\\\\xFF\\xFF\\q\\n", PathStyle::kPosix), "\\xFF\xFF\\q\n");
}

// A path must come back as it was typed, "C:\new" among them.
GTEST_TEST(Display, BackslashesOfWindowsStand) {
  const struct {
    std::string name;
    const char* shown;
  } rows[] = {
      {"C:\\new\\x41\\u{7F}", "C:\\new\\x41\\u{7F}"},
      {"\\\\server\\a\\", "\\\\server\\a\\"},
      {"x\u202Etxt.exe\n", "x‹202E›txt.exe‹A›"},
      {"a\xED\xA0\x80", "a‹xED›‹xA0›‹x80›"},
      {"‹A›", "‹2039›A›"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ForDisplay(row.name, PathStyle::kWindows), row.shown);
    EXPECT_EQ(FromDisplay(row.shown, PathStyle::kWindows), row.name);
  }
  for (const std::string shown : {"‹", "‹›", "‹x›", "‹41›", "‹0A›", "‹xFFF›", "‹110000›", "‹0›", "a›"}) {
    EXPECT_EQ(FromDisplay(shown, PathStyle::kWindows), shown);
  }
}

}  // namespace
}  // namespace quendle
