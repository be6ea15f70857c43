#include "platform/entries/durable_file.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/ini/profile.h"
#include "support/file_systems.h"

namespace quendle::platform {
namespace {

GTEST_TEST(ReplaceFile, LeavesNothingElse) {
  const test::TempFolder folder;
  const std::string large(3'000'000, 'x');
  for (const std::string& bytes : {std::string("one"), large, std::string()}) {
    EXPECT_TRUE(ReplaceFile(folder / "表.ini", bytes).ok());
    std::string read;
    EXPECT_TRUE(ReadWholeFile(folder / "表.ini", &read).ok());
    EXPECT_EQ(read, bytes);
    EXPECT_EQ(test::Picture(folder.path()).size(), 1U);
  }
}

GTEST_TEST(ReplaceFile, KeepsLinks) {
  const test::TempFolder folder;
  test::WriteFile(folder / "real/a.ini", "old");
  if (!test::MakeLink("real/a.ini", folder / "first")) GTEST_SKIP() << "no links can be made here";
  test::MakeLink(folder / "first", folder / "second");
  test::MakeLink("real/missing.ini", folder / "dangling");
  test::MakeLink("loop", folder / "loop");
  std::string bytes;
  EXPECT_EQ(ReadSettledFile(folder / "dangling", &bytes).code, Code::kFailed);
  EXPECT_TRUE(ReplaceFile(folder / "second", "new").ok());
  EXPECT_TRUE(ReplaceFile(folder / "dangling", "made").ok());
  EXPECT_FALSE(ReplaceFile(folder / "loop", "x").ok());
  EXPECT_EQ(test::ReadFile(folder / "real/a.ini"), "new");
  EXPECT_EQ(test::ReadFile(folder / "real/missing.ini"), "made");
  for (const char* link : {"first", "second", "dangling"}) EXPECT_TRUE(fs::is_symlink(folder / link)) << link;
  EXPECT_EQ(test::Picture(folder / "real").size(), 2U);
}

GTEST_TEST(ReplaceFile, RefusesWhatIsNoFileOrTooLarge) {
  const test::TempFolder folder;
  fs::create_directory(folder / "folder");
  const bool has_pipe = test::MakePipe(folder / "pipe");
  for (const char* name : {"file", "huge"}) test::WriteFile(folder / name, "x");
  fs::resize_file(folder / "huge", std::uintmax_t{1} << 30);  // it would fill the memory
  const Code of_pipe = has_pipe ? Code::kRefused : Code::kNotFound;
  const struct {
    std::string path;
    Code replaced, read;
  } rows[] = {
      {folder / "folder", Code::kIsFolder, Code::kIsFolder},
      {folder / "none/file", Code::kNotFound, Code::kNotFound},
      {folder / "file/below", Code::kNotFolder, Code::kNotFolder},
      {folder / "pipe", has_pipe ? of_pipe : Code::kOk, of_pipe},
      {folder / "huge", Code::kOk, Code::kRefused},
      {"", Code::kNotFound, Code::kNotFound},
  };
  for (const auto& row : rows) {
    for (const bool settled : {false, true}) {
      std::string bytes = "left over";
      const Result read = settled ? ReadSettledFile(row.path, &bytes) : ReadWholeFile(row.path, &bytes);
      EXPECT_EQ(read.code, row.read) << row.path;
      EXPECT_EQ(bytes, "") << row.path;
    }
    const Result replaced = ReplaceFile(row.path, "x");
    EXPECT_EQ(replaced.code, row.replaced) << row.path;
    EXPECT_EQ(replaced.reason.empty(), replaced.ok()) << row.path;
  }
  EXPECT_EQ(test::Picture(folder.path()).size(), 4U);
  std::string endless;
  EXPECT_TRUE(!has_pipe || ReadWholeFile("/dev/zero", &endless).code == Code::kRefused);
}

// What an editor does that saves without a temporary file.
void WriteInPlace(const std::string& path, const std::string& bytes, std::chrono::milliseconds pause) {
  std::ofstream file(test::FsPath(path), std::ios::binary | std::ios::trunc);
  file << std::flush;
  std::this_thread::sleep_for(pause);
  file << bytes.substr(0, bytes.size() / 2) << std::flush;
  std::this_thread::sleep_for(pause);
  file << bytes.substr(bytes.size() / 2);
}

GTEST_TEST(ReadSettledFile, WaitsForWhoWritesInPlace) {
  using std::chrono::milliseconds;
  const test::TempFolder folder;
  const std::string path = folder / "a.ini";
  const std::string whole = "[General]\nFolder=/new\n";
  const struct {
    const char* name;
    milliseconds writing, pause;
    bool ends;
  } rows[] = {
      {"a few saves", milliseconds(100), milliseconds(3), true},
      {"a slow save", milliseconds(1), milliseconds(60), true},
      {"saves without end", milliseconds(20'000), milliseconds(3), false},
  };
  for (const auto& row : rows) {
    test::WriteFile(path, "old");
    std::atomic<bool> has_read = false;
    std::thread writer([&] {
      const auto end = std::chrono::steady_clock::now() + row.writing;
      do WriteInPlace(path, whole, row.pause);
      while (!has_read && std::chrono::steady_clock::now() < end);
    });
    while (test::ReadFile(path) == "old") std::this_thread::yield();
    std::string bytes;
    const auto begin = std::chrono::steady_clock::now();
    const Result read = ReadSettledFile(path, &bytes);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(10'000)) << row.name;
    has_read = true;
    writer.join();
    // On a busy machine even the endless writer may have to leave it alone for a while.
    EXPECT_EQ(read.code, row.ends || read.ok() ? Code::kOk : Code::kFailed) << row.name;
    EXPECT_EQ(bytes, read.ok() ? whole : "") << row.name;
  }
}

GTEST_TEST(FolderLock, HoldersWaitForEachOther) {
  const test::TempFolder folder;
  fs::create_directory(folder / "real");
  const bool has_link = test::MakeLink("real/a.ini", folder / "link");
  const std::string same_place = folder / (has_link ? "link" : "real/other.ini");
  std::unique_ptr<FolderLock> lock;
  ASSERT_TRUE(FolderLock::Take(folder / "real/a.ini", &lock).ok());
  std::atomic<bool> second_is_done = false;
  std::thread second([&] {
    EXPECT_TRUE(WriteProfileString(same_place, "a", "second", "2").ok());
    second_is_done = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(second_is_done);
  EXPECT_TRUE(ReplaceFile(same_place, "[a]\r\nfirst=1\r\n").ok());
  lock.reset();
  second.join();
  EXPECT_EQ(test::ReadFile(same_place), "[a]\r\nfirst=1\r\nsecond=2\r\n");
  EXPECT_EQ(FolderLock::Take(folder / "none/a.ini", &lock).code, Code::kNotFound);
  EXPECT_EQ(test::Picture(folder / "real").size(), 1U);
}

}  // namespace
}  // namespace quendle::platform
