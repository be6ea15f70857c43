// What is left when a copy does not come to its end.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "support/ways.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::WriteFile;

constexpr std::size_t kBig = 24 << 20;

class Copying : public test::WayTest {
 protected:
  Result RunSame(const std::string& name) { return Run("S/" + name, "D/" + name); }
};

INSTANTIATE_TEST_SUITE_P(Ways, Copying, testing::Values(test::kMoveAcross, test::kCopy, test::kCopyAcross),
                         test::NameOfWay);

TEST_P(Copying, ACancelLeavesBothSidesAsTheyWere) {
  WriteFile(source_ / "big", std::string(kBig, 'b'));
  WriteFile(source_ / "tree/a/big", std::string(kBig, 'b'));
  WriteFile(source_ / "tree/b/small", "s");
  struct Row {
    const char* name;
    std::size_t report;   // the first one that is answered with a cancel,
    std::uint64_t bytes;  // once so much has been copied
  };
  const auto before = Picture(source_.path());
  for (const Row& row :
       {Row{"big", 1, 0}, Row{"big", 1, 1}, Row{"tree", 1, 1}, Row{"tree", 3, 0}, Row{"tree", 5, 0}}) {
    SCOPED_TRACE(testing::Message() << row.name << row.report << row.bytes);
    observer_.reports = 0;
    observer_.on_progress = [&](const FileProgress& progress) {
      return observer_.reports < row.report || progress.bytes_done < row.bytes;
    };
    EXPECT_EQ(RunSame(row.name).code, Code::kCancelled);
    EXPECT_EQ(observer_.reports > 1, row.report > 1 || row.bytes > 0);
    EXPECT_EQ(Picture(source_.path()), before);
    EXPECT_TRUE(Picture(destination_.path()).empty());
  }
}

TEST_P(Copying, AChangeOfTheSourceKeepsIt) {
  struct Row {
    const char* what;
    const char* name;
    std::function<void()> change;
  };
  const Row rows[] = {
      {"longer", "big", [&] { std::ofstream(test::FsPath(source_ / "big"), std::ios::app) << "more"; }},
      {"shorter", "big", [&] { fs::resize_file(source_ / "big", 1000); }},
      {"rewritten", "big", [&] { std::fstream(test::FsPath(source_ / "big")) << "other"; }},
      {"new entry", "tree", [&] { WriteFile(source_ / "tree/a/new", "new"); }},
      {"lost entry", "tree", [&] { fs::remove(source_ / "tree/b/small"); }},
      {"changed entry", "tree", [&] { WriteFile(source_ / "tree/b/small", "other"); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    WriteFile(source_ / "big", std::string(kBig, 'b'));
    WriteFile(source_ / "tree/a/big", std::string(kBig, 'b'));
    WriteFile(source_ / "tree/b/small", "s");
    std::this_thread::sleep_for(
        std::chrono::milliseconds(30));  // the clock that stamps files moves in steps of up to 16 ms
    std::map<std::string, std::string> changed;
    observer_.on_progress = [&](const FileProgress& progress) {
      if (progress.bytes_done > 0 && changed.empty()) {
        row.change();
        changed = Picture(source_.path());
      }
      return true;
    };
    const Result result = RunSame(row.name);
    EXPECT_NE(result.code, Code::kOk);
    EXPECT_NE(result.reason, "");
    EXPECT_EQ(Picture(source_.path()), changed);
    EXPECT_TRUE(Picture(destination_.path()).empty());
    fs::remove_all(source_ / "tree");
  }
}

}  // namespace
}  // namespace quendle::platform
