#include "core/clsMover.h"

#include <ctime>

#include "base/modString.h"
#include "platform/text/unicode.h"
#include "support/picture.h"
#include "support/run.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;
using Titles = std::vector<std::string>;

// Sets a file's last write to 7 November 2003, noon local time.
void Date(const std::string& path) {
  std::tm local = {};
  local.tm_year = 103, local.tm_mon = 10, local.tm_mday = 7, local.tm_hour = 12, local.tm_isdst = -1;
  test::SetWriteTime(path, std::mktime(&local));
}

GTEST_TEST(ClsMover, MatchesProfilesInSortedOrder) {
  const std::string items =
      "[z]\nPattern=.*\\.lzh\n[a]\nPattern=X\\.LZH\n[m]\nPattern=x\n[Bad]\nPattern=(\n[j]\nPattern=é.*\n";
  const Titles all = {"", "（なし）", "a", "Bad", "j", "m", "z"};
  const struct {
    const char* name;
    std::int32_t count;
    Titles titles;
  } rows[] = {
      {"x.lzh", 2, {"", "（なし）", "a", "z"}}, {"X.LZH", 2, {"", "（なし）", "a", "z"}},
      {"ax.lzh", 1, {"", "（なし）", "z"}},     {"x.txt", 0, all},
      {"b\xFF.lzh", 1, {"", "（なし）", "z"}},  {"(", 0, all},
  };
  const test::TempFolder folder;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    if (kHostStyle == PathStyle::kWindows && !platform::IsUtf8(row.name)) continue;  // names are text there
    // "é" is read as other characters, so it only shows that a strange pattern harms no other.
    test::WriteFile(folder / row.name, "x");
    test::Run run(items, "", {folder / row.name});
    ASSERT_TRUE(run.mover->SetTarget().ok());
    EXPECT_EQ(run.mover->GetAccordantTitles(), row.titles);
    EXPECT_EQ(run.mover->PATTERNMATCHCOUNT(), row.count);
    EXPECT_TRUE(run.mover->CheckDupTitle("BAD"));
    EXPECT_FALSE(run.mover->CheckDupTitle(""));
  }
  test::Run none("", "", {folder.path()});
  ASSERT_TRUE(none.mover->SetTarget().ok());
  EXPECT_EQ(none.mover->GetAccordantTitles(), (Titles{"", "（なし）"}));
}

