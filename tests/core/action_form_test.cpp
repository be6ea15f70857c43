#include "core/action_form.h"

#include "base/display.h"
#include "platform/entries/durable_file.h"
#include "support/picture.h"
#include "support/run.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

std::string Replaced(std::string text, const std::string& part, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size()) {
    text.replace(at, part.size(), by);
  }
  return text;
}

// What the system says of something that is not there.
std::string MissingWords(const std::string& path) {
  std::string bytes;
  return English(platform::ReadWholeFile(path, &bytes).reason);
}

// A run over paths in a folder of its own, for which "~" stands. They are made unless they begin with "gone", as
// folders if with "dir".
struct Bench {
  Bench(const Texts& names, const std::string& items, const std::string& standard = "",
        std::optional<std::string> profile = std::nullopt)
      : run(InFolder(items), "[General]\n" + InFolder(standard), Paths(names)),
        form({*run.mover, run.file_info, run.user}, std::move(profile)) {
    run.mover->SHOWUSERFORM = true;
    for (const std::string& name : names) {
      if (!name.starts_with("gone")) Make({name.starts_with("dir") ? name + "/" : name});
    }
  }

  std::string InFolder(const std::string& text) const {
    return test::Native(Replaced(text, "~", folder.path()));
  }
  Texts Paths(const Texts& names) const {
    Texts paths;
    for (const std::string& name : names) paths.push_back(folder / name);
    return paths;
  }
  void Make(const Texts& names) const {
    for (const std::string& name : names) {
      name.ends_with('/') ? (void)fs::create_directories(folder / name)
                          : test::WriteFile(folder / name, name);
    }
  }
  void SetItems(const std::string& items) const {
    test::WriteFile(run.settings.folder / "items.ini", InFolder(items));
  }
  bool IsThere(const std::string& name) const { return fs::exists(fs::symlink_status(folder / name)); }
  // The field without the folder.
  std::string Shown(std::size_t row) const {
    return test::Slashed(Replaced(form.View().rows[row].folder, folder.path(), "~"));
  }

  const test::TempFolder folder;
  test::Run run;
  ActionForm form;
};

const std::string kMove = "[one]\nPattern=.*\\.(txt|both)\nID=1\nAction=2\nMoveTo=~/m\nSmartRename=3\n";
const std::string kThree =
    kMove + "[three]\nPattern=.*both\nID=1\nAction=5\n[two]\nPattern=.*both\nID=1\nAction=0\n";

GTEST_TEST(ActionForm, PassesOverWhatIsMissing) {
  Bench bench({"gone", "a.txt", "gone/b", "dir", "c.none", "d.txt"}, kMove);
  for (const char* title : {"2/6 - one", "4/6 - フォルダ", "5/6 - 未登録ファイル - （なし）"}) {
    ASSERT_TRUE(bench.form.Advance());
    EXPECT_EQ(bench.form.View().title, title);
    if (bench.run.mover->CMDLINECURRENT < 5) bench.form.Skip();
  }
  bench.form.SkipRest();
  EXPECT_FALSE(bench.form.Advance());
  EXPECT_FALSE(bench.form.Advance());
  Texts undone;
  for (const std::string& line : bench.form.Undone())
    undone.push_back(line.substr(bench.folder.path().size() + 1));
  EXPECT_EQ(undone, (Texts{"gone: " + MissingWords(bench.folder / "gone"), "a.txt: skipped",
                           test::Native("gone/b: ") + MissingWords(bench.folder / "gone/b"), "dir: skipped",
                           "c.none: skipped", "d.txt: not begun"}));
  EXPECT_EQ(bench.run.user.messages, Texts{});
  EXPECT_TRUE(bench.IsThere("a.txt"));
}

