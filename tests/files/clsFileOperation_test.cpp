#include "files/clsFileOperation.h"

#include <optional>

#include "base/modString.h"
#include "support/picture.h"
#include "support/scoped_variable.h"
#include "support/scripted_user.h"

namespace quendle {
namespace {

using platform::Code, test::Picture, test::ReadFile, test::WriteFile;
using Answer = UserInterface::OverwriteAnswer;

class FileOperationClass : public testing::Test {
 protected:
  test::TempFolder folder_;
  test::ScriptedUser user_;
  clsFileOperation operation_{user_};
};

TEST_F(FileOperationClass, SettingAFlagTouchesNoOther) {
  using Class = clsFileOperation;
  const struct {
    bool (Class::*get)() const;
    void (Class::*set)(bool);
  } properties[] = {{&Class::pRespondDialog, &Class::pRespondDialog},
                    {&Class::pRenameOnCollision, &Class::pRenameOnCollision},
                    {&Class::pSimpleProgress, &Class::pSimpleProgress},
                    {&Class::pAllowUndo, &Class::pAllowUndo},
                    {&Class::pConfirmMakeDir, &Class::pConfirmMakeDir},
                    {&Class::pShowDialog, &Class::pShowProgress}};
  std::string expected = "000011";
  for (std::size_t i = 0; i < 2 * expected.size(); ++i) {
    char& changed = expected[i / 2];
    changed = changed == '0' ? '1' : '0';
    (operation_.*properties[i / 2].set)(changed == '1');
    std::string flags;
    for (const auto& property : properties) flags += (operation_.*property.get)() ? '1' : '0';
    EXPECT_EQ(flags, expected);
  }
  operation_.pTarget(&operation_);
  EXPECT_EQ(operation_.pTarget(), nullptr);
}

TEST_F(FileOperationClass, DestinationsAndMissingFolders) {
  struct Row {
    const char *source, *destination;
    const char* expected;  // where it is afterwards; empty when the folder may not be made
    bool asks;
  };
  const Row rows[] = {
      {"f", "there", "there/f", false},      {"f", "there/", "there/f", false},
      {"f", "there/g", "there/g", false},    {"f", "new/", "new/f", true},
      {"f", "new/er/", "new/er/f", true},    {"f", "new/er/g", "new/er/g", true},
      {"f", "new//er//g", "new/er/g", true}, {"f", "new/", "", true},
      {"d", "there", "there/d/x", false},    {"d/", "new/er/", "new/er/d/x", true},
      {"d", "there/e", "there/e/x", false},  {"d", "there/", "there/d/x", false},
  };
  for (const bool is_move : {false, true}) {
    for (const bool confirms : {true, false}) {
      for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.source) + " to " + row.destination);
        const bool makes = *row.expected != 0 || !confirms;
        const std::string expected = folder_ / (*row.expected == 0 ? "new/f" : row.expected);
        for (const char* name : {"there", "new"}) fs::remove_all(folder_ / name);
        fs::create_directories(folder_ / "there/d");
        WriteFile(folder_ / "f", "content");
        WriteFile(folder_ / "d/x", "content");
        operation_.pConfirmMakeDir(confirms);
        user_.make_folder_answer = makes;
        user_.asked_make_folder.clear();
        const auto operation = is_move ? &clsFileOperation::mMove : &clsFileOperation::mCopy;
        EXPECT_EQ((operation_.*operation)(folder_ / row.source, folder_ / row.destination), makes)
            << operation_.LastFailure().reason;
        EXPECT_EQ(operation_.LastFailure().code, makes ? Code::kOk : Code::kCancelled);
        EXPECT_EQ(user_.asked_make_folder.size(), row.asks && confirms ? 1U : 0U);
        EXPECT_EQ(fs::exists(expected), makes);
        EXPECT_EQ(fs::exists(folder_ / row.source), !is_move || !makes);
      }
    }
  }
}

TEST_F(FileOperationClass, ATakenNameIsTakenForWhoWantsAFreeOne) {
  operation_.pFailIfTaken(true);
  operation_.pConfirmMakeDir(false);
  operation_.pRespondDialog(true);
  for (const char* name : {"f", "d/x", "there/f", "there/d/y"}) WriteFile(folder_ / name, name);
  const auto before = Picture(folder_.path());
  for (const bool is_move : {false, true}) {
    const auto operation = is_move ? &clsFileOperation::mMove : &clsFileOperation::mCopy;
    const std::string to[][2] = {
        {"f", "there/f"}, {"f", "there/d"}, {"f", "there"}, {"d", "there/d"}, {"d", "there/f"}};
    for (const auto& [source, destination] : to) {
      EXPECT_FALSE((operation_.*operation)(folder_ / source, folder_ / destination));
      EXPECT_EQ(operation_.LastFailure().code, Code::kExists) << source << " to " << destination;
      EXPECT_FALSE(operation_.FailedByUser());
      EXPECT_EQ(Picture(folder_.path()), before);
    }
    EXPECT_TRUE((operation_.*operation)(folder_ / "f", folder_ / "there/new/f")) << is_move;
    fs::rename(folder_ / "there/new/f", folder_ / "f");
    fs::remove(folder_ / "there/new");
  }
}

