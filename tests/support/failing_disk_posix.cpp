#include "support/failing_disk_posix.h"

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quendle::test {
namespace {

FailingDisk* g_disk = nullptr;

std::string PathOf(int descriptor) {
  char path[PATH_MAX];
  const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, sizeof path);
  return length < 0 ? "" : std::string(path, static_cast<std::size_t>(length));
}

std::string PathOf(int folder, const char* name) {
  if (*name == '/' || folder == AT_FDCWD) return name;
  return *name == 0 ? PathOf(folder) : PathOf(folder) + "/" + name;
}

}  // namespace

const char* NameOf(DiskCall call) {
  constexpr const char* kNames[] = {"open", "make",      "stat", "list",   "read",  "write",
                                    "sync", "attribute", "link", "rename", "unlink"};
  return kNames[static_cast<std::size_t>(call)];
}

FailingDisk::FailingDisk() {
  g_disk = this;
}

FailingDisk::~FailingDisk() {
  g_disk = nullptr;
}

void FailingDisk::Fail(DiskCall call, unsigned nth, int error, const std::string& part) {
  rules_.push_back({call, nth, error, nullptr, part});
}

void FailingDisk::Before(DiskCall call, unsigned nth, std::function<void()> action, const std::string& part) {
  rules_.push_back({call, nth, 0, std::move(action), part});
}

int FailingDisk::Meet(DiskCall call, const std::function<std::string()>& what) {
  if (g_disk == nullptr || g_disk->is_busy_ || g_disk->thread_ != std::this_thread::get_id()) return 0;
  const int former_error = errno;
  g_disk->is_busy_ = true;
  const int error = g_disk->Follow(call, std::string(NameOf(call)) + " " + what());
  g_disk->is_busy_ = false;
  errno = error != 0 ? error : former_error;
  return error;
}

int FailingDisk::Follow(DiskCall call, const std::string& what) {
  calls_.push_back(what);
  int error = 0;
  for (Rule& rule : rules_) {
    if (rule.call != call || what.find(rule.part) == std::string::npos || rule.left == 0 || --rule.left > 0)
      continue;
    if (rule.action) rule.action();
    if (rule.error != 0) {
      error = rule.error;
      failed_ = what;
    }
  }
  return error;
}

}  // namespace quendle::test

// In a program these come before those of the C library, which have to do the work.
using quendle::test::DiskCall;
using quendle::test::FailingDisk;
using quendle::test::PathOf;

#define MEET(call, what) (FailingDisk::Meet(DiskCall::call, [&] { return std::string(what); }) != 0)
#define NEXT(function) reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

extern "C" {

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return MEET(kOpen, path) ? -1 : NEXT(open)(path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return MEET(kOpen, PathOf(folder, path)) ? -1 : NEXT(openat)(folder, path, flags, mode);
}

int mkdir(const char* path, mode_t mode) noexcept {
  return MEET(kMake, path) ? -1 : NEXT(mkdir)(path, mode);
}
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  return MEET(kMake, PathOf(folder, path)) ? -1 : NEXT(mkdirat)(folder, path, mode);
}

int stat(const char* path, struct stat* status) noexcept {
  return MEET(kStat, path) ? -1 : NEXT(stat)(path, status);
}
int lstat(const char* path, struct stat* status) noexcept {
  return MEET(kStat, path) ? -1 : NEXT(lstat)(path, status);
}
int fstat(int file, struct stat* status) noexcept {
  return MEET(kStat, PathOf(file)) ? -1 : NEXT(fstat)(file, status);
}
int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  return MEET(kStat, PathOf(folder, path)) ? -1 : NEXT(fstatat)(folder, path, status, flags);
}
int faccessat(int folder, const char* path, int mode, int flags) noexcept {
  return MEET(kStat, PathOf(folder, path)) ? -1 : NEXT(faccessat)(folder, path, mode, flags);
}

