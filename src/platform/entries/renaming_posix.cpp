#include "platform/entries/renaming.h"
#include "platform/process/system_failure.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/renaming_posix.h"

namespace quendle::platform {
namespace {

// For file systems that cannot refuse to replace in one step. A link is as safe but needs two steps; what
// cannot be linked (folders, FAT) is left with a look before the rename.
int RenameStepwise(int from_folder, const char* from, int to_folder, const char* to) {
  if (linkat(from_folder, from, to_folder, to, 0) == 0) {
    if (unlinkat(from_folder, from, 0) == 0) return 0;
    const int error = errno;
    unlinkat(to_folder, to, 0);
    return error;
  }
  if (errno == EEXIST || errno == EXDEV || errno == ENOENT) return errno;
  struct stat taken;
  if (fstatat(to_folder, to, &taken, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  if (errno != ENOENT) return errno;
  return renameat(from_folder, from, to_folder, to) == 0 ? 0 : errno;
}

}  // namespace

int RenameWithoutReplacing(const std::string& from, const std::string& to) {
  return RenameWithoutReplacing(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str());
}

int RenameWithoutReplacing(int from_folder, const char* from, int to_folder, const char* to) {
  if (renameat2(from_folder, from, to_folder, to, RENAME_NOREPLACE) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS ? RenameStepwise(from_folder, from, to_folder, to) : errno;
}

int RenameReplacing(const std::string& from, const std::string& to) {
  return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int ExchangeNames(const std::string& a, const std::string& b) {
  return renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

bool MeansOtherFileSystem(int error) {
  return error == EXDEV;
}

bool MeansUnsupported(int error) {
  return error == EINVAL || error == ENOSYS;
}

Result SyncFolder(const std::string& folder) {
  const Descriptor open_folder(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!open_folder.ok()) return LastSystemFailure(folder);
  return SyncOpenFolder(open_folder.get(), folder);
}

Result SyncOpenFolder(int folder, const std::string& shown) {
  // EINVAL: the file system has nothing to sync for a folder.
  if (Retried([&] { return fsync(folder); }) != 0 && errno != EINVAL) return LastSystemFailure(shown);
  return Success();
}

}  // namespace quendle::platform
