#include "platform/moving/staged_entry.h"
#include "platform/process/system_failure.h"

#include "platform/entries/renaming.h"
#include "platform/moving/remove_tree.h"

namespace quendle::platform {

StagedEntry::StagedEntry(const std::string& destination)
    : destination_(destination), path_(TemporaryPath(destination)), name_(NameOf(path_)) {}

void StagedEntry::Clear() {
  EntryStatus now;
  const bool is_foreign =
      under_path_ == Under::kReplacedFile && folder_.StatusOf(name_, &now).ok() && now.id != replaced_;
  if (under_path_ == Under::kNewEntry) DiscardTree(folder_, name_);
  if (under_path_ == Under::kReplacedFile && !is_foreign) (void)folder_.Remove(name_);
}

Result StagedEntry::OpenItsFolder() {
  const std::string folder = FolderOf(destination_);
  return OpenFolder::Open(folder, folder, OpenFolder::Use::kPass, &folder_);
}

// Nobody knows the temporary name.
Result StagedEntry::Made(Result result) {
  if (result.ok()) {
    under_path_ = Under::kNewEntry;
  } else {
    result.path = destination_;
  }
  return result;
}

Result StagedEntry::MakeFile(SystemHandle* file) {
  return Made(folder_.MakeFile(name_, {.is_private = true, .is_hidden = true}, file));
}

Result StagedEntry::MakeLink(const std::string& content, const EntryStatus& recorded) {
  return Made(folder_.MakeLinkLike(name_, content, recorded));
}

Result StagedEntry::MakeFolder() {
  return Made(folder_.MakeFolder(name_, {.is_private = true, .is_hidden = true}));
}

Result StagedEntry::Put(const EntryStatus* replaced, bool to_trash, bool perhaps_taken_back) {
  Result result = Record(perhaps_taken_back);
  if (result.ok()) result = Rename(replaced, to_trash);
  // When it is not there any more, it cannot be taken back either, and that is found then.
  if (result.ok() && placed_.is_folder() && perhaps_taken_back) (void)placed_tree_.Follow(destination_);
  return result;
}

Result StagedEntry::Record(bool with_all_it_holds) {
  Result result = folder_.StatusOf(name_, &placed_);
  if (result.ok() && placed_.is_folder() && with_all_it_holds)
    result = placed_tree_.Scan(alone_, path_, placed_);
  if (!result.ok()) result.path = destination_;
  return result;
}

Result StagedEntry::Rename(const EntryStatus* replaced, bool to_trash) {
  if (replaced != nullptr && !to_trash) return Swap(*replaced);
  Result result;
  if (replaced != nullptr) {
    result = ReplaceThroughTrash(path_, destination_, &trashed_);
  } else if (const int error = RenameWithoutReplacing(path_, destination_); error != 0) {
    result = SystemFailure(error, destination_);
    if (result.code == Code::kExists) return AppearedMeanwhile(destination_);
  }
  if (result.ok()) under_path_ = Under::kNothing;
  return result;
}

// Both names change hands in one step, so that the old file is neither missing at any moment nor lost.
Result StagedEntry::Swap(const EntryStatus& replaced) {
  int error = ExchangeNames(path_, destination_);
  if (error == 0) {
    EntryStatus old;
    if (ReadStatus(path_, &old).ok() && IsSameEntry(old, replaced)) {
      under_path_ = Under::kReplacedFile;
      replaced_ = replaced.id;
      return Success();
    }
    Result result = AppearedMeanwhile(destination_);
    if (ExchangeNames(path_, destination_) != 0 || !IsPlaced(path_)) KeepUnderPath(&result);
    return result;
  }
  if (!MeansUnsupported(error)) return SystemFailure(error, destination_);
  EntryStatus now;
  if (!ReadStatus(destination_, &now).ok() || !IsSameEntry(now, replaced))
    return AppearedMeanwhile(destination_);
  error = RenameReplacing(path_, destination_);
  if (error != 0) return SystemFailure(error, destination_);
  under_path_ = Under::kNothing;
  is_old_lost_ = true;
  return Success();
}

bool StagedEntry::IsPlaced(const std::string& path) const {
  EntryStatus now;
  return ReadStatus(path, &now).ok() && IsSameContent(placed_, now);
}

Result StagedEntry::CheckPlaced() {
  if (IsPlaced(destination_) && (!placed_.is_folder() || placed_tree_.CheckUnchanged(alone_).ok()))
    return Success();
  return Failure(Code::kFailed, destination_, why::kChangedSince);
}

Result StagedEntry::TakeBack() {
  Result result = is_old_lost_ ? Failure(Code::kFailed, destination_, why::kReplacedIsGone) : CheckPlaced();
  if (result.ok()) result = Withdraw();
  if (!result.ok()) {
    result.reason = why::kCopyLeft(result.reason);
    return result;
  }
  if (placed_.is_folder()) return RemoveTaken();
  if (trashed_.original.empty() || RestoreTrashed(trashed_).ok()) return result;
  return Failure(Code::kFailed, destination_, why::kOldInTrash);
}

// Back to the temporary name, and looked at there: between the look before and the rename somebody else may
// have put something in the place, which gets its name back.
Result StagedEntry::Withdraw() {
  const bool exchanges = under_path_ == Under::kReplacedFile;
  const auto rename = [&](const std::string& from, const std::string& to) {
    return exchanges ? ExchangeNames(from, to) : RenameWithoutReplacing(from, to);
  };
  if (const int error = rename(destination_, path_); error != 0) return SystemFailure(error, destination_);
  if (IsPlaced(path_)) {
    under_path_ = Under::kNewEntry;
    return Success();
  }
  Result result = Failure(Code::kFailed, destination_, why::kChangedSince);
  if (rename(path_, destination_) != 0) KeepUnderPath(&result);
  return result;
}

// Better a strange name than a file removed that nobody said to remove.
void StagedEntry::KeepUnderPath(Result* result) {
  under_path_ = Under::kNothing;
  result->reason = why::kAnd(result->reason, why::kOldHasName(name_));
}

// What somebody else has put into the folder at the last moment gets the place back where it was put.
Result StagedEntry::RemoveTaken() {
  bool removed_any = false;
  Result result = placed_tree_.Follow(path_);
  if (result.ok()) result = placed_tree_.Remove(alone_, &removed_any);
  under_path_ = Under::kNothing;
  if (result.ok()) return result;
  (void)RenameWithoutReplacing(path_, destination_);
  return Failure(Code::kFailed, destination_, why::kOthersContentLeft);
}

Result ReplaceThroughTrash(const std::string& from, const std::string& to, TrashedEntry* trashed) {
  Result result = TrashEntry(to, trashed);
  if (!result.ok()) return result;
  const int error = RenameWithoutReplacing(from, to);
  if (error == 0) return Success();
  result = SystemFailure(error, to);
  if (const Result restored = RestoreTrashed(*trashed); !restored.ok()) {
    result.reason = why::kAnd(result.reason, why::kOldInTrash);
  }
  return result;
}

}  // namespace quendle::platform
