#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/entries/durable_file.h"
#include "platform/process/process.h"
#include "support/picture.h"
#include "support/rights_posix.h"

namespace quendle::platform {
namespace {

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

GTEST_TEST(ReplaceFile, RefusesDevices) {
  std::string bytes = "left over";
  EXPECT_EQ(ReadWholeFile("/dev/zero", &bytes).code, Code::kRefused);
  EXPECT_EQ(ReplaceFile("/dev/zero", "x").code, Code::kRefused);
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
