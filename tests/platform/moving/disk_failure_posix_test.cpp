// What is left when a disk fails, or somebody else does something, at any moment of an operation.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <functional>
#include <set>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "platform/entries/durable_file.h"
#include "platform/ini/profile.h"
#include "platform/process/system_failure.h"
#include "support/failing_disk_posix.h"
#include "support/outcome.h"
#include "support/picture.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

using test::FailingDisk, test::Picture, test::ReadFile, test::TempFolder, test::WriteFile;
using Answer = FileOperationObserver::Answer;
using Pictured = std::map<std::string, std::string>;

constexpr char kHidden[] = ".quendle-";

void Append(const std::string& path) {
  std::ofstream(path, std::ios::app) << "+";
}

// The path of a hidden temporary entry; empty when there is none.
std::string HiddenIn(const std::string& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with(kHidden)) return entry.path();
  }
  return "";
}

// What a picture shows of an entry whose name is a letter.
Pictured Below(const char* name, Pictured picture) {
  std::erase_if(picture, [&](const auto& entry) { return entry.first[0] != *name; });
  return picture;
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
    observer_.answers = {Answer::kYes};
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
  for (const char* name : {"f", "t", "settings"}) {
    Refill();
    FailingDisk disk;
    const bool is_move = *name != 's';
    EXPECT_TRUE((is_move ? Move(name) : ReplaceFile(destination_ / name, "new")).ok()) << name;
    const std::string hidden = destination_ / kHidden;
    std::vector<std::string> order = {"sync " + hidden, "rename " + hidden, "sync " + destination_.path()};
    if (is_move) order.push_back("unlink " + source_ / name);
    auto next = order.begin();
    for (const std::string& call : disk.calls())
      if (next != order.end() && call.starts_with(*next)) ++next;
    EXPECT_TRUE(next == order.end()) << name << " lacks " << *next;
  }
}

// Runs again and again, with each call to the disk failing in turn.
void FailEachCall(const std::function<void()>& prepare, const std::function<Result()>& run,
                  const std::function<void(const Result&, const std::string& failed)>& check) {
  for (const char* call : test::kDiskCalls) {
    std::string failed = "none yet";
    for (unsigned nth = 1; !failed.empty(); ++nth) {
      prepare();
      Result result;
      {
        FailingDisk disk;
        disk.Fail(call, nth, EIO);
        result = run();
        failed = disk.failed();
      }
      SCOPED_TRACE(testing::Message() << call << " " << nth << ": " << failed);
      EXPECT_TRUE(result.ok() || (!failed.empty() && !result.reason.empty())) << result.reason;
      check(result, failed);
    }
  }
}

TEST_F(DiskFailure, AnyCallOfAMoveOrCopyMayFail) {
  const struct {
    bool moves;
    const char* name;
    const TempFolder& to;
    const char* replaced;
  } rows[] = {{true, "f", destination_, ""},    {true, "t", destination_, ""},
              {true, "f", destination_, "old"}, {true, "f", near_, "old"},
              {true, "t", near_, ""},           {false, "t", destination_, ""},
              {false, "f", destination_, "old"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.to / row.name + row.replaced);
    Pictured before;
    Pictured old;
    const auto prepare = [&] {
      Refill();
      if (*row.replaced != 0) WriteFile(row.to / row.name, row.replaced);
      before = Picture(source_.path());
      old = Picture(row.to.path());
    };
    const auto run = [&] {
      return (row.moves ? MoveEntry : CopyEntry)(source_ / row.name, row.to / row.name, {}, &observer_);
    };
    FailEachCall(prepare, run, [&](const Result& result, const std::string& failed) {
      const Pictured here = Picture(source_.path());
      Pictured there = Picture(row.to.path());
      if (failed.starts_with("unlink") && failed.find(kHidden) != std::string::npos)
        there.erase(HiddenIn(row.to.path()).substr(row.to.path().size() + 1));  // it could not be removed
      const Pictured whole = Below(row.name, before);
      const bool is_complete =
          English(result.reason).ends_with("the copy is complete, the rest of the source was left");
      EXPECT_EQ(there, result.ok() || is_complete ? whole : old) << result.reason;
      if (is_complete) return;
      if (result.ok() && row.moves)
        std::erase_if(before, [&](const auto& entry) { return whole.count(entry.first) != 0; });
      EXPECT_EQ(here, before) << result.reason;
    });
  }
}

