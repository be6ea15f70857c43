#include "platform/moving/file_operation.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "support/outcome.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

using test::Picture, test::ReadFile, test::TempFolder, test::TextOf, test::WriteFile;
using Answer = FileOperationObserver::Answer;

class FileOperation : public test::WayTest {};

// Every rule holds for each of these.
INSTANTIATE_TEST_SUITE_P(Ways, FileOperation,
                         testing::Values(test::kMove, test::kMoveAcross, test::kCopy, test::kCopyAcross),
                         test::NameOfWay);

TEST_P(FileOperation, RefusalsLeaveBothSidesAsTheyWere) {
  struct Row {
    const char* what;
    std::function<bool()> prepare;  // false: this machine cannot do that
    const char* from;
    const char* to;
    Code code;
    const char* path;
    std::vector<Answer> answers = {};
  };
  const auto nothing = [] { return true; };
  const auto write = [this](const char* name, const char* bytes) {
    WriteFile(At(name), bytes);
    return true;
  };
  const auto link = [this](const std::string& target, const char* name) {
    return test::MakeLink(target, At(name));
  };
  const Row rows[] = {
      {"no", [&] { return write("D/f", "old"); }, "S/f", "D/f", Code::kExists, "D/f", {Answer::kNo}},
      {"cancel", nothing, "S/f", "D/f", Code::kCancelled, "D/f", {Answer::kCancel}},
      {"no to a dangling link", [&] { return link("nowhere", "D/l"); }, "S/f", "D/l", Code::kExists, "D/l"},
      {"a file to itself", nothing, "S/f", "S/f", Code::kRefused, "S/f"},
      {"a hard link", nothing, "S/f", "S/h", Code::kRefused, "S/f"},
      {"a linked parent", [&] { return link(At("S"), "D/s"); }, "S/f", "D/s/f", Code::kRefused, "S/f"},
      {"a link to its target", [&] { return link(At("D/f"), "S/l"); }, "S/l", "D/f", Code::kRefused, "S/l"},
      {"a folder into itself", [&] { return write("S/d/e/f", "f"); }, "S/d", "S/d/x", Code::kRefused, "S/d"},
      {"a folder below itself", [&] { return link(At("S/d/e"), "D/e"); }, "S/d", "D/e/x", Code::kRefused,
       "S/d"},
      {"a file where a folder is", [&] { return write("D/d/f", "f"); }, "S/f", "D/d", Code::kIsFolder, "D/d"},
      {"a file where a folder's link is", [&] { return link("d", "D/k"); }, "S/f", "D/k", Code::kIsFolder,
       "D/k"},
      {"a folder where a file is", nothing, "S/d", "D/f", Code::kNotFolder, "D/f"},
      {"no such source", nothing, "S/none", "D/x", Code::kNotFound, "S/none"},
      {"no such folder", nothing, "S/f", "D/none/x", Code::kNotFound, "D/none"},
      {"a file as folder", nothing, "S/f", "D/f/x", Code::kNotFolder, "D/f"},
      {"no entry", nothing, "S/d/.", "D/x", Code::kRefused, "S/d/."},
  };
  WriteFile(At("S/f"), "new");
  fs::create_hard_link(At("S/f"), At("S/h"));
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    if (!row.prepare()) continue;
    const auto source_before = Picture(At("S"));
    const auto destination_before = Picture(At("D"));
    observer_.answers = row.answers;
    observer_.asked.clear();
    EXPECT_TRUE(test::Fails(Run(row.from, row.to), row.code, At(row.path)));
    EXPECT_EQ(Picture(At("S")), source_before);
    EXPECT_EQ(Picture(At("D")), destination_before);
  }
}

TEST_P(FileOperation, YesReplacesTheFileItself) {
  WriteFile(At("D/target"), "untouched");
  for (const bool is_link : {false, true}) {
    SCOPED_TRACE(is_link);
    WriteFile(At("S/f"), "newer");
    fs::remove(At("D/f"));
    if (!is_link) WriteFile(At("D/f"), "old");
    if (is_link && !test::MakeLink("target", At("D/f"))) continue;
    observer_.answers = {Answer::kYes};
    observer_.asked.clear();
    EXPECT_TRUE(test::Succeeds(Run("S/f", "D/f")));
    EXPECT_EQ(observer_.asked, std::vector<std::string>{At("D/f")});
    EXPECT_EQ(observer_.incoming.size, 5U);
    EXPECT_EQ(test::Listing(At("D")), "f=newer target=untouched");
    EXPECT_EQ(IsThere("S/f"), !GetParam().moves);
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
      const std::string entry = At(std::string("S/") + row.name);
      WriteFile(row.is_folder ? entry + "/f" : entry, std::to_string(i));
      EXPECT_TRUE(test::Succeeds(Run(std::string("S/") + row.name, std::string("D/") + row.name)));
    }
    EXPECT_EQ(ReadFile(At(std::string("D/") + row.expected + (row.is_folder ? "/f" : ""))), "3");
  }
  EXPECT_EQ(observer_.asked.size(), 0U);
}

