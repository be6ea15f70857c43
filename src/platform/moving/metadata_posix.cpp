#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/entries/entry_status_posix.h"
#include "platform/moving/metadata.h"
#include "platform/process/system_failure.h"

namespace quendle::platform {
namespace {

constexpr std::size_t kLongest = 64 << 10;  // of a value, and of the list of names

// Whoever made a new file may set all this on it, so these only mean that there is no place
// for it.
bool CannotBeHeld(int error) {
  return error == ENOTSUP || error == EPERM || error == ENOSYS;
}

Result UnlessItCannotBeHeld(int outcome, const std::string& path) {
  return outcome == 0 || CannotBeHeld(errno) ? Success() : LastSystemFailure(path);
}

// Capabilities and labels would give a file rights that its new owner does not have to give.
bool IsPrivilege(std::string_view attribute) {
  return attribute.starts_with("security.");
}

int FdOf(OpenEntry entry) {
  return static_cast<int>(entry.handle);
}

Result CopyAttribute(OpenEntry from, OpenEntry to, const char* name) {
  std::vector<char> value(256);
  ssize_t size = fgetxattr(FdOf(from), name, value.data(), value.size());
  if (size < 0 && errno == ERANGE) {
    value.resize(kLongest);
    size = fgetxattr(FdOf(from), name, value.data(), value.size());
  }
  if (size < 0) return CannotBeHeld(errno) || errno == ENODATA ? Success() : LastSystemFailure(from.path);
  return UnlessItCannotBeHeld(fsetxattr(FdOf(to), name, value.data(), static_cast<std::size_t>(size), 0),
                              to.path);
}

Result CopyAttributes(OpenEntry from, OpenEntry to, bool with_privileges) {
  char first_try[512];
  std::vector<char> more;
  char* names = first_try;
  ssize_t size = flistxattr(FdOf(from), names, sizeof first_try);
  if (size < 0 && errno == ERANGE) {
    more.resize(kLongest);
    names = more.data();
    size = flistxattr(FdOf(from), names, more.size());
  }
  if (size < 0) return CannotBeHeld(errno) ? Success() : LastSystemFailure(from.path);
  for (const char* name = names; name < names + size; name += std::string_view(name).size() + 1) {
    if (IsPrivilege(name) && !with_privileges) continue;
    Result result = CopyAttribute(from, to, name);
    if (!result.ok()) return result;
  }
  return Success();
}

}  // namespace

Result CopyMetadata(const Transfer& transfer, OpenEntry from, const EntryStatus& recorded, OpenEntry to) {
  bool owner_kept = false;
  if (transfer.moving) {
    owner_kept = fchown(FdOf(to), recorded.owner, recorded.group) == 0;
    // The group alone often may be kept.
    if (!owner_kept && fchown(FdOf(to), static_cast<uid_t>(-1), recorded.group) != 0 &&
        !CannotBeHeld(errno)) {
      return LastSystemFailure(to.path);
    }
  }
  // Before the mode, which may take the right to set attributes away; after the owner, whose change drops
  // some.
  Result result = CopyAttributes(from, to, owner_kept);
  if (!result.ok()) return result;
  const mode_t mode = recorded.mode & (owner_kept ? 07777U : 01777U);
  result = UnlessItCannotBeHeld(fchmod(FdOf(to), mode), to.path);
  if (!result.ok()) return result;
  const timespec times[] = {SystemTime(recorded.access_time), SystemTime(recorded.write_time)};
  return UnlessItCannotBeHeld(futimens(FdOf(to), times), to.path);
}

Result CopyLinkMetadata(const Transfer& transfer, const EntryStatus& recorded, const OpenFolder& folder,
                        const std::string& name, const std::string& shown) {
  const auto fd = static_cast<int>(folder.get());
  if (transfer.moving) {
    Result result = UnlessItCannotBeHeld(
        fchownat(fd, name.c_str(), recorded.owner, recorded.group, AT_SYMLINK_NOFOLLOW), shown);
    if (!result.ok()) return result;
  }
  const timespec times[] = {SystemTime(recorded.access_time), SystemTime(recorded.write_time)};
  return UnlessItCannotBeHeld(utimensat(fd, name.c_str(), times, AT_SYMLINK_NOFOLLOW), shown);
}

}  // namespace quendle::platform
