#include <cstdlib>
#include <regex>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/extraction.h"
#include "support/outcome.h"
#include "support/rights_posix.h"

namespace quendle::platform {
namespace {

using test::ExtractionFolderTest;
using Replace = ExtractionFolder::Replace;

// The handle of a folder outlives its name.
TEST_F(ExtractionFolderTest, FoldersReplacedMeanwhileLeadNowhere) {
  const std::string outside = Outside();
  EXPECT_TRUE(Extract("a/b/1", "1").ok());
  ASSERT_TRUE(folder_->BeginFile("a/b/2", {}).ok());
  fs::rename(At("a/b"), At("a/moved"));
  fs::create_directory_symlink(outside_.path(), At("a/b"));
  EXPECT_TRUE(folder_->CommitFile("a/b/2", {}, Replace::kFile).ok());
  EXPECT_TRUE(Extract("a/b/victim", "3", Replace::kFile).ok());
  const std::string aside = destination_.path() + "-moved";
  fs::rename(destination_.path(), aside);
  EXPECT_TRUE(Extract("c", "c").ok());
  fs::rename(aside, destination_.path());
  EXPECT_EQ(Extract("a/b/victim", "4", Replace::kFile).code, Code::kNotFolder);
  EXPECT_EQ(Outside(), outside);
  EXPECT_EQ(Inside(), "a/ a/b>" + outside_.path() + " a/moved/ a/moved/1=1 a/moved/2= a/moved/victim=3 c=c");
}

TEST_F(ExtractionFolderTest, ModesAreThoseOfTheUser) {
  const mode_t umask_before = umask(027);
  ASSERT_TRUE(folder_->MakeFolder("d", {}).ok());
  EXPECT_TRUE(Extract("d/run", "x", Replace::kNothing, {std::nullopt, true}).ok());
  EXPECT_TRUE(Extract("d/text", "x").ok());
  umask(umask_before);
  for (const char* path : {"d", "d/run"}) EXPECT_EQ(test::StatusOf(At(path)).st_mode & 07777U, 0750U) << path;
  EXPECT_EQ(test::StatusOf(At("d/text")).st_mode & 07777U, 0640U);
}

TEST_F(ExtractionFolderTest, MissingRightsAndFoldersAreNamed) {
  fs::create_directory(At("locked"));
  fs::permissions(At("locked"), fs::perms(0555));
  {
    const test::WithoutPrivileges nobody;
    if (geteuid() != 0) {
      Result result = Extract("locked/x", "x");
      EXPECT_EQ(result.code, Code::kDenied);
      EXPECT_EQ(result.path, At("locked/x"));
      result = folder_->MakeFolder("locked/d/e", {});
      EXPECT_EQ(result.code, Code::kDenied);
      EXPECT_EQ(result.path, At("locked/d"));
    }
  }
  EXPECT_EQ(Inside(), "locked/");

  fs::remove_all(destination_.path());
  EXPECT_TRUE(test::Fails(Extract("d/x", "x"), Code::kNotFound, At("d")));
}

TEST_F(ExtractionFolderTest, AKillLeavesNothingIncompleteUnderItsName) {
  test::WriteFile(At("old"), "old");
  int started[2];
  ASSERT_EQ(pipe(started), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const bool ok = Extract("whole", "whole").ok() && folder_->BeginFile("old", 1 << 20).ok() &&
                    folder_->Write("half").ok() && folder_->AddLink("link", "whole", Replace::kFile).ok();
    (void)!write(started[1], ok ? "y" : "n", 1);
    for (;;) pause();
  }
  char answer = 0;
  EXPECT_EQ(read(started[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(started[0]);
  close(started[1]);
  EXPECT_TRUE(std::regex_match(Inside(), std::regex("\\.quendle-[^ ]*\\.part=[^=]* old=old whole=whole")))
      << Inside();
}

TEST_F(ExtractionFolderTest, AnExitLeavesNothingIncomplete) {
  const auto exit_half_way = [&] {
    if (Extract("whole", "whole").ok() && folder_->BeginFile("d/half", 1 << 20).ok()) std::exit(3);
  };
  EXPECT_EXIT(exit_half_way(), testing::ExitedWithCode(3), "");
  EXPECT_EQ(Inside(), "d/ whole=whole");
}

}  // namespace
}  // namespace quendle::platform