GTEST_TEST(ClsMover, AsksForArchiveTypesByExtensionOrSetting) {
  const struct {
    const char* name;
    bool is_folder;
    const char* check;
    std::int16_t type;
    int asked;
  } rows[] = {
      {"a.Zip", false, "0", 3, 1},  {"a.7z", false, "0", 3, 1},  {"a.tar", false, "0", 0, 0},
      {"zip", false, "0", 3, 1},    {"a.tar", false, "1", 3, 1}, {"a.zip", true, "1", 0, 0},
      {"a.zipx", false, "0", 0, 0}, {"a.exe", false, "0", 3, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const test::TempFolder folder;
    const std::string path = folder / row.name;
    row.is_folder ? (void)fs::create_directory(path) : test::WriteFile(path, "x");
    test::Run run("", std::string("[General]\nCheckArchive=") + row.check, {path});
    run.archiver->type = 3;
    ASSERT_TRUE(run.mover->SetTarget().ok());
    run.mover->GetAccordantTitles();
    EXPECT_EQ(run.mover->ARCHIVETYPE, row.type);
    EXPECT_EQ(run.archiver->asked_type, row.asked);
  }
}

GTEST_TEST(ClsMover, SmartRename) {
  const struct {
    const char* name;
    std::int16_t action;
    std::int16_t mode;
    Titles taken;
    const char* result;
  } rows[] = {
      {"report.txt", 2, 1, {"report.txt"}, "report.txt"},
      {"report.txt", 2, 2, {}, "report_20031107.txt"},
      {"report.txt", 4, 3, {}, "report.txt"},
      {"report.txt", 4, 3, {"report.txt"}, "report_20031107.txt"},
      {"report.txt", 6, 3, {"report.txt", "report_20031107.txt"}, "report_20031107_1.txt"},
      {"report.txt", 2, 2, {"report_20031107.txt", "report_20031107_1.txt"}, "report_20031107_2.txt"},
      {"report.txt", 2, 3, {"report.txt/"}, "report.txt"},  // a folder of the name does not count
      {"readme", 2, 2, {}, "_20031107.readme"},
      {"a.", 2, 2, {}, "a_20031107"},
      {"A.B.C", 2, 2, {}, "A.B_20031107.C"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.result);
    const test::TempFolder folder;
    test::WriteFile(folder / row.name, "x");
    Date(folder / row.name);
    for (const std::string& taken : row.taken) {
      const std::string path = folder / "to/" + taken;
      taken.ends_with('/') ? (void)fs::create_directories(path) : test::WriteFile(path, "old");
    }
    test::Run run("", "", {folder / row.name});
    ASSERT_TRUE(run.mover->SetTarget().ok());
    run.mover->ACTION = row.action;
    run.mover->SMARTRENAME = row.mode;
    for (const StepKind kind : {StepKind::kMove, StepKind::kCopy}) {
      EXPECT_EQ(run.mover->GetTargetPathByFolder(kind, folder / "to"), folder / "to/" + row.result);
      EXPECT_EQ(run.mover->GetTargetPathByFolder(kind, folder / "to/"), folder / "to/" + row.result);
    }
    EXPECT_EQ(run.mover->GetTargetPathByFolder(StepKind::kExtract, folder / "to"), folder / "to");
  }
}

// A plain move into the file's own folder renames it in place; with an extraction it stays.
GTEST_TEST(ClsMover, SmartRenameInTheOwnFolder) {
  const test::TempFolder folder;
  test::WriteFile(folder / "x.zip", "x");
  Date(folder / "x.zip");
  test::Run run("", "", {folder / "x.zip"});
  ASSERT_TRUE(run.mover->SetTarget().ok());
  run.mover->SMARTRENAME = 3;
  const char* names[] = {"x_20031107.zip", "x.zip", "x_20031107.zip", "x.zip",
                         "x_20031107.zip", "x.zip", "x.zip",          "x.zip"};
  for (std::int16_t action = 0; action <= 7; ++action) {
    run.mover->ACTION = action;
    EXPECT_EQ(run.mover->GetTargetPathByFolder(StepKind::kMove, folder.path()), folder / names[action])
        << action;
  }
  run.mover->DOESFOLDER = true;
  EXPECT_EQ(run.mover->GetTargetPathByFolder(StepKind::kMove, folder.path()), folder.path());
}

GTEST_TEST(ClsMover, ActionsRunTheirStepsInOrder) {
  const struct {
    std::int16_t action;
    std::int16_t archive;
    bool extracts;
    bool copy_works;
    bool result;
    bool extract_called;
    bool copied;
    bool moved;
  } rows[] = {
      {0, 1, true, true, true, false, false, false},   {1, 1, true, true, true, true, false, false},
      {1, 0, true, true, false, false, false, false},  {1, 1, false, true, false, true, false, false},
      {2, 1, true, true, true, false, false, true},    {3, 1, true, true, true, true, false, true},
      {3, 1, false, true, false, true, false, false},  {3, 0, true, true, false, false, false, false},
      {4, 1, true, true, true, false, true, false},    {5, 1, true, true, true, true, true, false},
      {5, 1, false, true, false, true, false, false},  {6, 1, true, true, true, false, true, true},
      {6, 1, true, false, false, false, false, false}, {7, 1, true, true, true, true, true, true},
      {7, 1, true, false, true, true, false, true},    {7, 1, false, true, false, true, false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.action) + (row.copy_works ? "" : " with a failing copy"));
    const test::TempFolder folder;
    test::WriteFile(folder / "in/x.zip", "x");
    test::WriteFile(folder / "blocked", "not a folder");
    test::Run run("[p]\nID=1\n", "", {folder / "in/x.zip"});
    ASSERT_TRUE(run.mover->SetTarget().ok());
    run.archiver->succeeds = row.extracts;
    clsMover& mover = *run.mover;
    mover.ACTION = row.action;
    mover.ARCHIVETYPE = row.archive;
    mover.EXTRACTTO = folder / "e";
    mover.COPYTO = folder / (row.copy_works ? "c/x.zip" : "blocked/x.zip");
    mover.MOVETO = folder / "m/x.zip";
    const std::vector<ActionStep> plan = mover.PlanSteps();
    EXPECT_TRUE(run.archiver->extracted.empty());
    EXPECT_EQ(mover.ActionMain(), row.result);
    EXPECT_EQ(!run.archiver->extracted.empty(), row.extract_called);
    EXPECT_EQ(fs::exists(folder / "c/x.zip"), row.copied);
    EXPECT_EQ(fs::exists(folder / "m/x.zip"), row.moved);
    EXPECT_EQ(fs::exists(folder / "in/x.zip"), !row.moved);
    ASSERT_EQ(plan.size(), mover.Steps().size());
    for (std::size_t i = 0; i < plan.size(); ++i) {
      EXPECT_EQ(plan[i].to, mover.Steps()[i].to);
      // Only what happens in the doing can make a difference: an extraction that fails.
      if (row.extracts) {
        EXPECT_EQ(plan[i].result == StepResult::kPlanned, mover.Steps()[i].result == StepResult::kDone);
      }
      EXPECT_EQ(mover.Steps()[i].error.empty(), mover.Steps()[i].result == StepResult::kDone);
    }
  }
}

