// Whole files, read and replaced so that a crash, a full disk or another copy of the program never leaves
// half of one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/entries/entry_status.h"
#include "reasons/result.h"

namespace quendle::platform {

// Reads the whole file into `*bytes`, which is empty after a failure. A folder is kIsFolder; pipes, devices
// and files above 256 MiB are kRefused. What another program writes meanwhile may be in it or not, and in
// part.
Result ReadWholeFile(const std::string& path, std::string* bytes);

// The same for who acts on what is read: the bytes of one moment, which are not half of what somebody is about to
// write. Nobody has the file open to write while it is read, and where the system does not tell (files of others,
// network file systems) or the file is empty, it has been left alone for 25 ms, or 2.5 s on a file system that keeps
// whole seconds only. A file is waited for until it is so, about a second; then it is kFailed, why::kBeingChanged.
// kNotFound means that there is nothing of that name; a link that leads nowhere is kFailed. `*status`, when wanted, is
// what the file was then.
Result ReadSettledFile(const std::string& path, std::string* bytes, EntryStatus* status = nullptr);

// Replaces the file's content: a new hidden file beside it, written whole, synced, given the old file's owner
// and mode, renamed over it, folder synced. After a failure the old file has its old bytes and no temporary
// file is left, unless only syncing the folder failed: then the new bytes are in place and the reason says
// so. A path that is a symbolic link keeps the link; the file it names is replaced. A missing file is made. A
// file that must not be written is kDenied. Who may not give the new file to the old owner gives it to the
// old group; who may not do that either takes all rights from the group. Windows: the old file's attributes,
// rights and time of creation are kept.
Result ReplaceFile(const std::string& path, std::string_view bytes);

// Writes the content of a file that is for this run only and has been made before, such as one by
// MakeTemporaryFile. It is not synced: thousands of such files must not cost thousands of waits for the disk.
// After a failure it may have some of the bytes.
Result WriteTemporaryFile(const std::string& path, std::string_view bytes);

// An exclusive lock over the folder in which `path` really lies, held until the object goes. It excludes
// those who take it, in this and other processes, and nobody else. It is a lock on the folder so that no lock
// file is left behind. Windows: on this computer only.
//
// Taking it waits for the other holder: for ten seconds (kFailed), or until the user wants the program to
// stop (kCancelled). Taking it a second time while holding it waits like that, too.
class FolderLock {
 public:
  static Result Take(const std::string& path, std::unique_ptr<FolderLock>* lock);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  explicit FolderLock(std::intptr_t handle) : handle_(handle) {}
  std::intptr_t handle_;
};

}  // namespace quendle::platform
