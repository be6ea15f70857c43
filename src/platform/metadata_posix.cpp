#include "platform/metadata_posix.h"

#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quendle::platform {
namespace {

constexpr std::size_t kLongest = 64 << 10;  // of a value, and of the list of names

// Every entry is moved by one who may set all this on a new file, so these only mean that there is no place
// for it.
bool CannotBeHeld(int error) {
  return error == ENOTSUP || error == EPERM || error == ENOSYS;
}

Result Optional(int outcome, const std::string& path) {
  return outcome == 0 || CannotBeHeld(errno) ? Success() : LastSystemFailure(path);
}

// Capabilities and labels would give a file rights that its new owner does not have to give.
bool IsPrivilege(std::string_view attribute) {
  return attribute.starts_with("security.");
}

Result CopyAttribute(OpenEntry from, OpenEntry to, const char* name) {
  std::vector<char> value(256);
  ssize_t size = fgetxattr(from.fd, name, value.data(), value.size());
  if (size < 0 && errno == ERANGE) {
    value.resize(kLongest);
    size = fgetxattr(from.fd, name, value.data(), value.size());
  }
  if (size < 0) return CannotBeHeld(errno) || errno == ENODATA ? Success() : LastSystemFailure(from.path);
  return Optional(fsetxattr(to.fd, name, value.data(), static_cast<std::size_t>(size), 0), to.path);
}

Result CopyAttributes(OpenEntry from, OpenEntry to, bool with_privileges) {
  char first_try[512];
  std::vector<char> more;
  char* names = first_try;
  ssize_t size = flistxattr(from.fd, names, sizeof first_try);
  if (size < 0 && errno == ERANGE) {
    more.resize(kLongest);
    names = more.data();
    size = flistxattr(from.fd, names, more.size());
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

Result CopyMetadata(const Transfer& transfer, OpenEntry from, const struct stat& recorded, OpenEntry to) {
  bool owner_kept = false;
  if (transfer.moving) {
    owner_kept = fchown(to.fd, recorded.st_uid, recorded.st_gid) == 0;
    // The group alone often may be kept.
    if (!owner_kept && fchown(to.fd, static_cast<uid_t>(-1), recorded.st_gid) != 0 && !CannotBeHeld(errno)) {
      return LastSystemFailure(to.path);
    }
  }
  // Before the mode, which may take the right to set attributes away; after the owner, whose change drops
  // some.
  Result result = CopyAttributes(from, to, owner_kept);
  if (!result.ok()) return result;
  const mode_t mode = recorded.st_mode & (owner_kept ? 07777U : 01777U);
  result = Optional(fchmod(to.fd, mode), to.path);
  if (!result.ok()) return result;
  const timespec times[] = {recorded.st_atim, recorded.st_mtim};
  return Optional(futimens(to.fd, times), to.path);
}

Result CopyLinkMetadata(const Transfer& transfer, const struct stat& recorded, int folder, const char* name,
                        const std::string& shown) {
  if (transfer.moving) {
    Result result =
        Optional(fchownat(folder, name, recorded.st_uid, recorded.st_gid, AT_SYMLINK_NOFOLLOW), shown);
    if (!result.ok()) return result;
  }
  const timespec times[] = {recorded.st_atim, recorded.st_mtim};
  return Optional(utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW), shown);
}

}  // namespace quendle::platform