GTEST_TEST(ActionForm, AsksWhenTheChoiceIsNotClear) {
  const std::string none = "（なし） 【未登録】";
  const struct {
    const char* name;
    bool confirms;
    const char* test;
    std::int16_t type;
    std::optional<std::string> profile;
    Texts profiles;  // shown; none: it acts at once
    int selected;
  } rows[] = {
      {"a.txt", false, "0", 0, std::nullopt, {}, -1},
      {"a.txt", true, "0", 0, std::nullopt, {"one 【1/1】"}, 0},
      {"a.both", false, "0", 0, std::nullopt, {"one 【1/3】", "three 【2/3】", "two 【3/3】"}, 0},
      {"a.both", false, "0", 0, "TWO", {}, -1},
      {"a.both", true, "0", 0, "two", {"one 【1/3】", "three 【2/3】", "two 【3/3】"}, 2},
      {"a.txt", true, "0", 0, "two", {"two"}, 0},
      {"a.none", false, "1", 0, std::nullopt, {none}, 0},
      {"a.zip", false, "0", 1, std::nullopt, {none}, 0},
      {"a.zip", false, "1", 1, std::nullopt, {}, -1},
      {"a.zip", true, "1", 1, std::nullopt, {none}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.name) + row.profile.value_or(""));
    Bench bench({row.name}, kThree, std::string("Action=0\nTest=") + row.test, row.profile);
    bench.run.mover->SHOWUSERFORM = row.confirms;
    bench.run.archiver->type = row.type;
    EXPECT_EQ(bench.form.Advance(), !row.profiles.empty());
    EXPECT_EQ(bench.form.View().profiles, row.profiles);
    EXPECT_EQ(bench.form.View().selected, row.selected);
    EXPECT_EQ(bench.run.archiver->extracted.size(), row.type == 1 && row.profiles.empty() ? 1U : 0U);
    EXPECT_EQ(bench.run.user.messages, Texts{});
  }
}

GTEST_TEST(ActionForm, UnregisteredPathsGetTheirSettings) {
  for (const bool tests : {false, true}) {
    Bench bench({"a.zip", "dir"}, kMove,
                std::string("Action=6\nExtractType=2\nMoveTo=~/sm\nCopyTo=~\nExtractTo=~/sx\nTest=") +
                    (tests ? "1" : "0"));
    bench.run.archiver->type = 1;
    clsMover& mover = *bench.run.mover;
    mover.SMARTMAKEDIR = mover.OPENDIR = true;
    ASSERT_TRUE(bench.form.Advance());
    const ActionView& view = bench.form.View();
    EXPECT_EQ(view.title, "1/2 - 未登録ファイル - （なし）");
    EXPECT_FALSE(view.edits_profile);
    EXPECT_EQ(bench.form.SelectedTitle(), "");
    EXPECT_EQ(view.rows[0].is_ticked, tests);
    EXPECT_EQ(bench.Shown(0), tests ? test::Slashed(test::Rooted("/test/a")) : "~/sx");
    EXPECT_EQ(bench.Shown(1), tests ? "" : "~/sm/a.zip");
    EXPECT_EQ(bench.Shown(2), tests ? "" : "~/a.zip");  // with another step the file may stay
    if (tests) continue;
    EXPECT_EQ(mover.EXTRACTTYPE * 10 + mover.SMARTRENAME, 23);
    EXPECT_TRUE(mover.SMARTMAKEDIR && mover.OPENDIR);
    bench.form.Skip();
    ASSERT_TRUE(bench.form.Advance());
    EXPECT_EQ(mover.SMARTRENAME, 1) << "a folder keeps its name";
  }
}

// For each row: "x" ticked, "o" not, "!" and "-" the same but not to be changed; then "R" for the rename mode
// and "E" for the settings of an extraction.
std::string Enabled(const ActionView& view) {
  std::string text;
  for (const ActionView::Row& row : view.rows) {
    text += row.is_ticked ? (row.can_tick ? 'x' : '!') : (row.can_tick ? 'o' : '-');
    EXPECT_EQ(row.can_fill, text.back() == 'x');
  }
  return text + (view.can_rename ? "R" : "") + (view.can_set_extraction ? "E" : "");
}

