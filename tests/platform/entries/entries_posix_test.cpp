#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include "platform/entries/durable_file.h"
#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "support/picture.h"
#include "support/rights_posix.h"

namespace quendle::platform {
namespace {

GTEST_TEST(LongPath, KeepsLinksAndBlanks) {
  const test::TempFolder folder;
  const std::string root = fs::canonical(folder.path()).string();
  test::WriteFile(root + "/Docs/ Report.txt ", "x");
  fs::create_directory_symlink(root + "/Docs", root + "/link");
  const struct {
    std::string path, expected;
  } rows[] = {
      {root + "/Docs/ Report.txt ", root + "/Docs/ Report.txt "},
      {root + "/link", root + "/link"},
      {root + "/link/ Report.txt ", root + "/link/ Report.txt "},
      {root + "/link/..", root},  // the parent of what the link names
  };
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path;
  fs::rename(root + "/Docs", root + "/Old");
  EXPECT_EQ(LongPath(root + "/Docs/ Report.txt "), "");
  for (const char* name : {"/Docs/ Report.txt ", "/Docs/sub/ Report.txt "}) test::WriteFile(root + name, "y");
  for (const auto& row : rows) EXPECT_EQ(LongPath(row.path), row.expected) << row.path << " made anew";
  fs::remove(root + "/link");
  fs::create_directory_symlink(root + "/Docs/sub", root + "/link");
  EXPECT_EQ(LongPath(root + "/link/../sub"), root + "/Docs/sub");
  EXPECT_EQ(LongPath(root + "/link/ Report.txt "), root + "/link/ Report.txt ");
  fs::create_hard_link(root + "/Docs/ Report.txt ", root + "/Docs/ REPORT.TXT ");
  EXPECT_EQ(LongPath(root + "/Docs/ Report.txt "), root + "/Docs/ Report.txt ") << "two names of one file";
}

mode_t ModeOf(const std::string& path) {
  return test::StatusOf(path).st_mode & 07777;
}

GTEST_TEST(ReplaceFile, KeepsTheMode) {
  const test::TempFolder folder;
  const mode_t mask = umask(027);
  EXPECT_TRUE(ReplaceFile(folder / "new", "one").ok());
  umask(mask);
  EXPECT_EQ(ModeOf(folder / "new"), 0640U);
  ASSERT_EQ(chmod((folder / "new").c_str(), 0664), 0);
  EXPECT_TRUE(ReplaceFile(folder / "new", "two").ok());
  EXPECT_EQ(ModeOf(folder / "new"), 0664U);
}

GTEST_TEST(ReplaceFile, RespectsRights) {
  const test::TempFolder folder;
  for (const char* file : {"open/locked", "closed/file", "open/free"}) test::WriteFile(folder / file, "old");
  const std::string free = folder / "open/free";
  // A group that nobody is in: it does not become that of the new file.
  EXPECT_EQ(chown(free.c_str(), geteuid(), geteuid() == 0 ? 65533 : getegid()), 0);
  for (const auto& [entry, rights] : {std::pair("", 0755),
                                      {"open", 0777},
                                      {"open/locked", 0444},
                                      {"open/free", 0676},
                                      {"closed/file", 0666},
                                      {"closed", 0555}})
    ASSERT_EQ(chmod((folder / entry).c_str(), static_cast<mode_t>(rights)), 0);
  {
    const test::WithoutPrivileges nobody;
    EXPECT_EQ(ReplaceFile(folder / "open/locked", "new").code, Code::kDenied);
    EXPECT_EQ(ReplaceFile(folder / "closed/file", "new").code, Code::kDenied);
    EXPECT_TRUE(ReplaceFile(free, "new").ok());
  }
  EXPECT_EQ(test::ReadFile(folder / "open/locked"), "old");
  EXPECT_EQ(test::ReadFile(folder / "closed/file"), "old");
  EXPECT_EQ(test::Picture(folder / "open").size(), 2U);
  EXPECT_EQ(ModeOf(free), geteuid() == 0 ? 0606U : 0676U);
  chmod((folder / "closed").c_str(), 0755);
}

GTEST_TEST(FolderLock, AnInterruptEndsTheWait) {
  const test::TempFolder folder;
  std::unique_ptr<FolderLock> lock;
  ASSERT_TRUE(FolderLock::Take(folder / "a.ini", &lock).ok());
  const pid_t child = fork();
  if (child == 0) {
    CatchInterrupts();
    alarm(8);  // ends the child if waiting goes on
    raise(SIGTERM);
    std::unique_ptr<FolderLock> other;
    const bool cancelled = FolderLock::Take(folder / "b.ini", &other).code == Code::kCancelled;
    _exit(cancelled ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace quendle::platform