// With the system taking its time over one call and the user cancelling then.
TEST_F(DiskFailure, ASlowCallIsSeenToGoOnAndACancelMeansWhatIsSaid) {
  enum Kind { kMove, kCopy, kDelete };
  const struct {
    Kind kind;
    const char *name, *call;
    const TempFolder& where;
    bool is_done;
  } rows[] = {
      {kMove, "f", "sync", destination_, false}, {kMove, "t", "sync", destination_, false},
      {kMove, "f", "unlink", source_, true},     {kMove, "t", "unlink", source_, true},
      {kMove, "f", "rename", source_, true},     {kCopy, "f", "attribute", destination_, false},
      {kDelete, "t", "open", source_, false},    {kCopy, "t", "write", destination_, false},
  };
  observer_.must_stay_responsive = true;
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.kind << row.name << " " << row.call);
    Refill();
    const TempFolder& to = row.call == std::string("rename") ? near_ : destination_;
    Pictured before = Picture(source_.path());
    const Pictured whole = Below(row.name, before);
    std::atomic<bool> is_slow = false;
    std::atomic<unsigned> looks = 0;
    observer_.on_progress = [&](const FileProgress&) {
      looks += is_slow ? 1 : 0;
      return looks < 2;
    };
    Result result;
    {
      FailingDisk disk;
      disk.Before(
          row.call, 1,
          [&] {
            is_slow = true;
            for (int i = 0; i < 1000 && looks < 3; ++i)
              std::this_thread::sleep_for(std::chrono::milliseconds(5));
            is_slow = false;
          },
          row.where.path());
      if (row.kind == kDelete)
        result = DeleteEntry(source_ / row.name, {}, &observer_);
      else
        result =
            (row.kind == kMove ? MoveEntry : CopyEntry)(source_ / row.name, to / row.name, {}, &observer_);
    }
    EXPECT_GE(looks, 3U);  // it is looked after until the end
    EXPECT_EQ(result.code, row.is_done ? Code::kOk : Code::kCancelled);
    EXPECT_EQ(Picture(to.path()), row.is_done ? whole : Pictured());
    if (row.is_done) std::erase_if(before, [&](const auto& entry) { return whole.count(entry.first) != 0; });
    EXPECT_EQ(Picture(source_.path()), before);
  }
}

// Enough for several threads, with a file of two names in different folders.
void MakeLargeTree(const std::string& top) {
  for (const char* folder : {"a", "b", "c", "d"}) {
    for (int i = 0; i < 80; ++i)
      WriteFile(top + "/" + folder + "/f" + std::to_string(i), std::string(100, *folder));
  }
  WriteFile(top + "/large", std::string(3 << 20, 'l'));
  fs::create_hard_link(top + "/a/f7", top + "/d/other");
}

TEST_F(DiskFailure, ALargeTreeIsCopiedWholeOrNotAtAll) {
  const struct {
    const char* call;
    unsigned nth;
    bool cancels, responsive;
  } rows[] = {{"none", 1, false, false}, {"none", 1, false, true},   {"make", 4, false, false},
              {"open", 7, false, false}, {"open", 300, false, true}, {"sync", 1, false, true},
              {"write", 3, true, false}, {"write", 200, true, true}, {"attribute", 600, true, true}};
  Refill();
  MakeLargeTree(source_ / "m");
  Pictured before = Picture(source_.path());
  const Pictured whole = Below("m", before);
  for (const bool moves : {false, true}) {
    for (const auto& row : rows) {
      SCOPED_TRACE(testing::Message() << moves << row.call << row.nth << row.cancels << row.responsive);
      std::atomic<bool> is_cancelled = false;
      observer_.must_stay_responsive = row.responsive;
      observer_.last = {};
      observer_.on_progress = [&](const FileProgress&) { return !is_cancelled; };
      Result result;
      {
        FailingDisk disk;
        if (row.cancels) {  // it takes as long as the user is not asked
          disk.Before(row.call, row.nth, [&] {
            is_cancelled = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
          });
        } else {
          disk.Fail(row.call, row.nth, EIO);
        }
        result = (moves ? MoveEntry : CopyEntry)(source_ / "m", destination_ / "m", {}, &observer_);
        const bool fails = !disk.failed().empty();  // there is no sync in copies
        EXPECT_EQ(result.code, row.cancels ? Code::kCancelled
                               : fails     ? Code::kFailed
                                           : Code::kOk)
            << result.path << ": " << result.reason;
      }
      EXPECT_EQ(Picture(destination_.path()), result.ok() ? whole : Pictured());
      if (result.ok()) {
        EXPECT_EQ(fs::hard_link_count(destination_ / "m/a/f7"), 2U);
        EXPECT_LE(observer_.last.bytes_done, observer_.last.bytes_total);
        EXPECT_EQ(fs::exists(source_ / "m"), !moves);
        fs::remove_all(destination_ / "m");
        if (moves) MakeLargeTree(source_ / "m");
      } else {
        EXPECT_EQ(Picture(source_.path()), before);
      }
    }
  }
}

