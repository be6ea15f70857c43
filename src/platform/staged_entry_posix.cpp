#include "platform/staged_entry_posix.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "platform/entry_names_posix.h"
#include "platform/remove_tree_posix.h"

namespace quendle::platform {
namespace {

int Exchange(const std::string& a, const std::string& b) {
  return renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

Result AppearedMeanwhile(const std::string& path) {
  return Failure(Code::kExists, path, "something of that name has appeared meanwhile");
}

}  // namespace

StagedEntry::StagedEntry(const std::string& destination)
    : destination_(destination), path_(TemporaryPath(destination)) {}

void StagedEntry::Clear() {
  if (under_path_ == Under::kNewEntry) DiscardTree(path_);
  if (under_path_ == Under::kReplacedFile) unlink(path_.c_str());
}

Result StagedEntry::MakeFile(Descriptor* file) {
  *file = Descriptor(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!file->ok()) return LastSystemFailure(destination_);
  under_path_ = Under::kNewEntry;
  return Success();
}

Result StagedEntry::MakeLink(const std::string& target) {
  if (symlink(target.c_str(), path_.c_str()) != 0) return LastSystemFailure(destination_);
  under_path_ = Under::kNewEntry;
  return Success();
}

Result StagedEntry::MakeFolder() {
  if (mkdir(path_.c_str(), S_IRWXU) != 0) return LastSystemFailure(destination_);
  under_path_ = Under::kNewEntry;
  return Success();
}

Result StagedEntry::Put(const struct stat* replaced, bool to_trash) {
  if (replaced != nullptr && !to_trash) return Swap(*replaced);
  Result result;
  if (replaced != nullptr) {
    result = ReplaceThroughTrash(path_, destination_, &trashed_);
  } else {
    const int error = RenameWithoutReplacing(path_, destination_);
    if (error == EEXIST) return AppearedMeanwhile(destination_);
    if (error != 0) return SystemFailure(error, destination_);
  }
  if (result.ok()) under_path_ = Under::kNothing;
  return result;
}

// Both names change hands in one step, so that the old file is neither missing at any moment nor lost.
Result StagedEntry::Swap(const struct stat& replaced) {
  int error = Exchange(path_, destination_);
  if (error == 0) {
    struct stat old;
    if (lstat(path_.c_str(), &old) == 0 && IsSameEntry(old, replaced)) {
      under_path_ = Under::kReplacedFile;
      return Success();
    }
    error = Exchange(path_, destination_);
    if (error != 0)
      under_path_ = Under::kNothing;  // better a strange name than a file that nobody said to remove
    return AppearedMeanwhile(destination_);
  }
  if (error != EINVAL && error != ENOSYS) return SystemFailure(error, destination_);
  if (rename(path_.c_str(), destination_.c_str()) != 0) return LastSystemFailure(destination_);
  under_path_ = Under::kNothing;
  is_old_lost_ = true;
  return Success();
}

Result StagedEntry::TakeBack() {
  if (is_old_lost_) return Failure(Code::kFailed, destination_, "the file that it replaced is gone");
  const int error = under_path_ == Under::kReplacedFile ? Exchange(path_, destination_)
                                                        : RenameWithoutReplacing(destination_, path_);
  if (error != 0) return SystemFailure(error, destination_);
  under_path_ = Under::kNewEntry;
  return trashed_.file.empty() ? Success() : RestoreTrashed(trashed_);
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
