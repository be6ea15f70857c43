#include <filesystem>

#include "support/rights_posix.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::TempFolder;
using test::WriteFile;

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

}  // namespace
}  // namespace quendle::platform
