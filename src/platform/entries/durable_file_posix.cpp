#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/durable_file.h"
#include "platform/entries/entry_status_posix.h"
#include "platform/entries/path_names.h"
#include "platform/entries/renaming_posix.h"
#include "platform/entries/watched_read.h"
#include "platform/process/process.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

// Far above any settings file, far below what would exhaust memory once it is decoded and parsed.
constexpr off_t kGreatestSize = off_t{256} << 20;

constexpr int kMostLinks = 40;

constexpr auto kLongestWait = std::chrono::seconds(10);
constexpr useconds_t kShortestPause = 1'000;
constexpr useconds_t kLongestPause = 50'000;

// Follows links in the last component, so that the answer is where the file is or, when it is missing, would
// be.
Result FollowLinks(const std::string& path, std::string* real) {
  *real = path;
  for (int links = 0; links < kMostLinks; ++links) {
    char target[PATH_MAX];
    const ssize_t length = readlink(real->c_str(), target, sizeof target);
    if (length < 0) return errno == EINVAL || errno == ENOENT ? Success() : LastSystemFailure(path);
    const std::string_view text(target, static_cast<std::size_t>(length));
    *real = text.starts_with('/') ? std::string(text) : FolderOf(*real) + "/" + std::string(text);
  }
  return SystemFailure(ELOOP, path);
}

