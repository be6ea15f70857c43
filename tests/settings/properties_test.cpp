#include <thread>

#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"
#include "support/settings.h"

namespace quendle {
namespace {

GTEST_TEST(ClsPropDefault, MakesBothFilesWithTheirInitialValues) {
  const test::TempFolder folder;
  const clsPropDefault settings({folder / "new/app", "/dl"}, true);
  EXPECT_TRUE(settings.CreationFailure().ok());
  EXPECT_EQ(test::ReadFile(folder / "new/app/mover.ini"),
            "[General]\r\nExtractTo=/dl\r\nCopyTo=/dl\r\nMoveTo=/dl\r\nAction=1\r\nAutoCompDir=1\r\n"
            "CheckArchive=0\r\nConfirmAlways=1\r\nConfirmOverwrite=0\r\nExtractType=1\r\nSmartRename=3\r\n"
            "SmartMakeDir=0\r\nOpenDir=1\r\nShowResult=1\r\nKeyCheck=0\r\nTest=0\r\n");
  EXPECT_EQ(
      test::ReadFile(folder / "new/app/test.ini"),
      "[General]\r\nExtractTo=/dl\r\nExtractType=1\r\nSmartRename=3\r\nOpenDir=1\r\nSmartMakeDir=0\r\n");
}

GTEST_TEST(ClsPropDefault, KeepsDestinationsThatReadingWouldStrip) {
  for (const std::string destination : {"/my downloads ", "\"/dl\"", "/\u00E9"}) {
    const test::TempFolder folder;
    const clsPropDefault settings({folder.path(), destination}, true);
    EXPECT_EQ(settings.EXTRACTTO() + settings.MOVETO(), destination + destination);
    const clsPropDefault elsewhere({folder.path(), "/other"}, true);
    EXPECT_EQ(elsewhere.COPYTO(), destination);
  }
}

// Both find no file; whoever comes second must not put the initial values over the first one's key.
GTEST_TEST(ClsPropDefault, TwoFirstStartsLoseNothing) {
  for (int round = 0; round < 20; ++round) {
    const test::TempFolder folder;
    const auto start = [&](bool is_second) {
      clsPropDefault settings({folder.path(), "/dl"}, true);
      is_second ? settings.FILER("/filer") : settings.FILERPARM("%1");
      EXPECT_TRUE(settings.CreationFailure().ok());
    };
    std::thread second(start, true);
    start(false);
    second.join();
    const clsPropDefault settings({folder.path(), "/other"}, false);
    ASSERT_EQ(settings.FILER() + settings.FILERPARM() + settings.MOVETO(), "/filer%1/dl") << round;
  }
}

GTEST_TEST(ClsPropDefault, NeverCompletesExistingFiles) {
  const test::TempFolder folder;
  test::WriteFile(folder / "mover.ini", "[General]\r\n");
  const clsPropDefault settings({folder.path(), folder.path()}, true);
  EXPECT_EQ(test::ReadFile(folder / "mover.ini"), "[General]\r\n");
  EXPECT_TRUE(fs::exists(folder / "test.ini"));
  EXPECT_FALSE(settings.SHOWRESULT() || settings.OPENDIR());
  EXPECT_TRUE(settings.AUTOCOMPDIR());
  for (const std::string& destination : {settings.EXTRACTTO(), settings.MOVETO(), settings.COPYTO()}) {
    EXPECT_EQ(destination, folder.path());
  }
}

GTEST_TEST(ClsPropDefault, SaysWhyFilesCannotBeMade) {
  const test::TempFolder folder;
  test::WriteFile(folder / "file", "x");
  const clsPropDefault settings({folder / "file/app", "/dl"}, true);
  EXPECT_FALSE(settings.CreationFailure().ok());
  EXPECT_NE(settings.CreationFailure().path.find(folder / "file"), std::string::npos);
  EXPECT_EQ(settings.MOVETO(), "/dl");
  const clsPropDefault odd({folder.path(), "/dl\xFF"}, true);
  EXPECT_EQ(odd.CreationFailure().reason, "the value of \"ExtractTo\" is not valid UTF-8");
  EXPECT_FALSE(fs::exists(folder / "mover.ini"));
}

GTEST_TEST(ClsPropDefault, ReadsOddValuesAsTheirFallbacks) {
  const struct {
    const char* line;
    std::int16_t action, rename, type;
    bool confirm;
  } rows[] = {
      {"Action=8", 1, 3, 1, false},          {"Action=6", 6, 3, 1, false},
      {"Action=2.5", 1, 3, 1, false},        {"Action=0", 0, 3, 1, false},
      {"Action=-1", 1, 3, 1, false},         {"action = 7 ", 7, 3, 1, false},
      {"SmartRename=0", 1, 3, 1, false},     {"SmartRename=2", 1, 2, 1, false},
      {"SmartRename=1.0", 1, 1, 1, false},   {"ExtractType=3", 1, 3, 1, false},
      {"ExtractType=2", 1, 3, 2, false},     {"ConfirmAlways=-1", 1, 3, 1, true},
      {"ConfirmAlways=yes", 1, 3, 1, false}, {"ExtractTo=", 1, 3, 1, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const test::Settings settings("", std::string("[General]\n") + row.line + "\n");
    EXPECT_EQ(settings.standard.ACTION(), row.action);
    EXPECT_EQ(settings.standard.SMARTRENAME(), row.rename);
    EXPECT_EQ(settings.standard.EXTRACTTYPE(), row.type);
    EXPECT_EQ(settings.standard.CONFIRMALWAYS(), row.confirm);
    EXPECT_EQ(settings.standard.EXTRACTTO(), "/standard");
  }
}

// Each property under its own key: a mix-up of two would show as a wrong neighbour.
GTEST_TEST(ClsPropDefault, WritesEveryKey) {
  test::Settings settings("");
  clsPropDefault& s = settings.standard;
  s.CONFIRMALWAYS(1), s.CHECKARCHIVE(0), s.CONFIRMOVERWRITE(1), s.SHOWRESULT(0), s.KEYCHECK(1), s.TEST(0);
  s.AUTOCOMPDIR(0), s.FILER("/usr/bin/thunar"), s.FILERPARM("-d %1"), s.ACTION(5), s.EXTRACTTO("/e");
  s.MOVETO("/m"), s.COPYTO("/c"), s.SMARTRENAME(2), s.EXTRACTTYPE(2), s.SMARTMAKEDIR(1), s.OPENDIR(0);
  EXPECT_EQ(
      test::ReadFile(settings.folder / "mover.ini"),
      "[General]\r\nConfirmAlways=1\r\nCheckArchive=0\r\nConfirmOverwrite=1\r\nShowResult=0\r\n"
      "KeyCheck=1\r\nTest=0\r\nAutoCompDir=0\r\nFILER=/usr/bin/thunar\r\nFILERPARM=-d %1\r\nAction=5\r\n"
      "ExtractTo=/e\r\nMoveTo=/m\r\nCopyTo=/c\r\nSmartRename=2\r\nExtractType=2\r\nSmartMakeDir=1\r\n"
      "OpenDir=0\r\n");
  EXPECT_TRUE(s.CONFIRMALWAYS() && s.CONFIRMOVERWRITE() && s.KEYCHECK() && s.SMARTMAKEDIR());
  EXPECT_FALSE(s.CHECKARCHIVE() || s.SHOWRESULT() || s.TEST() || s.AUTOCOMPDIR() || s.OPENDIR());
  EXPECT_EQ(s.FILER() + s.FILERPARM() + s.EXTRACTTO() + s.MOVETO() + s.COPYTO(),
            "/usr/bin/thunar-d %1/e/m/c");
  EXPECT_DEATH(s.SetMode(3), "mode");
}

constexpr const char* kStandard =
    "[General]\nAction=5\nSmartRename=2\nExtractType=2\nSmartMakeDir=1\nOpenDir=1\n"
    "MoveTo=/sm\nCopyTo=/sc\nExtractTo=/se\n";

GTEST_TEST(ClsPropItem, OwnAndInheritedBehaviour) {
  const struct {
    const char* keys;
    std::int16_t action, rename, type;
    bool make_dir;
  } rows[] = {
      {"ID=0\nAction=4\nSmartRename=3\nExtractType=1\nSmartMakeDir=0", 5, 2, 2, true},
      {"Action=4", 5, 2, 2, true},
      {"ID=1", 0, 1, 1, false},
      {"ID=1\nAction=4\nSmartRename=3\nExtractType=2\nSmartMakeDir=1", 4, 3, 2, true},
      {"ID=1\nAction=9\nSmartRename=0\nExtractType=3\nSmartMakeDir=x", 5, 2, 2, false},
      {"ID=1\nAction=0\nSmartRename=4\nExtractType=0", 0, 2, 2, false},
      {"ID=1\nAction=x\nSmartRename=-1", 5, 2, 1, false},
      {"ID=1\nAction=2.5\nSmartRename=1.5", 2, 2, 1, false},  // halves go to the even neighbour
      {"ID=-1\nAction=6", 6, 1, 1, false},
      {"ID=yes\nAction=6", 5, 2, 2, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.keys);
    test::Settings settings(std::string("[p]\n") + row.keys + "\n", kStandard);
    EXPECT_EQ(settings.profiles.ACTION("P"), row.action);
    EXPECT_EQ(settings.profiles.SMARTRENAME("P"), row.rename);
    EXPECT_EQ(settings.profiles.EXTRACTTYPE("P"), row.type);
    EXPECT_EQ(settings.profiles.SMARTMAKEDIR("P"), row.make_dir);
  }
}

GTEST_TEST(ClsPropItem, FoldersFallBack) {
  test::Settings settings("[own]\nMoveTo=/m\nCopyTo=/c\nExtractTo=/e\n[empty]\nMoveTo=\n", kStandard,
                          "[General]\nExtractTo=/t\n");
  const std::pair<const char*, std::string> rows[] = {
      {"own", "/m /c /e"},
      {"empty", "/sm /sc /se"},
      {"", "/sm /sc /se"},
      {"（なし）", std::string("/sm /sc /t") + test::kSeparator + "data"}};
  for (const auto& [title, folders] : rows) {
    const clsPropItem& items = settings.profiles;
    EXPECT_EQ(items.MOVETO(title) + " " + items.COPYTO(title) + " " + items.EXTRACTTO(title), folders)
        << title;
  }
}

GTEST_TEST(ClsPropItem, ProfilesAreSortedMadeRenamedAndRemoved) {
  test::Settings settings("stray\n[b]\nPattern=B\n\n[A]\nPattern=A\n[c]\nPattern=C");
  clsPropItem& profiles = settings.profiles;
  std::vector<std::string> titles;
  EXPECT_EQ(profiles.EnumSection(&titles), 3);
  EXPECT_EQ(titles, (std::vector<std::string>{"A", "b", "c"}));

  EXPECT_EQ(profiles.pattern("表[1]"), "");
  const std::string title = "表x";
  profiles.pattern(title, "能.*"), profiles.INCLUDE(title, "i;j"), profiles.EXCLUDE(title, "x");
  profiles.OPENFILE(title, "o.txt;p"), profiles.ID(title, 1), profiles.ACTION(title, 3);
  profiles.SMARTRENAME(title, 3), profiles.EXTRACTTYPE(title, 2), profiles.SMARTMAKEDIR(title, 1);
  profiles.OPENDIR(title, 0), profiles.MOVETO(title, "/m"), profiles.COPYTO(title, "/c");
  profiles.EXTRACTTO(title, "/e");
  profiles.RenameSection("B", "d");
  profiles.DelSection("a");
  profiles.OptimizeFile();
  EXPECT_EQ(test::ReadFile(settings.folder / "items.ini"),
            "[c]\r\nPattern=C\r\n[d]\r\nPattern=B\r\n[\x95\x5Cx]\r\nPattern=\x94\x5C.*\r\nInclude=i;j\r\n"
            "Exclude=x\r\nOpenFile=o.txt;p\r\nID=1\r\nAction=3\r\nSmartRename=3\r\nExtractType=2\r\n"
            "SmartMakeDir=1\r\nOpenDir=0\r\nMoveTo=/m\r\nCopyTo=/c\r\nExtractTo=/e\r\n");
  EXPECT_EQ(
      profiles.pattern(title) + profiles.INCLUDE(title) + profiles.EXCLUDE(title) + profiles.OPENFILE(title),
      "能.*i;jxo.txt;p");
}

}  // namespace
}  // namespace quendle
