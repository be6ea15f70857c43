#include "platform/file_operation.h"

#include <filesystem>
#include <functional>
#include <ostream>

#include <sys/stat.h>
#include <unistd.h>

#include "support/file_systems.h"
#include "support/scripted_observer.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
using Answer = FileOperationObserver::Answer;
using Operation = Result (*)(const std::string&, const std::string&, const FileOperationOptions&,
                             FileOperationObserver*);

struct Way {
  const char* name;
  Operation operation;
  bool across;
  bool moves() const { return operation == &MoveEntry; }
};

// Otherwise the test's name shows the bytes of the structure.
void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

// Every rule holds for each of these.
class FileOperation : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    if (GetParam().across && test::OtherFileSystem().empty())
      GTEST_SKIP() << "there is no second file system";
  }

  // "S/x" and "D/x" are x in the source and in the destination folder.
  std::string At(const std::string& path) const {
    return (path[0] == 'S' ? source_ : destination_).path() + path.substr(1);
  }
  Result Run(const std::string& from, const std::string& to) {
    return GetParam().operation(At(from), At(to), options_, &observer_);
  }
  bool IsThere(const std::string& path) const { return fs::exists(fs::symlink_status(At(path))); }

  TempFolder source_;
  TempFolder destination_{GetParam().across ? test::OtherFileSystem() : fs::temp_directory_path().string()};
  test::ScriptedObserver observer_;
  FileOperationOptions options_;
};

INSTANTIATE_TEST_SUITE_P(Ways, FileOperation,
                         testing::Values(Way{"Move", &MoveEntry, false}, Way{"MoveAcross", &MoveEntry, true},
                                         Way{"Copy", &CopyEntry, false}, Way{"CopyAcross", &CopyEntry, true}),
                         [](const auto& way) { return way.param.name; });

TEST_P(FileOperation, RefusalsLeaveBothSidesAsTheyWere) {
  struct Row {
    const char* what;
    std::function<void()> prepare;
    const char* from;
    const char* to;
    Code code;
    const char* path;
    std::vector<Answer> answers = {};
  };
  const auto link = [this](const std::string& target, const char* name) {
    fs::create_symlink(target, At(name));
  };
  const Row rows[] = {
      {"no", [&] { WriteFile(At("D/f"), "old"); }, "S/f", "D/f", Code::kExists, "D/f", {Answer::kNo}},
      {"cancel", [&] {}, "S/f", "D/f", Code::kCancelled, "D/f", {Answer::kCancel}},
      {"no to a dangling link", [&] { link("nowhere", "D/l"); }, "S/f", "D/l", Code::kExists, "D/l"},
      {"a file to itself", [&] {}, "S/f", "S/f", Code::kRefused, "S/f"},
      {"a hard link", [&] { fs::create_hard_link(At("S/f"), At("S/h")); }, "S/f", "S/h", Code::kRefused,
       "S/f"},
      {"a linked parent", [&] { link(At("S"), "D/s"); }, "S/f", "D/s/f", Code::kRefused, "S/f"},
      {"a link to its target", [&] { link(At("D/f"), "S/l"); }, "S/l", "D/f", Code::kRefused, "S/l"},
      {"a folder into itself", [&] { WriteFile(At("S/d/e/f"), "f"); }, "S/d", "S/d/x", Code::kRefused, "S/d"},
      {"a folder below itself", [&] { link(At("S/d/e"), "D/e"); }, "S/d", "D/e/x", Code::kRefused, "S/d"},
      {"a file where a folder is", [&] { WriteFile(At("D/d/f"), "f"); }, "S/f", "D/d", Code::kIsFolder,
       "D/d"},
      {"a file where a folder's link is", [&] { link("d", "D/k"); }, "S/f", "D/k", Code::kIsFolder, "D/k"},
      {"a folder where a file is", [&] {}, "S/d", "D/f", Code::kNotFolder, "D/f"},
      {"no such source", [&] {}, "S/none", "D/x", Code::kNotFound, "S/none"},
      {"no such folder", [&] {}, "S/f", "D/none/x", Code::kNotFound, "D/none"},
      {"a file as folder", [&] {}, "S/f", "D/f/x", Code::kNotFolder, "D/f"},
      {"no entry", [&] {}, "S/d/.", "D/x", Code::kRefused, "S/d/."},
  };
  WriteFile(At("S/f"), "new");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    row.prepare();
    const auto source_before = Picture(At("S"));
    const auto destination_before = Picture(At("D"));
    observer_.answers = row.answers;
    observer_.asked.clear();
    const Result result = Run(row.from, row.to);
    EXPECT_EQ(result.code, row.code) << result.reason;
    EXPECT_EQ(result.path, At(row.path));
    EXPECT_NE(result.reason, "");
    EXPECT_EQ(Picture(At("S")), source_before);
    EXPECT_EQ(Picture(At("D")), destination_before);
  }
}

