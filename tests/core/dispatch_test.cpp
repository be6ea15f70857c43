#include "core/dispatch.h"

#include <regex>

#include "core/modMain.h"
#include "support/run.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;

std::vector<DispatchReport> DispatchAll(test::Run* run, const DispatchOptions& options) {
  std::vector<DispatchReport> reports;
  clsMover& mover = *run->mover;
  for (mover.CMDLINECURRENT = 1; mover.CMDLINECURRENT <= mover.CMDLINEMAX; ++mover.CMDLINECURRENT) {
    reports.push_back(DispatchCurrent(&mover, run->file_info, options));
  }
  return reports;
}

GTEST_TEST(Dispatch, Outcomes) {
  const test::TempFolder folder;
  const std::string items =
      "[one]\nPattern=.*\\.one\nID=1\n[two]\nPattern=.*\\.(two|both)\nID=1\nAction=2\nMoveTo=" +
      folder / "m" + "\n[three]\nPattern=.*both\nID=1\n[zip]\nPattern=never\nID=1\nAction=1\n";
  for (const char* name : {"a.one", "a.two", "a.both", "a.none", "a.zip"})
    test::WriteFile(folder / name, "x");
  const struct {
    const char* name;
    std::optional<std::string> profile;
    const char* test;
    std::int16_t archive;
    Outcome outcome;
    const char* taken;  // the profile acted on
  } rows[] = {
      {"a.one", std::nullopt, "0", 0, Outcome::kDone, "one"},
      {"a.two", std::nullopt, "0", 0, Outcome::kDone, "two"},
      {"a.two", std::nullopt, "0", 0, Outcome::kMissing, nullptr},
      {"a.both", std::nullopt, "0", 0, Outcome::kAmbiguous, nullptr},
      {"a.both", "three", "0", 0, Outcome::kDone, "three"},
      {"a.none", std::nullopt, "1", 0, Outcome::kUnmatched, nullptr},
      {"a.zip", std::nullopt, "0", 1, Outcome::kUnmatched, nullptr},
      {"a.zip", std::nullopt, "1", 1, Outcome::kDone, nullptr},
      {"a.zip", "zip", "0", 0, Outcome::kFailed, "zip"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::Run run(items, std::string("[General]\nTest=") + row.test, {folder / row.name});
    run.archiver->type = row.archive;
    const DispatchReport report = DispatchAll(&run, {false, row.profile}).at(0);
    EXPECT_EQ(report.outcome, row.outcome);
    EXPECT_EQ(report.profile.value_or(""), row.taken == nullptr ? "" : row.taken);
    EXPECT_EQ(report.error.empty(), row.outcome == Outcome::kDone);
    if (row.archive == 1 && row.outcome == Outcome::kDone) {
      EXPECT_EQ(report.steps.at(0).to, test::Rooted("/test/a"));
      EXPECT_EQ(run.archiver->extracted.size(), 1U);
    }
  }
}

// At the path that it was to act on; and what stood in no path's way, at the end.
GTEST_TEST(Dispatch, AProfileThatIsNotActedOnIsToldOnce) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.cut", "x");
  const std::string values = "ID=1\nAction=2\nMoveTo=/" + std::string(1500, 'x') + "\n";
  test::Run run("[a]\nPattern=.*cut\n" + values + "[b]\nPattern=b\n" + values, "", {folder / "a.cut"});
  const std::string why = "a folder of the profile is too long to be read whole";
  EXPECT_EQ(run.mover->ProfileProblems(false).size(), 2U);
  EXPECT_EQ(DispatchAll(&run, {}).at(0).error, "profile a: " + why);
  EXPECT_EQ(run.mover->ProfileProblems(false), std::vector<std::string>{"profile b: " + why});
}

