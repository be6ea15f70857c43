#include "platform/source_tree_posix.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/copy_file_posix.h"
#include "platform/entry_names_posix.h"
#include "platform/folder_listing_posix.h"

namespace quendle::platform {
namespace {

// Losing a sibling link or the entries below changes an entry without anybody else having touched it.
bool MayBeRemoved(const struct stat& recorded, const struct stat& now) {
  if (S_ISDIR(recorded.st_mode)) return IsSameEntry(recorded, now);
  if (recorded.st_nlink == 1) return IsUnchanged(recorded, now);
  return IsSameEntry(recorded, now) && recorded.st_size == now.st_size &&
         recorded.st_mtim.tv_sec == now.st_mtim.tv_sec && recorded.st_mtim.tv_nsec == now.st_mtim.tv_nsec;
}

// For the error of a removal that just failed.
Result RemovalFailure(const std::string& path) {
  if (errno != ENOTEMPTY && errno != EEXIST) return LastSystemFailure(path);
  return Failure(Code::kFailed, path, "entries that appeared meanwhile were left");
}

}  // namespace

Result SourceTree::Scan(Transfer& transfer, const std::string& top, const struct stat& status) {
  entries_.push_back({top, 0, status});
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!S_ISDIR(entries_[i].status.st_mode)) continue;
    if (!transfer.meter.Tick()) return Cancelled(Path(i));
    Result result = ScanFolder(transfer, i);
    if (!result.ok()) return result;
  }
  return Success();
}

Result SourceTree::ScanFolder(const Transfer& transfer, std::size_t index) {
  const std::string path = Path(index);
  Descriptor folder;
  Result result = OpenFolder(index, &folder);
  std::vector<std::string> names;
  if (result.ok()) result = ListFolder(folder.get(), path, &names);
  if (!result.ok()) return result;
  entries_[index].children_begin = entries_.size();
  for (std::string& name : names) {
    result = AddChild(transfer, folder.get(), index, std::move(name));
    if (!result.ok()) return result;
  }
  entries_[index].children_end = entries_.size();
  if (!transfer.moving || names.empty()) return Success();
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(entries_[index].children_begin);
  // An entry of somebody else is the harder one to remove.
  const auto foreign = std::find_if(begin, entries_.end() - 1, [user = geteuid()](const TreeEntry& entry) {
    return entry.status.st_uid != user;
  });
  return CheckRemovable(folder.get(), ".", path, foreign->status);
}

Result SourceTree::AddChild(const Transfer& transfer, int folder, std::size_t index, std::string name) {
  TreeEntry entry{std::move(name), index};
  const int error = fstatat(folder, entry.name.c_str(), &entry.status, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
  entries_.push_back(std::move(entry));
  if (error != 0) return SystemFailure(error, Path(entries_.size() - 1));
  const struct stat& status = entries_.back().status;
  if (S_ISREG(status.st_mode)) bytes_ += static_cast<std::uint64_t>(status.st_size);
  if (transfer.moving && status.st_dev != entries_[index].status.st_dev) {
    return Failure(Code::kRefused, Path(entries_.size() - 1), "another file system is mounted here");
  }
  return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)
             ? Success()
             : CheckCopyable(status, Path(entries_.size() - 1));
}

Result SourceTree::CheckUnchanged(Transfer& transfer) const {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!S_ISDIR(entries_[i].status.st_mode)) continue;
    if (!transfer.meter.Tick()) return Cancelled(Path(i));
    Result result = CheckFolder(i);
    if (!result.ok()) return result;
  }
  return Success();
}

Result SourceTree::CheckFolder(std::size_t index) const {
  const TreeEntry& entry = entries_[index];
  Descriptor folder;
  Result result = OpenFolder(index, &folder);
  if (!result.ok()) return result;
  struct stat now;
  if (fstat(folder.get(), &now) != 0) return LastSystemFailure(Path(index));
  if (!IsUnchanged(entry.status, now)) return SourceChanged(Path(index));  // entries came or went
  for (std::size_t i = entry.children_begin; i < entry.children_end; ++i) {
    const TreeEntry& child = entries_[i];
    if (S_ISDIR(child.status.st_mode)) continue;
    if (fstatat(folder.get(), child.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0 ||
        !IsUnchanged(child.status, now)) {
      return SourceChanged(Path(i));
    }
  }
  return Success();
}

Result SourceTree::Remove(Transfer& transfer, bool* removed_any) const {
  Result first_failure;
  for (std::size_t i = entries_.size(); i-- > 0;) {
    if (!S_ISDIR(entries_[i].status.st_mode)) continue;
    Result result = RemoveChildren(transfer, i, removed_any);
    if (!result.ok() && first_failure.ok()) first_failure = std::move(result);
    if (!first_failure.ok() && !*removed_any) return first_failure;
  }
  if (rmdir(entries_.front().name.c_str()) == 0) {
    *removed_any = true;
  } else if (first_failure.ok()) {
    first_failure = RemovalFailure(entries_.front().name);
  }
  return first_failure;
}

// What cannot be removed stays; the rest goes.
Result SourceTree::RemoveChildren(Transfer& transfer, std::size_t index, bool* removed_any) const {
  const TreeEntry& entry = entries_[index];
  if (entry.children_begin == entry.children_end) return Success();
  Descriptor folder;
  Result first_failure = OpenFolder(index, &folder);
  if (!first_failure.ok()) return first_failure;
  for (std::size_t i = entry.children_begin; i < entry.children_end; ++i) {
    (void)transfer.meter.Tick();  // half a source is worse than a move that was not to be
    const TreeEntry& child = entries_[i];
    const char* name = child.name.c_str();
    const int flags = S_ISDIR(child.status.st_mode) ? AT_REMOVEDIR : 0;
    struct stat now;
    Result result;
    if (fstatat(folder.get(), name, &now, AT_SYMLINK_NOFOLLOW) != 0) continue;  // somebody else removed it
    if (!MayBeRemoved(child.status, now)) {
      result = SourceChanged(Path(i));
    } else if (unlinkat(folder.get(), name, flags) == 0) {
      *removed_any = true;
    } else {
      result = RemovalFailure(Path(i));
    }
    if (!result.ok() && first_failure.ok()) first_failure = std::move(result);
    if (!first_failure.ok() && !*removed_any) break;
  }
  return first_failure;
}

std::string SourceTree::PathBelow(const std::string& top, std::size_t index) const {
  if (index == 0) return top;
  return PathBelow(top, entries_[index].folder) + "/" + entries_[index].name;
}

Result SourceTree::OpenFolder(std::size_t index, Descriptor* folder) const {
  const std::string path = Path(index);
  *folder = Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder->ok()) return LastSystemFailure(path);
  struct stat now;
  if (fstat(folder->get(), &now) != 0) return LastSystemFailure(path);
  return IsSameEntry(entries_[index].status, now) ? Success() : SourceChanged(path);
}

Result CheckCopyable(const struct stat& status, const std::string& path) {
  if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode) || S_ISLNK(status.st_mode)) return Success();
  return Failure(Code::kRefused, path, "devices, sockets and pipes cannot be copied");
}

}  // namespace quendle::platform
