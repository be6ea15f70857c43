#include <functional>
#include <set>

#include "platform/entries/entry_status.h"
#include "platform/moving/file_operation.h"
#include "support/extraction.h"
#include "support/outcome.h"
#include "support/scripted_observer.h"

namespace quendle::platform {
namespace {

using test::ExtractionFolderTest;
using Replace = ExtractionFolder::Replace;
using Taken = ExtractionFolder::Taken;

// Whatever is in the way, everything outside stays as it is, and so does what was inside.
TEST_F(ExtractionFolderTest, HostileEntriesChangeNothing) {
  const auto link = [&](const std::string& name, const std::string& target) {
    return test::MakeLink(target, At(name));
  };
  struct Row {
    const char* what;
    std::function<bool()> prepare;  // false: this machine cannot do that
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
  const auto nothing = [] { return true; };
  const auto can_link = [&] { return link("l", "x") && fs::remove(At("l")); };
  const std::string up = "../" + test::TextOf(test::FsPath(outside_.path()).filename());
  const Row rows[] = {
      {"up", nothing, up + "/victim", Code::kRefused, "="},
      {"up later", nothing, "a/../" + up + "/victim", Code::kRefused, "="},
      {"absolute", nothing, outside_ / "victim", Code::kRefused, "="},
      {"a folder up", nothing, up + "/new", Code::kRefused, "=", make_folder},
      {"a link up", nothing, up + "/new", Code::kRefused, "=", add_link},
      {"through a link", [&] { return link("d", outside_.path()); }, "d/victim", Code::kNotFolder, "d"},
      {"a folder through a link", [&] { return link("d", outside_.path()); }, "d/x", Code::kNotFolder, "d",
       make_folder},
      {"a folder onto a link", [&] { return link("d", outside_.path()); }, "d", Code::kNotFolder, "d",
       make_folder},
      {"a link through a link", [&] { return link("d", outside_.path()); }, "d/x", Code::kNotFolder, "=",
       add_link},
      {"through a dangling link", [&] { return link("d", outside_ / "new"); }, "d/x", Code::kNotFolder, "d"},
      {"below a file", nothing, "f/file/x", Code::kNotFolder, "f/file"},
      {"below a pipe", [&] { return test::MakePipe(At("p")); }, "p/x", Code::kNotFolder, "p"},
      {"onto a folder", nothing, "f", Code::kIsFolder, "f"},
      {"a link onto a folder", can_link, "f", Code::kIsFolder, "=", add_link},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    test::WriteFile(At("f/file"), "mine");
    if (!row.prepare()) continue;
    ASSERT_TRUE(ExtractionFolder::Open(destination_.path(), &folder_).ok());
    const std::string inside = Inside();
    const std::string outside = Outside();
    EXPECT_TRUE(test::Fails((row.write ? row.write : extract)(row.path), row.code,
                            row.failed == "=" ? row.path : At(row.failed)));
    folder_.reset();
    EXPECT_EQ(Inside(), inside);
    EXPECT_EQ(Outside(), outside);
    for (const auto& entry : fs::directory_iterator(destination_.path())) fs::remove_all(entry.path());
  }
}

TEST_F(ExtractionFolderTest, WhatIsReplacedIsTheEntryItself) {
  std::set<std::string> names = {"file"};
  const std::pair<const char*, std::string> links[] = {
      {"link", outside_ / "victim"}, {"dangling", outside_ / "new"}, {"folder", outside_.path()}};
  for (const auto& [name, target] : links)
    if (test::MakeLink(target, At(name))) names.insert(name);
  if (test::MakePipe(At("pipe"))) names.insert("pipe");
  test::WriteFile(At("file"), "old");
  std::string expected;
  const std::string outside = Outside();
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    expected.append(expected.empty() ? "" : " ").append(name).append("=new");
    EXPECT_EQ(Look(name), Taken::kFile);
    EXPECT_EQ(Extract(name, "new").code, Code::kExists);
    EXPECT_TRUE(Extract(name, "new", Replace::kFile).ok());
    EXPECT_EQ(Look(name), Taken::kOurs);
  }
  EXPECT_EQ(Inside(), expected);
  EXPECT_EQ(Outside(), outside);
}

// Whichever way leads there, and whatever is to be made there.
TEST_F(ExtractionFolderTest, WhatIsProtectedStays) {
  for (const char* file : {"own.ini", "target", "m/module", "m/sub/x", "to/x"})
    test::WriteFile(At(file), file);
  fs::create_hard_link(At("own.ini"), At("second"));
  fs::create_hard_link(At("m/module"), At("second module"));
  const bool has_links = test::MakeLink("hop", At("linked.ini")) && test::MakeLink("target", At("hop")) &&
                         test::MakeLink("to/none.ini", At("dangling.ini")) && test::MakeLink("to", At("way"));
  ProtectedEntries entries;
  for (const char* file : {"own.ini", "new.ini", "gone/deep.ini", "linked.ini", "dangling.ini", "way/x"})
    entries.Add(At(file), ProtectedEntries::Owner::kProgram);
  entries.Add(At("m"), ProtectedEntries::Owner::kArchive);
  folder_->Protect(entries);
  const struct {
    const char *what, *path;
    bool needs_links = false;
  } rows[] = {
      {"a file", "own.ini"},
      {"its other name", "second"},
      {"a name that nobody has yet", "new.ini"},
      {"that in other case", "NEW.Ini"},
      {"the folder of one", "gone"},
      {"a link", "linked.ini", true},
      {"where it leads", "hop", true},
      {"where that leads", "target", true},
      {"where a link leads to nothing", "to/none.ini", true},
      {"a link on the way", "way", true},
      {"the file behind it", "to/x", true},
      {"in a folder", "m/new"},
      {"a file in it", "m/module"},
      {"deeper in it", "m/sub/x"},
      {"another name of what is in it", "second module"},
  };
  const std::string inside = Inside();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    if (row.needs_links && !has_links) continue;
    ExtractionFolder::Occupant occupant;
    EXPECT_EQ(folder_->Look(row.path, &occupant).code, Code::kRefused);
    EXPECT_EQ(Extract(row.path, "evil", Replace::kFile).code, Code::kRefused);
    EXPECT_FALSE(folder_->MakeFolder(row.path, {}).ok());
    EXPECT_FALSE(Extract(row.path + std::string("/x"), "evil", Replace::kFile).ok());
    EXPECT_TRUE(folder_->AddLink(row.path, "x", Replace::kFile).ok());
    EXPECT_EQ(folder_->Finish().size(), 1U);
    EXPECT_EQ(Inside(), inside);
  }
  for (const char* path : {"own.ini.txt", "sub/new.ini", "to/y"})
    EXPECT_TRUE(Extract(path, "1").ok()) << path;
  // What appears between the look and the end.
  ASSERT_TRUE(folder_->BeginFile("late", {}).ok());
  fs::create_hard_link(At("own.ini"), At("late"));
  EXPECT_EQ(folder_->CommitFile("late", {}, Replace::kFile).code, Code::kRefused);
  // What has been saved anew meanwhile is another file of the same name.
  fs::remove(At("own.ini"));
  test::WriteFile(At("own.ini"), "new");
  EXPECT_EQ(Extract("own.ini", "evil", Replace::kFile).code, Code::kRefused);
  // Below the folder to begin with.
  ASSERT_TRUE(ExtractionFolder::Open(At("m/sub"), &folder_).ok());
  folder_->Protect(entries);
  EXPECT_EQ(folder_->MakeFolder("d", {}).code, Code::kRefused);
}

TEST_F(ExtractionFolderTest, LinksComeLastAndNothingIsWrittenThroughThem) {
  test::WriteFile(At("old"), "old");
  if (!test::MakeLink(outside_ / "victim", At("old link"))) GTEST_SKIP() << "no links can be made here";
  const std::string outside = Outside();
  const struct {
    const char *path, *target;
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
  for (const Result& failure : folder_->Finish())
    failed.push_back(failure.path + ": " + English(failure.reason));
  EXPECT_EQ(failed, (std::vector<std::string>{
                        "dir: a folder of that name is there", "ours: something of that name is there",
                        "link: something of that name is there",
                        "link/below: " + At("link") + ": a file or a link is where a folder would be"}));
  EXPECT_EQ(Inside(),
            "dir/ dir/file=1 link>sub/file old>sub old link>sub ours=2 sub/ sub/file=3 sub/up>../old");
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
  EXPECT_EQ(Inside(), "a/ a/b.txt=old");

  EXPECT_TRUE(Extract("a/b.txt", "new", Replace::kFile).ok());
  // Where letter case tells names apart, they are made one as other file systems have it.
  const bool are_one = fs::exists(At("a/B.TXT"));
  if (!are_one) fs::create_hard_link(At("a/b.txt"), At("a/B.TXT"));
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
  EXPECT_EQ(Inside(),
            std::string("a/ a/B (2).TXT= a/B (3).TXT= ") + (are_one ? "" : "a/B.TXT=new ") + "a/b.txt=new");
}

TEST_F(ExtractionFolderTest, TimesAreSet) {
  const auto time_of = [this](const std::string& path) {
    EntryStatus status;
    EXPECT_TRUE(ReadStatus(At(path), &status).ok()) << path;
    return status.write_time;
  };
  const EntryTime then{1'000'000'000, 123'456'700};
  EntryAttributes attributes{then, true};
  fs::create_directory(At("old"));
  ASSERT_TRUE(folder_->MakeFolder("d/e", attributes).ok());
  ASSERT_TRUE(folder_->MakeFolder("d", attributes).ok());
  EXPECT_TRUE(Extract("d/e/run", "x", Replace::kNothing, attributes).ok());
  attributes = {EntryTime{-1, 2'000'000'000}, false};  // before 1970, with a fraction that makes no sense
  EXPECT_TRUE(Extract("d/text", "x", Replace::kNothing, attributes).ok());
  const EntryTime old = time_of("old");
  EXPECT_TRUE(folder_->Finish().empty());
  for (const char* path : {"d", "d/e", "d/e/run"}) EXPECT_EQ(time_of(path), then) << path;
  EXPECT_EQ(time_of("d/text").seconds, -1);
  EXPECT_EQ(time_of("old"), old);
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
  const int depth = test::kSeparator == '/' ? 1500 : 200;  // Wine would take minutes
  for (int i = 0; i < depth; ++i) path += "d/";
  EXPECT_TRUE(Extract(path + "1", "1").ok());
  EXPECT_TRUE(Extract(path + "2", "2").ok());
  EXPECT_TRUE(Extract(path.substr(0, 200) + "3", "3").ok());
  EXPECT_EQ(Look(path + "2"), Taken::kOurs);
  EXPECT_EQ(Look(path.substr(0, 200) + "3"), Taken::kOurs);
  folder_.reset();
  test::ScriptedObserver observer;  // the library does not remove such paths everywhere
  EXPECT_TRUE(DeleteEntry(At("d"), {}, &observer).ok());
}

TEST_F(ExtractionFolderTest, FailuresSayWhyAndLeaveNothing) {
  Result result = ExtractionFolder::Open(At("none"), &folder_);
  EXPECT_EQ(result.code, Code::kNotFound);
  test::WriteFile(At("file"), "x");
  EXPECT_EQ(ExtractionFolder::Open(At("file"), &folder_).code, Code::kNotFolder);
  fs::remove(At("file"));

  EXPECT_EQ(folder_->Write("x").code, Code::kRefused);
  EXPECT_EQ(folder_->CommitFile("x", {}, Replace::kFile).code, Code::kRefused);
  ASSERT_TRUE(folder_->BeginFile("kept", {}).ok());
  ASSERT_TRUE(folder_->BeginFile("discarded", {}).ok());
  EXPECT_EQ(test::Picture(destination_.path()).size(), 1U);
  folder_->DiscardFile();
  EXPECT_TRUE(Inside().empty());
}

}  // namespace
}  // namespace quendle::platform