// What a dry run prints is what a run does, also where one path takes the name or the place of another.
GTEST_TEST(Dispatch, PlansAreWhatIsDone) {
  const struct {
    const char* what;
    std::vector<std::string> paths;
    const char* outcomes;  // of each path: d done, f failed, m missing
  } rows[] = {
      {"two files to one name", {"1/a.txt", "2/a.txt", "1/a.txt"}, "ddm"},
      {"a name that is taken", {"3/b.txt"}, "d"},
      {"copied and moved, to other folders", {"4/c.log", "5/c.log"}, "df"},
      {"copied and moved, to one folder", {"1/a.same"}, "f"},
      {"a folder copied and moved, to one folder", {"d.same"}, "f"},
      {"two folders merged", {"1/m.dir", "2/m.dir"}, "dd"},
      {"two folders with a file of one name", {"1/n.dir", "2/n.dir"}, "df"},
      {"a folder merged into one that is there", {"3/m.dir", "4/n.dir"}, "df"},
      {"a folder and what is in it", {"1/m.dir", "1/m.dir/x"}, "dm"},
      {"one file by two folders", {"1/a.txt", "link/a.txt"}, "dm"},
      {"a destination that is a file", {"1/a.file"}, "f"},
      {"a folder into itself through a link", {"1/self"}, "f"},
      {"a name too long to be renamed", {"1/" + std::string(250, 'n') + ".tx"}, "f"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const test::TempFolder folder;
    for (const char* name : {"1/a.txt", "2/a.txt", "3/b.txt", "4/c.log", "5/c.log", "1/a.same", "d.same/x",
                             "1/m.dir/x", "2/m.dir/y", "1/n.dir/x", "2/n.dir/x", "3/m.dir/z", "4/n.dir/w/x",
                             "1/a.file", "1/self/x", "to/b.txt", "dirs/n.dir/w/x"}) {
      test::WriteFile(folder / name, name);
    }
    if (!row.paths[0].starts_with("3/")) fs::remove_all(folder / "dirs");
    if (row.paths[0].ends_with(".tx")) test::WriteFile(folder / row.paths[0], "");
    std::error_code no_links;  // on Windows not everybody may make them
    fs::create_directory_symlink(folder / "1", folder / "link", no_links);
    if (!no_links) fs::create_directory_symlink(folder / "1/self", folder / "into", no_links);
    const bool needs_links = row.paths[0] == "1/self" || row.paths.back().starts_with("link");
    if (no_links && needs_links) continue;
    std::string items =
        "[txt]\nPattern=.*\\.txt\nID=1\nAction=2\nSmartRename=3\nMoveTo=~/to\n"
        "[log]\nPattern=.*\\.log\nID=1\nAction=6\nCopyTo=~/c\nMoveTo=~/m\n"
        "[same]\nPattern=.*\\.same\nID=1\nAction=6\nCopyTo=~/s\nMoveTo=~/s\n"
        "[dir]\nPattern=.*\\.dir\nID=1\nAction=2\nMoveTo=~/dirs\n"
        "[file]\nPattern=.*\\.file\nID=1\nAction=2\nMoveTo=~/to/b.txt\n"
        "[self]\nPattern=.*self\nID=1\nAction=2\nMoveTo=~/into\n"
        "[tx]\nPattern=.*\\.tx\nID=1\nAction=2\nSmartRename=2\nMoveTo=~/to\n";
    items = std::regex_replace(test::Native(items), std::regex("~"), folder.path());
    std::vector<std::string> paths;
    for (const std::string& path : row.paths) paths.push_back(folder / path);
    test::Run plan(items, "", paths);
    const std::vector<DispatchReport> planned = DispatchAll(&plan, {true, std::nullopt});
    test::Run run(items, "", paths);
    const std::vector<DispatchReport> done = DispatchAll(&run, {false, std::nullopt});
    for (std::size_t i = 0; i < paths.size(); ++i) {
      SCOPED_TRACE(paths[i] + ": " + English(planned[i].error) + " / " + English(done[i].error));
      const Outcome expected = row.outcomes[i] == 'd'   ? Outcome::kDone
                               : row.outcomes[i] == 'f' ? Outcome::kFailed
                                                        : Outcome::kMissing;
      EXPECT_EQ(done[i].outcome, expected);
      EXPECT_EQ(planned[i].outcome, expected == Outcome::kDone ? Outcome::kPlanned : expected);
      ASSERT_EQ(planned[i].steps.size(), done[i].steps.size());
      for (std::size_t k = 0; k < done[i].steps.size(); ++k) {
        EXPECT_EQ(planned[i].steps[k].to, done[i].steps[k].to);
        EXPECT_EQ(planned[i].steps[k].result == StepResult::kPlanned,
                  done[i].steps[k].result == StepResult::kDone);
        EXPECT_TRUE(done[i].steps[k].result != StepResult::kDone || fs::exists(done[i].steps[k].to));
      }
    }
    EXPECT_EQ(test::ReadFile(folder / "to/b.txt"), "to/b.txt");
  }
}

GTEST_TEST(ModMain, Confirmation) {
  const struct {
    const char* text;
    bool ctrl;
    bool confirm;
    int asked;
  } rows[] = {
      {"ConfirmAlways=1\nKeyCheck=1", false, true, 0},
      {"ConfirmAlways=0\nKeyCheck=1", false, false, 1},
      {"ConfirmAlways=0\nKeyCheck=1", true, true, 1},
      {"ConfirmAlways=0\nKeyCheck=0", true, false, 0},
  };
  for (const auto& row : rows) {
    const test::Settings settings("", std::string("[General]\n") + row.text + "\n");
    int asked = 0;
    EXPECT_EQ(WantsConfirmation(settings.standard.Values(), [&] { return ++asked, row.ctrl; }), row.confirm)
        << row.text;
    EXPECT_EQ(asked, row.asked) << row.text;
  }
}

}  // namespace
}  // namespace quendle
