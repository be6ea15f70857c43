#include "files/clsFileOperation.h"

#include <optional>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/file_operation.h"
#include "platform/paths.h"
#include "platform/process.h"

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

  bool OnProgress(const platform::FileProgress& progress) override {
    if (!shows_progress_) return !platform::InterruptRequested();
    has_shown_ = true;
    return user_.ShowProgress(progress, is_simple_);
  }

  bool UserDeclined() const { return user_declined_; }

  Answer OnOverwrite(const platform::FileVersion& existing, const platform::FileVersion& incoming) override {
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

// The folder that is to hold the path; empty for the current one.
std::string FolderOf(const std::string& path) {
  const std::size_t cut = path.rfind(Separator(kHostStyle));
  return cut == std::string::npos ? "" : RemoveBackslashes(path.substr(0, cut + 1));
}

std::string ExactDestination(const std::string& source, const std::string& destination) {
  const bool is_folder = destination.ends_with(Separator(kHostStyle)) || FolderExists(destination);
  if (!is_folder) return destination;
  return AddBackslash(destination) + SplitPath(RemoveBackslashes(source)).name;
}

// The folders that have to be made for this one, topmost first.
std::vector<std::string> MissingFolders(std::string folder) {
  std::vector<std::string> missing;
  while (!folder.empty() && !platform::IsTaken(folder)) {
    missing.insert(missing.begin(), folder);
    folder = FolderOf(folder);
  }
  return missing;
}

void RemoveEmptyFolders(const std::vector<std::string>& folders) {
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
    if (!platform::RemoveEmptyFolder(*folder).ok()) return;
  }
}

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
  return {.rename_on_collision = Has(FOF_RENAMEONCOLLISION), .allow_undo = Has(FOF_ALLOWUNDO)};
}

bool clsFileOperation::Operate(Kind kind, const std::string& source, const std::string& destination) {
  failed_by_user_ = false;
  last_failure_ = kind == Kind::kDelete ? Delete(source) : Transfer(kind, source, destination);
  failed_by_user_ |= last_failure_.code == Code::kCancelled;
  return last_failure_.ok();
}

Result clsFileOperation::Delete(const std::string& path) {
  const bool asks = !Has(FOF_NOCONFIRMATION) && !Has(FOF_ALLOWUNDO);
  if (asks && !user_.AskDelete(path)) return Failure(Code::kCancelled, path, "it was not to be deleted");
  Observer observer(user_, pShowDialog(), pSimpleProgress(), true);
  return platform::DeleteEntry(path, Options(), &observer);
}

Result clsFileOperation::Transfer(Kind kind, const std::string& source, const std::string& destination) {
  std::vector<std::string> made;
  std::string exact = destination;
  Result result;
  if (kind != Kind::kRename) {
    exact = ExactDestination(source, destination);
    result = MakeDestination(source, FolderOf(exact), &made);
  }
  if (result.ok()) {
    Observer observer(user_, pShowDialog(), pSimpleProgress(), Has(FOF_NOCONFIRMATION));
    const auto operation = kind == Kind::kCopy ? platform::CopyEntry : platform::MoveEntry;
    result = operation(source, exact, Options(), &observer);
    // Of a merge, entries that nobody was asked about come behind a semicolon.
    failed_by_user_ = result.code == Code::kExists && observer.UserDeclined() &&
                      result.reason.find("; ") == std::string::npos;
  }
  if (!result.ok()) RemoveEmptyFolders(made);
  return result;
}

// `*made` are the folders that may not have been there before, topmost first, also after a failure.
Result clsFileOperation::MakeDestination(const std::string& source, const std::string& folder,
                                         std::vector<std::string>* made) {
  if (folder.empty() || FolderExists(folder)) return platform::Success();
  // Nobody should be asked for nothing.
  if (!platform::IsTaken(source)) return Failure(Code::kNotFound, source, "there is no such file or folder");
  if (!Has(FOF_NOCONFIRMMKDIR) && !user_.AskMakeFolder(folder)) {
    return Failure(Code::kCancelled, folder, "the folder was not to be made");
  }
  *made = MissingFolders(folder);
  Result why;
  return MakeDirNested(folder, &why) ? platform::Success() : why;
}

}  // namespace quendle
