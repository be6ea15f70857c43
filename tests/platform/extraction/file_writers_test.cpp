#include "platform/extraction/file_writers.h"

#include <atomic>

#include <gtest/gtest.h>

#include "platform/process/cores.h"
#include "support/picture.h"

namespace quendle::platform {
namespace {

using namespace std::chrono_literals;

// Writes files 0, 1 ... into a folder.
class FileWritersTest : public testing::Test {
 protected:
  void SetUp() override {
    if (UsableCores() < 2) GTEST_SKIP() << "one core";
    OpenFolder opened;
    ASSERT_TRUE(OpenFolder::Open(folder_.path(), "f", OpenFolder::Use::kPass, &opened).ok());
    handle_ = std::make_shared<OpenFolder>(std::move(opened));
  }

  // Whatever `place` is asked for comes in order.
  FileWriters::Place InOrder(std::function<Result(unsigned)> place) {
    return [this, place = std::move(place)](const FileWriters::File& file, UnfinishedFile* written) {
      EXPECT_EQ(file.path, std::to_string(placed_));
      Result result = place(placed_++);
      if (!result.ok()) return result;
      EXPECT_EQ(handle_->Rename(written->temporary_name(), *handle_, file.path, false), 0);
      written->HasItsName();
      return result;
    };
  }

  // Sizes vary, so that those behind are ready first; some are larger than what may wait.
  static std::string ContentOf(unsigned number) {
    const std::size_t size = number % 500 == 499 ? 20U << 20 : number * 7919 % 50'000;
    return std::string(size, static_cast<char>('a' + number % 26));
  }
  void Hand(FileWriters* writers, unsigned number) const {
    const std::string path = std::to_string(number);
    FileWriters::File file{handle_, path, "f/" + path, {}, {}};
    file.content = ContentBuffer::CopyOf(ContentOf(number));
    writers->Hand(std::move(file));
  }

  // The codes of `count` files, or of those before it ends.
  std::vector<Code> WriteAll(FileWriters* writers, unsigned count) const {
    std::vector<Code> codes;
    const auto take = [&](std::chrono::milliseconds wait) {
      for (const FileWriters::Outcome& outcome : writers->Take(wait)) codes.push_back(outcome.result.code);
      return codes.empty() || codes.back() != Code::kNoSpace;
    };
    for (unsigned i = 0; i < count; ++i) {
      while (!writers->HasRoom(ContentOf(i).size())) {
        if (!take(1s)) return codes;
      }
      Hand(writers, i);
    }
    while (writers->Count() > 0 && take(1s)) {
    }
    return codes;
  }

  test::TempFolder folder_;
  FolderHandle handle_;
  std::atomic<unsigned> placed_ = 0;
};

TEST_F(FileWritersTest, OneFailureIsOfOneFileUnlessItConcernsAll) {
  FileWriters writers(InOrder([](unsigned number) {
    const Code code = number == 700 ? Code::kExists : number == 1800 ? Code::kNoSpace : Code::kOk;
    return Result{code, "", {}};
  }));
  const std::vector<Code> codes = WriteAll(&writers, 2500);
  ASSERT_EQ(codes.size(), 1801U);
  EXPECT_EQ(codes[700], Code::kExists);
  EXPECT_EQ(codes[1800], Code::kNoSpace);
  EXPECT_EQ(std::count(codes.begin(), codes.end(), Code::kOk), 1799);
  writers.Discard();
  EXPECT_EQ(writers.Count(), 0U);
  EXPECT_EQ(test::Picture(folder_.path()).size(), 1799U);
  for (const unsigned number : {0U, 499U, 699U, 1799U})
    EXPECT_EQ(test::ReadFile(folder_ / std::to_string(number)), ContentOf(number)) << number;
}

TEST_F(FileWritersTest, WhatIsDiscardedLeavesNothing) {
  for (const unsigned last : {0U, 3U, 40U, 200U}) {
    placed_ = 0;
    test::TempFolder empty;
    FileWriters writers(InOrder([&](unsigned number) {
      if (number == last) std::this_thread::sleep_for(50ms);
      return Success();
    }));
    for (unsigned i = 0; i < 300; ++i) Hand(&writers, i);
    while (placed_ <= last) (void)writers.Take(1ms);
    writers.Discard();
    for (unsigned i = 0; i < placed_; ++i) fs::remove(folder_ / std::to_string(i));
    EXPECT_EQ(test::Listing(folder_.path()), "") << last;
  }
}

TEST_F(FileWritersTest, WhatMayMeet) {
  const struct {
    const char* handed;
    const char* path;
    bool meets;
  } rows[] = {{"a", "a", true},           {"a", "A", true},          {"a", "b", false},
              {"a", "a/b/c", true},       {"d/e", "D/E/f", true},    {"d/e", "d/f", false},
              {"d/e", "d", false},        {"d/e", "d/eg/f", false},  {"ä/x", "Ä/X", true},
              {"が", "か\u3099/x", true}, {"d/e", "d/e.txt", false}, {"a b", "a b/", true},
              {"x", "d/x", false}};
  for (const auto& row : rows) {
    FileWriters writers(
        [](const FileWriters::File&, UnfinishedFile*) { return Failure(Code::kExists, "", {}); });
    EXPECT_FALSE(writers.MayMeet(row.path));
    writers.Hand({handle_, row.handed, row.handed, {}, {}});
    EXPECT_EQ(writers.MayMeet(row.path), row.meets) << row.handed << " " << row.path;
    while (writers.Count() > 0) (void)writers.Take(1s);
    EXPECT_FALSE(writers.MayMeet(row.path)) << row.handed << " " << row.path;
  }
  // A folder that was looked at may come to be a file.
  FileWriters writers([](const FileWriters::File&, UnfinishedFile*) { return Success(); });
  writers.Hand({handle_, "x", "x", {}, {}});
  EXPECT_FALSE(writers.MayMeet("d/e/f"));
  writers.Hand({handle_, "d", "d", {}, {}});
  EXPECT_TRUE(writers.MayMeet("d/e/g"));
}

}  // namespace
}  // namespace quendle::platform
