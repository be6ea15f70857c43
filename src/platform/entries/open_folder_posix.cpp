#include "platform/entries/open_folder.h"
#include "platform/process/system_failure.h"

#include <atomic>
#include <cerrno>
#include <exception>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/entry_status_posix.h"
#include "platform/entries/renaming_posix.h"

namespace quendle::platform {
namespace {

constexpr mode_t kReadAndWrite = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr mode_t kAll = S_IRWXU | S_IRWXG | S_IRWXO;

// Each takes a thread and a descriptor.
constexpr int kMostClosings = 8;
std::atomic<int> closings = 0;  // of files, under way on threads of their own

struct ListingCloser {
  void operator()(DIR* listing) const { closedir(listing); }
};

int Flags(OpenFolder::Use use) {
  return O_DIRECTORY | O_CLOEXEC | (use == OpenFolder::Use::kPass ? O_PATH : O_RDONLY);
}

Result OpenAt(int folder, const std::string& path, int flags, const std::string& shown,
              SystemHandle* handle) {
  *handle = SystemHandle(Retried([&] { return openat(folder, path.c_str(), flags); }));
  if (handle->ok()) return Success();
  if ((flags & O_NOFOLLOW) != 0 && (errno == ENOTDIR || errno == ELOOP))
    return Failure(Code::kNotFolder, shown, why::kNoFolderInPlace);
  return LastSystemFailure(shown);
}

Result StatusAt(int folder, const char* name, const std::string& shown, int flags, EntryStatus* status) {
  struct stat entry;
  if (fstatat(folder, name, &entry, flags) != 0) return LastSystemFailure(shown);
  *status = StatusFrom(entry);
  return Success();
}

}  // namespace

bool SystemHandle::Close() {
  const auto handle = static_cast<int>(std::exchange(handle_, kNone));
  return handle < 0 || close(handle) == 0 || errno == EINTR;
}

Result OpenFolder::Open(const std::string& path, std::string shown, Use use, OpenFolder* folder) {
  folder->shown_ = std::move(shown);
  return OpenAt(AT_FDCWD, path, Flags(use), folder->shown_, &folder->handle_);
}

Result OpenFolder::OpenItself(const std::string& path, std::string shown, Use use, OpenFolder* folder) {
  folder->shown_ = std::move(shown);
  return OpenAt(AT_FDCWD, path, Flags(use) | O_NOFOLLOW, folder->shown_, &folder->handle_);
}

Result OpenFolder::Enter(const std::string& name, Use use, OpenFolder* folder) const {
  folder->shown_ = Shown(name);
  return OpenAt(FdOf(handle_), name, Flags(use) | O_NOFOLLOW, folder->shown_, &folder->handle_);
}

Result OpenFolder::Status(EntryStatus* status) const {
  return StatusAt(FdOf(handle_), "", shown_, AT_EMPTY_PATH, status);
}

Result OpenFolder::StatusOf(const std::string& name, EntryStatus* status) const {
  struct stat entry;
  if (fstatat(FdOf(handle_), name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) != 0)
    return LastSystemFailure(Shown(name));
  *status = StatusFrom(entry);
  return Success();
}

Result OpenFolder::List(std::vector<std::string>* names) const {
  const int own = fcntl(FdOf(handle_), F_DUPFD_CLOEXEC, 0);
  if (own < 0) return LastSystemFailure(shown_);
  const std::unique_ptr<DIR, ListingCloser> listing(fdopendir(own));
  if (!listing) {
    Descriptor(own).Close();
    return LastSystemFailure(shown_);
  }
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(listing.get());
    if (entry == nullptr) return errno == 0 ? Success() : LastSystemFailure(shown_);
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names->emplace_back(name);
  }
}

Result OpenFolder::CheckRemovable(const std::string& /*name*/, const EntryStatus& entry) const {
  const int folder = FdOf(handle_);
  struct stat status;
  if (faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0 || fstatat(folder, ".", &status, 0) != 0)
    return LastSystemFailure(shown_);
  const uid_t user = geteuid();
  if ((status.st_mode & S_ISVTX) != 0 && user != 0 && user != status.st_uid && user != entry.owner)
    return Failure(Code::kDenied, shown_, why::kForeignEntries);
  return Success();
}