TEST_P(FileOperation, YesReplacesTheFileItself) {
  WriteFile(At("S/f"), "newer");
  WriteFile(At("D/target"), "untouched");
  for (const bool is_link : {false, true}) {
    SCOPED_TRACE(is_link);
    WriteFile(At("S/f"), "newer");
    fs::remove(At("D/f"));
    is_link ? fs::create_symlink("target", At("D/f")) : WriteFile(At("D/f"), "old");
    observer_.answers = {Answer::kYes};
    observer_.asked.clear();
    const Result result = Run("S/f", "D/f");
    EXPECT_TRUE(result.ok()) << result.reason;
    EXPECT_EQ(observer_.asked, std::vector<std::string>{At("D/f")});
    EXPECT_EQ(observer_.incoming.size, 5U);
    EXPECT_EQ(Picture(At("D")),
              (std::map<std::string, std::string>{{"f", "file newer"}, {"target", "file untouched"}}));
    EXPECT_EQ(IsThere("S/f"), !GetParam().moves());
  }
}

TEST_P(FileOperation, CollisionsTakeTheNextFreeName) {
  struct Row {
    const char* name;
    bool is_folder;
    const char* expected;
  };
  const Row rows[] = {{"a.tar.gz", false, "a.tar (3).gz"},
                      {"plain", false, "plain (3)"},
                      {".rc", false, ".rc (3)"},
                      {"v1.2", true, "v1.2 (3)"}};
  options_.rename_on_collision = true;
  for (const Row& row : rows) {
    for (int i = 1; i <= 3; ++i) {
      const std::string entry = At("S/") + row.name;
      WriteFile(row.is_folder ? entry + "/f" : entry, std::to_string(i));
      const Result result = Run(std::string("S/") + row.name, std::string("D/") + row.name);
      EXPECT_TRUE(result.ok()) << result.reason;
    }
    EXPECT_EQ(ReadFile(At("D/") + row.expected + (row.is_folder ? "/f" : "")), "3");
  }
  EXPECT_EQ(observer_.asked.size(), 0U);
}

TEST_P(FileOperation, LinksAreTakenAsLinks) {
  WriteFile(At("S/d/f"), "f");
  for (const char* target : {"d", "nowhere"}) {
    fs::create_symlink(target, At("S/l"));
    EXPECT_TRUE(Run("S/l", std::string("D/") + target).ok());
    EXPECT_EQ(fs::read_symlink(At("D/") + target), target);
    EXPECT_EQ(IsThere("S/l"), !GetParam().moves());
    fs::remove(At("S/l"));
  }
  EXPECT_TRUE(IsThere("S/d/f"));
}

