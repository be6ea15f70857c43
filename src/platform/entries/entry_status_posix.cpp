#include "platform/entries/entry_status_posix.h"
#include "platform/process/system_failure.h"

#include <climits>
#include <cstdlib>
#include <memory>

#include <unistd.h>

#include "platform/entries/path_names.h"

namespace quendle::platform {
namespace {

EntryStatus::Kind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return EntryStatus::Kind::kFile;
  if (S_ISDIR(mode)) return EntryStatus::Kind::kFolder;
  return S_ISLNK(mode) ? EntryStatus::Kind::kLink : EntryStatus::Kind::kOther;
}

EntryTime TimeFrom(const timespec& time) {
  return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
}

}  // namespace

EntryStatus StatusFrom(const struct stat& entry) {
  constexpr off_t kBlock = 512;  // the unit of st_blocks on every Linux file system
  EntryStatus status;
  status.kind = KindOf(entry.st_mode);
  status.id = {entry.st_dev, 0, entry.st_ino};
  status.size = static_cast<std::uint64_t>(entry.st_size);
  status.links = entry.st_nlink;
  status.write_time = TimeFrom(entry.st_mtim);
  status.access_time = TimeFrom(entry.st_atim);
  status.change_time = TimeFrom(entry.st_ctim);
  status.mode = entry.st_mode;
  status.owner = entry.st_uid;
  status.group = entry.st_gid;
  status.has_holes = entry.st_blocks * kBlock < entry.st_size;
  return status;
}

Result ReadStatus(const std::string& path, EntryStatus* status) {
  struct stat entry;
  if (lstat(path.c_str(), &entry) != 0) return LastSystemFailure(path);
  *status = StatusFrom(entry);
  return Success();
}

Result ReadTargetStatus(const std::string& path, EntryStatus* status) {
  struct stat entry;
  if (stat(path.c_str(), &entry) != 0) return LastSystemFailure(path);
  *status = StatusFrom(entry);
  return Success();
}

std::string LinkTarget(const std::string& path) {
  char text[PATH_MAX];
  const ssize_t length = readlink(path.c_str(), text, sizeof text);
  if (length <= 0) return "";
  const std::string target(text, static_cast<std::size_t>(length));
  return target.front() == '/' ? target : PathBelow(FolderOf(path), target);
}

std::uint32_t CurrentUser() {
  return geteuid();
}

std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : "";
}

}  // namespace quendle::platform
