// What is left when a disk fails, or somebody else does something, at any moment of an operation.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>

#include "platform/durable_file.h"
#include "support/failing_disk_posix.h"
#include "support/picture.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;
using test::DiskCall;
using test::FailingDisk;
using test::Picture;
using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
using Answer = FileOperationObserver::Answer;
using Pictured = std::map<std::string, std::string>;

constexpr char kHidden[] = ".quendle-";
constexpr char kLeft[] = "; the copy was left in place: it has been changed since";

void Append(const std::string& path) {
  std::ofstream(path, std::ios::app) << "+";
}

// A source and a destination folder, on two file systems if need be.
class DiskFailure : public testing::Test {
 protected:
  void SetUp() override {
    if (test::OtherFileSystem().empty()) GTEST_SKIP() << "there is no second file system";
  }

  void Refill() {
    for (const TempFolder* folder : {&source_, &destination_, &near_}) {
      for (const auto& entry : fs::directory_iterator(folder->path())) fs::remove_all(entry);
    }
    WriteFile(source_ / "f", "file");
    WriteFile(source_ / "t/a", "first");
    WriteFile(source_ / "t/b/c", "second");
    fs::create_symlink("a", source_ / "t/l");
    observer_ = {};
  }
  Result Move(const std::string& name) {
    return MoveEntry(source_ / name, destination_ / name, options_, &observer_);
  }

  const TempFolder source_;
  const TempFolder near_;
  const TempFolder destination_{test::OtherFileSystem()};
  test::ScriptedObserver observer_;
  FileOperationOptions options_;
};

TEST_F(DiskFailure, NothingIsRemovedBeforeItsCopyIsOnTheDisk) {
  const std::string d = destination_.path();
  const std::string s = source_.path();
  const struct {
    const char* name;
    std::function<Result()> run;
    std::vector<std::string> order;  // beginnings of calls, with others between them
  } rows[] = {
      {"move of a file",
       [&] { return Move("f"); },
       {"sync " + d + "/" + kHidden, "rename " + d + "/" + kHidden, "sync " + d, "unlink " + s + "/f"}},
      {"move of a folder",
       [&] { return Move("t"); },
       {"sync " + d + "/" + kHidden, "rename " + d + "/" + kHidden, "sync " + d, "unlink " + s + "/t/"}},
      {"replaced settings",
       [&] { return ReplaceFile(destination_ / "f", "new"); },
       {"sync " + d + "/" + kHidden, "rename " + d + "/" + kHidden, "sync " + d}},
  };
  for (const auto& row : rows) {
    Refill();
    FailingDisk disk;
    const Result result = row.run();
    EXPECT_TRUE(result.ok()) << row.name << ": " << result.reason;
    auto next = row.order.begin();
    for (const std::string& call : disk.calls()) {
      if (next != row.order.end() && call.starts_with(*next)) ++next;
    }
    EXPECT_TRUE(next == row.order.end()) << row.name << " lacks " << *next;
  }
}

// Nothing that was in the picture is neither here nor there.
void ExpectAllIsSomewhere(const Pictured& before, const Pictured& here, const Pictured& there) {
  for (const auto& [name, what] : before) {
    const auto at = [name = name](const Pictured& picture) {
      const auto found = picture.find(name);
      return found == picture.end() ? "" : found->second;
    };
    EXPECT_TRUE(at(here) == what || at(there) == what) << name << " is lost";
  }
}

TEST_F(DiskFailure, AnyCallMayFail) {
  const struct {
    const char* what;
    const char* name;
    const TempFolder& to;
    bool replaces;
  } rows[] = {
      {"a file to another file system", "f", destination_, false},
      {"a folder to another file system", "t", destination_, false},
      {"a file over one on another file system", "f", destination_, true},
      {"a file over one in the same file system", "f", near_, true},
      {"a folder in the same file system", "t", near_, false},
  };
  for (const auto& row : rows) {
    for (const DiskCall call : test::kDiskCalls) {
      bool has_failed = true;
      for (unsigned nth = 1; has_failed; ++nth) {
        Refill();
        observer_.answers = {Answer::kYes};
        if (row.replaces) WriteFile(row.to / row.name, "old");
        const Pictured before = Picture(source_.path());
        const Pictured old = Picture(row.to.path());
        Result result;
        std::string failed;
        {
          FailingDisk disk;
          disk.Fail(call, nth, EIO);
          result = MoveEntry(source_ / row.name, row.to / row.name, options_, &observer_);
          failed = disk.failed();
        }
        has_failed = !failed.empty();
        SCOPED_TRACE(testing::Message() << row.what << ", " << nth << ": " << failed);
        const Pictured here = Picture(source_.path());
        const Pictured there = Picture(row.to.path());
        ExpectAllIsSomewhere(before, here, there);
        EXPECT_TRUE(has_failed || result.ok()) << result.reason;
        EXPECT_TRUE(result.ok() || !result.reason.empty());
        if (result.ok()) {
          EXPECT_EQ(here.count(row.name), 0U);
        } else if (here == before) {
          EXPECT_EQ(there, old) << result.reason;
        } else {
          EXPECT_TRUE(result.reason.ends_with("the copy is complete, the rest of the source was left"))
              << result.reason;
        }
        for (const auto& entry : there) {
          const bool may_stay = failed.starts_with("unlink") && failed.find(kHidden) != std::string::npos;
          EXPECT_TRUE(may_stay || !entry.first.starts_with(kHidden)) << entry.first;
        }
      }
    }
  }
}