GTEST_TEST(ActionForm, ActionsDecideWhatCanBeChanged) {
  const struct {
    const char* archive;
    const char* file;
    const char* folder;
  } rows[8] = {{"ooo", "-oo", "-oo"},    {"xooE", "-oo", "-oo"},  {"oxoR", "-xoR", "-xo"},
               {"xxoRE", "-xoR", "-xo"}, {"ooxR", "-oxR", "-ox"}, {"xoxRE", "-oxR", "-ox"},
               {"oxxR", "-xxR", "-xx"},  {"xxxRE", "-xxR", "-xx"}};
  for (int action = 0; action < 8; ++action) {
    SCOPED_TRACE(action);
    Bench bench({"a.zip", "a.txt", "dir"},
                std::string("[p]\nPattern=.*\nInclude=.*i\nOpenFile=a\\b\nID=1\nAction=")
                    .append(std::to_string(action)));
    for (const char* expected : {rows[action].archive, rows[action].file, rows[action].folder}) {
      bench.run.archiver->type = bench.run.mover->CMDLINECURRENT == 0 ? 1 : 0;
      ASSERT_TRUE(bench.form.Advance());
      const ActionView& view = bench.form.View();
      EXPECT_EQ(Enabled(view), expected);
      const bool marks = view.can_set_extraction;
      EXPECT_EQ(view.marks,
                marks ? (std::array<std::string, 3>{".*i", "", "a\\b"}) : (std::array<std::string, 3>{}));
      // Ticking by hand leads to the same rules, and back.
      for (std::size_t row = 0; row < kActionRows; ++row) {
        const bool ticks = view.rows[row].can_tick && !view.rows[row].is_ticked;
        EXPECT_EQ(bench.form.ToggleRow(row), ticks);
        bench.form.ToggleRow(row);
      }
      EXPECT_EQ(Enabled(view), expected);
    }
  }
}

GTEST_TEST(ActionForm, ListsWrapRound) {
  Bench bench({"a.both"}, kThree);
  ASSERT_TRUE(bench.form.Advance());
  for (const int step : {+1, +1, +1, -1, -1}) bench.form.StepProfile(step);
  EXPECT_EQ(bench.form.View().title, "1/1 - three");
  EXPECT_EQ(bench.run.mover->ACTION, 4) << "no archive, and so nothing to extract";
  bench.form.SelectProfile(0);
  std::string modes;
  for (int i = 0; i < 5; ++i) {
    modes += std::to_string(bench.form.View().rename) + std::to_string(bench.run.mover->SMARTRENAME) + " ";
    bench.form.StepRename();
  }
  EXPECT_EQ(modes, "33 03 11 22 33 ");
  bench.form.Tick(1, false);
  bench.form.StepRename();
  EXPECT_EQ(bench.form.View().rename, 0);
}

GTEST_TEST(ActionForm, RenameModesComputeWhatWasNotTyped) {
  Bench bench({"a.txt"}, kMove);
  bench.Make({"typed/", "m/"});
  ASSERT_TRUE(bench.form.Advance());
  bench.form.TypeFolder(2, bench.folder / "typed");
  EXPECT_EQ(bench.Shown(1), "~/m/a.txt");
  bench.form.SelectRename(2);
  const std::string dated = fs::path(bench.run.mover->MOVETO).filename().string();
  EXPECT_TRUE(dated.starts_with("a_20") && dated.ends_with(".txt")) << dated;
  EXPECT_EQ(bench.Shown(1), "~/m/" + dated);
  EXPECT_EQ(bench.Shown(2), "~/typed");
  EXPECT_EQ(bench.run.mover->COPYTO, bench.folder / "typed/" + dated);
  bench.form.TypeFolder(1, bench.folder / "m/b.txt");
  bench.form.SelectRename(1);
  EXPECT_EQ(bench.Shown(1), "~/m/b.txt");
  EXPECT_EQ(bench.run.mover->COPYTO, bench.folder / "typed/a.txt");
}

