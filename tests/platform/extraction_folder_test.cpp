#include "platform/extraction_folder.h"

#include <filesystem>
#include <functional>
#include <map>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/file_systems.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;
using Replace = ExtractionFolder::Replace;
using Taken = ExtractionFolder::Taken;
using Entries = std::map<std::string, std::string>;

class ExtractionFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::permissions(destination_.path(), fs::perms::all);  // for tests without privileges
    test::WriteFile(outside_ / "victim", "safe");
    fs::create_directory(outside_ / "empty");
    ASSERT_TRUE(ExtractionFolder::Open(destination_.path(), &folder_).ok());
  }

  Result Extract(const std::string& path, const std::string& content, Replace replace = Replace::kNothing,
                 const EntryAttributes& attributes = {}) {
    Result result = folder_->BeginFile(path, content.size());
    if (result.ok()) result = folder_->Write(content);
    return result.ok() ? folder_->CommitFile(path, attributes, replace) : result;
  }
  Taken Look(const std::string& path) {
    ExtractionFolder::Occupant occupant;
    EXPECT_TRUE(folder_->Look(path, &occupant).ok());
    return occupant.taken;
  }
  Entries Inside() const { return test::Picture(destination_.path()); }
  Entries Outside() const { return test::Picture(outside_.path()); }
  std::string At(const std::string& path) const { return path.empty() ? "" : destination_ / path; }

  test::TempFolder destination_;
  test::TempFolder outside_;
  std::unique_ptr<ExtractionFolder> folder_;
};

// Whatever is in the way, everything outside stays as it is, and so does what was inside.
TEST_F(ExtractionFolderTest, HostileEntriesChangeNothing) {
  const auto link = [&](const std::string& name, const std::string& target) {
    fs::create_directory_symlink(target, At(name));
  };
  struct Row {
    const char* what;
    std::function<void()> prepare;
    std::string path;
    Code code;
    std::string failed;  // below the destination; "=": the path itself, as it is no safe one
    std::function<Result(const std::string&)> write = {};
  };
  const auto extract = [&](const std::string& path) { return Extract(path, "evil", Replace::kFile); };
  const auto make_folder = [&](const std::string& path) { return folder_->MakeFolder(path, {}); };
  const auto add_link = [&](const std::string& path) {
    const Result result = folder_->AddLink(path, "x", Replace::kFile);
    if (!result.ok()) return result;
    std::vector<Result> failures = folder_->Finish();
    return failures.empty() ? Success() : failures.front();
  };
  const auto nothing = [] {};
  const std::string up = "../" + fs::path(outside_.path()).filename().string();
  const Row rows[] = {
      {"up", nothing, up + "/victim", Code::kRefused, "="},
      {"up later", nothing, "a/../" + up + "/victim", Code::kRefused, "="},
      {"absolute", nothing, outside_ / "victim", Code::kRefused, "="},
      {"a folder up", nothing, up + "/new", Code::kRefused, "=", make_folder},
      {"a link up", nothing, up + "/new", Code::kRefused, "=", add_link},
      {"through a link", [&] { link("d", outside_.path()); }, "d/victim", Code::kNotFolder, "d"},
      {"through a deep link", [&] { link("f/d", outside_.path()); }, "f/d/victim", Code::kNotFolder, "f/d"},
      {"behind a link", [&] { link("d", outside_.path()); }, "d/empty/x", Code::kNotFolder, "d"},
      {"a folder through a link", [&] { link("d", outside_.path()); }, "d/x", Code::kNotFolder, "d",
       make_folder},
      {"a folder onto a link", [&] { link("d", outside_.path()); }, "d", Code::kNotFolder, "d", make_folder},
      {"a link through a link", [&] { link("d", outside_.path()); }, "d/x", Code::kNotFolder, "=", add_link},
      {"through a dangling link", [&] { link("d", outside_ / "new"); }, "d/x", Code::kNotFolder, "d"},
      {"below a file", nothing, "f/file/x", Code::kNotFolder, "f/file"},
      {"below a pipe", [&] { mkfifo(At("p").c_str(), 0666); }, "p/x", Code::kNotFolder, "p"},
      {"onto a folder", nothing, "f", Code::kIsFolder, "f"},
      {"a link onto a folder", nothing, "f", Code::kIsFolder, "=", add_link},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    test::WriteFile(At("f/file"), "mine");
    row.prepare();
    ASSERT_TRUE(ExtractionFolder::Open(destination_.path(), &folder_).ok());
    const Entries inside = Inside();
    const Entries outside = Outside();
    const Result result = (row.write ? row.write : extract)(row.path);
    EXPECT_EQ(result.code, row.code) << result.reason;
    EXPECT_EQ(result.path, row.failed == "=" ? row.path : At(row.failed));
    EXPECT_NE(result.reason, "");
    folder_.reset();
    EXPECT_EQ(Inside(), inside);
    EXPECT_EQ(Outside(), outside);
    for (const auto& entry : fs::directory_iterator(destination_.path())) fs::remove_all(entry.path());
  }
}

