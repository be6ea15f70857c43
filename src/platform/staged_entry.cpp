#include "platform/staged_entry.h"

#include "platform/remove_tree.h"
#include "platform/renaming.h"

namespace quendle::platform {

StagedEntry::StagedEntry(const std::string& destination)
    : destination_(destination), path_(TemporaryPath(destination)), name_(NameOf(path_)) {}

void StagedEntry::Clear() {
  if (under_path_ == Under::kNewEntry) DiscardTree(folder_, name_);
  if (under_path_ == Under::kReplacedFile) (void)folder_.Remove(name_);
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

Result StagedEntry::Put(const EntryStatus* replaced, bool to_trash) {
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
      return Success();
    }
    error = ExchangeNames(path_, destination_);
    if (error != 0)
      under_path_ = Under::kNothing;  // better a strange name than a file that nobody said to remove
    return AppearedMeanwhile(destination_);
  }
  if (!MeansUnsupported(error)) return SystemFailure(error, destination_);
  error = RenameReplacing(path_, destination_);
  if (error != 0) return SystemFailure(error, destination_);
  under_path_ = Under::kNothing;
  is_old_lost_ = true;
  return Success();
}

Result StagedEntry::TakeBack() {
  if (is_old_lost_) return Failure(Code::kFailed, destination_, "the file that it replaced is gone");
  const int error = under_path_ == Under::kReplacedFile ? ExchangeNames(path_, destination_)
                                                        : RenameWithoutReplacing(destination_, path_);
  if (error != 0) return SystemFailure(error, destination_);
  under_path_ = Under::kNewEntry;
  return trashed_.original.empty() ? Success() : RestoreTrashed(trashed_);
}

Result ReplaceThroughTrash(const std::string& from, const std::string& to, TrashedEntry* trashed) {
  Result result = TrashEntry(to, trashed);
  if (!result.ok()) return result;
  const int error = RenameWithoutReplacing(from, to);
  if (error == 0) return Success();
  result = SystemFailure(error, to);
  if (const Result restored = RestoreTrashed(*trashed); !restored.ok()) {
    result.reason += "; the file that was there is in the trash";
  }
  return result;
}

}  // namespace quendle::platform
