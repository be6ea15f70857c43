#include "platform/durable_file.h"

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

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

GTEST_TEST(ReplaceFile, KeepsTheModeAndLeavesNothingElse) {
  const test::TempFolder folder;
  const mode_t mask = umask(027);
  EXPECT_TRUE(ReplaceFile(folder / "new", "one").ok());
  umask(mask);
  EXPECT_EQ(ModeOf(folder / "new"), 0640U);
  ASSERT_EQ(chmod((folder / "new").c_str(), 0664), 0);
  const std::string large(3'000'000, 'x');
  EXPECT_TRUE(ReplaceFile(folder / "new", large).ok());
  EXPECT_EQ(ModeOf(folder / "new"), 0664U);
  EXPECT_EQ(test::ReadFile(folder / "new"), large);
  EXPECT_TRUE(ReplaceFile(folder / "new", "").ok());
  EXPECT_EQ(fs::file_size(folder / "new"), 0U);
  EXPECT_EQ(EntriesIn(folder.path()), 1U);
}

GTEST_TEST(ReplaceFile, KeepsLinks) {
  const test::TempFolder folder;
  test::WriteFile(folder / "real/a.ini", "old");
  fs::create_symlink("real/a.ini", folder / "first");
  fs::create_symlink(folder / "first", folder / "second");
  fs::create_symlink("real/missing.ini", folder / "dangling");
  fs::create_symlink("loop", folder / "loop");
  EXPECT_TRUE(ReplaceFile(folder / "second", "new").ok());
  EXPECT_TRUE(ReplaceFile(folder / "dangling", "made").ok());
  EXPECT_FALSE(ReplaceFile(folder / "loop", "x").ok());
  EXPECT_EQ(test::ReadFile(folder / "real/a.ini"), "new");
  EXPECT_EQ(test::ReadFile(folder / "real/missing.ini"), "made");
  for (const char* link : {"first", "second", "dangling"}) EXPECT_TRUE(fs::is_symlink(folder / link)) << link;
  EXPECT_EQ(EntriesIn(folder / "real"), 2U);
}

GTEST_TEST(ReplaceFile, RefusesWhatIsNoFile) {
  const test::TempFolder folder;
  fs::create_directory(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  test::WriteFile(folder / "file", "x");
  const struct {
    std::string path;
    Code replaced;
    Code read;
  } rows[] = {
      {folder / "folder", Code::kIsFolder, Code::kIsFolder},
      {folder / "pipe", Code::kRefused, Code::kRefused},
      {folder / "none/file", Code::kNotFound, Code::kNotFound},
      {folder / "file/below", Code::kNotFolder, Code::kNotFolder},
      {"/dev/zero", Code::kRefused, Code::kRefused},
      {"", Code::kNotFound, Code::kNotFound},
  };
  for (const auto& row : rows) {
    std::string bytes = "left over";
    EXPECT_EQ(ReadWholeFile(row.path, &bytes).code, row.read) << row.path;
    EXPECT_EQ(bytes, "") << row.path;
    const Result replaced = ReplaceFile(row.path, "x");
    EXPECT_EQ(replaced.code, row.replaced) << row.path;
    EXPECT_NE(replaced.reason, "") << row.path;
  }
  EXPECT_EQ(EntriesIn(folder.path()), 3U);
}

GTEST_TEST(ReplaceFile, AFailingWriteLeavesTheOldBytes) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.ini", "old");
  rlimit usual{};
  getrlimit(RLIMIT_FSIZE, &usual);
  const auto former = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1 << 20, usual.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const Result result = ReplaceFile(folder / "a.ini", std::string(3 << 20, 'x'));
  setrlimit(RLIMIT_FSIZE, &usual);
  std::signal(SIGXFSZ, former);
  EXPECT_EQ(result.code, Code::kFailed);
  EXPECT_EQ(result.path, folder / "a.ini");
  EXPECT_EQ(test::ReadFile(folder / "a.ini"), "old");
  EXPECT_EQ(EntriesIn(folder.path()), 1U);
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

GTEST_TEST(ReadWholeFile, RefusesFilesThatWouldFillTheMemory) {
  const test::TempFolder folder;
  test::WriteFile(folder / "sparse", "");
  fs::resize_file(folder / "sparse", std::uintmax_t{1} << 40);
  std::string bytes;
  EXPECT_EQ(ReadWholeFile(folder / "sparse", &bytes).code, Code::kRefused);
}

GTEST_TEST(FolderLock, HoldersWaitForEachOther) {
  const test::TempFolder folder;
  fs::create_directory(folder / "real");
  fs::create_symlink("real/a.ini", folder / "link");
  std::unique_ptr<FolderLock> lock;
  ASSERT_TRUE(FolderLock::Take(folder / "real/a.ini", &lock).ok());
  std::atomic<bool> second_has_it = false;
  std::thread second([&] {
    std::unique_ptr<FolderLock> other;
    EXPECT_TRUE(FolderLock::Take(folder / "link", &other).ok());
    second_has_it = true;
  });
  usleep(50'000);
  EXPECT_FALSE(second_has_it);
  const pid_t child = fork();
  if (child == 0) {
    CatchInterrupts();
    alarm(8);  // ends the child if waiting goes on
    raise(SIGTERM);
    std::unique_ptr<FolderLock> other;
    const bool cancelled = FolderLock::Take(folder / "link", &other).code == Code::kCancelled;
    _exit(cancelled && FolderLock::Take(folder / "free", &other).ok() ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  lock.reset();
  second.join();
  EXPECT_EQ(FolderLock::Take(folder / "none/a.ini", &lock).code, Code::kNotFound);
  EXPECT_EQ(EntriesIn(folder / "real"), 0U);
}

}  // namespace
}  // namespace quendle::platform
