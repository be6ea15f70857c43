#include "core/dispatch.h"

#include "core/modMain.h"
#include "support/run.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;

std::vector<DispatchReport> DispatchAll(test::Run* run, const DispatchOptions& options) {
  std::vector<DispatchReport> reports;
  clsMover& mover = *run->mover;
  for (mover.CMDLINECURRENT = 1; mover.CMDLINECURRENT <= mover.CMDLINEMAX; ++mover.CMDLINECURRENT) {
    reports.push_back(DispatchCurrent(&mover, run->file_info, run->settings.standard, options));
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
      {"a.none", "two", "0", 0, Outcome::kDone, "two"},
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
      EXPECT_EQ(report.steps.at(0).to, "/test/a");
      EXPECT_EQ(run.archiver->extracted.size(), 1U);
    }
  }
}

// What a dry run prints is what a run does, also where one file takes the name or the place of another.
GTEST_TEST(Dispatch, PlansAreWhatIsDone) {
  const test::TempFolder folder;
  for (const char* name : {"1/a.txt", "2/a.txt", "3/b.txt", "4/c.log", "5/c.log"})
    test::WriteFile(folder / name, name);
  test::WriteFile(folder / "to/b.txt", "old");
  const std::string items =
      "[txt]\nPattern=.*\\.txt\nID=1\nAction=2\nSmartRename=3\nMoveTo=" + folder / "to" +
      "\n[log]\nPattern=.*\\.log\nID=1\nAction=6\nSmartRename=1\nMoveTo=" + folder / "m" +
      "\nCopyTo=" + folder / "c" + "\n";
  const std::vector<std::string> paths = {folder / "1/a.txt", folder / "2/a.txt", folder / "1/a.txt",
                                          folder / "3/b.txt", folder / "4/c.log", folder / "5/c.log"};
  test::Run plan(items, "", paths);
  const std::vector<DispatchReport> planned = DispatchAll(&plan, {true, std::nullopt});
  EXPECT_TRUE(fs::exists(folder / "1/a.txt") && !fs::exists(folder / "m"));
  test::Run run(items, "", paths);
  const std::vector<DispatchReport> done = DispatchAll(&run, {false, std::nullopt});
  const Outcome outcomes[] = {Outcome::kDone, Outcome::kDone, Outcome::kMissing,
                              Outcome::kDone, Outcome::kDone, Outcome::kFailed};
  for (std::size_t i = 0; i < paths.size(); ++i) {
    SCOPED_TRACE(paths[i] + " " + std::to_string(i));
    EXPECT_EQ(done[i].outcome, outcomes[i]);
    EXPECT_EQ(planned[i].outcome == Outcome::kPlanned, outcomes[i] == Outcome::kDone);
    ASSERT_EQ(planned[i].steps.size(), done[i].steps.size());
    for (std::size_t k = 0; k < done[i].steps.size(); ++k) {
      EXPECT_EQ(planned[i].steps[k].to, done[i].steps[k].to);
      EXPECT_EQ(planned[i].steps[k].result == StepResult::kPlanned,
                done[i].steps[k].result == StepResult::kDone);
      EXPECT_EQ(fs::exists(done[i].steps[k].to), true);
    }
  }
  EXPECT_EQ(test::ReadFile(folder / "to/b.txt"), "old");
  EXPECT_EQ(test::ReadFile(folder / "c/c.log"), "4/c.log");
  EXPECT_EQ(test::ReadFile(folder / "5/c.log"), "5/c.log");
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
    EXPECT_EQ(WantsConfirmation(settings.standard, [&] { return ++asked, row.ctrl; }), row.confirm)
        << row.text;
    EXPECT_EQ(asked, row.asked) << row.text;
  }
}

}  // namespace
}  // namespace quendle
