#include <cstdlib>

#include <fcntl.h>
#include <sys/xattr.h>

#include "support/outcome.h"
#include "support/rights_posix.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

using test::Picture, test::StatusOf, test::TempFolder, test::WriteFile;

class FileOperationOnPosix : public test::WayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, FileOperationOnPosix,
                         testing::Values(test::kMove, test::kMoveAcross, test::kCopy, test::kCopyAcross),
                         test::NameOfWay);

TEST_P(FileOperationOnPosix, AReadOnlyFolderIsFoundBeforeAnythingIsWritten) {
  const test::WithoutPrivileges unprivileged;
  const TempFolder from;
  const TempFolder to(fs::path(At("D")).parent_path().string());
  WriteFile(from / "top/d/f", std::string(20 << 20, 'f'));  // enough for a report in the middle
  const auto before = Picture(from.path());
  struct Row {
    std::string locked, source, destination;
    bool fails;
  };
  const bool moves = GetParam().moves;
  const Row rows[] = {
      {from / "top/d", from / "top/d/f", to / "f", moves},
      {from / "top/d", from / "top", to / "top", moves && GetParam().across},
      {to.path(), from / "top/d/f", to / "g", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.locked + " " + row.source);
    fs::permissions(row.locked, fs::perms(0555));
    observer_.reports = 0;
    const Result result = (moves ? MoveEntry : CopyEntry)(row.source, row.destination, options_, &observer_);
    EXPECT_EQ(result.code, row.fails ? Code::kDenied : Code::kOk) << result.path << ": " << result.reason;
    if (row.fails) {
      EXPECT_EQ(observer_.reports, 1U);
      EXPECT_EQ(Picture(from.path()), before);
      EXPECT_FALSE(fs::exists(row.destination));
    } else if (moves) {
      fs::rename(row.destination, row.source);
    }
    if (fs::exists(row.locked)) fs::permissions(row.locked, fs::perms(0755));
  }
  EXPECT_EQ(Picture(to.path()).count("top/d/f"), moves ? 0U : 1U);
  if (!moves) fs::permissions(to / "top/d", fs::perms(0755));
}

TEST_P(FileOperationOnPosix, DevicesAndPipesAreNotCopied) {
  const bool is_renamed = GetParam().moves && !GetParam().across;
  WriteFile(At("S/d/a"), "a");
  ASSERT_EQ(mkfifo(At("S/d/p").c_str(), 0600), 0);
  for (const char* name : {"d", "d/p"}) {
    const Result result = Run(std::string("S/") + name, "D/x");
    if (is_renamed) {
      EXPECT_TRUE(result.ok()) << result.reason;
      fs::rename(At("D/x"), At(std::string("S/") + name));
      continue;
    }
    EXPECT_EQ(result.code, Code::kRefused) << result.reason;
    EXPECT_EQ(result.path, At("S/d/p"));
    EXPECT_TRUE(Picture(At("D")).empty());
  }
}

constexpr std::size_t kBig = 24 << 20;

class CopyingOnPosix : public test::WayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, CopyingOnPosix,
                         testing::Values(test::kMoveAcross, test::kCopy, test::kCopyAcross), test::NameOfWay);

void SetTimes(const std::string& path, long nanoseconds) {
  const timespec times[] = {{1000000000, nanoseconds}, {1100000000, nanoseconds + 1}};
  EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

TEST_P(CopyingOnPosix, KeepsMetadataHolesAndHardLinks) {
  WriteFile(source_ / "t/f", "data");
  WriteFile(source_ / "t/folder/x", "x");
  fs::create_hard_link(source_ / "t/f", source_ / "t/folder/f");
  fs::create_symlink("nowhere", source_ / "t/l");
  WriteFile(source_ / "t/holes", "begin");
  fs::resize_file(source_ / "t/holes", kBig);
  const int file = open((source_ / "t/holes").c_str(), O_WRONLY);
  EXPECT_EQ(pwrite(file, "middle", 6, kBig / 2), 6);
  close(file);
  const bool has_attributes = setxattr((source_ / "t/f").c_str(), "user.a", "value", 5, 0) == 0 &&
                              setxattr((source_ / "t/folder").c_str(), "user.a", "value", 5, 0) == 0;
  EXPECT_EQ(chmod((source_ / "t/f").c_str(), 04741), 0);
  EXPECT_EQ(chmod((source_ / "t/folder").c_str(), 01750), 0);
  for (const char* name : {"t/f", "t/l", "t/folder", "t/holes", "t"}) SetTimes(source_ / name, 123456789);
  const auto before = Picture(source_.path());
  std::vector<struct stat> recorded;
  const std::vector<std::string> names = {"t", "t/f", "t/folder", "t/l", "t/holes"};
  for (const std::string& name : names) recorded.push_back(StatusOf(source_ / name));

  ASSERT_TRUE(test::Succeeds(Run("S/t", "D/t")));
  EXPECT_EQ(Picture(destination_.path()), before);
  EXPECT_EQ(Picture(source_.path()).empty(), GetParam().moves);
  for (std::size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    const struct stat copy = StatusOf(destination_ / names[i]);
    const mode_t kept = GetParam().moves ? 07777 : 01777;
    EXPECT_EQ(copy.st_mode & 07777, recorded[i].st_mode & kept);
    EXPECT_EQ(copy.st_mtim.tv_sec, 1100000000);
    EXPECT_EQ(copy.st_mtim.tv_nsec, 123456790);
  }
  const struct stat link = StatusOf(destination_ / "t/folder/f");
  EXPECT_EQ(link.st_ino, StatusOf(destination_ / "t/f").st_ino);
  EXPECT_LT(StatusOf(destination_ / "t/holes").st_blocks, 1000);
  char value[8] = "";
  for (const char* name : {"t/f", "t/folder"}) {
    const std::string path = destination_ / name;
    if (!has_attributes || setxattr(path.c_str(), "user.b", "", 0, 0) != 0) continue;  // neither can have any
    EXPECT_EQ(getxattr(path.c_str(), "user.a", value, sizeof value), 5);
    EXPECT_EQ(std::string(value, 5), "value");
  }
}

TEST_P(CopyingOnPosix, AnExitLeavesBothSidesAsTheyWere) {
  WriteFile(source_ / "big", std::string(kBig, 'b'));
  WriteFile(source_ / "tree/a/big", std::string(kBig, 'b'));
  const auto before = Picture(source_.path());
  observer_.must_stay_responsive = true;  // what can exit so has windows
  for (const char* name : {"big", "tree"}) {
    observer_.on_progress = [](const FileProgress& progress) {
      if (progress.bytes_done > 0) std::exit(3);
      return true;
    };
    EXPECT_EXIT((void)Run(std::string("S/") + name, "D/x"), testing::ExitedWithCode(3), "");
    EXPECT_EQ(Picture(source_.path()), before);
    EXPECT_TRUE(Picture(destination_.path()).empty());
  }
}

}  // namespace
}  // namespace quendle::platform
