#include "platform/entries/entry_path.h"

#include <array>

namespace quendle::platform {
namespace {

std::string Repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

GTEST_TEST(EntryPath, NamesBecomePathsBelowTheFolder) {
  struct Row {
    std::string name;
    std::string posix;  // empty: refused
    std::string windows;
  };
  const Row rows[] = {
      {"a/b.txt", "a/b.txt", "a/b.txt"},
      {"a\\b\\", "a/b", "a/b"},
      {"./a//b/.", "a/b", "a/b"},
      {"日本/😀.txt", "日本/😀.txt", "日本/😀.txt"},
      {"..a/b../...", "..a/b../...", "..a/b._/.._"},
      {".hidden", ".hidden", ".hidden"},

      {"..", "", ""},
      {"../x", "", ""},
      {"a/../b", "", ""},
      {"/x", "", ""},
      {"\\x", "", ""},
      {"C:x", "", ""},
      {"c:/x", "", ""},
      {"./C:/x", "", ""},
      {"", "", ""},
      {".", "", ""},
      {std::string("a\0b", 3), "", ""},
      {"a\xFF", "", ""},
      {"\xC0\xAE\xC0\xAE/x", "", ""},  // ".." in an overlong form

      {"a\n\x1B[2J\x7F", "a__[2J_", "a__[2J_"},
      {"a\u0085\u009Bb", "a__b", "a__b"},
      {"ab:c*?\"<>|", "ab:c*?\"<>|", "ab_c______"},
      {"x/C:/y", "x/C:/y", "x/C_/y"},
      {"a./b /c", "a./b /c", "a_/b_/c"},
      {".. /x", ".. /x", ".._/x"},

      {"con", "con", "_con"},
      {"x/Con.txt/y", "x/Con.txt/y", "x/_Con.txt/y"},
      {"con .a.b", "con .a.b", "_con .a.b"},
      {"nul..", "nul..", "_nul._"},
      {"aux:", "aux:", "aux_"},
      {"COM0", "COM0", "_COM0"},
      {"lpt9.x", "lpt9.x", "_lpt9.x"},
      {"COM¹", "COM¹", "_COM¹"},
      {"conin$", "conin$", "_conin$"},
      {"CONOUT$.x", "CONOUT$.x", "_CONOUT$.x"},
      {"com10", "com10", "com10"},
      {"console", "console", "console"},

      {Repeated("x", 255), Repeated("x", 255), Repeated("x", 255)},
      {Repeated("x", 256), "", ""},
      {Repeated("あ", 86), "", Repeated("あ", 86)},  // 258 bytes
      {Repeated("😀", 128), "", ""},                  // 256 units
      {"con." + Repeated("x", 251), "con." + Repeated("x", 251), ""},
      {Repeated("x/", 2047) + "x", Repeated("x/", 2047) + "x", Repeated("x/", 2047) + "x"},
      {Repeated("x/", 2047) + "xx", "", Repeated("x/", 2047) + "xx"},
      {Repeated("x/", 16000) + "x", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name.substr(0, 40));
    for (const NameRules rules : {NameRules::kPosix, NameRules::kWindows}) {
      const std::string& expected = rules == NameRules::kPosix ? row.posix : row.windows;
      std::string path;
      const Result result = SafeEntryPath(row.name, rules, &path);
      EXPECT_EQ(path, expected);
      EXPECT_EQ(result.code, expected.empty() ? Code::kRefused : Code::kOk);
      EXPECT_EQ(result.reason.empty(), !expected.empty());
    }
  }
}

GTEST_TEST(EntryPath, RestOfAName) {
  for (const auto& [rest, posix, windows] :
       {std::array{"C:x/a", "C:x/a", "C_x/a"}, {"", "", ""}, {"a//", "a", "a"}}) {
    std::string path = "x";
    EXPECT_TRUE(SafeRestOfPath(rest, NameRules::kPosix, &path).ok());
    EXPECT_EQ(path, posix);
    EXPECT_TRUE(SafeRestOfPath(rest, NameRules::kWindows, &path).ok());
    EXPECT_EQ(path, windows);
  }
  std::string path;
  EXPECT_EQ(SafeRestOfPath("../x", NameRules::kPosix, &path).path, "../x");
}

GTEST_TEST(EntryPath, LinksLeadInside) {
  struct Row {
    const char* path;
    std::string target;
    bool inside;
  };
  const Row rows[] = {
      {"link", "b/c.txt", true},
      {"a/link", "../b", true},
      {"a/link", "..", true},
      {"a/b/link", "./..//../c", true},
      {"a/link", ".hidden/..b", true},

      {"link", "..", false},
      {"a/link", "../../b", false},
      {"a/b/link", "b/../c", false},  // b may be a link to a place that lies less deep
      {"a/link", "/etc", false},
      {"a/link", "C:x", false},
      {"link", "..\\b", false},
      {"a/b/link", "b\\..\\c", false},
      {"a/b/c/link", "..\\../../c", false},  // where "..\.." is a name, it may be that of a link
      {"link", "", false},
      {"link", std::string("a\0b", 3), false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.path) + " -> " + row.target);
    EXPECT_EQ(CheckLinkTarget(row.path, row.target).code, row.inside ? Code::kOk : Code::kRefused);
  }
}

}  // namespace
}  // namespace quendle::platform
