#include "platform/bring_entry_posix.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "platform/copy_file_posix.h"
#include "platform/copy_tree_posix.h"
#include "platform/entry_names_posix.h"
#include "platform/source_tree_posix.h"
#include "platform/staged_entry_posix.h"

namespace quendle::platform {
namespace {

// The system does not tell which of the two folders it is that denies.
Result RenameFailure(int error, const std::string& source, const struct stat& status,
                     const std::string& destination) {
  if (error == ENOENT) return SystemFailure(error, source);
  if (error == EEXIST)
    return Failure(Code::kExists, destination, "something of that name has appeared meanwhile");
  Result denied = CheckRemovable(AT_FDCWD, FolderOf(source).c_str(), FolderOf(source), status);
  return denied.ok() ? SystemFailure(error, destination) : denied;
}

int RenameOver(const std::string& source, const std::string& destination, const struct stat& replaced) {
  struct stat now;
  if (lstat(destination.c_str(), &now) != 0) return errno;
  if (!IsSameEntry(now, replaced)) return EEXIST;
  return rename(source.c_str(), destination.c_str()) == 0 ? 0 : errno;
}

// False when the two places are on different file systems, and nothing was done.
bool MoveByRename(Transfer& transfer, const std::string& source, const struct stat& status,
                  const std::string& destination, const struct stat* replaced, Result* result) {
  if (replaced != nullptr && transfer.options.allow_undo) {
    if (replaced->st_dev != status.st_dev) return false;
    TrashedEntry trashed;
    *result = ReplaceThroughTrash(source, destination, &trashed);
    return true;
  }
  const int error = replaced != nullptr ? RenameOver(source, destination, *replaced)
                                        : RenameWithoutReplacing(source, destination);
  if (error == EXDEV) return false;
  *result = error == 0 ? Success() : RenameFailure(error, source, status, destination);
  return true;
}

class StagedTransfer {
 public:
  StagedTransfer(Transfer& transfer, const std::string& source, const struct stat& status,
                 const std::string& destination)
      : transfer_(transfer),
        source_(source),
        status_(status),
        destination_(destination),
        staged_(destination) {}

  Result Run(const struct stat* replaced) {
    Result result = transfer_.moving ? CheckCanLeave() : Success();
    if (result.ok()) result = Stage();
    if (result.ok()) result = staged_.Put(replaced, transfer_.options.allow_undo);
    return result.ok() && transfer_.moving ? Conclude() : result;
  }

 private:
  // Better known before gigabytes are copied.
  Result CheckCanLeave() {
    const std::string folder = FolderOf(source_);
    struct stat parent;
    if (stat(folder.c_str(), &parent) != 0) return LastSystemFailure(folder);
    if (parent.st_dev != status_.st_dev) {
      return Failure(Code::kRefused, source_, "another file system is mounted here");
    }
    return CheckRemovable(AT_FDCWD, folder.c_str(), folder, status_);
  }

  Result Stage() {
    if (S_ISDIR(status_.st_mode)) return StageTree();
    if (S_ISLNK(status_.st_mode)) return StageLink();
    if (S_ISREG(status_.st_mode)) return StageFile();
    return CheckCopyable(status_, source_);
  }

  Result StageFile() {
    transfer_.meter.Expect(static_cast<std::uint64_t>(status_.st_size));
    const Descriptor in(open(source_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!in.ok()) return LastSystemFailure(source_);
    Descriptor out;
    Result result = staged_.MakeFile(&out);
    if (!result.ok()) return result;
    result =
        CopyFileContent(transfer_, {in.get(), source_}, status_, {out.get(), destination_}, transfer_.moving);
    if (result.ok() && !out.Close()) return LastSystemFailure(destination_);
    return result;
  }

  Result StageLink() {
    std::string target;
    Result result = ReadLink(AT_FDCWD, source_.c_str(), source_, status_, &target);
    if (result.ok()) result = staged_.MakeLink(target);
    if (!result.ok()) return result;
    return CopyLinkMetadata(transfer_, status_, AT_FDCWD, staged_.path().c_str(), destination_);
  }

  Result StageTree() {
    Result result = tree_.Scan(transfer_, source_, status_);
    transfer_.meter.Expect(tree_.bytes());
    if (result.ok()) result = staged_.MakeFolder();
    if (result.ok()) result = CopyTree(transfer_, tree_, staged_.path(), destination_);
    return result.ok() ? tree_.CheckUnchanged(transfer_) : result;
  }

  // The copy is in place: the source goes, or else the copy.
  Result Conclude() {
    bool removed_any = false;
    Result result = SyncFolder(FolderOf(destination_));
    if (result.ok())
      result = S_ISDIR(status_.st_mode) ? tree_.Remove(transfer_, &removed_any) : RemoveSourceFile();
    if (result.ok()) return result;
    if (removed_any) {
      result.reason += "; the copy is complete, the rest of the source was left";
    } else if (const Result back = staged_.TakeBack(); !back.ok()) {
      result.reason += "; the copy was left in place: " + back.reason;
    }
    return result;
  }

  Result RemoveSourceFile() {
    struct stat now;
    // When somebody else removed it, the copy is all there is.
    if (lstat(source_.c_str(), &now) != 0) return errno == ENOENT ? Success() : LastSystemFailure(source_);
    if (!IsUnchanged(status_, now)) return SourceChanged(source_);
    return unlink(source_.c_str()) == 0 ? Success() : LastSystemFailure(source_);
  }

  Transfer& transfer_;
  const std::string& source_;
  const struct stat& status_;
  const std::string& destination_;
  StagedEntry staged_;
  SourceTree tree_;
};

}  // namespace

Result BringEntry(Transfer& transfer, const std::string& source, const struct stat& status,
                  const std::string& destination, const struct stat* replaced) {
  Result result;
  if (transfer.moving && MoveByRename(transfer, source, status, destination, replaced, &result))
    return result;
  return StagedTransfer(transfer, source, status, destination).Run(replaced);
}

}  // namespace quendle::platform