Result ReadUpTo(const Descriptor& file, off_t expected, const std::string& path, std::string* bytes) {
  bytes->resize(static_cast<std::size_t>(expected) + 1);  // one more, to see the end without reading twice
  std::size_t filled = 0;
  while (true) {
    if (filled == bytes->size()) bytes->resize(filled * 2);
    if (filled > kGreatestSize) return Failure(Code::kRefused, path, why::kFileTooLarge);
    const ssize_t got =
        Retried([&] { return read(file.get(), bytes->data() + filled, bytes->size() - filled); });
    if (got < 0) return LastSystemFailure(path);
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes->resize(filled);
  return Success();
}

// The system lends a file to read only while nobody has it open for writing, and until the file is closed whoever
// opens it waits. A signal tells of that which is to end nobody: one that is ignored unless somebody wants it.
WatchedRead::Writers KeepWritersOut(const Descriptor& file) {
  if (fcntl(file.get(), F_SETSIG, SIGURG) != 0) return WatchedRead::Writers::kUnknown;
  if (fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0) return WatchedRead::Writers::kNone;
  return errno == EAGAIN ? WatchedRead::Writers::kSome : WatchedRead::Writers::kUnknown;
}

// Says whether the file at `real`, if there is one, may be replaced. `*exists` tells whether there is.
Result CheckReplaceable(const std::string& real, struct stat* old, bool* exists) {
  *exists = lstat(real.c_str(), old) == 0;
  if (!*exists) return errno == ENOENT ? Success() : LastSystemFailure(real);
  if (S_ISDIR(old->st_mode)) return SystemFailure(EISDIR, real);
  if (!S_ISREG(old->st_mode)) return Failure(Code::kRefused, real, why::kNotRegularFile);
  // Renaming over it would succeed, but its owner has said that it is not to be written.
  if (faccessat(AT_FDCWD, real.c_str(), W_OK, AT_EACCESS) != 0) return LastSystemFailure(real);
  return Success();
}

Result WriteAll(const Descriptor& file, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t written = Retried([&] { return write(file.get(), bytes.data(), bytes.size()); });
    if (written < 0) return LastSystemFailure(path);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return Success();
}

// A new file beside the one it will replace, removed again unless it has taken that one's place.
class Replacement {
 public:
  Replacement(int folder, const std::string& path) : folder_(folder), path_(path) {}
  ~Replacement() {
    if (!name_.empty()) unlinkat(folder_, name_.c_str(), 0);
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  Result Create(mode_t mode) {
    const std::string name = NameOf(TemporaryPath(path_));
    file_ = Descriptor(Retried([&] {
      return openat(folder_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
    }));
    if (!file_.ok()) return LastSystemFailure(FolderOf(path_));
    name_ = name;
    return Success();
  }

  // Only the superuser gives files away, but members of a group may give it theirs. Where not even that
  // works, the rights of the old group must not become those of another.
  Result TakeOver(const struct stat& old) {
    struct stat mine;
    if (fstat(file_.get(), &mine) != 0) return LastSystemFailure(path_);
    mode_t mode = old.st_mode & 07777;
    if ((mine.st_uid != old.st_uid || mine.st_gid != old.st_gid) &&
        fchown(file_.get(), old.st_uid, old.st_gid) != 0) {
      if (errno != EPERM) return LastSystemFailure(path_);
      constexpr auto kSameOwner = static_cast<uid_t>(-1);
      if (fchown(file_.get(), kSameOwner, old.st_gid) != 0) mode &= ~mode_t{S_IRWXG | S_ISGID};
    }
    return fchmod(file_.get(), mode) == 0 ? Success() : LastSystemFailure(path_);
  }

  Result Fill(std::string_view bytes) {
    if (Result written = WriteAll(file_, bytes, path_); !written.ok()) return written;
    const bool synced = Retried([&] { return fsync(file_.get()); }) == 0;
    return synced && file_.Close() ? Success() : LastSystemFailure(path_);
  }

  Result Install() {
    if (renameat(folder_, name_.c_str(), folder_, NameOf(path_).c_str()) != 0)
      return LastSystemFailure(path_);
    name_.clear();
    return Success();
  }

 private:
  int folder_;
  const std::string& path_;  // of the file to be replaced, which failures name: nobody knows the other
  std::string name_;
  Descriptor file_;
};

Result HoldFolder(const std::string& folder, Descriptor* handle) {
  *handle = Descriptor(Retried([&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  return handle->ok() ? Success() : LastSystemFailure(folder);
}

// Makes the new name itself survive a crash.
Result SyncName(int folder, const std::string& path) {
  Result result = SyncOpenFolder(folder, path);
  if (!result.ok()) result.reason = why::kAnd(result.reason, why::kMightNotSurvive);
  return result;
}

// Tries again and again, since a lock that is waited for inside the system cannot be given up.
Result WaitForLock(int handle, const std::string& folder) {
  const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
  for (useconds_t pause = kShortestPause; flock(handle, LOCK_EX | LOCK_NB) != 0;) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return LastSystemFailure(folder);
    if (InterruptRequested()) return Failure(Code::kCancelled, folder, why::kInterrupted);
    if (std::chrono::steady_clock::now() > deadline) {
      return Failure(Code::kFailed, folder, why::kSettingsHeld);
    }
    usleep(pause);  // a signal ends it early
    pause = std::min(pause * 2, kLongestPause);
  }
  return Success();
}

}  // namespace

Result ReadRegularFile(const std::string& path, std::string* bytes, WatchedRead* watched) {
  // Without O_NONBLOCK a pipe in the file's place would wait for a writer.
  const Descriptor file(
      Retried([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
  struct stat entry;
  if (!file.ok() || fstat(file.get(), &entry) != 0) return LastSystemFailure(path);
  if (S_ISDIR(entry.st_mode)) return SystemFailure(EISDIR, path);
  if (!S_ISREG(entry.st_mode)) return Failure(Code::kRefused, path, why::kNotRegularFile);
  if (entry.st_size > kGreatestSize) return Failure(Code::kRefused, path, why::kFileTooLarge);
  if (watched == nullptr) return ReadUpTo(file, entry.st_size, path, bytes);
  watched->before = StatusFrom(entry);
  if (IsChangedLately(watched->before)) {
    watched->writers = KeepWritersOut(file);
    if (fstat(file.get(), &entry) != 0) return LastSystemFailure(path);
    watched->before = StatusFrom(entry);
  }
  Result result = ReadUpTo(file, entry.st_size, path, bytes);
  if (result.ok() && fstat(file.get(), &entry) != 0) return LastSystemFailure(path);
  watched->after = StatusFrom(entry);
  return result;
}

Result ReplaceFile(const std::string& path, std::string_view bytes) {
  std::string real;
  struct stat old;
  bool exists = false;
  Descriptor folder;
  Result result = FollowLinks(path, &real);
  if (result.ok()) result = CheckReplaceable(real, &old, &exists);
  if (result.ok()) result = HoldFolder(FolderOf(real), &folder);
  if (!result.ok()) return result;
  Replacement replacement(folder.get(), real);
  result = replacement.Create(exists ? 0600 : 0666);
  if (result.ok() && exists) result = replacement.TakeOver(old);
  if (result.ok()) result = replacement.Fill(bytes);
  if (result.ok()) result = replacement.Install();
  return result.ok() ? SyncName(folder.get(), real) : result;
}

Result WriteTemporaryFile(const std::string& path, std::string_view bytes) {
  Descriptor file(Retried([&] { return open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW); }));
  if (!file.ok()) return LastSystemFailure(path);
  Result written = WriteAll(file, bytes, path);
  if (written.ok() && !file.Close()) return LastSystemFailure(path);
  return written;
}

Result FolderLock::Take(const std::string& path, std::unique_ptr<FolderLock>* lock) {
  std::string real;
  if (Result followed = FollowLinks(path, &real); !followed.ok()) return followed;
  const std::string folder = FolderOf(real);
  Descriptor handle;
  if (Result opened = HoldFolder(folder, &handle); !opened.ok()) return opened;
  if (Result locked = WaitForLock(handle.get(), folder); !locked.ok()) return locked;
  lock->reset(new FolderLock(handle.Release()));
  return Success();
}

FolderLock::~FolderLock() {
  close(static_cast<int>(handle_));
}

}  // namespace quendle::platform
