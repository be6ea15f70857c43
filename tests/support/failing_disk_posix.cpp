#include "support/failing_disk_posix.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quendle::test {
namespace {

std::atomic<FailingDisk*> g_disk = nullptr;
thread_local bool g_acts = false;

std::string PathOf(int descriptor) {
  char path[PATH_MAX];
  const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, sizeof path);
  return length < 0 ? "" : std::string(path, static_cast<std::size_t>(length));
}

std::string PathOf(int folder, const char* name) {
  if (*name == '/' || folder == AT_FDCWD) return name;
  return *name == 0 ? PathOf(folder) : PathOf(folder) + "/" + name;
}

std::string Way(const std::string& from, const std::string& to) {
  return from + " > " + to;
}

template <typename What>
bool Fails(const char* call, What what) {
  FailingDisk* const disk = g_disk;
  if (disk == nullptr || g_acts) return false;
  const int former_error = errno;
  g_acts = true;
  const int error = disk->Meet(std::string(call) + " " + what());
  g_acts = false;
  errno = error != 0 ? error : former_error;
  return error != 0;
}

void Coarsen(struct stat* status) {
  const FailingDisk* const disk = g_disk;
  if (disk == nullptr || g_acts) return;
  for (timespec* stamp : {&status->st_mtim, &status->st_ctim})
    stamp->tv_nsec -= stamp->tv_nsec % disk->clock_step;
}

}  // namespace

FailingDisk::FailingDisk() {
  g_disk = this;
}

FailingDisk::~FailingDisk() {
  g_disk = nullptr;
}

int FailingDisk::Meet(const std::string& call) {
  std::vector<std::function<void()>> acts;
  int error = 0;
  {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
    for (Rule& rule : rules_) {
      const bool is_meant = call.starts_with(rule.call) && call.find(rule.part) != std::string::npos;
      if (!is_meant || rule.left == 0 || --rule.left > 0) continue;
      acts.push_back(rule.act);
      if (rule.error != 0) failed_ = call;
      error = rule.error;
    }
  }
  for (const auto& act : acts) act();  // other threads go on meanwhile
  return error;
}

// In a program these come before those of the C library, which have to do the work.
#define NEXT(name) reinterpret_cast<decltype(&name)>(dlsym(RTLD_NEXT, #name))
#define CALL(kind, type, name, parameters, arguments, what)        \
  type name parameters {                                           \
    if (Fails(kind, [&] { return std::string(what); })) return -1; \
    return NEXT(name) arguments;                                   \
  }

#define STAT(name, parameters, arguments, what)                      \
  int name parameters {                                              \
    if (Fails("stat", [&] { return std::string(what); })) return -1; \
    const int result = NEXT(name) arguments;                         \
    if (result == 0) Coarsen(s);                                     \
    return result;                                                   \
  }

using Times = const timespec*;
using Stat = struct stat;

extern "C" {
// clang-format off
int openat(int d, const char* p, int how, ...) {
  va_list rest;
  va_start(rest, how);
  const mode_t mode = (how & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return Fails("open", [&] { return PathOf(d, p); }) ? -1 : NEXT(openat)(d, p, how, mode);
}
int open(const char* p, int how, ...) {
  va_list rest;
  va_start(rest, how);
  const mode_t mode = (how & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openat(AT_FDCWD, p, how, mode);
}
dirent* readdir(DIR* d) {
  return Fails("list", [&] { return PathOf(dirfd(d)); }) ? nullptr : NEXT(readdir)(d);
}
CALL("make", int, mkdir, (const char* p, mode_t m) noexcept, (p, m), p)
CALL("make", int, mkdirat, (int d, const char* p, mode_t m) noexcept, (d, p, m), PathOf(d, p))
STAT(stat, (const char* p, Stat* s) noexcept, (p, s), p)
STAT(lstat, (const char* p, Stat* s) noexcept, (p, s), p)
STAT(fstat, (int f, Stat* s) noexcept, (f, s), PathOf(f))
STAT(fstatat, (int d, const char* p, Stat* s, int how) noexcept, (d, p, s, how), PathOf(d, p))
CALL("stat", int, faccessat, (int d, const char* p, int m, int how) noexcept, (d, p, m, how), PathOf(d, p))
CALL("read", ssize_t, read, (int f, void* b, size_t n), (f, b, n), PathOf(f))
CALL("read", ssize_t, pread, (int f, void* b, size_t n, off_t at), (f, b, n, at), PathOf(f))
CALL("read", ssize_t, readlinkat, (int d, const char* p, char* b, size_t n) noexcept, (d, p, b, n), PathOf(d, p))
CALL("write", ssize_t, write, (int f, const void* b, size_t n), (f, b, n), PathOf(f))
CALL("write", ssize_t, pwrite, (int f, const void* b, size_t n, off_t at), (f, b, n, at), PathOf(f))
CALL("write", ssize_t, copy_file_range, (int f, off_t* i, int t, off_t* o, size_t n, unsigned how),
     (f, i, t, o, n, how), PathOf(t))
CALL("sync", int, fsync, (int f), (f), PathOf(f))
CALL("sync", int, syncfs, (int f) noexcept, (f), PathOf(f))
CALL("attribute", int, fchmod, (int f, mode_t m) noexcept, (f, m), PathOf(f))
CALL("attribute", int, fchown, (int f, uid_t u, gid_t g) noexcept, (f, u, g), PathOf(f))
CALL("attribute", int, futimens, (int f, Times t) noexcept, (f, t), PathOf(f))
CALL("attribute", int, utimensat, (int d, const char* p, Times t, int how) noexcept, (d, p, t, how), PathOf(d, p))
CALL("link", int, linkat, (int d, const char* p, int e, const char* q, int how) noexcept, (d, p, e, q, how),
     Way(PathOf(d, p), PathOf(e, q)))
CALL("link", int, symlinkat, (const char* t, int d, const char* p) noexcept, (t, d, p), PathOf(d, p))
CALL("rename", int, rename, (const char* p, const char* q) noexcept, (p, q), Way(p, q))
CALL("rename", int, renameat, (int d, const char* p, int e, const char* q) noexcept, (d, p, e, q),
     Way(PathOf(d, p), PathOf(e, q)))
CALL("rename", int, renameat2, (int d, const char* p, int e, const char* q, unsigned how) noexcept,
     (d, p, e, q, how), Way(PathOf(d, p), PathOf(e, q)))
CALL("unlink", int, unlink, (const char* p) noexcept, (p), p)
CALL("unlink", int, unlinkat, (int d, const char* p, int how) noexcept, (d, p, how), PathOf(d, p))
CALL("unlink", int, rmdir, (const char* p) noexcept, (p), p)
// clang-format on
}

}  // namespace quendle::test