GTEST_TEST(ClsMover, APlanKnowsWhatItsOwnCopyTakes) {
  const test::TempFolder folder;
  test::WriteFile(folder / "x.txt", "x");
  test::Run run(
      "[p]\nID=1\nAction=6\nSmartRename=3\nMoveTo=" + (folder / "to") + "\nCopyTo=" + (folder / "to") + "\n",
      "", {folder / "x.txt"});
  Reason why;
  ASSERT_TRUE(run.mover->SetTarget().ok() && run.mover->FillFromProfile("p", &why)) << why;
  const std::vector<ActionStep> plan = run.mover->PlanSteps();
  EXPECT_TRUE(run.mover->ActionMain());
  EXPECT_EQ(plan.at(1).result, StepResult::kPlanned);
  EXPECT_EQ(plan.at(1).to, run.mover->Steps().at(1).to);
}

GTEST_TEST(ClsMover, RefusesWhatCannotBeMeant) {
  const test::TempFolder folder;
  test::WriteFile(folder / "in/x.txt", "new");
  test::WriteFile(folder / "in/d/y", "y");
  test::WriteFile(folder / "taken/x.txt", "old");
  fs::create_directories(folder / "deep/x.txt");
  const struct {
    const char* target;
    std::int16_t action;
    std::string to;
  } rows[] = {
      {"in/x.txt", 2, folder / "in/x.txt"},
      {"in/x.txt", 2, folder / "taken/x.txt"},
      {"in/x.txt", 4, folder / "taken/x.txt"},
      {"in/x.txt", 2, folder / "deep/x.txt"},
      {"in/x.txt", 2, ""},
      {"in/x.txt", 4, "relative/x.txt"},
      {"in/x.txt", 4, folder / "new/../x.txt"},
      {"in/x.txt", 4, folder / "in/x.txt"},
      {"in/x.txt", 1, folder / (kHostStyle == PathStyle::kWindows ? "con" : "in/x.txt/e")},
      {"in/d", 2, folder / "in/d"},
      {"in/d", 4, folder / "in/d/e"},
      {"in/d", 2, folder / "taken/x.txt"},
      {"in/d", 2, folder / "in"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.target) + " to " + row.to);
    test::Run run("", "", {folder / row.target});
    ASSERT_TRUE(run.mover->SetTarget().ok());
    run.mover->ACTION = row.action;
    run.mover->ARCHIVETYPE = 1;
    run.mover->EXTRACTTO = run.mover->MOVETO = run.mover->COPYTO = row.to;
    EXPECT_EQ(run.mover->PlanSteps().at(0).result, StepResult::kFailed);
    EXPECT_FALSE(run.mover->ActionMain());
    EXPECT_FALSE(run.mover->Steps().at(0).error.empty());
    EXPECT_EQ(test::ReadFile(folder / "in/x.txt") + test::ReadFile(folder / "taken/x.txt"), "newold");
    EXPECT_TRUE(fs::exists(folder / "in/d/y"));
    EXPECT_TRUE(fs::is_empty(folder / "deep/x.txt"));
  }
}

