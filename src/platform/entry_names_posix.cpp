#include "platform/entry_names_posix.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include "platform/descriptor_posix.h"

namespace quendle::platform {
namespace {

bool IsSameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

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

std::string WithoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string FolderOf(const std::string& path) {
  const std::size_t cut = path.rfind('/');
  if (cut == std::string::npos) return ".";
  return WithoutTrailingSlashes(path.substr(0, cut + 1));
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : "";
}

std::string TemporaryPath(const std::string& path) {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
  std::array<unsigned char, 8> random{};
  // The pool is ready long before a desktop program runs; zeroes otherwise are a name like any other.
  (void)!getrandom(random.data(), random.size(), 0);
  std::string name = ".quendle-";
  for (const unsigned char byte : random) name += kLetters[byte % 32];
  return path.substr(0, path.rfind('/') + 1) + name + ".part";
}

std::string NumberedPath(const std::string& path, unsigned number, bool is_folder) {
  const std::size_t name = path.rfind('/') + 1;
  const std::size_t dot = path.rfind('.');
  const bool has_extension = !is_folder && dot != std::string::npos && dot > name;
  std::string numbered = path;
  return numbered.insert(has_extension ? dot : path.size(), " (" + std::to_string(number) + ")");
}

bool IsUnchanged(const struct stat& before, const struct stat& now) {
  return IsSameEntry(before, now) && before.st_mode == now.st_mode && before.st_size == now.st_size &&
         IsSameTime(before.st_mtim, now.st_mtim) && IsSameTime(before.st_ctim, now.st_ctim);
}

bool IsAtOrBelow(const std::string& path, const struct stat& top) {
  std::string folder = RealPath(path);
  if (folder.empty()) return false;
  for (;; folder = FolderOf(folder)) {
    struct stat status;
    if (stat(folder.c_str(), &status) == 0 && IsSameEntry(status, top)) return true;
    if (folder == "/") return false;
  }
}

Result CheckRemovable(int folder, const char* name, const std::string& shown, const struct stat& entry) {
  if (faccessat(folder, name, W_OK | X_OK, AT_EACCESS) != 0) return LastSystemFailure(shown);
  struct stat status;
  if (fstatat(folder, name, &status, 0) != 0) return LastSystemFailure(shown);
  const uid_t user = geteuid();
  if ((status.st_mode & S_ISVTX) != 0 && user != 0 && user != status.st_uid && user != entry.st_uid) {
    return Failure(Code::kDenied, shown, "entries of others cannot be removed from this folder");
  }
  return Success();
}

int RenameWithoutReplacing(const std::string& from, const std::string& to) {
  return RenameWithoutReplacing(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str());
}

int RenameWithoutReplacing(int from_folder, const char* from, int to_folder, const char* to) {
  if (renameat2(from_folder, from, to_folder, to, RENAME_NOREPLACE) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS ? RenameStepwise(from_folder, from, to_folder, to) : errno;
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