TEST_F(ExtractionFolderTest, WhatIsReplacedIsTheEntryItself) {
  fs::create_symlink(outside_ / "victim", At("link"));
  fs::create_symlink(outside_ / "new", At("dangling"));
  fs::create_directory_symlink(outside_.path(), At("folder"));
  mkfifo(At("pipe").c_str(), 0666);
  const Entries outside = Outside();
  for (const char* name : {"link", "dangling", "folder", "pipe"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Look(name), Taken::kFile);
    EXPECT_EQ(Extract(name, "new").code, Code::kExists);
    EXPECT_TRUE(Extract(name, "new", Replace::kFile).ok());
    EXPECT_EQ(Look(name), Taken::kOurs);
  }
  EXPECT_EQ(
      Inside(),
      (Entries{
          {"link", "file new"}, {"dangling", "file new"}, {"folder", "file new"}, {"pipe", "file new"}}));
  EXPECT_EQ(Outside(), outside);
}

// The handle of a folder outlives its name.
TEST_F(ExtractionFolderTest, FoldersReplacedMeanwhileLeadNowhere) {
  const Entries outside = Outside();
  EXPECT_TRUE(Extract("a/b/1", "1").ok());
  ASSERT_TRUE(folder_->BeginFile("a/b/2", {}).ok());
  fs::rename(At("a/b"), At("a/moved"));
  fs::create_directory_symlink(outside_.path(), At("a/b"));
  EXPECT_TRUE(folder_->CommitFile("a/b/2", {}, Replace::kFile).ok());
  EXPECT_TRUE(Extract("a/b/victim", "3", Replace::kFile).ok());
  EXPECT_TRUE(Extract("c", "c").ok());
  EXPECT_EQ(Extract("a/b/victim", "4", Replace::kFile).code, Code::kNotFolder);
  EXPECT_EQ(Outside(), outside);
  EXPECT_EQ(Inside(), (Entries{{"a", "folder"},
                               {"a/b", "link to " + outside_.path()},
                               {"a/moved", "folder"},
                               {"a/moved/1", "file 1"},
                               {"a/moved/2", "file "},
                               {"a/moved/victim", "file 3"},
                               {"c", "file c"}}));
}

TEST_F(ExtractionFolderTest, LinksComeLastAndNothingIsWrittenThroughThem) {
  test::WriteFile(At("old"), "old");
  fs::create_symlink(outside_ / "victim", At("old link"));
  const Entries outside = Outside();
  const struct {
    const char* path;
    const char* target;
    Replace replace;
    Code code;
  } rows[] = {
      {"link", "sub/file", Replace::kNothing, Code::kOk}, {"sub/up", "../old", Replace::kNothing, Code::kOk},
      {"old", "sub", Replace::kFile, Code::kOk},          {"old link", "sub", Replace::kFile, Code::kOk},
      {"out", "../x", Replace::kNothing, Code::kRefused}, {"out", "/etc", Replace::kNothing, Code::kRefused},
      {"dir", "sub", Replace::kNothing, Code::kOk},    // a file comes below its path
      {"ours", "sub", Replace::kFile, Code::kOk},      // a file comes at its path
      {"link", "other", Replace::kFile, Code::kOk},    // the same name again
      {"link/below", "x", Replace::kFile, Code::kOk},  // below an earlier link
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(folder_->AddLink(row.path, row.target, row.replace).code, row.code);
  }
  EXPECT_TRUE(Extract("dir/file", "1").ok());
  EXPECT_TRUE(Extract("ours", "2").ok());
  EXPECT_TRUE(Extract("sub/file", "3").ok());
  std::vector<std::string> failed;
  for (const Result& failure : folder_->Finish()) failed.push_back(failure.path + ": " + failure.reason);
  EXPECT_EQ(failed, (std::vector<std::string>{
                        "dir: a folder of that name is there", "ours: something of that name is there",
                        "link: something of that name is there",
                        "link/below: " + At("link") + ": a file or a link is where a folder would be"}));
  EXPECT_EQ(Inside(), (Entries{{"link", "link to sub/file"},
                               {"sub", "folder"},
                               {"sub/up", "link to ../old"},
                               {"sub/file", "file 3"},
                               {"old", "link to sub"},
                               {"old link", "link to sub"},
                               {"dir", "folder"},
                               {"dir/file", "file 1"},
                               {"ours", "file 2"}}));
  EXPECT_EQ(Outside(), outside);
  EXPECT_TRUE(folder_->Finish().empty());
}