dirent* readdir(DIR* listing) {
  return MEET(kList, PathOf(dirfd(listing))) ? nullptr : NEXT(readdir)(listing);
}

ssize_t read(int file, void* bytes, size_t size) {
  return MEET(kRead, PathOf(file)) ? -1 : NEXT(read)(file, bytes, size);
}
ssize_t pread(int file, void* bytes, size_t size, off_t position) {
  return MEET(kRead, PathOf(file)) ? -1 : NEXT(pread)(file, bytes, size, position);
}
ssize_t readlinkat(int folder, const char* path, char* target, size_t size) noexcept {
  return MEET(kRead, PathOf(folder, path)) ? -1 : NEXT(readlinkat)(folder, path, target, size);
}

ssize_t write(int file, const void* bytes, size_t size) {
  return MEET(kWrite, PathOf(file)) ? -1 : NEXT(write)(file, bytes, size);
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t position) {
  return MEET(kWrite, PathOf(file)) ? -1 : NEXT(pwrite)(file, bytes, size, position);
}
ssize_t copy_file_range(int from, off_t* from_position, int to, off_t* to_position, size_t size,
                        unsigned flags) {
  return MEET(kWrite, PathOf(to)) ? -1
                                  : NEXT(copy_file_range)(from, from_position, to, to_position, size, flags);
}

int fsync(int file) {
  return MEET(kSync, PathOf(file)) ? -1 : NEXT(fsync)(file);
}
int syncfs(int file) noexcept {
  return MEET(kSync, PathOf(file)) ? -1 : NEXT(syncfs)(file);
}

int fchmod(int file, mode_t mode) noexcept {
  return MEET(kAttribute, PathOf(file)) ? -1 : NEXT(fchmod)(file, mode);
}
int fchown(int file, uid_t user, gid_t group) noexcept {
  return MEET(kAttribute, PathOf(file)) ? -1 : NEXT(fchown)(file, user, group);
}
int futimens(int file, const timespec times[2]) noexcept {
  return MEET(kAttribute, PathOf(file)) ? -1 : NEXT(futimens)(file, times);
}
int utimensat(int folder, const char* path, const timespec times[2], int flags) noexcept {
  return MEET(kAttribute, PathOf(folder, path)) ? -1 : NEXT(utimensat)(folder, path, times, flags);
}

int linkat(int folder, const char* path, int new_folder, const char* name, int flags) noexcept {
  return MEET(kLink, PathOf(folder, path) + " > " + PathOf(new_folder, name))
             ? -1
             : NEXT(linkat)(folder, path, new_folder, name, flags);
}
int symlinkat(const char* target, int folder, const char* name) noexcept {
  return MEET(kLink, PathOf(folder, name)) ? -1 : NEXT(symlinkat)(target, folder, name);
}

int rename(const char* from, const char* to) noexcept {
  return MEET(kRename, std::string(from) + " > " + to) ? -1 : NEXT(rename)(from, to);
}
int renameat(int folder, const char* from, int to_folder, const char* to) noexcept {
  return MEET(kRename, PathOf(folder, from) + " > " + PathOf(to_folder, to))
             ? -1
             : NEXT(renameat)(folder, from, to_folder, to);
}
int renameat2(int folder, const char* from, int to_folder, const char* to, unsigned flags) noexcept {
  return MEET(kRename, PathOf(folder, from) + " > " + PathOf(to_folder, to))
             ? -1
             : NEXT(renameat2)(folder, from, to_folder, to, flags);
}

int unlink(const char* path) noexcept {
  return MEET(kUnlink, path) ? -1 : NEXT(unlink)(path);
}
int unlinkat(int folder, const char* path, int flags) noexcept {
  return MEET(kUnlink, PathOf(folder, path)) ? -1 : NEXT(unlinkat)(folder, path, flags);
}
int rmdir(const char* path) noexcept {
  return MEET(kUnlink, path) ? -1 : NEXT(rmdir)(path);
}

}  // extern "C"