TEST_P(FileOperation, FoldersMergeAndAskForEachFile) {
  for (const char* name : {"a", "b", "c/a", "c/b", "c/new", "file", "folder/x"})
    WriteFile(At("S/d/") + name, "new");
  for (const char* name : {"a", "b", "c/a", "c/b", "c/other", "file/x", "folder"})
    WriteFile(At("D/d/") + name, "old");
  std::size_t yes = 0;
  for (const bool second_round : {false, true}) {
    observer_.asked.clear();
    observer_.answers = second_round ? std::vector{Answer::kYes} : std::vector{Answer::kYes, Answer::kNo};
    const Result result = Run("S/d", "D/d");
    EXPECT_EQ(result.code, Code::kExists);
    EXPECT_EQ(result.path, At("D/d"));
    EXPECT_EQ(result.reason.starts_with("3 files exist already and were left; 2 entries were left: "),
              !second_round)
        << result.reason;
    yes = 0;
    for (const char* name : {"a", "b", "c/a", "c/b"}) yes += ReadFile(At("D/d/") + name) == "new" ? 1U : 0U;
    EXPECT_EQ(yes, second_round ? 4U : 1U);
  }
  EXPECT_EQ(ReadFile(At("D/d/c/new")), "new");
  EXPECT_EQ(ReadFile(At("D/d/c/other")), "old");
  EXPECT_EQ(ReadFile(At("D/d/file/x")), "old");
  EXPECT_EQ(ReadFile(At("D/d/folder")), "old");
  EXPECT_EQ(IsThere("S/d/c"), !GetParam().moves());
  EXPECT_TRUE(IsThere("S/d/folder/x"));
}

TEST_P(FileOperation, AReadOnlyFolderIsFoundBeforeAnythingIsWritten) {
  const test::WithoutPrivileges unprivileged;
  const TempFolder from;
  const TempFolder to(fs::path(At("D")).parent_path().string());
  WriteFile(from / "top/d/f", std::string(20 << 20, 'f'));  // enough for a report in the middle
  const auto before = Picture(from.path());
  struct Row {
    std::string locked, source, destination;
    bool fails;
  };
  const bool moves = GetParam().moves();
  const Row rows[] = {
      {from / "top/d", from / "top/d/f", to / "f", moves},
      {from / "top/d", from / "top", to / "top", moves && GetParam().across},
      {to.path(), from / "top/d/f", to / "g", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.locked + " " + row.source);
    fs::permissions(row.locked, fs::perms(0555));
    observer_.reports = 0;
    const Result result = GetParam().operation(row.source, row.destination, options_, &observer_);
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

TEST_P(FileOperation, DevicesAndPipesAreNotCopied) {
  const bool is_renamed = GetParam().moves() && !GetParam().across;
  WriteFile(At("S/d/a"), "a");
  ASSERT_EQ(mkfifo(At("S/d/p").c_str(), 0600), 0);
  for (const char* name : {"d", "d/p"}) {
    const Result result = Run(std::string("S/") + name, "D/x");
    if (is_renamed) {
      EXPECT_TRUE(result.ok()) << result.reason;
      fs::rename(At("D/x"), At("S/") + name);
      continue;
    }
    EXPECT_EQ(result.code, Code::kRefused) << result.reason;
    EXPECT_EQ(result.path, At("S/d/p"));
    EXPECT_TRUE(Picture(At("D")).empty());
  }
}

GTEST_TEST(DeleteEntry, RemovesATreeButNotWhatItsLinksLeadTo) {
  const TempFolder folder;
  WriteFile(folder / "kept/f", "f");
  WriteFile(folder / "gone/deep/er/f", "f");
  fs::create_directory_symlink(folder / "kept", folder / "gone/deep/link");
  test::ScriptedObserver observer;
  EXPECT_TRUE(DeleteEntry(folder / "gone/", {}, &observer).ok());
  EXPECT_EQ(Picture(folder.path()),
            (std::map<std::string, std::string>{{"kept", "folder"}, {"kept/f", "file f"}}));
  EXPECT_EQ(observer.reports, 5U);
  EXPECT_EQ(DeleteEntry(folder / "gone", {}, &observer).code, Code::kNotFound);
  EXPECT_EQ(DeleteEntry("/", {}, &observer).code, Code::kRefused);
  observer.on_progress = [](const FileProgress&) { return false; };
  EXPECT_EQ(DeleteEntry(folder / "kept", {}, &observer).code, Code::kCancelled);
  EXPECT_TRUE(fs::exists(folder / "kept/f"));
}

}  // namespace
}  // namespace quendle::platform