TEST_F(ExtractionFolderTest, EntriesOfEqualNamesAreToldApart) {
  test::WriteFile(At("a/b.txt"), "old");
  ExtractionFolder::Occupant occupant;
  ASSERT_TRUE(folder_->Look("a/b.txt", &occupant).ok());
  EXPECT_EQ(occupant.taken, Taken::kFile);
  EXPECT_EQ(occupant.version.path, At("a/b.txt"));
  EXPECT_EQ(occupant.version.size, 3U);
  EXPECT_EQ(Look("a"), Taken::kFolder);
  EXPECT_EQ(Look("none/x"), Taken::kFree);
  EXPECT_EQ(Inside().count("none"), 0U);

  EXPECT_TRUE(Extract("a/b.txt", "new", Replace::kFile).ok());
  fs::create_hard_link(At("a/b.txt"), At("a/B.TXT"));  // what a file system without letter case makes of it
  EXPECT_EQ(Look("a/B.TXT"), Taken::kOurs);
  ASSERT_TRUE(folder_->BeginFile("a/B.TXT", {}).ok());
  EXPECT_EQ(folder_->CommitFile("a/B.TXT", {}, Replace::kNothing).code, Code::kExists);
  std::string free_path;
  for (const char* expected : {"a/B (2).TXT", "a/B (3).TXT"}) {
    ASSERT_TRUE(folder_->FreeName("a/B.TXT", &free_path).ok());
    EXPECT_EQ(free_path, expected);
    EXPECT_TRUE(folder_->CommitFile(free_path, {}, Replace::kNothing).ok());
    ASSERT_TRUE(folder_->BeginFile("a/B.TXT", {}).ok());
  }
  folder_.reset();
  EXPECT_EQ(Inside(), (Entries{{"a", "folder"},
                               {"a/b.txt", "file new"},
                               {"a/B.TXT", "file new"},
                               {"a/B (2).TXT", "file "},
                               {"a/B (3).TXT", "file "}}));
}