TEST_F(DiskFailure, TheFirstOfSeveralFailuresInATreeIsTold) {
  Refill();
  MakeLargeTree(source_ / "m");
  std::vector<std::string> folders;
  for (const auto& entry : fs::directory_iterator(source_ / "m"))
    if (entry.is_directory()) folders.push_back(entry.path().filename());
  const std::string first = "/" + folders.front() + "/f10";
  const std::string last = "/" + folders.back() + "/f70";
  for (const std::string& late : {first, last}) {
    std::atomic<unsigned> arrived = 0;
    FailingDisk disk;
    for (const std::string& file : {first, last}) {
      const auto fail_in_turn = [&arrived, is_late = file == late] {
        ++arrived;
        for (int i = 0; i < 1000 && arrived < 2; ++i)
          std::this_thread::sleep_for(std::chrono::milliseconds(5));
        if (is_late) std::this_thread::sleep_for(std::chrono::milliseconds(50));
      };
      disk.Before("attribute", 1, fail_in_turn, file);
      disk.Fail("attribute", 1, EIO, file);
    }
    const Result result = CopyEntry(source_ / "m", destination_ / "m", {}, &observer_);
    EXPECT_EQ(result.code, Code::kFailed);
    EXPECT_EQ(result.path, destination_ / "m" + first) << late;
  }
}

// As an editor puts its new version into a place.
void RenameOver(const std::string& path, const std::string& bytes) {
  const TempFolder beside(fs::path(path).parent_path().string());
  WriteFile(beside / "new", bytes);
  fs::rename(beside / "new", path);
}

// What is there under any name, since hidden ones have letters by chance.
std::multiset<std::string> ContentsOf(const std::string& folder) {
  std::multiset<std::string> contents;
  for (const auto& [name, what] : Picture(folder)) {
    if (what.starts_with("file ")) contents.insert(what.substr(5));
  }
  return contents;
}

void Act(const std::string& what, const std::string& path) {
  if (what == "writes") Append(fs::is_directory(path) ? path + "/a" : path);
  if (what == "puts another") RenameOver(path, "his");
  if (what == "adds") WriteFile(path + "/b/his", "his");
}

TEST_F(DiskFailure, OnlyOnesOwnIsTakenBack) {
  const char* const kBack = "the source changed meanwhile";
  const char* const kLeft = "; the copy was left in place: it has been changed since";
  const struct {
    const char* name;
    const char* act;  // of somebody else, on the copy
    bool last_moment;
    std::multiset<std::string> left;
    const char* reason;
  } rows[] = {
      {"f", "nothing", true, {}, kBack},
      {"over", "nothing", true, {"old"}, kBack},
      {"t", "nothing", true, {}, kBack},
      {"f", "writes", false, {"file+"}, kLeft},
      {"f", "puts another", false, {"his"}, kLeft},
      {"f", "puts another", true, {"his"}, kLeft},
      {"over", "writes", false, {"over+"}, kLeft},
      {"over", "puts another", true, {"his"}, kLeft},
      {"t", "writes", false, {"first+", "second"}, kLeft},
      {"t", "adds", false, {"first", "second", "his"}, kLeft},
      {"t", "adds", true, {"his"}, "; what others have put into it was left"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.name << " " << row.act << " " << row.last_moment);
    Refill();
    WriteFile(source_ / "over", "over");
    if (row.name == std::string("over")) WriteFile(destination_ / "over", "old");
    const std::string changed = fs::is_directory(source_ / row.name) ? source_ / "t/b/c" : source_ / row.name;
    const auto change = [&] { Append(changed); };
    const auto act = [&] { Act(row.act, destination_ / row.name); };
    Result result;
    {
      FailingDisk disk;
      // The first rename of a hidden name puts the copy, the second one takes it back; the second sync is that of
      // the folder where the copy is.
      disk.Before("rename", 1, change, kHidden);
      disk.Before(row.last_moment ? "rename" : "sync", 2, act, row.last_moment ? kHidden : "");
      result = Move(row.name);
      const auto hides = [](const std::string& call) {
        return call.starts_with("rename") && call.find(kHidden) != std::string::npos;
      };
      // What is seen to be another's does not lose its name for a moment.
      EXPECT_EQ(std::count_if(disk.calls().begin(), disk.calls().end(), hides) > 1, row.last_moment);
    }
    EXPECT_EQ(HiddenIn(destination_.path()), "");
    EXPECT_TRUE(English(result.reason).ends_with(row.reason)) << result.reason;
    EXPECT_EQ(ContentsOf(destination_.path()), row.left);
    EXPECT_TRUE(ReadFile(changed).ends_with("+"));
    EXPECT_EQ(Picture(source_.path()).size(), 7U);
  }
}

