#include "platform/moving/source_tree.h"

#include <algorithm>
#include <utility>

#include "platform/entries/paths.h"

namespace quendle::platform {
namespace {

// Losing a sibling link or the entries below changes an entry without anybody else having touched it.
bool MayBeRemoved(const EntryStatus& recorded, const EntryStatus& now) {
  if (recorded.is_folder()) return IsSameEntry(recorded, now);
  if (recorded.links == 1) return IsUnchanged(recorded, now);
  return IsSameContent(recorded, now);
}

Result OfRemoval(Result result) {
  if (result.code != Code::kExists) return result;
  return Failure(Code::kFailed, result.path, why::kNewEntriesLeft);
}

}  // namespace

Result SourceTree::Scan(Transfer& transfer, const std::string& top, const EntryStatus& status) {
  TreeEntry first;
  first.name = top;
  first.status = status;
  entries_.push_back(std::move(first));
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!entries_[i].status.is_folder()) continue;
    if (!transfer.meter.Tick()) return Cancelled(Path(i));
    Result result = ScanFolder(transfer, i);
    if (!result.ok()) return result;
  }
  return Success();
}

Result SourceTree::ScanFolder(const Transfer& transfer, std::size_t index) {
  OpenFolder folder;
  Result result = Enter(index, &folder);
  std::vector<std::string> names;
  if (result.ok()) result = folder.List(&names);
  if (!result.ok()) return result;
  entries_[index].children_begin = entries_.size();
  for (std::string& name : names) {
    result = AddChild(transfer, folder, index, std::move(name));
    if (!result.ok()) return result;
  }
  entries_[index].children_end = entries_.size();
  if (!transfer.moving || names.empty()) return Success();
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(entries_[index].children_begin);
  // An entry of somebody else is the harder one to remove.
  const auto foreign =
      std::find_if(begin, entries_.end() - 1,
                   [user = CurrentUser()](const TreeEntry& entry) { return entry.status.owner != user; });
  return folder.CheckRemovable(foreign->name, foreign->status);
}

Result SourceTree::AddChild(const Transfer& transfer, const OpenFolder& folder, std::size_t index,
                            std::string name) {
  TreeEntry entry;
  entry.name = std::move(name);
  entry.folder = index;
  Result result = folder.StatusOf(entry.name, &entry.status);
  if (!result.ok()) return result;
  entries_.push_back(std::move(entry));
  const EntryStatus& status = entries_.back().status;
  if (status.is_file()) bytes_ += status.size;
  if (transfer.moving && status.id.volume != entries_[index].status.id.volume) {
    return Failure(Code::kRefused, Path(entries_.size() - 1), why::kMounted);
  }
  return status.is_file() || status.is_folder() ? Success()
                                                : CheckCopyable(status, Path(entries_.size() - 1));
}

Result SourceTree::Follow(const std::string& top) {
  TreeEntry& first = entries_.front();
  EntryStatus now;
  Result result = ReadStatus(top, &now);
  if (result.ok() && !IsSameContent(first.status, now)) result = SourceChanged(top);
  if (!result.ok()) return result;
  first.name = top;
  first.status = now;
  return result;
}

Result SourceTree::CheckUnchanged(Transfer& transfer) const {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!entries_[i].status.is_folder()) continue;
    if (!transfer.meter.Tick()) return Cancelled(Path(i));
    Result result = CheckFolder(i);
    if (!result.ok()) return result;
  }
  return Success();
}

Result SourceTree::CheckFolder(std::size_t index) const {
  const TreeEntry& entry = entries_[index];
  OpenFolder folder;
  Result result = Enter(index, &folder);
  EntryStatus now;
  if (result.ok()) result = folder.Status(&now);
  if (!result.ok()) return result;
  if (!IsUnchanged(entry.status, now)) return SourceChanged(Path(index));  // entries came or went
  for (std::size_t i = entry.children_begin; i < entry.children_end; ++i) {
    const TreeEntry& child = entries_[i];
    if (child.status.is_folder()) continue;
    if (!folder.StatusOf(child.name, &now).ok() || !IsUnchanged(child.status, now))
      return SourceChanged(Path(i));
  }
  return Success();
}

Result SourceTree::Remove(Transfer& transfer, bool* removed_any) const {
  Result first_failure;
  for (std::size_t i = entries_.size(); i-- > 0;) {
    if (!entries_[i].status.is_folder()) continue;
    Result result = RemoveChildren(transfer, i, removed_any);
    if (!result.ok() && first_failure.ok()) first_failure = std::move(result);
    if (!first_failure.ok() && !*removed_any) return first_failure;
  }
  Result removed = OfRemoval(RemoveEmptyFolder(entries_.front().name));
  *removed_any |= removed.ok();
  return first_failure.ok() ? removed : first_failure;
}

// What cannot be removed stays; the rest goes.
Result SourceTree::RemoveChildren(Transfer& transfer, std::size_t index, bool* removed_any) const {
  const TreeEntry& entry = entries_[index];
  if (entry.children_begin == entry.children_end) return Success();
  OpenFolder folder;
  Result first_failure = Enter(index, &folder);
  if (!first_failure.ok()) return first_failure;
  for (std::size_t i = entry.children_begin; i < entry.children_end; ++i) {
    (void)transfer.meter.Tick();  // half a source is worse than a move that was not to be
    const TreeEntry& child = entries_[i];
    EntryStatus now;
    if (!folder.StatusOf(child.name, &now).ok()) continue;  // somebody else removed it
    Result result;
    if (!MayBeRemoved(child.status, now)) {
      result = SourceChanged(Path(i));
    } else {
      result =
          OfRemoval(child.status.is_folder() ? folder.RemoveFolder(child.name) : folder.Remove(child.name));
      *removed_any |= result.ok();
    }
    if (!result.ok() && first_failure.ok()) first_failure = std::move(result);
    if (!first_failure.ok() && !*removed_any) break;
  }
  return first_failure;
}

std::string SourceTree::PathBelow(const std::string& top, std::size_t index) const {
  if (index == 0) return top;
  return platform::PathBelow(PathBelow(top, entries_[index].folder), entries_[index].name);
}

Result SourceTree::Enter(std::size_t index, OpenFolder* folder) const {
  const std::string path = Path(index);
  Result result = OpenFolder::OpenItself(path, path, OpenFolder::Use::kList, folder);
  EntryStatus now;
  if (result.ok()) result = folder->Status(&now);
  return !result.ok() || IsSameEntry(entries_[index].status, now) ? result : SourceChanged(path);
}

Result CheckCopyable(const EntryStatus& status, const std::string& path) {
  if (status.kind != EntryStatus::Kind::kOther) return Success();
  return Failure(Code::kRefused, path, why::kNotCopyable);
}

}  // namespace quendle::platform