TEST_F(ExtractionFolderTest, TimesAndModesAreSet) {
  const mode_t umask_before = umask(027);
  EntryAttributes attributes{EntryTime{1'000'000'000, 123'456'700}, true};
  fs::create_directory(At("old"));
  const struct stat old = test::StatusOf(At("old"));
  ASSERT_TRUE(folder_->MakeFolder("d/e", attributes).ok());
  ASSERT_TRUE(folder_->MakeFolder("d", attributes).ok());
  EXPECT_TRUE(Extract("d/e/run", "x", Replace::kNothing, attributes).ok());
  attributes = {EntryTime{-1, 2'000'000'000}, false};  // before 1970, with a fraction that makes no sense
  EXPECT_TRUE(Extract("d/text", "x", Replace::kNothing, attributes).ok());
  fs::last_write_time(At("old"), fs::file_time_type::clock::now() - std::chrono::hours(1));
  const struct stat aged = test::StatusOf(At("old"));
  EXPECT_TRUE(folder_->Finish().empty());
  umask(umask_before);
  for (const char* path : {"d", "d/e", "d/e/run"}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(test::StatusOf(At(path)).st_mtim.tv_sec, 1'000'000'000);
    EXPECT_EQ(test::StatusOf(At(path)).st_mtim.tv_nsec, 123'456'700);
    EXPECT_EQ(test::StatusOf(At(path)).st_mode & 07777U, 0750U);
  }
  EXPECT_EQ(test::StatusOf(At("d/text")).st_mtim.tv_sec, -1);
  EXPECT_EQ(test::StatusOf(At("d/text")).st_mode & 07777U, 0640U);
  EXPECT_LT(aged.st_mtim.tv_sec, old.st_mtim.tv_sec);
  EXPECT_EQ(test::StatusOf(At("old")).st_mtim.tv_sec, aged.st_mtim.tv_sec);
}

TEST_F(ExtractionFolderTest, SizesMayBeOtherThanExpected) {
  const std::string large(9 << 20, 'x');
  for (const std::uint64_t expected : {std::uint64_t{0}, std::uint64_t{10} << 20, ~std::uint64_t{0}}) {
    SCOPED_TRACE(expected);
    ASSERT_TRUE(folder_->BeginFile("file", expected).ok());
    ASSERT_TRUE(folder_->Write(large).ok());
    ASSERT_TRUE(folder_->CommitFile("file", {}, Replace::kFile).ok());
    EXPECT_EQ(fs::file_size(At("file")), large.size());
  }
  EXPECT_TRUE(folder_->CheckSpace(1).ok());
  EXPECT_EQ(folder_->CheckSpace(~std::uint64_t{0}).code, Code::kNoSpace);
}

TEST_F(ExtractionFolderTest, PathsMayBeDeeperThanOpenFilesAllow) {
  std::string path;
  for (int i = 0; i < 1500; ++i) path += "d/";
  EXPECT_TRUE(Extract(path + "1", "1").ok());
  EXPECT_TRUE(Extract(path + "2", "2").ok());
  EXPECT_TRUE(Extract(path.substr(0, 200) + "3", "3").ok());
  EXPECT_EQ(Look(path + "2"), Taken::kOurs);
  EXPECT_EQ(test::ReadFile(At(path.substr(0, 200) + "3")), "3");
}

TEST_F(ExtractionFolderTest, FailuresSayWhyAndLeaveNothing) {
  Result result = ExtractionFolder::Open(At("none"), &folder_);
  EXPECT_EQ(result.code, Code::kNotFound);
  test::WriteFile(At("file"), "x");
  EXPECT_EQ(ExtractionFolder::Open(At("file"), &folder_).code, Code::kNotFolder);
  fs::remove(At("file"));

  fs::create_directory(At("locked"));
  fs::permissions(At("locked"), fs::perms(0555));
  {
    const test::WithoutPrivileges nobody;
    if (geteuid() != 0) {
      result = Extract("locked/x", "x");
      EXPECT_EQ(result.code, Code::kDenied);
      EXPECT_EQ(result.path, At("locked/x"));
      result = folder_->MakeFolder("locked/d/e", {});
      EXPECT_EQ(result.code, Code::kDenied);
      EXPECT_EQ(result.path, At("locked/d"));
    }
  }
  EXPECT_EQ(Inside(), (Entries{{"locked", "folder"}}));

  EXPECT_EQ(folder_->Write("x").code, Code::kRefused);
  EXPECT_EQ(folder_->CommitFile("x", {}, Replace::kFile).code, Code::kRefused);
  ASSERT_TRUE(folder_->BeginFile("kept", {}).ok());
  ASSERT_TRUE(folder_->BeginFile("discarded", {}).ok());
  EXPECT_EQ(Inside().size(), 2U);
  folder_->DiscardFile();
  EXPECT_EQ(Inside().size(), 1U);

  fs::remove_all(destination_.path());
  result = Extract("d/x", "x");
  EXPECT_EQ(result.code, Code::kNotFound);
  EXPECT_EQ(result.path, At("d"));
}

TEST_F(ExtractionFolderTest, FilesFollowADestinationThatIsRenamed) {
  EXPECT_TRUE(Extract("d/1", "1").ok());
  const std::string moved = destination_.path() + "-moved";
  fs::rename(destination_.path(), moved);
  EXPECT_TRUE(Extract("d/2", "2").ok());
  EXPECT_EQ(test::Picture(moved), (Entries{{"d", "folder"}, {"d/1", "file 1"}, {"d/2", "file 2"}}));
  fs::rename(moved, destination_.path());
}

TEST_F(ExtractionFolderTest, AKillLeavesNothingIncompleteUnderItsName) {
  test::WriteFile(At("old"), "old");
  int started[2];
  ASSERT_EQ(pipe(started), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const bool ok = Extract("whole", "whole").ok() && folder_->BeginFile("old", 1 << 20).ok() &&
                    folder_->Write("half").ok() && folder_->AddLink("link", "whole", Replace::kFile).ok();
    (void)!write(started[1], ok ? "y" : "n", 1);
    for (;;) pause();
  }
  char answer = 0;
  EXPECT_EQ(read(started[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(started[0]);
  close(started[1]);
  Entries inside = Inside();
  const auto half = inside.begin();  // its name begins with a dot
  EXPECT_TRUE(half->first.starts_with(".quendle-") && half->first.ends_with(".part")) << half->first;
  inside.erase(half);
  EXPECT_EQ(inside, (Entries{{"old", "file old"}, {"whole", "file whole"}}));
}

TEST_F(ExtractionFolderTest, AnExitLeavesNothingIncomplete) {
  const auto exit_half_way = [&] {
    if (Extract("whole", "whole").ok() && folder_->BeginFile("d/half", 1 << 20).ok()) std::exit(3);
  };
  EXPECT_EXIT(exit_half_way(), testing::ExitedWithCode(3), "");
  EXPECT_EQ(Inside(), (Entries{{"d", "folder"}, {"whole", "file whole"}}));
}

}  // namespace
}  // namespace quendle::platform
