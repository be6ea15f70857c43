#include "core/edit_draft.h"

#include <cstring>
#include <functional>
#include <thread>

#include "base/text.h"
#include "core/edit_keys.h"
#include "core/pattern_problem.h"
#include "resources/string_table.h"
#include "settings/setting_keys.h"
#include "support/settings.h"

namespace quendle {
namespace {

using enum TextId;

platform::Result Save(EditDraft& draft) {
  EditDraft::Comparison comparison;
  platform::Result saved = draft.Save(&comparison);
  EXPECT_TRUE(comparison.IsSettled());
  return saved;
}

EditDraft DraftOf(const test::Settings& settings, EditMode mode, const std::string& title = "A") {
  return EditDraft(mode, title, {settings.profiles, settings.standard, settings.test});
}

GTEST_TEST(EditDraft, NumbersCountAsTheSettingsReadThem) {
  for (const std::string id : {"0", "1", "-1", "yes"}) {
    for (const std::string text : {"", "0", "1", "2", "3", "7", "8", "-1", "1.4", "2.6", "x", "True"}) {
      SCOPED_TRACE(id + " " + text);
      std::string keys;
      for (const char* key :
           {"Action", "SmartRename", "ExtractType", "SmartMakeDir", "OpenDir", "AutoCompDir"}) {
        keys.append(key).append("=").append(text).append("\n");
      }
      test::Settings settings("[A]\nID=" + id + "\n" + keys, "[General]\n" + keys);
      const auto expect_same = [](const EditDraft& draft, const auto& read) {
        for (const TextId key : {kAction, kSmartRename, kExtractType, kOpenDir}) {
          EXPECT_EQ(draft.Number(key), read.Number(key)) << LoadText(key);
        }
      };
      expect_same(DraftOf(settings, EditMode::kProfile), settings.profiles.Values("A"));
      expect_same(DraftOf(settings, EditMode::kStandard), settings.standard.Values());
      EXPECT_EQ(DraftOf(settings, EditMode::kGeneral).Number(kAutoCompDir), settings.standard.AUTOCOMPDIR());
    }
  }
}

GTEST_TEST(EditDraft, EveryTextComesBackAsItWasTyped) {
  for (const char* text : {"plain", "  blanks\t", "\"quoted\"", "'quoted'", "\"half", "a=b;c", ";c", "[x]",
                           "\"", "日本語 表", "한국어 𠮷 ¥ ‾ 〜 — é", "%1", "a\\b\\"}) {
    SCOPED_TRACE(text);
    const test::Settings settings("[A]\nOther=1\n[B]\nPattern=\x95\x5C\n");
    EditDraft draft = DraftOf(settings, EditMode::kNew, "N");
    draft.SetText(kPattern, text);
    draft.SetText(kMoveTo, test::Rooted("/").append(text));
    ASSERT_TRUE(Save(draft).ok());
    const EditDraft read = DraftOf(settings, EditMode::kProfile, "N");
    EXPECT_EQ(read.Text(kPattern), text);
    // Some characters are in no Windows path, and are replaced as it is typed.
    if (test::kSeparator == '/' || std::strpbrk(text, "\";") == nullptr) {
      EXPECT_EQ(read.Text(kMoveTo), test::Rooted("/").append(text));
    }
    EXPECT_EQ(DraftOf(settings, EditMode::kProfile, "B").Text(kPattern), "表");
  }
}

GTEST_TEST(EditDraft, OnlyWhatChangedIsWritten) {
  const std::string before =
      "[A]\nOther=x\nID=-1\nAction=9\nMoveTo=rel/../x\nOpenDir=True\nPattern= a \n\n[B]\nID=0\n";
  const struct {
    const char* name;
    std::function<void(EditDraft&)> change;
    const char* old_text;
    const char* new_text;
  } rows[] = {
      {"the same again",
       [](EditDraft& draft) {
         for (const TextId key : draft.Keys()) {
           draft.SetText(key, draft.Text(key));
           if (KeyOf(key).kind != SettingKey::Kind::kText && KeyOf(key).kind != SettingKey::Kind::kFolder) {
             draft.SetNumber(key, draft.Number(key));
           }
         }
       },
       "", ""},
      {"there and back",
       [](EditDraft& draft) {
         draft.SetNumber(kId, 0);
         draft.SetNumber(kId, 1);
         draft.SetNumber(kOpenDir, 0);
         draft.SetNumber(kOpenDir, 1);
       },
       "", ""},
      {"a number", [](EditDraft& draft) { draft.SetNumber(kAction, 6); }, "Action=9", "Action=6"},
      {"a text to nothing", [](EditDraft& draft) { draft.SetText(kPattern, ""); }, "Pattern= a ", "Pattern="},
      {"a missing key", [](EditDraft& draft) { draft.SetText(kInclude, "*.c"); }, " a \n",
       " a \nInclude=*.c\n"},
      {"back to the standard", [](EditDraft& draft) { draft.SetNumber(kId, 0); }, "ID=-1", "ID=0"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::Settings settings(before);
    EditDraft draft = DraftOf(settings, EditMode::kProfile);
    row.change(draft);
    EXPECT_TRUE(Save(draft).ok());
    std::string expected = before;
    const std::string old_text = row.old_text;
    if (!old_text.empty()) expected.replace(expected.find(old_text), old_text.size(), row.new_text);
    EXPECT_EQ(test::ReadFile(settings.folder / "items.ini"), expected);
    EXPECT_EQ(draft.IsSaved(), !old_text.empty());
  }
}

GTEST_TEST(EditDraft, OwnSettingsBeginWithTheInheritedOnes) {
  const test::Settings settings("[A]\nSmartRename=2\n", "[General]\nAction=5\nOpenDir=1\nSmartRename=1\n");
  EditDraft draft = DraftOf(settings, EditMode::kProfile);
  EXPECT_TRUE(draft.IsInherited(kAction));
  EXPECT_EQ(draft.Number(kSmartRename), 1);
  draft.SetNumber(kId, 1);
  EXPECT_FALSE(draft.IsInherited(kAction));
  EXPECT_EQ(draft.Number(kAction), 5);
  EXPECT_EQ(draft.Number(kSmartRename), 2);
  EXPECT_EQ(draft.ChangedKeys(), (std::vector<TextId>{kId, kAction, kOpenDir}));
  draft.SetNumber(kId, 0);
  EXPECT_EQ(draft.ChangedKeys(), std::vector<TextId>());
}

GTEST_TEST(EditDraft, FoldersStandForOthersAndTakeTheTitle) {
  const test::Settings settings("[a/b]\n[A]\n", "[General]\nMoveTo=/m\n", "[General]\nExtractTo=/t\n");
  const EditDraft profile = DraftOf(settings, EditMode::kProfile, "a/b");
  EXPECT_EQ(profile.InheritedFolder(kMoveTo), "/m");
  EXPECT_EQ(profile.InheritedFolder(kCopyTo), "/standard");
  EXPECT_EQ(profile.PickedFolder("/x"), std::string("/x") + test::kSeparator + "a／b");
  EXPECT_EQ(DraftOf(settings, EditMode::kNew, "..").PickedFolder("/x"), "/x");
  const EditDraft standard = DraftOf(settings, EditMode::kStandard);
  EXPECT_EQ(standard.InheritedFolder(kMoveTo), "/standard");
  EXPECT_EQ(standard.PickedFolder("/x"), "/x");
  const test::Settings plain("[A]\n", "[General]\nAutoCompDir=0\n");
  EXPECT_EQ(DraftOf(plain, EditMode::kProfile).PickedFolder("/x"), "/x");
}

GTEST_TEST(EditDraft, ProblemsAreFound) {
  const struct {
    TextId key;
    std::string text;
    const char* problem;  // its beginning
    bool can_be_saved;
  } rows[] = {
      {kMoveTo, "", "", false},
      {kMoveTo, test::Rooted("/a/..b/c"), "", false},
      {kMoveTo, "a/b", "フォルダが絶対パス", false},
      {kMoveTo, test::Rooted("/a/../b"), "フォルダの指定に「..」", false},
      {kMoveTo, test::Rooted("/").append(1018, 'x'), "", false},
      {kMoveTo, test::Rooted("/").append(1021, 'x'), "長すぎて", false},
      {kInclude, "*.c\n*.d", "改行", false},
      {kExclude, std::string(1022, 'x'), "長すぎて", false},
      {kInclude, ".*\\.c;;a/.*;", "", false},
      {kInclude, "*.c", "*.c: 1 文字目: 「*」", true},
      {kExclude, ".*;a(", "a(: 2 文字目: 閉じ括弧", true},
      {kOpenFile, "*.c", "", false},
      {kPattern, "日本(", "3 文字目: 閉じ括弧", true},
  };
  const test::Settings settings("[A]\n");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text.substr(0, 20));
    EditDraft draft = DraftOf(settings, EditMode::kProfile);
    draft.SetText(row.key, row.text);
    const auto problem = draft.ProblemOf(row.key);
    EXPECT_EQ(problem.has_value(), *row.problem != '\0');
    if (!problem) continue;
    EXPECT_EQ(problem->text.rfind(row.problem, 0), 0U) << problem->text;
    EXPECT_EQ(problem->can_be_saved, row.can_be_saved);
  }
  EditDraft general = DraftOf(settings, EditMode::kGeneral);
  general.SetText(kArchiveCharset, "EUC-JP");
  EXPECT_FALSE(general.ProblemOf(kArchiveCharset).has_value());
  general.SetText(kArchiveCharset, "EUC-XX");
  EXPECT_TRUE(general.ProblemOf(kArchiveCharset).value().can_be_saved);
}

GTEST_TEST(EditDraft, PatternProblemsSpeakTheUsersLanguage) {
  for (const char* pattern : {"a)", "[a", "*a", "a\\", "[z-a]", "a{2,1}", "a{99999}", "(a"}) {
    const std::string problem = PatternProblem(pattern);
    EXPECT_NE(problem.find(" 文字目: "), std::string::npos) << pattern;
    const std::string reason = problem.substr(problem.find(": ") + 2);
    EXPECT_GE(static_cast<unsigned char>(reason.front()), 0x80) << problem;
  }
  EXPECT_EQ(PatternProblem("(?<n>a)|(?<n>b)").rfind("13 文字目: ", 0), 0U)
      << PatternProblem("(?<n>a)|(?<n>b)");
}

// A value that is too long for the settings is not cut by editing another one, and can be made shorter.
GTEST_TEST(EditDraft, LongValuesAreShownWhole) {
  const std::string longest(3000, 'x');
  const test::Settings settings("[A]\nInclude=" + longest + "\n");
  EXPECT_EQ(DraftOf(settings, EditMode::kProfile).Text(kInclude), longest);
}

// Each takes the text of a key and adds to it, and begins anew when the text was no longer what it took.
GTEST_TEST(EditDraft, NobodyWritesBetweenComparingAndSaving) {
  const test::Settings settings("[A]\nInclude=\n");
  constexpr int kRounds = 40;
  const auto write = [&settings](const char* letter) {
    for (int done = 0; done < kRounds;) {
      EditDraft draft = DraftOf(settings, EditMode::kProfile);
      draft.SetText(kInclude, draft.Text(kInclude) + letter);
      EditDraft::Comparison comparison;
      if (!draft.Save(&comparison).ok()) break;
      if (comparison.IsSettled()) ++done;
    }
  };
  std::thread other(write, "c");
  write("p");
  other.join();
  EXPECT_EQ(DraftOf(settings, EditMode::kProfile).Text(kInclude).size(), 2U * kRounds);
}

GTEST_TEST(EditDraft, FailureSaysWhereAndWhyAndWritesNothing) {
  const test::Settings settings("[A]\n\n");
  EditDraft draft = DraftOf(settings, EditMode::kProfile);
  draft.SetText(kPattern, "p");
  draft.SetText(kInclude, "a\nb");
  const platform::Result failure = Save(draft);
  EXPECT_EQ(failure.path, settings.folder / "items.ini");
  EXPECT_EQ(failure.reason, "the value contains a line break or NUL");
  EXPECT_FALSE(draft.IsSaved());
  EXPECT_EQ(draft.ChangedKeys(), (std::vector<TextId>{kPattern, kInclude}));
  EXPECT_EQ(test::ReadFile(settings.folder / "items.ini"), "[A]\n\n");
}

}  // namespace
}  // namespace quendle