GTEST_TEST(ClsMover, FoldersGoBelowTheirDestinationWhetherItExistsOrNot) {
  const test::TempFolder folder;
  test::WriteFile(folder / "d/y", "y");
  test::Run run("[p]\nID=1\nSmartRename=2\n", "", {folder / "d"});
  ASSERT_TRUE(run.mover->SetTarget().ok());
  Reason why;
  ASSERT_TRUE(run.mover->FillFromProfile("p", &why)) << why;
  EXPECT_EQ(run.mover->SMARTRENAME, 1) << "a folder keeps its name";
  run.mover->ACTION = 6;
  run.mover->COPYTO = folder / "new/copies";
  run.mover->MOVETO = folder / "moved";
  fs::create_directory(folder / "moved");
  EXPECT_TRUE(run.mover->ActionMain());
  EXPECT_EQ(run.mover->Steps().at(1).to, folder / "moved/d");
  EXPECT_TRUE(fs::exists(folder / "new/copies/d/y"));
  EXPECT_TRUE(fs::exists(folder / "moved/d/y"));
  EXPECT_FALSE(fs::exists(folder / "d"));
}

GTEST_TEST(ClsMover, AfterAnExtractionAMoveIntoTheOwnFolderHasNothingToDo) {
  const struct {
    const char* target;
    std::int16_t action;
    const char* to;  // as MOVETO has it
    StepResult result;
  } rows[] = {
      {"in/x.zip", 3, "in/x.zip", StepResult::kSkipped},
      {"in/x.zip", 7, "in/x.zip", StepResult::kSkipped},
      {"in/x.zip", 3, "link/x.zip", StepResult::kSkipped},
      {"in/x.zip", 3, "in/y.zip", StepResult::kDone},
      {"in/x.zip", 3, "out/x.zip", StepResult::kDone},
      {"in/x.zip", 2, "in/x.zip", StepResult::kFailed},
      {"in/d", 3, "in/", StepResult::kSkipped},
      {"in/d", 3, "in", StepResult::kSkipped},
      {"in/d", 3, "out", StepResult::kDone},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.target) + " to " + row.to);
    const test::TempFolder folder;
    for (const char* name : {"in/x.zip", "in/d/y"}) test::WriteFile(folder / name, name);
    std::error_code no_links;  // on Windows not everybody may make them
    fs::create_directory_symlink(folder / "in", folder / "link", no_links);
    if (no_links && std::string(row.to).starts_with("link")) continue;
    test::Run run("", "", {folder / row.target});
    clsMover& mover = *run.mover;
    ASSERT_TRUE(mover.SetTarget().ok());
    mover.ACTION = row.action;
    mover.ARCHIVETYPE = 1;
    mover.EXTRACTTO = folder / "e";
    mover.COPYTO = folder / "c/x.zip";
    mover.MOVETO = folder / row.to;
    EXPECT_EQ(mover.ActionMain(), row.result == StepResult::kDone);
    EXPECT_EQ(run.archiver->extracted.size(), row.action == 2 ? 0U : 1U);
    EXPECT_EQ(mover.Steps().back().result, row.result);
    EXPECT_EQ(fs::exists(folder / row.target), row.result != StepResult::kDone);
    EXPECT_TRUE(fs::exists(mover.Steps().back().to));
  }
}