TEST_F(FileOperationClass, FoldersMadeForNothingGoAgain) {
  operation_.pConfirmMakeDir(false);
  WriteFile(folder_ / "d/x", "x");
  WriteFile(folder_ / "f", "f");
  const auto before = Picture(folder_.path());
  // The second report comes when the folders have been made.
  unsigned reports = 0;
  bool loses_one = false;
  user_.on_progress = [&](const platform::FileProgress&) {
    if (++reports == 2 && loses_one) fs::remove(folder_ / "new/er");
    return reports < 2;
  };
  const struct {
    const char* source;
    std::string destination;
    Code code;
    bool loses = false;
  } rows[] = {
      {"f", "new/er/", Code::kCancelled},   {"f", "new/er/", Code::kCancelled, true},
      {"d", "d/e/r/", Code::kCancelled},    {"f", "new/" + std::string(300, 'x') + "/", Code::kFailed},
      {"none", "new/er/", Code::kNotFound}, {"f", "f/er/", Code::kNotFolder},
  };
  for (const auto& row : rows) {
    reports = 0;
    loses_one = row.loses;
    EXPECT_FALSE(operation_.mMove(folder_ / row.source, folder_ / row.destination));
    EXPECT_EQ(operation_.LastFailure().code, row.code) << operation_.LastFailure().reason;
    EXPECT_EQ(Picture(folder_.path()), before) << row.destination;
  }
}

TEST_F(FileOperationClass, RenamesMakeNoFolders) {
  WriteFile(folder_ / "f", "f");
  operation_.pConfirmMakeDir(false);
  EXPECT_FALSE(operation_.mRename(folder_ / "f", folder_ / "new/g"));
  EXPECT_EQ(operation_.LastFailure().path, folder_ / "new");
  fs::create_directory(folder_ / "d");
  EXPECT_FALSE(operation_.mRename(folder_ / "f", folder_ / "d"));
  EXPECT_EQ(operation_.LastFailure().code, Code::kIsFolder);
  EXPECT_TRUE(operation_.mRename(folder_ / "f", folder_ / "d/g"));
  EXPECT_TRUE(operation_.LastFailure().ok());
  EXPECT_EQ(test::Listing(folder_.path()), "d/ d/g=f");
}

TEST_F(FileOperationClass, AnswersToAllHoldForOneOperation) {
  struct Row {
    std::vector<Answer> answers;
    bool responds;
    std::size_t questions, replaced;
  };
  const Row rows[] = {
      {{Answer::kYesToAll}, false, 1, 3},         {{Answer::kNoToAll}, false, 1, 0},
      {{Answer::kYes, Answer::kNo}, false, 3, 1}, {{Answer::kNo, Answer::kYesToAll}, false, 2, 2},
      {{Answer::kCancel}, false, 1, 0},           {{Answer::kNo}, true, 0, 3},
  };
  for (const Row& row : rows) {
    operation_.pRespondDialog(row.responds);
    user_.overwrite_answers = row.answers;
    for (int round = 0; round < 2; ++round) {
      for (const char* name : {"a", "b", "c"}) {
        WriteFile(folder_ / "from/d/" + name, "new");
        WriteFile(folder_ / "to/d/" + name, "old");
      }
      user_.asked_overwrite.clear();
      EXPECT_EQ(operation_.mCopy(folder_ / "from/d", folder_ / "to"), row.replaced == 3);
      EXPECT_EQ(user_.asked_overwrite.size(), row.questions);
      std::size_t replaced = 0;
      for (const char* name : {"a", "b", "c"})
        replaced += ReadFile(folder_ / "to/d/" + name) == "new" ? 1U : 0U;
      EXPECT_EQ(replaced, row.replaced);
    }
  }
}

TEST_F(FileOperationClass, DeletingAsksUnlessItCanBeUndone) {
  struct Row {
    bool responds, undo, answer, asks, deleted;
  };
  std::optional<test::ScopedVariable> data;
  if (kHostStyle == PathStyle::kPosix) data.emplace("XDG_DATA_HOME", folder_ / "data");
  for (const Row& row : {Row{false, false, false, true, false}, Row{false, false, true, true, true},
                         Row{true, false, false, false, true}, Row{false, true, false, false, true}}) {
    WriteFile(folder_ / "f", "f");
    operation_.pRespondDialog(row.responds);
    operation_.pAllowUndo(row.undo);
    user_.delete_answer = row.answer;
    user_.asked_delete.clear();
    EXPECT_EQ(operation_.mDelete(folder_ / "f"), row.deleted);
    EXPECT_EQ(operation_.LastFailure().code, row.deleted ? Code::kOk : Code::kCancelled);
    EXPECT_EQ(user_.asked_delete.size(), row.asks ? 1U : 0U);
    EXPECT_EQ(fs::exists(folder_ / "f"), !row.deleted);
    if (kHostStyle == PathStyle::kPosix) {
      EXPECT_EQ(fs::exists(folder_ / "data/Trash/files/f"), row.undo);
    }
  }
}

TEST_F(FileOperationClass, ProgressIsShownAsAskedAndEndsOnce) {
  struct Row {
    bool shows, simple;
    int shown, shown_simple, ended;
  };
  for (const Row& row : {Row{true, false, 1, 0, 1}, Row{true, true, 0, 1, 1}, Row{false, false, 0, 0, 0}}) {
    user_.shown_progress = user_.shown_simple_progress = user_.ended_progress = 0;
    operation_.pShowProgress(row.shows);
    operation_.pSimpleProgress(row.simple);
    WriteFile(folder_ / "f", "f");
    EXPECT_TRUE(operation_.mRename(folder_ / "f", folder_ / "g"));
    EXPECT_EQ(user_.shown_progress, row.shown);
    EXPECT_EQ(user_.shown_simple_progress, row.shown_simple);
    EXPECT_EQ(user_.ended_progress, row.ended);
    fs::remove(folder_ / "g");
  }
}

}  // namespace
}  // namespace quendle
