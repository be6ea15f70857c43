#include "core/profile_list.h"

#include "support/settings.h"

namespace quendle {
namespace {

const std::string kStandard = "[General]\nAction=5\nExtractTo=/se\nMoveTo=/sm\nCopyTo=/sc\n";

std::string Titles(const ProfileList& list) {
  std::string titles;
  for (const ProfileRow& row : list.Rows()) titles += row.title + ";";
  return titles;
}

GTEST_TEST(ProfileList, TitlesComeBackOrAreRefusedWithAReason) {
  const struct {
    const char* name;
    std::string title;
    const char* problem;  // a part of it; empty: it may be given
  } rows[] = {
      {"begins with a bracket", "[abc", ""},
      {"a bracket within", "a]b[c", ""},
      {"ends in a bracket", "a]", "「]」"},
      {"signs", ";a=b#\"'c%1%2", ""},
      {"blank at the front", " a", "空白"},
      {"blank at the end", "a\t", "空白"},
      {"ideographic blanks at the ends", "　a　", ""},
      {"blanks only", " \t　", "空白"},
      {"empty", "", "入力"},
      {"line break", "a\nb", "改行"},
      {"carriage return at the end", "a\r", "改行"},
      {"NUL", std::string("a\0b", 3), "改行"},
      {"600 bytes", std::string(600, 'x'), ""},
      {"outside CP932, and wave dashes", "é😀한〜−～", ""},
      {"backslashes", "a\\b¥", ""},
      {"the entry for no profile", "（なし）", "（なし）"},
      {"not UTF-8", "a\xFF", "正しくない"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string problem = TitleProblem(row.title);
    EXPECT_EQ(problem.empty(), *row.problem == '\0') << problem;
    EXPECT_NE(problem.find(row.problem), std::string::npos) << problem;
    if (!problem.empty()) continue;
    test::Settings settings("[m]\r\nPattern=m\r\n", kStandard);
    settings.profiles.pattern(row.title, "p");
    ProfileList list(settings.profiles, settings.standard);
    ASSERT_TRUE(list.Sort().ok());
    const std::string copy = list.TitleForCopy(row.title);
    EXPECT_TRUE(list.Duplicate(row.title, copy).ok());
    EXPECT_TRUE(list.Rename(row.title, "zz").ok());
    EXPECT_TRUE(list.Rename("zz", row.title).ok());
    EXPECT_TRUE(list.Remove({"m"}).ok());
    ASSERT_TRUE(list.Read().ok());
    ASSERT_EQ(list.Rows().size(), 2U);
    EXPECT_EQ(list.Rows()[0].title, row.title);
    EXPECT_EQ(list.Rows()[1].title, copy);
    for (const ProfileRow& read : list.Rows()) EXPECT_EQ(read.pattern, "p");
    EXPECT_TRUE(list.Remove({row.title, copy}).ok());
    ASSERT_TRUE(list.Read().ok());
    EXPECT_EQ(Titles(list), "");
  }
}

// The rows are read all at once, and must say what the store says one by one.
GTEST_TEST(ProfileList, RowsAreWhatTheStoreSays) {
  test::Settings settings(
      "[b]\nPattern=1\n[A]\nPattern=\" x \"\nid=1\nACTION=2.4\nMoveTo=/am\nPattern=2\n[a]\nPattern=hidden\n"
      "[c]\nID=1\nAction=9\nExtractTo=/ce\n[d]\nID=true\n[e]\nID=0\nAction=7\nCopyTo=" +
          std::string(2000, 'y').append("\n[B]\nID=1\n"),
      kStandard);
  ProfileList list(settings.profiles, settings.standard);
  ASSERT_TRUE(list.Read().ok());
  EXPECT_EQ(Titles(list), "A;b;c;d;e;");
  const std::vector<bool> inherits = {false, true, true, false, true};
  for (std::size_t i = 0; i < list.Rows().size(); ++i) {
    const ProfileRow& row = list.Rows()[i];
    SCOPED_TRACE(row.title);
    const clsPropItem& items = settings.profiles;
    EXPECT_EQ(row.pattern, items.pattern(row.title));
    EXPECT_EQ(row.action, items.ACTION(row.title));
    EXPECT_EQ(row.inherits_action, inherits[i]);
    const std::string folders[] = {items.EXTRACTTO(row.title), items.MOVETO(row.title),
                                   items.COPYTO(row.title)};
    const int bits[] = {1, 2, 4};
    for (std::size_t kind = 0; kind < kActionRows; ++kind) {
      EXPECT_EQ(row.folders[kind].path, folders[kind]);
      EXPECT_EQ(row.folders[kind].is_inherited, folders[kind].starts_with("/s"));
      EXPECT_EQ(row.folders[kind].is_used, (row.action & bits[kind]) != 0);
    }
  }
}

GTEST_TEST(ProfileList, TellsWhyANameDoesNotMatch) {
  test::Settings settings(
      "[1]\nPattern=.*\\.zip\n[2]\nPattern=zip$\n[3]\nPattern=a|a\\.zip\n[4]\nPattern=A\\.ZIP\n[5]\nPattern=("
      "\n"
      "[6]\nPattern=\n[7]\nPattern=x*\n[8]\nPattern=" +
          std::string(1100, 'p').append("\n[9]\nPattern=(a+)+\\d\n"),
      kStandard);
  ProfileList list(settings.profiles, settings.standard);
  ASSERT_TRUE(list.Read().ok());
  using enum NameMatch::Kind;
  const std::pair<std::string, std::vector<NameMatch::Kind>> rows[] = {
      {"", std::vector<NameMatch::Kind>(9, kNotTested)},
      {"a.Zip", {kMatches, kPartOnly, kPartOnly, kMatches, kError, kNoMatch, kNoMatch, kError, kNoMatch}},
      {std::string(200, 'a').append("\xFF"),
       {kNoMatch, kNoMatch, kPartOnly, kNoMatch, kError, kNoMatch, kNoMatch, kError, kError}},
  };
  for (const auto& [name, kinds] : rows) {
    SCOPED_TRACE(name);
    list.TestName(name);
    for (std::size_t i = 0; i < kinds.size(); ++i) EXPECT_EQ(list.MatchOf(i).kind, kinds[i]) << i + 1;
  }
  EXPECT_EQ(list.MatchOf(4).reason, "1 文字目: 閉じ括弧「)」がありません");
  EXPECT_EQ(list.MatchOf(7).reason, "長すぎて、後で全体を読み込めません");
  EXPECT_EQ(list.MatchOf(8).reason, "照合に時間がかかりすぎます");
  list.TestName("a.zip");
  EXPECT_EQ(list.MatchCount(), 2);
  EXPECT_EQ(list.MatchOf(3).rank, 2);
}

GTEST_TEST(ProfileList, FiltersWhatIsInUse) {
  test::Settings settings("[Ab]\nPattern=x\\.y\nID=1\nAction=1\nExtractTo=/Out\nMoveTo=/unused\n[c]\n",
                          kStandard);
  ProfileList list(settings.profiles, settings.standard);
  ASSERT_TRUE(list.Read().ok());
  using Found = std::vector<std::size_t>;
  const std::vector<std::pair<std::string, Found>> rows = {
      {"", {0, 1}}, {"aB", {0}}, {"X\\.", {0}}, {"/oUT", {0}}, {"/unused", {}}, {"/sc", {1}}, {"q", {}}};
  for (const auto& [text, found] : rows) EXPECT_EQ(list.Filtered(text), found) << text;
}

GTEST_TEST(ProfileList, CommandsWorkOnWhatIsThereNow) {
  test::Settings settings("[a]\nPattern=1\n[b]\nPattern=2\n[b (2)]\n[C]", kStandard);
  ProfileList list(settings.profiles, settings.standard);
  ASSERT_TRUE(list.Read().ok());
  EXPECT_EQ(list.TitleForCopy("b"), "b (3)");
  EXPECT_EQ(list.TitleForCopy("B (2)"), "B (3)");
  EXPECT_EQ(list.TitleForCopy("(2)"), "(2) (2)");
  EXPECT_NE(list.NewTitleProblem("B"), "");
  EXPECT_EQ(list.NewTitleProblem("B", "b"), "");
  EXPECT_NE(list.NewTitleProblem("A", "b"), "");
  test::WriteFile(settings.profiles.FileName(), "[A]\nPattern=other\n[b]\nPattern=2\nOpenFile=last line");
  EXPECT_EQ(list.Rename("a", "x").code, platform::Code::kNotFound);
  EXPECT_EQ(list.Duplicate("a", "x").code, platform::Code::kNotFound);
  EXPECT_TRUE(list.Remove({"a", "gone"}).ok());
  EXPECT_TRUE(list.Duplicate("b", "0").ok());
  ASSERT_TRUE(list.Read().ok());
  EXPECT_EQ(Titles(list), "0;A;b;");
  EXPECT_EQ(settings.profiles.OPENFILE("0"), "last line");
}

// Before the user adds a profile to a file that must not be rewritten, or wonders why one does nothing.
GTEST_TEST(ProfileList, TellsWhatIsToBeMended) {
  const struct {
    const char* items;
    const char* problem;  // the beginning
  } rows[] = {{"[a]\r\nPattern=a\r\n[b]\r\n", ""},
              {"[a]\r\nPattern=a\n[b]\r\n", "items.ini: 3 行目"},
              {"\xEF\xBB\xBF[\xEF\xBE\x83\xEF\xBD\xA9]\r\n", ""},  // "ﾃｩ", and nothing else
              {"[a]\r\nMoveTo=/x\ty\r\n[b]\r\nMoveTo=/\xC3\xA9\r\n", "「a」は使えません：フォルダ"}};
  for (const auto& row : rows) {
    test::Settings settings(row.items, kStandard);
    ProfileList list(settings.profiles, settings.standard);
    ASSERT_TRUE(list.Read().ok());
    EXPECT_TRUE(list.Problem().starts_with(row.problem)) << list.Problem();
    EXPECT_EQ(list.Problem().empty(), *row.problem == '\0');
  }
}

}  // namespace
}  // namespace quendle
