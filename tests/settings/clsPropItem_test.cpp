#include "settings/clsPropItem.h"

#include "support/settings.h"

namespace quendle {
namespace {

constexpr const char* kStandard =
    "[General]\nAction=5\nSmartRename=2\nExtractType=2\nSmartMakeDir=1\nOpenDir=1\n"
    "MoveTo=/sm\nCopyTo=/sc\nExtractTo=/se\n";

GTEST_TEST(ClsPropItem, OwnAndInheritedBehaviour) {
  const struct {
    const char* keys;
    std::int16_t action;
    std::int16_t rename;
    std::int16_t type;
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