// As an editor puts its new version into a place.
void RenameOver(const std::string& path, const std::string& bytes) {
  const TempFolder beside(fs::path(path).parent_path().string());
  WriteFile(beside / "new", bytes);
  fs::rename(beside / "new", path);
}

// The path of a hidden temporary entry; empty when there is none.
std::string HiddenIn(const std::string& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with(kHidden)) return entry.path();
  }
  return "";
}

// What is there under any name, since hidden ones have letters by chance.
std::multiset<std::string> ContentsOf(const std::string& folder) {
  std::multiset<std::string> contents;
  for (const auto& [name, what] : Picture(folder)) {
    if (what.starts_with("file ")) contents.insert(what.substr(5));
  }
  return contents;
}

TEST_F(DiskFailure, OnlyOnesOwnIsTakenBack) {
  constexpr auto kAtPut = DiskCall::kRename;  // the first one of a hidden name; the second one takes back
  constexpr auto kAtSync = DiskCall::kSync;   // first of the copy, then of the folder that it is in
  const struct {
    const char* what;
    const char* name;
    DiskCall call;
    unsigned nth;
    std::function<void()> act;
    std::multiset<std::string> left;
    const char* reason;
  } rows[] = {
      {"nobody", "f", kAtPut, 2, [] {}, {}, "the source changed meanwhile"},
      {"nobody, over a file", "over", kAtPut, 2, [] {}, {"old"}, "the source changed meanwhile"},
      {"nobody, a folder", "t", kAtPut, 2, [] {}, {}, "the source changed meanwhile"},
      {"writes", "f", kAtSync, 2, [&] { Append(destination_ / "f"); }, {"file+"}, kLeft},
      {"puts another", "f", kAtSync, 2, [&] { RenameOver(destination_ / "f", "his"); }, {"his"}, kLeft},
      {"puts another at the last moment",
       "f",
       kAtPut,
       2,
       [&] { RenameOver(destination_ / "f", "his"); },
       {"his"},
       kLeft},
      {"writes over a file", "over", kAtSync, 2, [&] { Append(destination_ / "over"); }, {"over+"}, kLeft},
      {"puts another over a file at the last moment",
       "over",
       kAtPut,
       2,
       [&] { RenameOver(destination_ / "over", "his"); },
       {"his"},
       kLeft},
      {"writes in a folder",
       "t",
       kAtSync,
       2,
       [&] { Append(destination_ / "t/a"); },
       {"first+", "second"},
       kLeft},
      {"adds to a folder",
       "t",
       kAtSync,
       2,
       [&] { WriteFile(destination_ / "t/b/his", "his"); },
       {"first", "second", "his"},
       kLeft},
      {"adds to a folder at the last moment",
       "t",
       kAtPut,
       2,
       [&] { WriteFile(destination_ / "t/b/his", "his"); },
       {"his"},
       "what others have put into it was left"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Refill();
    WriteFile(source_ / "over", "over");
    WriteFile(destination_ / "over", "old");
    if (row.name != std::string("over")) fs::remove(destination_ / "over");
    observer_.answers = {Answer::kYes};
    const std::string changed = fs::is_directory(source_ / row.name) ? source_ / "t/b/c" : source_ / row.name;
    Result result;
    {
      FailingDisk disk;
      disk.Before(
          DiskCall::kRename, 1, [&] { Append(changed); }, kHidden);
      disk.Before(row.call, row.nth, row.act, row.call == kAtPut ? kHidden : "");
      result = Move(row.name);
      const auto hides = [](const std::string& call) {
        return call.starts_with("rename") && call.find(kHidden) != std::string::npos;
      };
      // What is seen to be another's does not lose its name for a moment.
      EXPECT_EQ(std::count_if(disk.calls().begin(), disk.calls().end(), hides) == 1, row.call == kAtSync);
    }
    EXPECT_EQ(HiddenIn(destination_.path()), "");
    EXPECT_EQ(result.code, Code::kFailed);
    EXPECT_TRUE(result.reason.ends_with(row.reason)) << result.reason;
    EXPECT_EQ(ContentsOf(destination_.path()), row.left);
    EXPECT_TRUE(ReadFile(changed).ends_with("+"));
    EXPECT_EQ(Picture(source_.path()).size(), 7U);
  }
}

TEST_F(DiskFailure, OnlyTheFileThatWasAskedAboutIsReplacedAndRemoved) {
  const auto put = [&](const char* bytes) {
    return [this, bytes] { RenameOver(destination_ / "f", bytes); };
  };
  const struct {
    const char* what;
    std::function<void(FailingDisk&)> arrange;
    Code code;
    std::multiset<std::string> left;
  } rows[] = {
      {"another comes",
       [&](FailingDisk& disk) { disk.Before(DiskCall::kRename, 1, put("his"), kHidden); },
       Code::kExists,
       {"his"}},
      {"another comes, and one more",
       [&](FailingDisk& disk) {
         disk.Before(DiskCall::kRename, 1, put("his"), kHidden);
         disk.Before(DiskCall::kRename, 2, put("hers"), kHidden);
       },
       Code::kExists,
       {"his", "hers"}},
      {"another comes where the old one is kept",
       [&](FailingDisk& disk) {
         const auto put_there = [&] { RenameOver(HiddenIn(destination_.path()), "his"); };
         disk.Before(DiskCall::kUnlink, 1, put_there, source_.path());
       },
       Code::kOk,
       {"file", "his"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Refill();
    WriteFile(destination_ / "f", "old");
    observer_.answers = {Answer::kYes};
    FailingDisk disk;
    row.arrange(disk);
    const Result result = Move("f");
    EXPECT_EQ(result.code, row.code) << result.reason;
    EXPECT_EQ(ContentsOf(destination_.path()), row.left);
    EXPECT_EQ(ContentsOf(source_.path()).count("file"), result.ok() ? 0U : 1U);
  }
}

TEST_F(DiskFailure, AChangeDuringTheCopyIsFoundBeforeItHasItsName) {
  Refill();
  Result result;
  {
    FailingDisk disk;
    disk.Before(DiskCall::kSync, 1, [&] { Append(source_ / "t/a"); });
    result = Move("t");
  }
  EXPECT_EQ(result.reason, "the source changed meanwhile");
  EXPECT_TRUE(Picture(destination_.path()).empty());
  EXPECT_EQ(Picture(source_.path()).size(), 6U);
}

TEST_F(DiskFailure, ATornReadIsReadAgain) {
  const std::string path = source_ / "a.ini";
  WriteFile(path, "[A]\nID=1\n");
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  std::string bytes;
  FailingDisk disk;
  const auto write = [&](const char* text) { return [&path, text] { WriteFile(path, text); }; };
  disk.Before(DiskCall::kRead, 1, write("[B]\nID=1\n"));
  disk.Before(DiskCall::kOpen, 2, write("[B]\nID=2\n"));
  const Result result = ReadSettledFile(path, &bytes);
  EXPECT_TRUE(result.ok()) << result.reason;
  EXPECT_EQ(bytes, "[B]\nID=2\n");
}

TEST_F(DiskFailure, SettingsAreTheOldOrTheNewOnes) {
  for (const DiskCall call : test::kDiskCalls) {
    bool has_failed = true;
    for (unsigned nth = 1; has_failed; ++nth) {
      Refill();
      WriteFile(source_ / "f", "old");
      Result result;
      std::string failed;
      {
        FailingDisk disk;
        disk.Fail(call, nth, EIO);
        result = ReplaceFile(source_ / "f", "new");
        failed = disk.failed();
      }
      has_failed = !failed.empty();
      SCOPED_TRACE(failed);
      const bool is_new =
          result.ok() || result.reason.find("the new content is in place") != std::string::npos;
      EXPECT_EQ(ReadFile(source_ / "f"), is_new ? "new" : "old") << result.reason;
      EXPECT_EQ(Picture(source_.path()).size(), 6U);
      const bool must_tell = call == DiskCall::kWrite || call == DiskCall::kSync || call == DiskCall::kRename;
      EXPECT_TRUE(result.ok() || has_failed) << result.reason;
      EXPECT_FALSE(result.ok() && has_failed && must_tell);
    }
  }
}

}  // namespace
}  // namespace quendle::platform