// The files may be edited at any moment: one path is done by what they said at one moment, and a window that shows
// something else than they say now is told.
GTEST_TEST(ClsMover, APathIsDoneByWhatWasReadForIt) {
  const test::TempFolder folder;
  test::WriteFile(folder / "x.txt", "x");
  const std::string items = "[p]\nPattern=.*\\.txt\nID=1\nAction=2\nMoveTo=/m\n[q]\nAction=2\n";
  const auto long_text = [](std::size_t length) { return std::string(length, 'x').append("\n"); };
  const struct {
    std::string now;
    const char* title;
    bool holds;
    bool is_usable_then;
  } rows[] = {
      {items, "p", true, true},
      {items + "[r]\nPattern=r\n", "p", true, true},
      {items + "[r]\nPattern=r\n", "", true, true},
      {"[r]\n", "p", false, false},
      {"[p]\nPattern=.*\\.txt2\n[q]\n", "p", false, true},
      {"[p]\nPattern=.*\\.txt\nID=1\nAction=2\nMoveTo=/m2\n", "p", false, true},
      {"[p]\nPattern=.*\\.txt\n\n", "q", false, false},
      {"[p]\nPattern=.*\\.txt\nMoveTo=/" + long_text(1500), "p", false, false},
      {"[p]\nPattern=.*\\.txt\nMoveTo=/m\t1\n", "p", false, false},
      {"[p]\nPattern=.*\\.txt\nID=1\nAction=3\nInclude=" + long_text(1500), "p", false, false},
      {"[p]\nPattern=.*\\.txt\nID=1\nAction=1\nExclude=" + long_text(1500), "p", false, false},
      {"[p]\nPattern=.*\\.txt\nID=1\nAction=2\nInclude=" + long_text(1500), "p", false, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.now.substr(0, 60));
    test::Run run(items, "", {folder / "x.txt"});
    clsMover& mover = *run.mover;
    ASSERT_TRUE(mover.SetTarget().ok());
    ASSERT_TRUE(mover.SetItemDataToArray().ok());
    mover.GetAccordantTitles();
    test::WriteFile(run.settings.folder / "items.ini", row.now);
    EXPECT_EQ(mover.SettingsHold(row.title), row.holds);
    if (*row.title == '\0') continue;
    Reason why;
    EXPECT_TRUE(mover.FillFromProfile(row.title, &why)) << why;
    EXPECT_EQ(mover.MOVEINTO, *row.title == 'p' ? "/m" : "/standard");
    ASSERT_TRUE(mover.SetItemDataToArray().ok());
    EXPECT_EQ(mover.FillFromProfile(row.title, &why), row.is_usable_then);
    EXPECT_EQ(why.empty(), row.is_usable_then) << why;
  }
}

GTEST_TEST(ClsMover, SaysWhatIsWrongWithProfiles) {
  test::Run run("[a]\nPattern=x\n[A]\nPattern=(\n[a]\n[long]\nPattern=.*" + std::string(1100, 'x') +
                    "\n[bad]\nPattern=(\nInclude=a\nExclude=b;(\n",
                "", {"/"});
  const Titles problems = run.mover->ProfileProblems(false);
  const char* const beginnings[] = {"profile bad: its pattern cannot be used: missing",
                                    "profile bad: the pattern ( of Exclude cannot be used: missing",
                                    "profile long: its pattern cannot be used: it is too long",
                                    "profile A: there are several"};
  ASSERT_EQ(problems.size(), std::size(beginnings));
  for (std::size_t i = 0; i < problems.size(); ++i)
    EXPECT_TRUE(problems[i].starts_with(beginnings[i])) << problems[i];
}

}  // namespace
}  // namespace quendle