Result OpenFolder::OpenFile(const std::string& name, SystemHandle* file) const {
  *file = SystemHandle(openat(FdOf(handle_), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return file->ok() ? Success() : LastSystemFailure(Shown(name));
}

Result OpenFolder::MakeFile(const std::string& name, NewEntry how, SystemHandle* file) const {
  const mode_t mode = how.is_private ? S_IRUSR | S_IWUSR : kReadAndWrite;
  *file = SystemHandle(Retried(
      [&] { return openat(FdOf(handle_), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); }));
  return file->ok() ? Success() : LastSystemFailure(Shown(name));
}

Result OpenFolder::MakeFolder(const std::string& name, NewEntry how) const {
  const mode_t mode = how.is_private ? S_IRWXU : kAll;
  return mkdirat(FdOf(handle_), name.c_str(), mode) == 0 ? Success() : LastSystemFailure(Shown(name));
}

Result OpenFolder::MakeLink(const std::string& name, const std::string& target) const {
  return symlinkat(target.c_str(), FdOf(handle_), name.c_str()) == 0 ? Success()
                                                                     : LastSystemFailure(Shown(name));
}

Result OpenFolder::ReadLink(const std::string& name, const EntryStatus& recorded,
                            std::string* content) const {
  content->resize(recorded.size + 1);
  const ssize_t size = readlinkat(FdOf(handle_), name.c_str(), content->data(), content->size());
  if (size < 0) return LastSystemFailure(Shown(name));
  if (static_cast<std::uint64_t>(size) != recorded.size) return SourceChanged(Shown(name));
  content->resize(recorded.size);
  return Success();
}

Result OpenFolder::MakeLinkLike(const std::string& name, const std::string& content,
                                const EntryStatus& /*recorded*/) const {
  return MakeLink(name, content);
}

Result OpenFolder::MakeHardLink(const std::string& path, const std::string& name) const {
  return linkat(AT_FDCWD, path.c_str(), FdOf(handle_), name.c_str(), 0) == 0 ? Success()
                                                                             : LastSystemFailure(Shown(name));
}

Result OpenFolder::Remove(const std::string& name) const {
  return unlinkat(FdOf(handle_), name.c_str(), 0) == 0 ? Success() : LastSystemFailure(Shown(name));
}

// Who has the file open last waits until its blocks are free.
Result OpenFolder::RemoveQuickly(const std::string& name) const {
  Descriptor file(openat(FdOf(handle_), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  Result result = Remove(name);
  if (!file.ok()) return result;
  if (closings++ < kMostClosings) {
    try {
      std::thread([last = std::move(file)]() mutable {
        last.Close();
        --closings;
      }).detach();
      return result;
    } catch (const std::exception&) {  // neither threads nor memory: this one waits
    }
  }
  --closings;
  return result;
}

Result OpenFolder::RemoveFolder(const std::string& name) const {
  return unlinkat(FdOf(handle_), name.c_str(), AT_REMOVEDIR) == 0 ? Success()
                                                                  : LastSystemFailure(Shown(name));
}

void OpenFolder::MakeAccessible(const std::string& name) const {
  fchmodat(FdOf(handle_), name.c_str(), S_IRWXU, 0);
}

int OpenFolder::Rename(const std::string& name, const OpenFolder& to, const std::string& new_name,
                       bool replace) const {
  const int from_folder = FdOf(handle_);
  const int to_folder = FdOf(to.handle_);
  if (!replace) return RenameWithoutReplacing(from_folder, name.c_str(), to_folder, new_name.c_str());
  return renameat(from_folder, name.c_str(), to_folder, new_name.c_str()) == 0 ? 0 : errno;
}

void OpenFolder::SetWriteTime(const std::string& name, const EntryTime& time) const {
  const timespec times[] = {{0, UTIME_OMIT}, SystemTime(time)};
  utimensat(FdOf(handle_), name.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

Result OpenFolder::Unhide(const std::string& /*name*/) const {
  return Success();
}

Result OpenFolder::FreeBytes(std::optional<std::uint64_t>* bytes) const {
  struct statvfs space;
  if (Retried([&] { return fstatvfs(FdOf(handle_), &space); }) != 0) return LastSystemFailure(shown_);
  // Some network file systems have no blocks.
  *bytes = std::nullopt;
  if (space.f_blocks != 0 && space.f_frsize != 0) *bytes = std::uint64_t{space.f_bavail} * space.f_frsize;
  return Success();
}

}  // namespace quendle::platform