GTEST_TEST(ActionForm, TypedAndChosenFolders) {
  const struct {
    bool is_folder;
    std::size_t row;
    const char* typed;
    const char* path;  // what is done
    const char* start;
  } rows[] = {
      {false, 1, "~/there", "~/there/x.txt", "~/there"},
      {false, 1, "~/new/", "~/new/x.txt", "~/new/"},
      {false, 2, "~/new/b.txt", "~/new/b.txt", "~/new"},
      {false, 2, "~/a\\nb", "~/a\\nb", "~"},  // taken as it stands: nothing was escaped before
      {false, 2, "~/a\\\\b\\", "~/a\\\\b\\", "~"},
      {false, 1, "", "", ""},
      {false, 0, "~/new", "~/new", "~/new"},
      {true, 1, "~/there", "~/there", "~/there"},
      {true, 2, "~/new", "~/new", "~/new"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.typed);
    if (kHostStyle == PathStyle::kWindows && std::string(row.typed).find('\\') != std::string::npos) continue;
    Bench bench({row.is_folder ? "dir" : "x.txt"}, "[p]\nPattern=.*\nID=1\nAction=6\n");
    bench.Make({"there/"});
    ASSERT_TRUE(bench.form.Advance());
    bench.form.TypeFolder(row.row, bench.InFolder(row.typed));
    const std::string done[] = {bench.run.mover->EXTRACTTO, bench.run.mover->MOVETO, bench.run.mover->COPYTO};
    EXPECT_EQ(done[row.row], bench.InFolder(row.path));
    EXPECT_EQ(bench.Shown(row.row), row.typed);
    EXPECT_EQ(bench.form.StartFolder(row.row), bench.InFolder(row.start));
    bench.form.ChooseFolder(row.row, bench.folder / "there");
    const bool is_file = row.row > 0 && !row.is_folder;
    EXPECT_EQ(bench.Shown(row.row), is_file ? "~/there/x.txt" : "~/there");
  }
}

// What is shown of a name must lead back to it, and what was typed must not be taken for another name.
GTEST_TEST(ActionForm, StrangeNamesAreShownEscaped) {
  if (kHostStyle == PathStyle::kWindows) GTEST_SKIP() << "no name has such characters";
  const std::string name = std::string(120, 'n') + "\n\\n\xFF.txt";
  Bench bench({name}, "[p]\nPattern=[\\s\\S]*\nID=1\nAction=2\nMoveTo=~/m\nSmartRename=1\n");
  ASSERT_TRUE(bench.form.Advance());
  const std::string shown = ForDisplay(bench.folder / "m/" + name);
  EXPECT_EQ(bench.form.View().target, ForDisplay(bench.folder / name));
  EXPECT_EQ(bench.form.View().rows[1].folder, shown);
  bench.form.TypeFolder(1, shown);  // unchanged: still as computed
  bench.form.SelectRename(2);
  EXPECT_NE(bench.form.View().rows[1].folder, shown);
  bench.form.SelectRename(1);
  EXPECT_EQ(bench.form.View().rows[1].folder, shown);
  for (const std::string end : {".\\", ".\\x", ".\\xF", ".\\xFE"}) bench.form.TypeFolder(1, shown + end);
  EXPECT_EQ(bench.form.View().rows[1].folder, shown + ".\\xFE");
  EXPECT_TRUE(bench.form.Execute());
  EXPECT_TRUE(bench.IsThere("m/" + name + ".\xFE"));
  EXPECT_EQ(bench.run.user.messages, Texts{});
}