TEST_P(FileOperation, LinksAreTakenAsLinks) {
  WriteFile(At("S/d/f"), "f");
  for (const char* target : {"d", "nowhere"}) {
    if (!test::MakeLink(target, At("S/l"))) GTEST_SKIP() << "no links can be made here";
    EXPECT_TRUE(Run("S/l", std::string("D/") + target).ok());
    EXPECT_EQ(fs::read_symlink(At(std::string("D/") + target)), target);
    EXPECT_EQ(IsThere("S/l"), !GetParam().moves);
    fs::remove(At("S/l"));
  }
  EXPECT_TRUE(IsThere("S/d/f"));
}

TEST_P(FileOperation, FoldersMergeAndAskForEachFile) {
  for (const char* name : {"a", "b", "c/a", "c/b", "c/new", "file", "folder/x"})
    WriteFile(At(std::string("S/d/") + name), "new");
  for (const char* name : {"a", "b", "c/a", "c/b", "c/other", "file/x", "folder"})
    WriteFile(At(std::string("D/d/") + name), "old");
  for (const bool second_round : {false, true}) {
    observer_.asked.clear();
    observer_.answers = second_round ? std::vector{Answer::kYes} : std::vector{Answer::kYes, Answer::kNo};
    const Result result = Run("S/d", "D/d");
    EXPECT_TRUE(result.code == Code::kIsFolder || result.code == Code::kNotFolder) << result.reason;
    EXPECT_EQ(result.path, At("D/d"));
    const std::string named = observer_.asked[second_round ? 0 : 1].substr(At("D/d/").size()) +
                              " (and 2 more) exist already and were left; ";
    EXPECT_EQ(English(result.reason).starts_with(named + "2 entries were left: "), !second_round)
        << result.reason;
    unsigned replaced = 0;
    for (const char* name : {"D/d/a", "D/d/b", "D/d/c/a", "D/d/c/b"})
      replaced += ReadFile(At(name)) == "new" ? 1U : 0U;
    EXPECT_EQ(replaced, second_round ? 4U : 1U);
  }
  EXPECT_EQ(ReadFile(At("D/d/c/new")), "new");
  EXPECT_EQ(ReadFile(At("D/d/c/other")), "old");
  EXPECT_EQ(ReadFile(At("D/d/file/x")), "old");
  EXPECT_EQ(ReadFile(At("D/d/folder")), "old");
  EXPECT_EQ(IsThere("S/d/c"), !GetParam().moves);
  EXPECT_TRUE(IsThere("S/d/folder/x"));
}

constexpr std::size_t kBig = 24 << 20;

class Copying : public test::WayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, Copying, testing::Values(test::kMoveAcross, test::kCopy, test::kCopyAcross),
                         test::NameOfWay);

TEST_P(Copying, ACancelLeavesBothSidesAsTheyWere) {
  WriteFile(source_ / "big", std::string(kBig, 'b'));
  WriteFile(source_ / "tree/a/big", std::string(kBig, 'b'));
  WriteFile(source_ / "tree/b/big", std::string(kBig, 'c'));
  struct Row {
    const char* name;
    std::uint64_t bytes;  // a cancel comes once so much has been copied
    bool responsive;
  };
  const auto before = Picture(source_.path());
  for (const Row& row : {Row{"big", 0, false}, Row{"big", 0, true}, Row{"big", 1, false}, Row{"big", 1, true},
                         Row{"tree", 1, true}, Row{"tree", kBig + 1, false}, Row{"tree", kBig + 1, true}}) {
    SCOPED_TRACE(testing::Message() << row.name << row.bytes << row.responsive);
    observer_.must_stay_responsive = row.responsive;
    observer_.on_progress = [&, caller = std::this_thread::get_id()](const FileProgress& progress) {
      EXPECT_EQ(std::this_thread::get_id(), caller);
      return progress.bytes_done < row.bytes;
    };
    EXPECT_EQ(Run(std::string("S/") + row.name, std::string("D/") + row.name).code, Code::kCancelled);
    EXPECT_EQ(observer_.last.bytes_done > 0, row.bytes > 0);
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
    const Result result = Run(std::string("S/") + row.name, std::string("D/") + row.name);
    EXPECT_NE(result.code, Code::kOk);
    EXPECT_NE(result.reason, "");
    EXPECT_EQ(Picture(source_.path()), changed);
    EXPECT_TRUE(Picture(destination_.path()).empty());
    fs::remove_all(source_ / "tree");
  }
}

GTEST_TEST(DeleteEntry, RemovesATreeButNotWhatItsLinksLeadTo) {
  const TempFolder folder;
  WriteFile(folder / "kept/f", "f");
  WriteFile(folder / "gone/deep/er/f", "f");
  (void)test::MakeLink(folder / "kept", folder / "gone/deep/link");
  test::ScriptedObserver observer;
  EXPECT_TRUE(DeleteEntry(folder / "gone/", {}, &observer).ok());
  EXPECT_EQ(test::Listing(folder.path()), "kept/ kept/f=f");
  EXPECT_EQ(DeleteEntry(folder / "gone", {}, &observer).code, Code::kNotFound);
  EXPECT_EQ(DeleteEntry(TextOf(fs::path(folder.path()).root_path()), {}, &observer).code, Code::kRefused);
  observer.on_progress = [](const FileProgress&) { return false; };
  EXPECT_EQ(DeleteEntry(folder / "kept", {}, &observer).code, Code::kCancelled);
  EXPECT_TRUE(fs::exists(folder / "kept/f"));
}

}  // namespace
}  // namespace quendle::platform
