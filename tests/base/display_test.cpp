#include "base/display.h"

namespace quendle {
namespace {

GTEST_TEST(Display, NamesComeBackFromWhatIsShown) {
  for (const std::string name : {"a.txt", "", "日本\\表.txt", "a\\", "\\\\n", "a\nb\r\tc\x01\x7F",
                                 "a\xFF\xE3\x81", "\xC2\x85\u202E\u2028", "\\xFF", "\\u{7F}"}) {
    EXPECT_EQ(FromDisplay(ForDisplay(name)), name) << ForDisplay(name);
  }
}

GTEST_TEST(Display, WhatNoNameIsShownAsStands) {
  for (const std::string shown :
       {"a\\q", "a\\", "\\x4", "\\x41", "\\xff", "\\xG0", "\\u{41}", "\\u{7f}", "\\u{07F}", "\\u{7F",
        "\\u{110000}", "\\u{D800}", "\\u{", "\\u{0}", "a\nb"}) {
    EXPECT_EQ(FromDisplay(shown), shown);
  }
  EXPECT_EQ(FromDisplay("\\\\xFF\\xFF\\q\\n"), "\\xFF\xFF\\q\n");
}

}  // namespace
}  // namespace quendle
