#include "base/modString.h"

#include "support/file_systems.h"

namespace quendle {
namespace {

constexpr PathStyle kWindows = PathStyle::kWindows;
constexpr PathStyle kPosix = PathStyle::kPosix;

GTEST_TEST(ModString, SeparatorsAtTheEnd) {
  const struct {
    PathStyle style;
    const char *path, *added, *removed;
  } rows[] = {
      {kWindows, "", "", ""},
      {kWindows, "C:\\data", "C:\\data\\", "C:\\data"},
      {kWindows, "C:\\data\\", "C:\\data\\", "C:\\data"},
      {kWindows, "C:\\", "C:\\", "C:\\"},
      {kWindows, "\\\\", "\\\\", "\\\\"},
      {kWindows, "a\\", "a\\", "a\\"},
      {kWindows, "C:/x/", "C:/x/\\", "C:/x/"},
      {kPosix, "/data", "/data/", "/data"},
      {kPosix, "/", "/", "/"},
      {kPosix, "/a/", "/a/", "/a"},
      {kPosix, "a//", "a//", "a/"},
      {kPosix, "a\\", "a\\/", "a\\"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(AddBackslash(row.path, row.style), row.added);
    EXPECT_EQ(RemoveBackslash(row.path, row.style), row.removed);
  }
}

GTEST_TEST(ModString, AbsolutePaths) {
  const struct {
    PathStyle style;
    const char* path;
    const char* made;  // against the folder below; the path itself when it is absolute
  } rows[] = {
      {kWindows, "y.txt", "C:\\in\\y.txt"},
      {kWindows, "C:\\a b\\x", "C:\\a b\\x"},
      {kWindows, "D:x", "D:x"},
      {kWindows, "\\\\server\\share\\x", "\\\\server\\share\\x"},
      {kWindows, "", "C:\\in\\"},
      {kPosix, "x:y", "/in/x:y"},
      {kPosix, "/x", "/x"},
      {kPosix, "", "/in/"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(MakeAbsolute(row.path, row.style == kWindows ? "C:\\in" : "/in", row.style), row.made);
    EXPECT_EQ(IsAbsolutePath(row.path, row.style), std::string(row.path) == row.made);
  }
}

GTEST_TEST(ModString, WhatUsersWriteForAPath) {
  const struct {
    PathStyle style;
    const char *written, *plain;
    bool is_rooted;  // the plain path
    bool has_parent;
  } rows[] = {
      {kWindows, "C:/a\\b/../c", "C:\\a\\b\\..\\c", true, true},
      {kWindows, "\\\\?\\C:\\a/b", "C:\\a\\b", true, false},
      {kWindows, "//?/unc/server/share", "\\\\server\\share", true, false},
      {kWindows, "\\\\?\\Volume{1}\\a", "\\\\?\\Volume{1}\\a", true, false},
      {kWindows, "\\\\.\\C:\\a", "C:\\a", true, false},
      {kWindows, "\\\\.\\NUL", "\\\\.\\NUL", true, false},
      {kWindows, "//", "\\\\", false, false},
      {kWindows, "//server/share", "\\\\server\\share", true, false},
      {kWindows, "C:", "C:", false, false},
      {kWindows, "C:a/..", "C:a\\..", false, true},
      {kWindows, "NUL:/a", "NUL:\\a", false, false},
      {kWindows, "a:b\\c", "a:b\\c", false, false},
      {kWindows, "/a", "\\a", false, false},
      {kPosix, "/a\\..\\b", "/a\\..\\b", true, false},
      {kPosix, "//?/C:/a", "//?/C:/a", true, false},
      {kPosix, "C:/a/..", "C:/a/..", false, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.written);
    const std::string plain = PlainPath(row.written, row.style);
    EXPECT_EQ(plain, row.plain);
    EXPECT_EQ(IsRootedPath(plain, row.style), row.is_rooted);
    EXPECT_EQ(HasParentComponent(plain, row.style), row.has_parent);
  }
}

GTEST_TEST(ModString, Splitting) {
  const struct {
    const char *path, *folder, *name, *base, *extension;
  } rows[] = {
      {"/a/b.txt", "/a", "b.txt", "b", "txt"},
      {"/b", "", "b", "", "b"},
      {"/a/", "/a", "", "", ""},
      {"A.B.C", "", "A.B.C", "A.B", "C"},
      {"README", "", "README", "", "README"},
      {".profile", "", ".profile", "", "profile"},
      {"/x.y/a.", "/x.y", "a.", "a", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    const PathParts path = SplitPath(row.path, kPosix);
    EXPECT_EQ(path.folder, row.folder);
    EXPECT_EQ(path.name, row.name);
    const NameParts name = SplitName(path.name);
    EXPECT_EQ(name.base, row.base);
    EXPECT_EQ(name.extension, row.extension);
  }
  EXPECT_EQ(SplitPath("C:\\a/b\\c", kWindows).folder, "C:\\a/b");
}

GTEST_TEST(ModString, Quotes) {
  const std::pair<const char*, const char*> rows[] = {{"", ""},         {"a b", "\"a b\""}, {"\"a", "\"a\""},
                                                      {"a\"", "\"a\""}, {"\"a\"", "\"a\""}, {"\"", "\""}};
  for (const auto& [text, quoted] : rows) EXPECT_EQ(AddQuotes(text), quoted);
}

GTEST_TEST(ModString, Blanks) {
  const struct {
    std::string text;
    const char *trimmed, *left, *right;
  } rows[] = {
      {"　a　b\t", "a　b", "a　b\t", "　a　b"},
      {" \r\n　", "", "", ""},
      {"", "", "", ""},
      {std::string("\0x\x1f", 3), "x", "x\x1f", nullptr},
      {"、a、", "、a、", "、a、", "、a、"},  // U+3001 shares its first bytes with the ideographic blank
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TrimBlanks(row.text), row.trimmed);
    EXPECT_EQ(TrimBlanksLeft(row.text), row.left);
    if (row.right != nullptr) {
      EXPECT_EQ(TrimBlanksRight(row.text), row.right);
    }
  }
}

GTEST_TEST(ModString, Newlines) {
  const struct {
    const char *text, *normal;
    bool without_pair;
  } rows[] = {
      {"a\nb\n", "a\r\nb\r\n", false}, {"a\rb", "a\r\nb", false}, {"a\r\nb\nc", "a\r\nb\nc", false},
      {"a\rb\nc", "a\rb\nc", true},    {"a", "a", true},          {"", "", true},
  };
  for (const auto& row : rows) {
    std::string text = row.text;
    EXPECT_EQ(NormalizeNewlines(&text), row.without_pair) << row.text;
    EXPECT_EQ(text, row.normal);
  }
}

GTEST_TEST(ModString, Existence) {
  const test::TempFolder folder;
  test::WriteFile(folder / "file", "x");
  const bool has_links = kHostStyle == kPosix && test::MakeLink("nowhere", folder / "dangling") &&
                         test::MakeLink(folder.path(), folder / "link");
  const struct {
    std::string path;
    bool file, is_folder;
  } rows[] = {
      {folder / "file", true, false},
      {folder.path(), false, true},
      {folder / "none", false, false},
      {"", false, false},
      {folder / "file/below", false, false},
      {folder / "link", false, has_links},
      {folder / "dangling", has_links, false},
      {"sh", kHostStyle == kPosix, false},  // a program is found by its name
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FileExists(row.path), row.file) << row.path;
    EXPECT_EQ(FolderExists(row.path), row.is_folder) << row.path;
  }
}

GTEST_TEST(ModString, CharactersOfPaths) {
  const struct {
    PathStyle style;
    int mode;
    const char *text, *normal;
  } rows[] = {
      {kWindows, 0, "", ""},
      {kWindows, 0, "D:\\in<1>\\a?b", "D:\\in＜1＞\\a？b"},
      {kWindows, 0, "C:\\a:b", "C:\\a：b"},
      {kWindows, 0, "C:abc", "C：abc"},
      {kWindows, 0, "c:\\x,y", "c:\\x，y"},
      {kWindows, 0, "C:", "C："},
      {kWindows, 0, "[:\\x", "[：\\x"},
      {kWindows, 0, "1:\\x", "1：\\x"},
      {kWindows, 0, ",:;*?<>|/\"\\０９", "，：；＊？＜＞｜／’\\０９"},
      {kWindows, 0, "\xE3\x80:", "\xE3\x80："},
      {kWindows, 1, "a１b", "a１b"},
      {kWindows, 1, "x０１２３４５６７８９", "x0123456789"},
      {kWindows, 1, "a：１日２", "a：１日2"},
      {kWindows, 1, "C:\\日本\\x１２", "C12"},  // a path, cut as bare names are
      {kWindows, 2, "C:\\１:a２\\３", "C:\\1：a2\\3"},
      {kPosix, 0, "D:\\in<1>\\a?b", "D:\\in<1>\\a?b"},
      {kPosix, 1, "a\\b１", "a\\b1"},
      {kPosix, 1, "/日/x１２", "/12"},
      {kPosix, 2, "/１/a:２", "/1/a:2"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " " + std::to_string(row.mode));
    EXPECT_EQ(NormalizePathChars(row.text, row.mode, row.style), row.normal);
  }
  EXPECT_DEATH(NormalizePathChars("a", 3, kPosix), "mode");
  EXPECT_DEATH(NormalizePathChars("a", -1, kWindows), "mode");
}

GTEST_TEST(ModString, TitlesAsNames) {
  const struct {
    PathStyle style;
    const char *title, *name;
  } rows[] = {
      {kPosix, "../a/b", "..／a／b"},
      {kPosix, "a:b\\c", "a:b\\c"},
      {kPosix, ".", ""},
      {kPosix, "..", ""},
      {kPosix, "", ""},
      {kPosix, "...", "..."},
      {kWindows, "a/b:１", "a／b：１"},
      {kWindows, "C:\\x\\..", "C：＼x＼.."},
      {kWindows, "..", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(TitleAsName(row.title, row.style), row.name) << row.title;
}

}  // namespace
}  // namespace quendle
