#include <array>
#include <chrono>
#include <thread>

#include "platform/entries/entry_path.h"
#include "platform/entries/input_file.h"
#include "platform/entries/paths.h"
#include "platform/moving/merge.h"
#include "platform/services/known_folders.h"
#include "support/file_systems.h"
#include "support/outcome.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

using test::Native;

std::string Repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

GTEST_TEST(EntryPath, NamesBecomePathsBelowTheFolder) {
  const struct {
    std::string name;
    std::string posix;  // empty: refused
    std::string windows;
  } rows[] = {
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
  for (const auto& row : rows) {
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

GTEST_TEST(EntryPath, RootsAreLeftOut) {
  const std::pair<const char*, const char*> rows[] = {

      {"//server/share/x", "server/share/x"},
      {"C:\\x\\y", "x\\y"},

      {"///?/\\\\.\\c:/x", "x"},

      {"/C:D:/E:x", "x"},
      {"./C:/x", "x"},
      {"/.", ""},

      {"/../x", "../x"},
      {"C:/../D:/x", "../D:/x"},
      {"/a?/x", "a?/x"},
      {"//?b/x", "?b/x"},
      {"1:x/C:/y", "1:x/C:/y"}};
  for (const auto& [name, expected] : rows) EXPECT_EQ(WithoutRoot(name), expected) << name;
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
  const struct {
    const char* path;
    std::string target;
    bool inside;
  } rows[] = {
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
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.path) + " -> " + row.target);
    EXPECT_EQ(CheckLinkTarget(row.path, row.target).code, row.inside ? Code::kOk : Code::kRefused);
  }
}

const bool kIsWindows = test::kSeparator != '/';
const std::string kProgram = kIsWindows ? "tool.exe" : "tool";

GTEST_TEST(LongPath, ResolvesDots) {
  const test::TempFolder folder;
  const std::string& root = folder.path();
  test::WriteFile(folder / "Docs/表 Report.txt", "x");
  const std::string top = test::TextOf(fs::path(root).root_path());
  const struct {
    std::string path, expected;
  } rows[] = {
      {folder / "Docs/表 Report.txt", folder / "Docs/表 Report.txt"},
      {folder / "/Docs///", folder / "Docs"},
      {folder / "Docs/./../Docs/表 Report.txt", folder / "Docs/表 Report.txt"},
      {folder / "docs/none", ""},
      {folder / "none/../Docs/none", ""},
      {top, top},
      {top + "..", top},
      {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path;
  EXPECT_EQ(LongPath("."), CurrentFolder());
}

GTEST_TEST(SearchPath, SkipsTheCurrentFolderAndWhatCannotRun) {
  const test::TempFolder folder;
  test::WriteFile(folder / ("good/" + kProgram), "x");
  fs::permissions(folder / ("good/" + kProgram), fs::perms::owner_all);
  test::WriteFile(folder / ("locked/" + kProgram), "x");
  const std::string locked = folder / (kIsWindows ? "none" : "locked");  // rights do not count there
  fs::create_directories(folder / ("folder/" + kProgram));
  std::string list = ".";
  for (const std::string& entry :
       {std::string(), std::string("relative"), folder / "folder", locked, folder / "good"})
    list += (kIsWindows ? ";" : ":") + entry;
  const test::ScopedVariable path("PATH", list);
  EXPECT_EQ(FindOnSearchPath("tool"), folder / ("good/" + kProgram));
  EXPECT_EQ(FindOnSearchPath("other"), "");
}

GTEST_TEST(Paths, TellWhatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "d/e/f", "x");
  EXPECT_TRUE(IsFolder(folder / "d") && IsFolder(folder / "d/") && !IsFolder(folder / "d/e/f"));
  EXPECT_TRUE(IsTaken(folder / "d/e/f") && !IsTaken(folder / "d/none"));
  EXPECT_EQ(MakeFolder(folder / "d").code, Code::kExists);
  EXPECT_EQ(RemoveEmptyFolder(folder / "d/e").code, Code::kExists);
  EXPECT_FALSE(RemoveEmptyFolder(folder / "d/e/f").ok());
  EXPECT_FALSE(RemoveFile(folder / "d/e").ok());

  test::WriteFile(folder / "other/e/g", "x");
  EXPECT_FALSE(FoldersCollide(folder / "d", folder / "other"));
  test::WriteFile(folder / "other/e/f", "x");
  EXPECT_TRUE(FoldersCollide(folder / "d", folder / "other"));
  EXPECT_FALSE(FoldersCollide(folder / "d", folder / "none"));

  std::string temporary;
  ASSERT_TRUE(MakeTemporaryFile(folder / "d", &temporary).ok());
  EXPECT_TRUE(RemoveFile(temporary).ok());
  EXPECT_FALSE(IsTaken(temporary));
}

GTEST_TEST(CheckPlace, LooksAtTheNearestFolderThatIsThere) {
  const test::TempFolder folder;
  test::WriteFile(folder / "file", "x");
  EXPECT_TRUE(CheckPlace(folder / "new").ok());
  EXPECT_TRUE(CheckPlace(folder / "new/deep/表").ok());
  EXPECT_TRUE(CheckPlace(folder / "file").ok());
  EXPECT_TRUE(test::Fails(CheckPlace(folder / "file/new"), Code::kNotFolder, folder / "file"));
  EXPECT_FALSE(CheckPlace(folder / std::string(256, 'n')).ok());
}

GTEST_TEST(CheckNoLinks, FindsALinkOnTheWay) {
  const test::TempFolder folder;
  fs::create_directories(folder / "d/e");
  EXPECT_TRUE(CheckNoLinks(folder.path(), Native("d/e/none")).ok());
  if (!test::MakeLink(folder / "d", folder / "link")) GTEST_SKIP() << "no links can be made here";
  EXPECT_TRUE(test::Fails(CheckNoLinks(folder.path(), Native("link/e")), Code::kRefused, folder / "link"));
}

std::string IdentityOf(const std::string& path) {
  std::unique_ptr<InputFile> file;
  return InputFile::Open(path, &file).ok() ? file->Identity() : "not opened";
}

GTEST_TEST(InputFile, ReadsAtAnyPositionUpToTheEnd) {
  const test::TempFolder folder;
  const std::string path = folder / "表 é.bin";
  test::WriteFile(path, "0123456789");
  std::unique_ptr<InputFile> file;
  ASSERT_TRUE(InputFile::Open(path, &file).ok());
  EXPECT_EQ(file->Size(), 10U);
  const struct {
    std::uint64_t position;
    std::size_t size;
    const char* bytes;
  } rows[] = {{0, 3, "012"}, {8, 2, "89"}, {8, 5, "89"}, {10, 1, ""}, {1ULL << 40, 1, ""}, {2, 0, ""}};
  for (const auto& row : rows) {
    std::string bytes(row.size, '\0');
    std::size_t got = 99;
    EXPECT_TRUE(file->ReadAt(row.position, bytes.data(), row.size, &got).ok());
    EXPECT_EQ(bytes.substr(0, got), row.bytes) << row.position;
  }
  fs::rename(test::FsPath(path), test::FsPath(folder / "moved"));  // it is in nobody's way
}

GTEST_TEST(InputFile, WhatIsNoFileHasAReason) {
  const test::TempFolder folder;
  std::unique_ptr<InputFile> file;
  EXPECT_EQ(InputFile::Open(folder.path(), &file).code, Code::kIsFolder);
  EXPECT_TRUE(test::Fails(InputFile::Open(folder / "none", &file), Code::kNotFound, folder / "none"));
}

GTEST_TEST(InputFile, AnIdentityIsThatOfTheFileAsItIs) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a", "one");
  test::WriteFile(folder / "b", "one");
  const std::string before = IdentityOf(folder / "a");
  EXPECT_EQ(IdentityOf(folder / "a"), before);
  EXPECT_NE(IdentityOf(folder / "b"), before);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  test::WriteFile(folder / "a", "two");
  EXPECT_NE(IdentityOf(folder / "a"), before);
}

}  // namespace
}  // namespace quendle::platform