GTEST_TEST(ActionForm, RefusesWhatIsNoLongerAsItWasShown) {
  const std::string changed = kMove + "[other]\nPattern=.*txt\nID=1\nAction=4\nCopyTo=~/c\n";
  const std::string too_long =
      "[one]\nPattern=.*txt\nID=1\nAction=7\nMoveTo=/" + std::string(1030, 'x') + "\n";
  const std::string extract = "[one]\nPattern=.*txt\nID=1\nAction=1\nExtractTo=~/x\n";
  const struct {
    const char* what;
    std::string before;
    std::string after;
    const char* message;
    const char* title;  // afterwards
  } rows[] = {
      {"removed", kMove, "[zero]\nPattern=x\n", "one: プロファイルが変更または削除",
       "1/1 - 未登録ファイル - （なし）"},
      {"pattern", kMove, "[one]\nPattern=.*t\n", "one: プロファイルが変更または削除", "1/1 - one"},
      {"too long", too_long, too_long, "one: フォルダの指定が長すぎて", "1/1 - one"},
      {"mended", too_long, changed, "one: フォルダの指定が長すぎて", "1/1 - one"},
      {"entries", extract, extract + "Exclude=b\n", "one: プロファイルが変更または削除", "1/1 - one"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Bench bench({"a.txt"}, row.before, "CheckArchive=1\n");
    bench.run.archiver->type = 1;
    ASSERT_TRUE(bench.form.Advance());
    EXPECT_EQ(bench.form.View().problem.empty(), row.before != too_long);
    EXPECT_EQ(bench.form.Plan().empty(), row.before == too_long);
    EXPECT_EQ(bench.run.mover->ProfileProblems(false).size(), row.before == too_long ? 1U : 0U);
    bench.SetItems(row.after);
    EXPECT_FALSE(bench.form.Execute());
    ASSERT_EQ(bench.run.user.messages.size(), 1U);
    EXPECT_TRUE(bench.run.user.messages[0].starts_with(row.message)) << bench.run.user.messages[0];
    EXPECT_EQ(bench.form.View().title, row.title);
    EXPECT_EQ(bench.form.View().problem.empty(), row.after != too_long);
    EXPECT_EQ(bench.run.mover->ProfileProblems(false), Texts{}) << "what was told is not told again";
    EXPECT_TRUE(bench.IsThere("a.txt"));
    EXPECT_EQ(bench.form.Undone(), Texts{});
  }
}

GTEST_TEST(ActionForm, TargetsThatVanishOrChangeAreNotTouched) {
  Bench bench({"a.txt", "b.txt"}, kMove);
  ASSERT_TRUE(bench.form.Advance());
  fs::remove(bench.folder / "a.txt");
  EXPECT_TRUE(bench.form.Execute());
  ASSERT_TRUE(bench.form.Advance());
  fs::remove(bench.folder / "b.txt");
  bench.Make({"b.txt/x"});
  EXPECT_FALSE(bench.form.Execute());
  EXPECT_TRUE(bench.form.View().is_folder);
  EXPECT_TRUE(bench.IsThere("b.txt/x"));
  EXPECT_EQ(bench.run.user.messages, (Texts{bench.folder / "a.txt: 見つかりません",
                                            bench.folder / "b.txt: 別のものに置き換わっています"}));
  EXPECT_EQ(bench.form.Undone(), Texts{bench.folder / "a.txt: " + MissingWords(bench.folder / "a.txt")});
}

// Without a window too, the user then has to settle it.
GTEST_TEST(ActionForm, ARefusalBringsUpTheUser) {
  Bench bench({"a.txt"}, kMove, "", "gone");
  bench.run.mover->SHOWUSERFORM = false;
  EXPECT_TRUE(bench.form.Advance());
  EXPECT_EQ(bench.form.View().profiles, Texts{"gone"});
  EXPECT_EQ(Enabled(bench.form.View()), "---");
  EXPECT_EQ(bench.run.user.messages.size(), 1U);
  bench.SetItems(kMove + "[gone]\nPattern=x\nID=1\nAction=2\nMoveTo=~/g\n");
  bench.form.Reload("gone");
  EXPECT_EQ(bench.form.View().problem, "");
  EXPECT_TRUE(bench.form.Execute());
  EXPECT_TRUE(bench.IsThere("g/a.txt"));
}

GTEST_TEST(ActionForm, OnlyWhatTheUserDidNotWantIsTold) {
  using Answer = UserInterface::OverwriteAnswer;
  const struct {
    const char* what;
    const char* name;
    int action;
    std::vector<Answer> answers;
    bool cancels;
    const char* told;
  } rows[] = {
      {"done", "a.txt", 6, {Answer::kYes}, false, ""},
      {"a no", "a.txt", 2, {Answer::kNo}, false, ""},
      {"a no before a move", "a.txt", 6, {Answer::kNo}, false, ""},
      {"no to all in a merge", "dir", 2, {Answer::kNoToAll}, false, ""},
      {"a no, and what cannot go there", "dir2", 2, {Answer::kNoToAll}, false, "残した項目 1 個"},
      {"a cancel", "dir", 4, {Answer::kCancel}, false, ""},
      {"a cancel of the progress", "new.txt", 4, {}, true, ""},
      {"nobody", "a.txt", 2, {Answer::kNobody}, false, "同名のファイルがあります"},
      {"no archive and no window", "a.txt", 3, {}, true, "アーカイブの拡張子ではなく"},
      {"its own folder", "a.txt", 2, {}, false, "すでにそこにあります"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const bool stays = row.answers.empty() && !row.cancels;
    const std::string to = stays ? "~" : "~/to";
    Bench bench({row.name}, "[p]\nPattern=.*\nID=1\nSmartRename=1\nMoveTo=" + to +
                                "\nCopyTo=~/to\nAction=" + std::to_string(row.action));
    bench.Make({"a.txt", "new.txt", "dir/f", "dir2/f", "dir2/x", "to/a.txt", "to/dir/f", "to/dir2/f",
                "to/dir2/x/y"});
    bench.run.user.overwrite_answers = row.answers;
    if (row.cancels) bench.run.user.on_progress = [](const platform::FileProgress&) { return false; };
    bench.run.mover->SHOWUSERFORM = false;
    EXPECT_FALSE(bench.form.Advance());
    const bool is_done = std::string(row.what) == "done";
    EXPECT_EQ(bench.form.Undone().size(), is_done ? 0U : 1U);
    EXPECT_EQ(bench.IsThere(row.name), !is_done);
    ASSERT_EQ(bench.run.user.messages.size(), *row.told == '\0' ? 0U : 1U);
    const std::string told = *row.told == '\0' ? "" : bench.run.user.messages[0];
    EXPECT_NE(told.find(row.told), std::string::npos) << told;
  }
}

GTEST_TEST(ActionForm, ActsByTheSelectedProfile) {
  Bench bench({"a.zip", "b.none"},
              "[p]\nPattern=.*zip\nOpenFile=p.txt; sub/b.html;;\nID=1\nAction=1\nExtractTo=~/x\n"
              "[q]\nPattern=q\nOpenFile=q.txt\n",
              "CheckArchive=1\nAction=1\nExtractTo=~/standard\n");
  bench.run.archiver->type = 1;
  ASSERT_TRUE(bench.form.Advance());
  bench.form.SetOpenDir(true);
  bench.form.SetSmartMakeDir(true);
  bench.form.SetOverwrites(false);
  EXPECT_EQ(bench.run.mover->EXTRACTTYPE, 2);
  EXPECT_TRUE(bench.form.View().smart_make_dir && bench.form.View().open_dir &&
              !bench.form.View().overwrites);
  EXPECT_TRUE(bench.form.Execute());
  EXPECT_EQ(bench.run.user.busy, (std::vector<bool>{true, false}));
  EXPECT_EQ(bench.run.archiver->EXTRACTTYPE, 2);
  ASSERT_TRUE(bench.form.Advance());
  bench.form.SetOpenDir(false);
  EXPECT_TRUE(bench.form.Execute());
  EXPECT_EQ(bench.run.archiver->extracted,
            (Texts{bench.folder / "a.zip" + " to " + bench.folder / "x",
                   bench.folder / "b.none" + " to " + bench.folder / "standard"}));
  const std::string inside = bench.folder / "x" + test::kSeparator;
  EXPECT_EQ(bench.run.user.opened_files, (Texts{inside + "p.txt", inside + test::Native("sub/b.html")}));
  EXPECT_EQ(bench.run.user.opened_folders, Texts{bench.folder / "x"});
}

}  // namespace
}  // namespace quendle
