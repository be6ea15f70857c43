#include "platform/moving/bring_entry.h"
#include "platform/process/system_failure.h"

#include "platform/entries/open_folder.h"
#include "platform/entries/paths.h"
#include "platform/entries/renaming.h"
#include "platform/moving/copy_file.h"
#include "platform/moving/copy_tree.h"
#include "platform/moving/source_tree.h"
#include "platform/moving/staged_entry.h"

namespace quendle::platform {
namespace {

// The system does not tell which of the two folders it is that denies.
Result RenameFailure(int error, const std::string& source, const EntryStatus& status,
                     const std::string& destination) {
  Result result = SystemFailure(error, destination);
  if (result.code == Code::kNotFound) result.path = source;
  if (result.code == Code::kNotFound) return result;
  if (result.code == Code::kExists) return AppearedMeanwhile(destination);
  Result denied = CheckRemovable(source, status);
  return denied.ok() ? result : denied;
}

// False when the two places are on different file systems, and nothing was done.
bool MoveByRename(Transfer& transfer, const std::string& source, const EntryStatus& status,
                  const std::string& destination, const EntryStatus* replaced, Result* result) {
  if (replaced != nullptr && transfer.options.allow_undo) {
    if (replaced->id.volume != status.id.volume) return false;
    TrashedEntry trashed;
    *result = ReplaceThroughTrash(source, destination, &trashed);
    return true;
  }
  if (replaced != nullptr) {
    EntryStatus now;
    *result = ReadStatus(destination, &now);
    if (result->ok() && !IsSameEntry(now, *replaced)) *result = AppearedMeanwhile(destination);
    if (!result->ok()) return true;
  }
  const int error = replaced != nullptr ? RenameReplacing(source, destination)
                                        : RenameWithoutReplacing(source, destination);
  if (MeansOtherFileSystem(error)) return false;
  *result = error == 0 ? Success() : RenameFailure(error, source, status, destination);
  return true;
}

class StagedTransfer {
 public:
  StagedTransfer(Transfer& transfer, const std::string& source, const EntryStatus& status,
                 const std::string& destination)
      : transfer_(transfer),
        source_(source),
        name_(NameOf(source)),
        status_(status),
        destination_(destination),
        staged_(destination) {}

  Result Run(const EntryStatus* replaced) {
    Result result = OpenFolder::Open(FolderOf(source_), FolderOf(source_), OpenFolder::Use::kPass, &from_);
    if (result.ok() && transfer_.moving) result = CheckCanLeave();
    if (result.ok()) result = staged_.OpenItsFolder();
    if (result.ok()) result = Stage();
    // The last moment for it: a cancel may have come while the system synced the copy.
    if (result.ok() && !transfer_.meter.Tick()) result = Cancelled(source_);
    if (result.ok()) result = staged_.Put(replaced, transfer_.options.allow_undo, transfer_.moving);
    return result.ok() && transfer_.moving ? Conclude() : result;
  }

 private:
  // Better known before gigabytes are copied.
  Result CheckCanLeave() {
    EntryStatus parent;
    Result result = from_.Status(&parent);
    if (!result.ok()) return result;
    if (parent.id.volume != status_.id.volume) return Failure(Code::kRefused, source_, why::kMounted);
    return from_.CheckRemovable(name_, status_);
  }

  Result Stage() {
    switch (status_.kind) {
      case EntryStatus::Kind::kFolder:
        return StageTree();
      case EntryStatus::Kind::kLink:
        return StageLink();
      case EntryStatus::Kind::kFile:
        return StageFile();
      case EntryStatus::Kind::kOther:
        break;
    }
    return CheckCopyable(status_, source_);
  }

  Result StageFile() {
    transfer_.meter.Expect(status_.size);
    SystemHandle in;
    SystemHandle out;
    Result result = from_.OpenFile(name_, &in);
    if (result.ok()) result = staged_.MakeFile(&out);
    if (result.ok())
      result = CopyFileContent(transfer_, {in.get(), source_}, status_, {out.get(), destination_},
                               transfer_.moving);
    if (result.ok() && !out.Close()) return LastSystemFailure(destination_);
    return result;
  }

  Result StageLink() {
    std::string content;
    Result result = from_.ReadLink(name_, status_, &content);
    if (result.ok()) result = staged_.MakeLink(content, status_);
    if (!result.ok()) return result;
    return CopyLinkMetadata(transfer_, status_, staged_.folder(), staged_.name(), destination_);
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
      result = status_.is_folder() ? tree_.Remove(transfer_, &removed_any) : RemoveSourceFile();
    if (result.ok()) return result;
    if (removed_any) {
      result.reason = why::kAnd(result.reason, why::kSourceRestLeft);
    } else if (const Result back = staged_.TakeBack(); !back.ok()) {
      result.reason = why::kAnd(result.reason, back.reason);
    }
    return result;
  }

  Result RemoveSourceFile() {
    EntryStatus now;
    const Result result = from_.StatusOf(name_, &now);
    // When somebody else removed it, the copy is all there is.
    if (!result.ok()) return result.code == Code::kNotFound ? Success() : result;
    return IsUnchanged(status_, now) ? from_.Remove(name_) : SourceChanged(source_);
  }

  Transfer& transfer_;
  const std::string& source_;
  const std::string name_;
  const EntryStatus& status_;
  const std::string& destination_;
  StagedEntry staged_;
  SourceTree tree_;
  OpenFolder from_;
};

}  // namespace

Result BringEntry(Transfer& transfer, const std::string& source, const EntryStatus& status,
                  const std::string& destination, const EntryStatus* replaced) {
  Result result;
  if (transfer.moving && MoveByRename(transfer, source, status, destination, replaced, &result))
    return result;
  return StagedTransfer(transfer, source, status, destination).Run(replaced);
}

}  // namespace quendle::platform
