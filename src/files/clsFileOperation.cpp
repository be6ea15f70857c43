#include "files/clsFileOperation.h"

#include <optional>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/entries/path_names.h"
#include "platform/entries/paths.h"
#include "platform/moving/file_operation.h"
#include "platform/process/process.h"

namespace quendle {
namespace {

using platform::Code;
using platform::Failure;
using platform::Result;

// Puts the questions of one operation to the user and remembers the answers that hold for all of it.
class Observer : public platform::FileOperationObserver {
 public:
  Observer(UserInterface& user, bool shows_progress, bool is_simple, bool yes_to_all)
      : user_(user), shows_progress_(shows_progress), is_simple_(is_simple) {
    if (yes_to_all) for_all_ = Answer::kYes;
  }
  ~Observer() override {
    if (has_shown_) user_.EndProgress();
  }
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  bool MustStayResponsive() const override { return shows_progress_ && user_.HasWindows(); }

  bool OnProgress(const platform::FileProgress& progress) override {
    if (!shows_progress_) return !platform::InterruptRequested();
    has_shown_ = true;
    return user_.ShowProgress(progress, is_simple_);
  }

  bool UserDeclined() const { return user_declined_; }

  Answer OnOverwrite(const platform::FileSide& existing, const platform::FileSide& incoming) override {
    if (for_all_) return *for_all_;
    switch (user_.AskOverwrite(existing, incoming)) {
      case UserInterface::OverwriteAnswer::kYesToAll:
        for_all_ = Answer::kYes;
        return Answer::kYes;
      case UserInterface::OverwriteAnswer::kNobody:
        for_all_ = Answer::kNo;
        return Answer::kNo;
      case UserInterface::OverwriteAnswer::kYes:
        return Answer::kYes;
      case UserInterface::OverwriteAnswer::kNoToAll:
        for_all_ = Answer::kNo;
        [[fallthrough]];
      case UserInterface::OverwriteAnswer::kNo:
        user_declined_ = true;
        return Answer::kNo;
      case UserInterface::OverwriteAnswer::kCancel:
        break;
    }
    return Answer::kCancel;
  }

 private:
  UserInterface& user_;
  const bool shows_progress_;
  const bool is_simple_;
  bool has_shown_ = false;
  bool user_declined_ = false;
  std::optional<Answer> for_all_;
};

}  // namespace

bool clsFileOperation::mDelete(const std::string& path) {
  return Operate(Kind::kDelete, path, "");
}

bool clsFileOperation::mRename(const std::string& source, const std::string& destination) {
  return Operate(Kind::kRename, source, destination);
}

bool clsFileOperation::mMove(const std::string& source, const std::string& destination) {
  return Operate(Kind::kMove, source, destination);
}

bool clsFileOperation::mCopy(const std::string& source, const std::string& destination) {
  return Operate(Kind::kCopy, source, destination);
}

void clsFileOperation::Set(std::uint16_t flag, bool value) {
  flags_ = static_cast<std::uint16_t>(value ? flags_ | flag : flags_ & ~flag);
}

platform::FileOperationOptions clsFileOperation::Options() const {
  return {.rename_on_collision = Has(FOF_RENAMEONCOLLISION),
          .allow_undo = Has(FOF_ALLOWUNDO),
          .fail_if_taken = fails_if_taken_};
}

bool clsFileOperation::Operate(Kind kind, const std::string& source, const std::string& destination) {
  failed_by_user_ = false;
  last_failure_ = kind == Kind::kDelete ? Delete(source) : Transfer(kind, source, destination);
  failed_by_user_ |= last_failure_.code == Code::kCancelled;
  return last_failure_.ok();
}

Result clsFileOperation::Delete(const std::string& path) {
  const bool asks = !Has(FOF_NOCONFIRMATION) && !Has(FOF_ALLOWUNDO);
  if (asks && !user_.AskDelete(path)) return Failure(Code::kCancelled, path, why::kNotToBeDeleted);
  Observer observer(user_, pShowDialog(), pSimpleProgress(), true);
  return platform::DeleteEntry(path, Options(), &observer);
}

// Folders are looked for only when it does not go without, which it mostly does.
Result clsFileOperation::Transfer(Kind kind, const std::string& source, const std::string& destination) {
  Observer observer(user_, pShowDialog(), pSimpleProgress(), Has(FOF_NOCONFIRMATION));
  const auto operation = kind == Kind::kCopy ? platform::CopyEntry : platform::MoveEntry;
  const bool is_folder = kind != Kind::kRename && destination.ends_with(Separator(kHostStyle));
  const std::string exact =
      is_folder ? AddBackslash(destination) + SplitPath(RemoveBackslashes(source)).name : destination;
  platform::FileOperationOptions options = Options();
  options.into_folder = kind != Kind::kRename && !is_folder && !fails_if_taken_ && !is_exact_;
  Result result = operation(source, exact, options, &observer);

  const std::string folder = platform::FolderOf(exact);
  if (kind != Kind::kRename && result.code == Code::kNotFound && !FolderExists(folder) &&
      platform::IsTaken(source)) {
    std::vector<std::string> made;
    result = MakeDestination(folder, &made);
    if (result.ok()) result = operation(source, exact, options, &observer);
    if (!result.ok()) RemoveMadeFolders(made);
  }
  failed_by_user_ = result.code == Code::kExists && observer.UserDeclined();
  return result;
}

Result clsFileOperation::MakeDestination(const std::string& folder, std::vector<std::string>* made) {
  if (!Has(FOF_NOCONFIRMMKDIR) && !user_.AskMakeFolder(folder)) {
    return Failure(Code::kCancelled, folder, why::kFolderNotToBeMade);
  }
  Result why;
  return MakeDirNested(folder, &why, made) ? platform::Success() : why;
}

}  // namespace quendle
