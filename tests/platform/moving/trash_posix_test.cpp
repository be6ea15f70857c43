#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/moving/file_operation.h"
#include "support/failing_disk_posix.h"
#include "support/file_systems.h"
#include "support/outcome.h"
#include "support/rights_posix.h"
#include "support/scoped_variable.h"
#include "support/scripted_observer.h"

namespace quendle::platform {
namespace {

using test::Picture, test::ReadFile, test::TempFolder, test::WriteFile;

class Trash : public testing::Test {
 protected:
  Result Throw(const std::string& path) { return DeleteEntry(path, {.allow_undo = true}, &observer_); }
  std::string InTrash(const std::string& path) const { return home_ / ("data/Trash/" + path); }

  TempFolder home_;
  test::ScopedVariable data_{"XDG_DATA_HOME", home_ / "data"};
  TempFolder folder_;
  test::ScriptedObserver observer_;
};

TEST_F(Trash, KeepsWhereAndWhenOfWhatGoesThere) {
  const std::time_t before = std::time(nullptr);
  WriteFile(folder_ / "a b%\u00e4.txt", "first");
  EXPECT_TRUE(Throw(folder_ / "a b%\u00e4.txt").ok());
  EXPECT_EQ(ReadFile(InTrash("files/a b%\u00e4.txt")), "first");
  const std::string info = ReadFile(InTrash("info/a b%\u00e4.txt.trashinfo"));
  const std::string path = "[Trash Info]\nPath=" + folder_.path() + "/a%20b%25%C3%A4.txt\nDeletionDate=";
  EXPECT_EQ(info.substr(0, path.size()), path);
  struct tm date {};
  const char* rest = strptime(info.c_str() + path.size(), "%Y-%m-%dT%H:%M:%S", &date);
  ASSERT_NE(rest, nullptr);
  EXPECT_STREQ(rest, "\n");
  date.tm_isdst = -1;
  const std::time_t deleted = std::mktime(&date);
  EXPECT_TRUE(before <= deleted && deleted <= std::time(nullptr)) << info;
  EXPECT_EQ(test::StatusOf(InTrash("")).st_mode & 0777, 0700U);
}

TEST_F(Trash, FindsANameForEverything) {
  const std::string longest(255, 'n');
  WriteFile(InTrash("files/orphan"), "kept");
  for (const std::string& name :
       {std::string("f.txt"), std::string("f.txt"), std::string("orphan"), longest}) {
    WriteFile(folder_ / name, name);
    EXPECT_TRUE(test::Succeeds(Throw(folder_ / name)));
  }
  EXPECT_TRUE(Picture(folder_.path()).empty());
  EXPECT_EQ(ReadFile(InTrash("files/f (2).txt")), "f.txt");
  EXPECT_EQ(ReadFile(InTrash("files/orphan")), "kept");
  EXPECT_EQ(ReadFile(InTrash("files/orphan (2)")), "orphan");
  for (const char* part : {"files", "info"}) {
    EXPECT_EQ(std::distance(fs::directory_iterator(InTrash(part)), {}), std::string(part) == "info" ? 4 : 5);
  }
}

TEST_F(Trash, FailuresLeaveTheFileAndNoInfo) {
  const test::WithoutPrivileges unprivileged;
  const TempFolder locked;
  const TempFolder data;
  const test::ScopedVariable variable("XDG_DATA_HOME", data.path());
  WriteFile(locked / "f", "f");
  fs::permissions(locked.path(), fs::perms(0555));
  EXPECT_EQ(Throw(locked / "f").code, Code::kDenied);
  EXPECT_TRUE(fs::is_empty(data / "Trash/info"));

  fs::permissions(locked.path(), fs::perms(0755));
  fs::remove_all(data / "Trash");
  fs::permissions(data.path(), fs::perms(0555));
  const Result result = Throw(locked / "f");
  EXPECT_EQ(result.code, Code::kDenied);
  EXPECT_TRUE(English(result.reason).starts_with("there is no trash")) << result.reason;
  EXPECT_EQ(ReadFile(locked / "f"), "f");
}

TEST_F(Trash, AnotherFileSystemHasItsOwn) {
  const std::string top = test::OtherFileSystem();
  if (top.empty()) GTEST_SKIP() << "there is no second file system";
  const std::string trash = top + "/.Trash-" + std::to_string(getuid());
  if (fs::exists(trash) || fs::exists(top + "/.Trash")) GTEST_SKIP() << "somebody uses the trash there";
  const TempFolder folder(top);
  const std::string below_top = folder.path().substr(top.size() + 1);

  fs::create_directory_symlink(folder.path(), trash);  // a trap of somebody else's
  WriteFile(folder / "f", "f");
  EXPECT_FALSE(Throw(folder / "f").ok());
  EXPECT_EQ(ReadFile(folder / "f"), "f");
  fs::remove(trash);

  EXPECT_TRUE(Throw(folder / "f").ok());
  EXPECT_EQ(ReadFile(trash + "/files/f"), "f");
  EXPECT_NE(ReadFile(trash + "/info/f.trashinfo").find("\nPath=" + below_top + "/f\n"), std::string::npos);
  fs::remove_all(trash);

  const std::string shared = top + "/.Trash";
  fs::create_directory(shared);
  for (const bool is_sticky : {false, true}) {
    fs::permissions(shared, fs::perms(is_sticky ? 01777 : 0777));
    WriteFile(folder / "f", "f");
    EXPECT_TRUE(Throw(folder / "f").ok());
    EXPECT_EQ(fs::exists(shared + "/" + std::to_string(getuid()) + "/files/f"), is_sticky);
  }
  fs::remove_all(shared);
  fs::remove_all(trash);
}

TEST_F(Trash, TakesWhatIsReplaced) {
  observer_.answers = {FileOperationObserver::Answer::kYes};
  for (const bool is_copy : {false, true}) {
    WriteFile(folder_ / "new", "new");
    WriteFile(folder_ / "old", is_copy ? "copied over" : "moved over");
    EXPECT_TRUE(
        (is_copy ? CopyEntry : MoveEntry)(folder_ / "new", folder_ / "old", {.allow_undo = true}, &observer_)
            .ok());
    EXPECT_EQ(ReadFile(folder_ / "old"), "new");
    EXPECT_EQ(ReadFile(InTrash(is_copy ? "files/old (2)" : "files/old")),
              is_copy ? "copied over" : "moved over");
  }
}

TEST_F(Trash, BringsBackOnlyWhatWentThere) {
  observer_.answers = {FileOperationObserver::Answer::kYes};
  for (const bool is_exchanged : {false, true}) {
    SCOPED_TRACE(is_exchanged);
    WriteFile(folder_ / "new", "new");
    WriteFile(folder_ / "old", "old");
    Result result;
    {
      test::FailingDisk disk;
      const auto exchange = [&] {  // the trash is emptied, and something else goes there
        if (is_exchanged) WriteFile(InTrash("other"), "other");
        if (is_exchanged) fs::rename(InTrash("other"), InTrash("files/old"));
      };
      disk.Before("rename", 3, exchange);
      disk.Fail("rename", 3, EIO);
      result = MoveEntry(folder_ / "new", folder_ / "old", {.allow_undo = true}, &observer_);
    }
    EXPECT_EQ(result.code, Code::kFailed);
    EXPECT_EQ(English(result.reason).ends_with("; the file that was there is in the trash"), is_exchanged)
        << result.reason;
    EXPECT_EQ(ReadFile(folder_ / "new"), "new");
    EXPECT_EQ(ReadFile(is_exchanged ? InTrash("files/old") : folder_ / "old"),
              is_exchanged ? "other" : "old");
    EXPECT_EQ(fs::exists(InTrash("info/old.trashinfo")), is_exchanged);
  }
}

}  // namespace
}  // namespace quendle::platform
