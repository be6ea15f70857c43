#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/durable_file.h"
#include "platform/process.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

std::size_t EntriesIn(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

mode_t ModeOf(const std::string& path) {
  struct stat entry;
  return stat(path.c_str(), &entry) == 0 ? entry.st_mode & 07777 : 0;
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

// Rights do not bind the superuser, so a child that is nobody tries.
GTEST_TEST(ReplaceFile, RespectsRights) {
  const test::TempFolder folder;
  test::WriteFile(folder / "open/locked", "old");
  test::WriteFile(folder / "closed/file", "old");
  test::WriteFile(folder / "open/free", "old");
  ASSERT_EQ(chmod((folder / "open/free").c_str(), 0676), 0);
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod((folder / "open").c_str(), 0777), 0);
  ASSERT_EQ(chmod((folder / "open/locked").c_str(), 0444), 0);
  ASSERT_EQ(chmod((folder / "closed/file").c_str(), 0666), 0);
  ASSERT_EQ(chmod((folder / "closed").c_str(), 0555), 0);
  const pid_t child = fork();
  if (child == 0) {
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) _exit(9);
    const bool locked = ReplaceFile(folder / "open/locked", "new").code == Code::kDenied;
    const bool closed = ReplaceFile(folder / "closed/file", "new").code == Code::kDenied;
    const bool free = ReplaceFile(folder / "open/free", "new").ok();
    _exit(locked && closed && free ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(test::ReadFile(folder / "open/locked"), "old");
  EXPECT_EQ(test::ReadFile(folder / "closed/file"), "old");
  EXPECT_EQ(EntriesIn(folder / "open"), 2U);
  // The group is another one only where the superuser's file became nobody's.
  EXPECT_EQ(ModeOf(folder / "open/free"), geteuid() == 0 ? 0606U : 0676U);
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