TEST_F(DiskFailure, OnlyTheFileThatWasAskedAboutIsReplacedAndRemoved) {
  for (const std::string when : {"before", "before and after", "where the old one is kept"}) {
    SCOPED_TRACE(when);
    Refill();
    WriteFile(destination_ / "f", "old");
    const auto his = [&] { RenameOver(destination_ / "f", "his"); };
    const auto hers = [&] { RenameOver(destination_ / "f", "hers"); };
    const auto aside = [&] { RenameOver(HiddenIn(destination_.path()), "hers"); };
    FailingDisk disk;
    const bool is_before = when.starts_with("before");
    if (is_before) disk.Before("rename", 1, his, kHidden);
    if (is_before && when != "before") disk.Before("rename", 2, hers, kHidden);
    if (!is_before) disk.Before("unlink", 1, aside, source_.path());
    EXPECT_EQ(Move("f").code, is_before ? Code::kExists : Code::kOk);
    EXPECT_EQ(ReadFile(destination_ / "f"), is_before ? "his" : "file");
    EXPECT_EQ(ContentsOf(destination_.path()).count("hers"), when == "before" ? 0U : 1U);
    EXPECT_EQ(fs::exists(source_ / "f"), is_before);
  }
}

TEST_F(DiskFailure, SettingsAreReadWholeOrNotAndReplacedOrNot) {
  const std::string path = source_ / "a.ini";
  std::string bytes;
  const auto prepare = [&] {
    Refill();
    WriteFile(path, "old");
  };
  FailEachCall(
      prepare, [&] { return ReplaceFile(path, "new"); },
      [&](const Result& result, const std::string& failed) {
        const bool is_new =
            result.ok() || English(result.reason).find("the new content is in place") != std::string::npos;
        EXPECT_EQ(ReadFile(path), is_new ? "new" : "old") << result.reason;
        EXPECT_EQ(HiddenIn(source_.path()), "");
        EXPECT_FALSE(result.ok() && (failed.starts_with("write") || failed.starts_with("sync")));
      });
  FailEachCall(
      prepare, [&] { return ReadSettledFile(path, &bytes); },
      [&](const Result& result, const std::string& failed) {
        EXPECT_EQ(result.code, failed.empty() ? Code::kOk : Code::kFailed);
        EXPECT_EQ(bytes, failed.empty() ? "old" : "");
      });
  fs::remove(path);
  FailEachCall(
      [] {},
      [&] {
        return ReadSettledFile(path, &bytes).code == Code::kNotFound ? Success() : SystemFailure(EIO, path);
      },
      [&](const Result& result, const std::string& failed) { EXPECT_EQ(result.ok(), failed.empty()); });
}

TEST_F(DiskFailure, WhatIsBeingWrittenInPlaceIsReadAgain) {
  const struct {
    const char *what, *call, *first, *second;  // written before that call, and before the second opening
  } rows[] = {{"torn", "read", "[B]\nID=1\n", "[B]\nID=2\n"}, {"only emptied", "open", "", "[A]\n"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string path = source_ / "a.ini";
    WriteFile(path, "[A]\nID=1\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(950));  // writers are kept out of younger files
    std::string bytes;
    FailingDisk disk;
    disk.Before(row.call, 1, [&] { WriteFile(path, row.first); });
    disk.Before("open", 2, [&] { WriteFile(path, row.second); });
    EXPECT_TRUE(test::Succeeds(ReadSettledFile(path, &bytes)));
    EXPECT_EQ(bytes, row.second);
  }
}

TEST_F(DiskFailure, ChangesUnderOneTimeStampAreSeen) {
  const std::string path = source_ / "a.ini";
  FailingDisk disk;
  disk.clock_step = 15'000'000;
  for (int i = 100; i < 200; ++i) {  // the size never changes
    const std::string value = std::to_string(i);
    WriteFile(path, "[a]\nk=" + value);
    ASSERT_EQ(ReadProfileString(path, "a", "k", "", 1024), value);
  }
}

TEST_F(DiskFailure, WritersAreKeptOutOfAYoungFileWhileItIsRead) {
  const std::string path = source_ / "a.ini";
  std::string bytes;
  for (const char* kind : {"read", "stat"}) {
    WriteFile(path, kind);
    FailingDisk disk;
    int error = 0;
    disk.Before(kind, 2, [&] {
      const int file = open(path.c_str(), O_WRONLY | O_NONBLOCK);
      error = file < 0 ? errno : 0;
      close(file);
    });
    EXPECT_TRUE(ReadSettledFile(path, &bytes).ok());
    EXPECT_EQ(bytes, kind);
    EXPECT_EQ(error, EWOULDBLOCK) << kind;
  }
}

}  // namespace
}  // namespace quendle::platform
